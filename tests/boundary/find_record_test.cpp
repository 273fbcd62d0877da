// Finding a record by its labels, and the first and last record of a symbol: the order of the
// tests, the texts, and what a failed lookup leaves.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class FindRecord : public testing::Test {
 protected:
  FindRecord() : data(db.addParameter("p", 2)) {
    db.put(data, {"a", "x"}, 1.0);
    db.put(data, {"b", "y"}, 2.0);
  }

  int find(void* symbol, Keys keys) { return lib().c__ztbfindrecord(db, symbol, keys, &record); }

  // The lookup fails with this text, or with none, and leaves no handle and no new label.
  void expectMiss(const std::string& text, void* symbol, const Keys& keys) {
    const int labels = db.info(ZTB_INFO_UEL_COUNT);
    record = untouched;
    EXPECT_FAILURE(db, text, find(symbol, keys));
    EXPECT_EQ(nullptr, record);
    EXPECT_EQ(labels, db.info(ZTB_INFO_UEL_COUNT));
  }

  Database db;
  void* data;
  void* record = untouched;
};

TEST_F(FindRecord, findsByLabelsInAnyCaseAndWithTrailingBlanks) {
  EXPECT_SUCCESS(db, find(data, {"B ", "Y"}));
  const Record found(db, record);
  EXPECT_EQ(2.0, db.level(found));
  EXPECT_EQ((Labels{"b", "y"}), db.labels(found, 2));
}

TEST_F(FindRecord, givesAHandleOfItsOwnEachTime) {
  const Record first = db.record(data, {"a", "x"});
  const Record second = db.record(data, {"a", "x"});
  EXPECT_NE(static_cast<void*>(first), static_cast<void*>(second));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, first, second));
}

TEST_F(FindRecord, refusesANullSymbol) {
  expectMiss("No symbol handle specified", nullptr, {"a", "x"});
}

TEST_F(FindRecord, anEmptySymbolIsToldBeforeUnknownLabels) {
  expectMiss("Cannot find any record in Symbol q (q is empty)", db.addParameter("q"), {"unknown"});
}

TEST_F(FindRecord, anUnknownLabelIsToldWithItsPositionFromOne) {
  expectMiss("Cannot find element Nope (on position 1) in Symbol p", data, {"Nope", "nada"});
  expectMiss("Cannot find element Nada (on position 2) in Symbol p", data, {"a", "Nada"});
}

TEST_F(FindRecord, aMissQuotesTheLabelsAsGiven) {
  expectMiss("Cannot find record (\"A\",\"Y \") in Symbol p", data, {"A", "Y "});
}

TEST_F(FindRecord, quotesTheStoredNameOfTheSymbol) {
  void* const symbol = db.addParameter("MixedCase");
  db.put(symbol, {"a"});
  expectMiss("Cannot find record (\"b\") in Symbol MixedCase", db.find("mixedcase"), {"b"});
}

