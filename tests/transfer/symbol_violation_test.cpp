// Records of one symbol that break its domains.
#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

class SymbolViolation : public testing::Test {
 protected:
  SymbolViolation() : i(addSetOf(db, "i", {"a", "b"})), data(db.addOver("p", ZTB_PARAMETER, {i})) {}

  Database db;
  void* i;
  void* data;
};

TEST_F(SymbolViolation, isNoneWhenAllLabelsAreInTheDomain) {
  db.put(data, {"a"}, 1);
  void* handle = &db;
  EXPECT_SUCCESS(db, lib().c__ztbgetfirstdvinsymbol(db, data, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_FALSE(violates(db, data));
  EXPECT_FALSE(violates(db, db.addOver("empty", ZTB_PARAMETER, {i})));
}

TEST_F(SymbolViolation, isFoundInTheOrderOfTheRecords) {
  for (const char* label : {"z", "a", "y", "b", "x"}) {
    db.put(data, {label}, 1);
  }
  EXPECT_TRUE(violates(db, data));
  EXPECT_EQ((std::vector<Violating>{{"p", {"z"}, {1}}, {"p", {"y"}, {1}}, {"p", {"x"}, {1}}}),
            violationsOf(db, data));
}

TEST_F(SymbolViolation, ofARecordIsReportedOnceWithAllItsPositions) {
  void* const j = addSetOf(db, "j", {"x", "y"});
  void* const wide = db.addOver("wide", ZTB_VARIABLE, {i, j, i});
  db.put(wide, {"nowhere", "x", "offside"});
  db.put(wide, {"a", "a", "b"});
  db.put(wide, {"a", "x", "b"});
  EXPECT_EQ((std::vector<Violating>{{"wide", {"a", "a", "b"}, {0, 1, 0}},
                                    {"wide", {"nowhere", "x", "offside"}, {1, 0, 1}}}),
            violationsOf(db, wide));
}

TEST_F(SymbolViolation, isNeverOneOfAPositionOverTheUniverse) {
  void* const open = db.addOver("open", ZTB_PARAMETER, {i, db.universe()});
  db.put(open, {"nowhere", "nowhere"}, 1);
  EXPECT_EQ((std::vector<Violating>{{"open", {"nowhere", "nowhere"}, {1, 0}}}),
            violationsOf(db, open));
  void* const free = db.addParameter("free");
  db.put(free, {"nowhere"}, 1);
  EXPECT_FALSE(violates(db, free));
}

TEST_F(SymbolViolation, isNeverOneOfADomainKnownByNameOnly) {
  void* const named = db.addOverNames("named", ZTB_PARAMETER, {"i"});
  db.put(named, {"nowhere"}, 1);
  EXPECT_FALSE(violates(db, named));
  EXPECT_EQ((std::vector<Violating>{}), violationsOf(db, named));
}

TEST_F(SymbolViolation, ofAnAliasAsDomainIsDecidedByItsSet) {
  void* const k = addSetOf(db, "k", {"m"});
  void* const over = db.addOver("over", ZTB_PARAMETER, {db.addAlias("ali", k)});
  db.put(over, {"m"}, 1);
  EXPECT_FALSE(violates(db, over));
  db.put(over, {"a"}, 1);
  EXPECT_EQ((std::vector<Violating>{{"over", {"a"}, {1}}}), violationsOf(db, over));
}

TEST_F(SymbolViolation, isNeverOneOfAnAliasOfTheUniverse) {
  void* const alias = db.add("everything", 1, ZTB_ALIAS, -1);
  void* const over = db.addOver("over", ZTB_PARAMETER, {alias});
  db.put(over, {"nowhere"}, 1);
  EXPECT_FALSE(violates(db, over));
}

TEST_F(SymbolViolation, ofASetOverASetIsFoundToo) {
  void* const sub = db.addOver("sub", ZTB_SET, {i});
  db.put(sub, {"a"});
  db.put(sub, {"nowhere"});
  EXPECT_EQ((std::vector<Violating>{{"sub", {"nowhere"}, {1}}}), violationsOf(db, sub));
}

TEST_F(SymbolViolation, isALabelNumberThatNoLabelHas) {
  putByNumber(db, data, {-3}, {1});
  putByNumber(db, data, {1}, {1});
  putByNumber(db, data, {99}, {1});
  const Violation first = firstIn(db, data);
  int key = 0;
  double value = 0;
  void* record = nullptr;
  ASSERT_EQ(1, lib().c__ztbgetdvsymbolrecord(db, first, &record));
  const Record low(db, record);
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, low, 1, &key, &value));
  EXPECT_EQ(-3, key);
  int more = 0;
  EXPECT_SUCCESS(db, lib().c__ztbmovenextdvinsymbol(db, first, &more));
  EXPECT_EQ(1, more);
  EXPECT_SUCCESS(db, lib().c__ztbmovenextdvinsymbol(db, first, &more));
  EXPECT_EQ(0, more);
}

