// Operations that put other records in the place of all that a symbol has: on every store it then
// holds exactly those, and a handle from before fails.
#include <array>
#include <functional>

#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class Replacement : public testing::TestWithParam<int> {
 protected:
  Replacement() {
    for (const char* label : {"a", "b", "c", "x", "y"}) {
      db.uel(label);
    }
    i = addSetOf(db, "i", {"a", "b", "c"});
    j = addSetOf(db, "j", {"x", "y"});
    EXPECT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, GetParam()));
    three = db.addParameter("three");
    six = db.addParameter("six", 2);
  }

  int fillThree(const Doubles& cells) {
    const int size = 3;
    return lib().c__ztbdensearraytosymbol(db, three, &i, cells.data(), &size);
  }
  int fillSix(const Doubles& cells) {
    Symbols domains = {i, j};
    const Sizes sizes = {3, 2};
    return lib().c__ztbdensearraytosymbol(db, six, domains.data(), cells.data(), sizes.data());
  }
  int fillSixSlices(const Doubles& cells) {
    Symbols domains = {i, j};
    const Sizes sizes = {3, 2};
    return lib().c__ztbdensearrayslicestosymbol(db, six, domains.data(), domains.data(),
                                                cells.data(), sizes.data());
  }

  Database db;
  void* i;
  void* j;
  void* three;
  void* six;
};

TEST_P(Replacement, aSecondCubeOfOneDimensionLeavesAllItsRecords) {
  EXPECT_SUCCESS(db, fillThree({1, 2, 3}));
  EXPECT_SUCCESS(db, fillThree({4, 5, 6}));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 4}, {{"b"}, 5}, {{"c"}, 6}}), db.rows(three));
  EXPECT_EQ(3, db.recordCount(three));
}

TEST_P(Replacement, aSecondCubeOfTwoDimensionsLeavesAllItsRecordsAndNoOther) {
  EXPECT_SUCCESS(db, fillSix({1, 2, 3, 4, 5, 6}));
  EXPECT_SUCCESS(db, fillSix({7, 8, 9, 10, 11, 12}));
  EXPECT_EQ((std::vector<Row>{{{"a", "x"}, 7},
                              {{"a", "y"}, 8},
                              {{"b", "x"}, 9},
                              {{"b", "y"}, 10},
                              {{"c", "x"}, 11},
                              {{"c", "y"}, 12}}),
            db.rows(six));
  EXPECT_SUCCESS(db, fillSixSlices({0, 0, 1, 0, 0, 2}));
  EXPECT_EQ((std::vector<Row>{{{"b", "x"}, 1}, {{"c", "y"}, 2}}), db.rows(six));
}

TEST_P(Replacement, aCopyLeavesTheRecordsOfTheSourceAndNoOther) {
  Database other;
  void* const source = other.addParameter("p", 2);
  other.put(source, {"c", "y"}, 1);
  other.put(source, {"a", "x"}, 2);
  for (const bool fresh : {true, false}) {
    SCOPED_TRACE(fresh);
    EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, six, source));
    EXPECT_EQ((std::vector<Row>{{{"a", "x"}, 2}, {{"c", "y"}, 1}}), db.rows(six));
    EXPECT_SUCCESS(db, fillSix({1, 2, 3, 4, 5, 6}));
  }
}

TEST_P(Replacement, aCopyOfAScalarWithoutARecordLeavesNone) {
  void* const target = db.addParameter("target", 0);
  db.put(target, {}, 4);
  EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, target, db.addParameter("empty", 0)));
  EXPECT_EQ(0, db.recordCount(target));
  EXPECT_EQ(std::vector<Row>{}, db.rows(target));
}

TEST_P(Replacement, aRefusedCubeLeavesNoRecord) {
  EXPECT_SUCCESS(db, fillThree({1, 2, 3}));
  const int wrong = 2;
  EXPECT_FAILURE(db, "Cube dimension 1 is 2 while card(i) is 3.",
                 lib().c__ztbdensearraytosymbol(db, three, &i, &wrong, &wrong));
  EXPECT_EQ(0, db.recordCount(three));
}

