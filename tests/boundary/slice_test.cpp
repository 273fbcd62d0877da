// Slices: how the labels of a slice are read, its first and last record, and walking it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class Slice : public testing::Test {
 protected:
  // (a,x)=1 (a,y)=2 (b,x)=3 (b,z)=4 (c,y)=5, in this order.
  Slice() : data(db.addParameter("p", 2)) {
    for (const char* label : {"a", "b", "c", "x", "y", "z", "unused"}) {
      db.uel(label);
    }
    db.put(data, {"b", "z"}, 4.0);
    db.put(data, {"a", "x"}, 1.0);
    db.put(data, {"c", "y"}, 5.0);
    db.put(data, {"a", "y"}, 2.0);
    db.put(data, {"b", "x"}, 3.0);
  }

  Record first(void* symbol, Keys keys) {
    EXPECT_SUCCESS(db, lib().c__ztbfindfirstrecordslice(db, symbol, keys, &record));
    return {db, record};
  }

  Record last(void* symbol, Keys keys) {
    EXPECT_SUCCESS(db, lib().c__ztbfindlastrecordslice(db, symbol, keys, &record));
    return {db, record};
  }

  std::vector<double> forwards(const Keys& keys) {
    const Record walk = first(data, keys);
    std::vector<double> levels{db.level(walk)};
    while (lib().c__ztbrecordmovenext(db, walk) == 1) {
      levels.push_back(db.level(walk));
    }
    return levels;
  }

  std::vector<double> backwards(const Keys& keys) {
    const Record walk = last(data, keys);
    std::vector<double> levels{db.level(walk)};
    while (lib().c__ztbrecordmoveprev(db, walk) == 1) {
      levels.push_back(db.level(walk));
    }
    return levels;
  }

  void expectMiss(const std::string& text, void* symbol, Keys keys) {
    record = untouched;
    EXPECT_FAILURE(db, text, lib().c__ztbfindfirstrecordslice(db, symbol, keys, &record));
    EXPECT_EQ(nullptr, record);
    record = untouched;
    EXPECT_FAILURE(db, text, lib().c__ztbfindlastrecordslice(db, symbol, keys, &record));
    EXPECT_EQ(nullptr, record);
  }

  using Levels = std::vector<double>;

  Database db;
  void* data;
  void* record = untouched;
};

TEST_F(Slice, ofAllBlanksIsTheWholeSymbol) {
  EXPECT_EQ((Levels{1, 2, 3, 4, 5}), forwards({" ", " "}));
  EXPECT_EQ((Levels{5, 4, 3, 2, 1}), backwards({" ", " "}));
}

TEST_F(Slice, fixesTheFirstPosition) {
  EXPECT_EQ((Levels{3, 4}), forwards({"b", " "}));
  EXPECT_EQ((Levels{4, 3}), backwards({"b", " "}));
}

TEST_F(Slice, fixesTheLastPosition) {
  EXPECT_EQ((Levels{1, 3}), forwards({" ", "X"}));
  EXPECT_EQ((Levels{3, 1}), backwards({" ", "x"}));
  EXPECT_EQ((Levels{2, 5}), forwards({" ", "y"}));
  EXPECT_EQ((Levels{5, 2}), backwards({" ", "y"}));
}

TEST_F(Slice, fixesEveryPosition) {
  EXPECT_EQ((Levels{4}), forwards({"b", "z"}));
  EXPECT_EQ((Levels{4}), backwards({"b", "z"}));
}

TEST_F(Slice, theFirstRecordOfTheSymbolCanBeTheOnlyOne) {
  EXPECT_EQ((Levels{1}), backwards({"a", "x"}));
  EXPECT_EQ((Levels{1}), forwards({"a", "x"}));
}

TEST_F(Slice, aRunOfBlanksIsFreeToo) {
  EXPECT_EQ((Levels{3, 4}), forwards({"b", "    "}));
}

TEST_F(Slice, missesUnknownLabelsWithTheirPosition) {
  expectMiss("Cannot find slice element Nope (on position 1) in Symbol p", data, {"Nope", " "});
  expectMiss("Cannot find slice element  (on position 2) in Symbol p", data, {" ", ""});
  EXPECT_EQ(-1, db.findUel("Nope"));
}

TEST_F(Slice, missesWithTheKeysAsGiven) {
  expectMiss("Cannot find a record for slice (\"C\",\"x\") in Symbol p", data, {"C", "x"});
  expectMiss("Cannot find a record for slice (\"unused\",\" \") in Symbol p", data,
             {"unused", " "});
}