TEST_F(SymbolViolation, cannotBeToldOverADomainWithALabelNumberThatNoLabelHas) {
  putInSetByNumber(db, i, {99});
  db.put(data, {"nowhere"}, 1);
  void* handle = nullptr;
  EXPECT_UNEXPECTED(db, "ztbGetFirstDVInSymbol", lib().c__ztbgetfirstdvinsymbol(db, data, &handle));
  EXPECT_EQ(nullptr, handle);
}

TEST_F(SymbolViolation, goesOnWhenTheDomainGrowsBetweenTwoChecks) {
  db.put(data, {"late"}, 1);
  EXPECT_TRUE(violates(db, data));
  db.put(i, {"late"});
  EXPECT_FALSE(violates(db, data));
}

TEST_F(SymbolViolation, handleBehindTheLastOneStandsAtTheEnd) {
  db.put(data, {"nowhere"}, 1);
  Violation violation = firstIn(db, data);
  EXPECT_FALSE(violation.moveNext());
  void* place = &db;
  int indicator = 77;
  EXPECT_FAILURE(db, "No valid violation handle", lib().c__ztbgetdvsymbol(db, violation, &place));
  EXPECT_FAILURE(db, "No valid violation handle",
                 lib().c__ztbgetdvsymbolrecord(db, violation, &place));
  EXPECT_EQ(&db, place);
  EXPECT_FAILURE(db, "No valid violation handle",
                 lib().c__ztbgetdvindicator(db, violation, &indicator));
  EXPECT_EQ(77, indicator);
  EXPECT_UNEXPECTED(db, "ztbMoveNextDVInSymbol",
                    lib().c__ztbmovenextdvinsymbol(db, violation, &indicator));
}

TEST_F(SymbolViolation, handleIsNeededToAskAboutIt) {
  void* place = &db;
  int number = 77;
  EXPECT_FAILURE(db, "No domain violation handle specified",
                 lib().c__ztbgetdvsymbol(db, nullptr, &place));
  EXPECT_FAILURE(db, "No domain violation handle specified",
                 lib().c__ztbgetdvsymbolrecord(db, nullptr, &place));
  EXPECT_FAILURE(db, "No domain violation handle specified",
                 lib().c__ztbgetdvindicator(db, nullptr, &number));
  EXPECT_UNEXPECTED(db, "ztbMoveNextDVInSymbol",
                    lib().c__ztbmovenextdvinsymbol(db, nullptr, &number));
  EXPECT_UNEXPECTED(db, "ztbGetFirstDVInNextSymbol",
                    lib().c__ztbgetfirstdvinnextsymbol(db, nullptr, &number));
  EXPECT_SUCCESS(db, lib().c__ztbfreedvhandle(db, nullptr));
}

TEST_F(SymbolViolation, cannotBeAskedOfNoSymbol) {
  void* handle = nullptr;
  int result = 77;
  EXPECT_UNEXPECTED(db, "ztbGetFirstDVInSymbol",
                    lib().c__ztbgetfirstdvinsymbol(db, nullptr, &handle));
  EXPECT_UNEXPECTED(db, "ztbGetFirstDVInSymbol", lib().c__ztbchecksymboldv(db, nullptr, &result));
  EXPECT_EQ(0, result);
}