TEST_F(FindRecord, aRefusedLabelEndsTheLookupWithTheTextOfTheLabel) {
  expectMiss("Label with single and double quote not allowed >'\"<", data, {"'\"", "x"});
  expectMiss("Label exceeds maximum size of 63: >" + std::string(64, 'z') + "<", data,
             {"a", std::string(64, 'z').c_str()});
  EXPECT_SILENT_FAILURE(db, find(data, {"\t", "x"}));
  EXPECT_EQ(nullptr, record);
  EXPECT_SILENT_FAILURE(db, find(data, {"a", nullptr}));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FindRecord, withoutLabelsFailsAndLeavesNoHandle) {
  EXPECT_UNEXPECTED(db, "ztbFindRecord", lib().c__ztbfindrecord(db, data, nullptr, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_UNEXPECTED(db, "ztbFindRecord",
                    lib().c__ztbfindrecord(db, db.universe(), nullptr, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FindRecord, theFirstBadPositionDecides) {
  expectMiss("Cannot find element q (on position 1) in Symbol p", data, {"q", "'\""});
  expectMiss("Label with single and double quote not allowed >'\"<", data, {"'\"", "q"});
}

TEST_F(FindRecord, aBlankIsTheReservedEntryAndMatchesNoRecord) {
  expectMiss("Cannot find record (\" \",\"x\") in Symbol p", data, {" ", "x"});
}

TEST_F(FindRecord, aLongMessageIsCutTo255Chars) {
  void* const wide = db.addParameter("wide", 20);
  const std::string label(60, 'w');
  db.uel(label.c_str());
  db.put(wide, Keys(Labels(20, "a")));
  std::string text = "Cannot find record (\"";
  for (int d = 0; d < 20; ++d) {
    text += label + (d < 19 ? "\",\"" : "\")");
  }
  EXPECT_FAILURE(db, text.substr(0, 255), find(wide, Keys(Labels(20, label))));
}

TEST_F(FindRecord, ofAScalarReadsNoLabels) {
  void* const scalar = db.addParameter("s", 0);
  record = untouched;
  EXPECT_FAILURE(db, "Cannot find any record in Symbol s (s is empty)",
                 lib().c__ztbfindrecord(db, scalar, nullptr, &record));
  EXPECT_EQ(nullptr, record);
  db.put(scalar, {}, 3.5);
  EXPECT_SUCCESS(db, lib().c__ztbfindrecord(db, scalar, nullptr, &record));
  const Record found(db, record);
  EXPECT_EQ(3.5, db.level(found));
}

TEST_F(FindRecord, ofAnAliasHandleMeetsNoRecords) {
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  expectMiss("Cannot find any record in Symbol j (j is empty)", db.addAlias("j", set), {"a"});
}

TEST_F(FindRecord, inTheUniverseIsALabel) {
  EXPECT_SUCCESS(db, find(db.universe(), {"B"}));
  const Record found(db, record);
  EXPECT_EQ((Labels{"b"}), db.labels(found, 1));
}

TEST_F(FindRecord, inTheUniverseMissesUnknownLabelsWithATextOfItsOwn) {
  expectMiss("Cannot find element Nope in Universe", db.universe(), {"Nope"});
  expectMiss("Label with single and double quote not allowed >'\"<", db.universe(), {"'\""});
  record = untouched;
  EXPECT_SILENT_FAILURE(db, find(db.universe(), {"\n"}));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FindRecord, ofABlankInTheUniverseIsTheReservedEntry) {
  EXPECT_SUCCESS(db, find(db.universe(), {"  "}));
  const Record found(db, record);
  EXPECT_EQ((Labels{" "}), db.labels(found, 1));
  EXPECT_EQ(1, lib().c__ztbrecordmovenext(db, found));
  EXPECT_EQ((Labels{"a"}), db.labels(found, 1));
}

TEST_F(FindRecord, keysAreComparedAsNumbersOfAllPositions) {
  void* const cube = db.addParameter("c", 3);
  db.put(cube, {"a", "b", "x"}, 1.0);
  db.put(cube, {"a", "b", "y"}, 2.0);
  db.put(cube, {"b", "a", "x"}, 3.0);
  EXPECT_EQ(2.0, db.level(db.record(cube, {"a", "b", "y"})));
  EXPECT_EQ(3.0, db.level(db.record(cube, {"b", "a", "x"})));
  expectMiss("Cannot find record (\"b\",\"b\",\"x\") in Symbol c", cube, {"b", "b", "x"});
}

TEST_F(FindRecord, worksAtTheLargestDimension) {
  void* const wide = db.addVariable("wide", 20);
  Labels labels;
  for (int d = 0; d < 20; ++d) {
    labels.push_back(numbered("k", d));
  }
  db.put(wide, Keys(labels), 8.0);
  labels.back() = "k0";
  db.put(wide, Keys(labels), 9.0);
  EXPECT_EQ(9.0, db.level(db.record(wide, Keys(labels))));
  EXPECT_EQ(labels, db.labels(db.first(wide), 20)) << "k0 has the lower number";
  labels.back() = "k19";
  EXPECT_EQ(8.0, db.level(db.record(wide, Keys(labels))));
}

TEST_F(FindRecord, findsAmongThousands) {
  void* const list = db.addParameter("list");
  for (int i = 0; i < 3000; ++i) {
    db.put(list, {(numbered("n", i)).c_str()}, i);
  }
  EXPECT_EQ(3000, db.recordCount(list));
  EXPECT_EQ(1234.0, db.level(db.record(list, {"n1234"})));
}

class FirstAndLastRecord : public testing::Test {
 protected:
  Database db;
  void* record = untouched;
};

TEST_F(FirstAndLastRecord, followTheNumbersOfTheLabelsNotTheirTextNorTheOrderOfAddition) {
  void* const data = db.addParameter("p", 2);
  db.uel("zebra");
  db.uel("ant");
  db.put(data, {"ant", "ant"}, 4.0);
  db.put(data, {"ant", "zebra"}, 3.0);
  db.put(data, {"zebra", "ant"}, 2.0);
  EXPECT_EQ((Labels{"zebra", "ant"}), db.labels(db.first(data), 2));
  EXPECT_EQ((Labels{"ant", "ant"}), db.labels(db.last(data), 2));
}

TEST_F(FirstAndLastRecord, refuseANullSymbol) {
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().c__ztbfindfirstrecord(db, nullptr, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().c__ztbfindlastrecord(db, nullptr, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FirstAndLastRecord, failOnAnEmptySymbol) {
  void* const data = db.addParameter("p");
  EXPECT_FAILURE(db, "Cannot find a record in Symbol p",
                 lib().c__ztbfindfirstrecord(db, data, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_FAILURE(db, "Cannot find a record in Symbol p",
                 lib().c__ztbfindlastrecord(db, data, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FirstAndLastRecord, failOnAnEmptyUniverse) {
  EXPECT_FAILURE(db, "Cannot find a record in Universe",
                 lib().c__ztbfindfirstrecord(db, db.universe(), &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_FAILURE(db, "Cannot find a record in Universe",
                 lib().c__ztbfindlastrecord(db, db.universe(), &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(FirstAndLastRecord, ofTheUniverseAreItsFirstAndLastLabel) {
  db.uel("one");
  db.uel("two");
  db.uel("three");
  EXPECT_EQ((Labels{"one"}), db.labels(db.first(db.universe()), 1));
  EXPECT_EQ((Labels{"three"}), db.labels(db.last(db.universe()), 1));
}

TEST_F(FirstAndLastRecord, ofAScalarAreItsRecord) {
  void* const scalar = db.addVariable("v", 0);
  db.put(scalar, {}, 6.0);
  EXPECT_EQ(6.0, db.level(db.first(scalar)));
  EXPECT_EQ(6.0, db.level(db.last(scalar)));
}

}  // namespace
}  // namespace ztbtest