TEST_F(Slice, aRefusedLabelEndsWithTheTextOfTheLabel) {
  expectMiss("Label with single and double quote not allowed >'\"<", data, {" ", "'\""});
  record = untouched;
  Keys keys{"\t", " "};
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfindfirstrecordslice(db, data, keys, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfindlastrecordslice(db, data, keys, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(Slice, aNullLabelEndsWithoutAText) {
  Keys keys{" ", nullptr};
  record = untouched;
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfindfirstrecordslice(db, data, keys, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfindlastrecordslice(db, data, keys, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(Slice, withoutLabelsFailsAndLeavesNoHandle) {
  record = untouched;
  EXPECT_UNEXPECTED(db, "ztbFindFirstRecordSlice",
                    lib().c__ztbfindfirstrecordslice(db, data, nullptr, &record));
  EXPECT_EQ(nullptr, record);
  record = untouched;
  EXPECT_UNEXPECTED(db, "ztbFindLastRecordSlice",
                    lib().c__ztbfindlastrecordslice(db, data, nullptr, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(Slice, refusesANullSymbolTheUniverseAndAnEmptySymbol) {
  expectMiss("No symbol handle specified", nullptr, {" "});
  expectMiss("Cannot define a slice on the Universe", db.universe(), {" "});
  expectMiss("Cannot find a record in Symbol q", db.addParameter("q"), {"unknown"});
}

TEST_F(Slice, ofAScalarIsItsRecord) {
  void* const scalar = db.addParameter("s", 0);
  expectMiss("Cannot find a record in Symbol s", scalar, {});
  db.put(scalar, {}, 7.0);
  EXPECT_EQ(7.0, db.level(first(scalar, {})));
  EXPECT_EQ(7.0, db.level(last(scalar, {})));
}

TEST_F(Slice, endsWithATextOfItsOwnAndStaysOnItsLastRecord) {
  const Record walk = first(data, {"a", " "});
  EXPECT_EQ(1, lib().c__ztbrecordmovenext(db, walk));
  EXPECT_FAILURE(db, "Last record reached in slice of symbol p",
                 lib().c__ztbrecordmovenext(db, walk));
  EXPECT_EQ(2.0, db.level(walk));
  EXPECT_EQ(1, lib().c__ztbrecordmoveprev(db, walk));
  EXPECT_EQ(1.0, db.level(walk));
}

TEST_F(Slice, beginsSilentlyAndStaysOnItsFirstRecord) {
  const Record walk = last(data, {"b", " "});
  EXPECT_SUCCESS(db, lib().c__ztbrecordmoveprev(db, walk));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordmoveprev(db, walk));
  EXPECT_EQ(3.0, db.level(walk));
  EXPECT_EQ(1, lib().c__ztbrecordmovenext(db, walk));
  EXPECT_EQ(4.0, db.level(walk));
}

TEST_F(Slice, tellsWhetherThereIsMoreWithoutMoving) {
  const Record walk = first(data, {" ", "y"});
  EXPECT_SUCCESS(db, lib().c__ztbrecordhasnext(db, walk));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordhasprev(db, walk));
  EXPECT_EQ(2.0, db.level(walk));
  EXPECT_EQ(1, lib().c__ztbrecordmovenext(db, walk));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordhasnext(db, walk));
  EXPECT_SUCCESS(db, lib().c__ztbrecordhasprev(db, walk));
  EXPECT_EQ(5.0, db.level(walk));
}

TEST_F(Slice, atTheFirstRecordOfTheSymbolHasNoPrevious) {
  const Record walk = first(data, {" ", "x"});
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordhasprev(db, walk));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordmoveprev(db, walk));
  EXPECT_EQ(1.0, db.level(walk));
}

TEST_F(Slice, aCopyOfItsHandleWalksTheWholeSymbol) {
  const Record walk = first(data, {"b", " "});
  void* copy = nullptr;
  ASSERT_EQ(1, lib().c__ztbcopysymboliterator(db, walk, &copy));
  const Record whole(db, copy);
  EXPECT_EQ(1, lib().c__ztbrecordmoveprev(db, whole));
  EXPECT_EQ(2.0, db.level(whole)) << "a record outside the slice";
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordmoveprev(db, walk));
}

TEST_F(Slice, seesRecordsThatAreAddedBehindIt) {
  const Record walk = first(data, {"c", " "});
  EXPECT_SILENT_FAILURE(db, lib().c__ztbrecordhasnext(db, walk));
  db.put(data, {"c", "z"}, 6.0);
  EXPECT_SUCCESS(db, lib().c__ztbrecordmovenext(db, walk));
  EXPECT_EQ(6.0, db.level(walk));
}

}  // namespace
}  // namespace ztbtest