TEST_F(SymbolViolation, givesARecordHandleThatOutlivesIt) {
  db.put(data, {"nowhere"}, 5);
  Violation violation = firstIn(db, data);
  void* handle = nullptr;
  EXPECT_SUCCESS(db, lib().c__ztbgetdvsymbolrecord(db, violation, &handle));
  const Record record(db, handle);
  violation.free();
  EXPECT_EQ(5, db.level(record));
  EXPECT_EQ(1, lib().c__ztbsetlevel(db, record, 6));
  EXPECT_EQ(6, db.level(db.record(data, {"nowhere"})));
}

TEST_F(SymbolViolation, givesNoRecordHandleForASymbolOnAnotherStoreThanNewOnes) {
  db.put(data, {"nowhere"}, 5);
  const Violation violation = firstIn(db, data);
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_TRIE));
  void* handle = &db;
  EXPECT_UNEXPECTED(db, "ztbGetDVSymbolRecord",
                    lib().c__ztbgetdvsymbolrecord(db, violation, &handle));
  EXPECT_EQ(nullptr, handle);
}

TEST_F(SymbolViolation, endsForAnotherHandleWhenOneOverTheSameDomainIsFreed) {
  for (const char* label : {"x", "y", "z"}) {
    db.put(data, {label}, 1);
  }
  Violation first = firstIn(db, data);
  Violation second = firstIn(db, data);
  EXPECT_TRUE(first.moveNext());
  second.free();
  EXPECT_FALSE(first.moveNext()) << "the table that tells z apart went with the other handle";
}

TEST_F(SymbolViolation, isNoneForASymbolMovedToAnotherStoreWhichKeepsNoDomains) {
  db.put(data, {"nowhere"}, 1);
  ASSERT_TRUE(violates(db, data));
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, &data, ZTB_STORAGE_VECTOR));
  EXPECT_FALSE(violates(db, data));
}

class SymbolViolationOfFile : public testing::Test {
 protected:
  SymbolViolationOfFile() {
    Database db;
    void* const i = addSetOf(db, "i", {"a"});
    void* const over = db.addOver("p", ZTB_PARAMETER, {i});
    db.put(over, {"a"}, 1);
    db.put(over, {"nowhere"}, 1);
    file = folder.file("data.rxf");
    if (lib().c__ztbwriterxf(db, file.c_str(), 1) != 1) {
      throw std::runtime_error(db.lastError());
    }
  }

  TempFolder folder;
  std::string file;
};

TEST_F(SymbolViolationOfFile, isNoneWhileTheSymbolIsUnread) {
  Database db(file);
  EXPECT_FALSE(violates(db, db.find("p")));
  ASSERT_EQ(2, db.recordCount(db.find("p")));
  EXPECT_EQ((std::vector<Violating>{{"p", {"nowhere"}, {1}}}), violationsOf(db, db.find("p")));
}

TEST_F(SymbolViolationOfFile, needsTheDomainToBeReadable) {
  Database db(file);
  void* const data = db.find("p");
  ASSERT_EQ(2, db.recordCount(data));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  void* handle = &db;
  EXPECT_FAILURE(db, "Symbol i not initialized from RXF or PBI: 3",
                 lib().c__ztbgetfirstdvinsymbol(db, data, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(2U, violationsOf(db, data).size()) << "the domain counts as read, without a record";
  Database again(file);
  ASSERT_EQ(2, again.recordCount(again.find("p")));
  ASSERT_EQ(1, lib().c__ztbcloserxf(again, 0));
  int result = 77;
  EXPECT_FAILURE(again, "Symbol i not initialized from RXF or PBI: 3",
                 lib().c__ztbchecksymboldv(again, again.find("p"), &result));
  EXPECT_EQ(0, result);
}

}  // namespace
}  // namespace ztbtest