TEST_P(Replacement, aHandleOfBeforeFailsInEveryCall) {
  void* const source = db.addParameter("source", 2);
  EXPECT_SUCCESS(db, fillSix({1, 2, 3, 4, 5, 6}));
  EXPECT_SUCCESS(db, lib().c__ztbcopysymbol(db, source, six));
  const std::vector<std::function<int()>> replacements = {
      [&] {
        return fillSix({7, 8, 9, 10, 11, 12});
      },
      [&] {
        return fillSixSlices({7, 8, 9, 10, 11, 12});
      },
      [&] { return lib().c__ztbcopysymbol(db, six, source); },
      [&] { return lib().c__ztbclearsymbol(db, six); }};
  for (const auto& replace : replacements) {
    if (db.recordCount(six) == 0) {
      EXPECT_SUCCESS(db, fillSix({1, 2, 3, 4, 5, 6}));
    }
    const Record record = db.record(six, {"b", "x"});
    EXPECT_SUCCESS(db, replace());
    const std::vector<Row> rows = db.rows(six);
    const std::string ended = ": the record handle stands on no record";
    const auto unexpected = [&](const char* name) {
      return std::string("Unexpected exception in ") + name + ended;
    };
    double value = 0;
    EXPECT_FAILURE(db, unexpected("ztbGetLevel"), lib().c__ztbgetlevel(db, record, &value));
    EXPECT_FAILURE(db, unexpected("ztbSetLevel"), lib().c__ztbsetlevel(db, record, 9));
    EXPECT_FAILURE(db, unexpected("ztbRecordMoveNext"), lib().c__ztbrecordmovenext(db, record));
    EXPECT_FAILURE(db, unexpected("ztbRecordHasNext"), lib().c__ztbrecordhasnext(db, record));
    EXPECT_FAILURE(db, unexpected("ztbRecordMovePrev"), lib().c__ztbrecordmoveprev(db, record));
    EXPECT_FAILURE(db, unexpected("ztbRecordHasPrev"), lib().c__ztbrecordhasprev(db, record));
    EXPECT_FAILURE(db, unexpected("ztbDeleteRecord"), lib().c__ztbdeleterecord(db, record));
    std::array<int, 2> keys = {};
    EXPECT_FAILURE(db, unexpected("ztbGetRecordRaw"),
                   lib().c__ztbgetrecordraw(db, record, 2, keys.data(), &value));
    void* copy = nullptr;
    EXPECT_FAILURE(db, unexpected("ztbCopySymbolIterator"),
                   lib().c__ztbcopysymboliterator(db, record, &copy));
    EXPECT_EQ(nullptr, copy);
    EXPECT_EQ(rows, db.rows(six));
  }
}

TEST_P(Replacement, aHandleInASliceOfBeforeFailsToMove) {
  EXPECT_SUCCESS(db, fillSix({1, 2, 3, 4, 5, 6}));
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbfindfirstrecordslice(db, six, Keys{" ", "y"}, &handle));
  const Record record(db, handle);
  EXPECT_SUCCESS(db, fillSix({7, 8, 9, 10, 11, 12}));
  EXPECT_UNEXPECTED(db, "ztbRecordMoveNext", lib().c__ztbrecordmovenext(db, record));
  EXPECT_UNEXPECTED(db, "ztbRecordHasNext", lib().c__ztbrecordhasnext(db, record));
  EXPECT_UNEXPECTED(db, "ztbRecordMovePrev", lib().c__ztbrecordmoveprev(db, record));
}

INSTANTIATE_TEST_SUITE_P(EveryStore, Replacement,
                         testing::Values(ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR,
                                         ZTB_STORAGE_TRIE));

}  // namespace
}  // namespace ztbtest
