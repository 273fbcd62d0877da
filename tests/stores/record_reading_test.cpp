// Finding, walking, reading and copying records on each store.
#include <array>

#include "tests/stores/store_case.h"

namespace ztbtest {
namespace {

const std::vector<Row> supply = {{{"a", "x"}, 1}, {{"a", "y"}, 2}, {{"b", "x"}, 3},
                                 {{"b", "z"}, 4}, {{"c", "y"}, 5}, {{"c", "z"}, 6}};

class StoreReading : public StoreCase {
 protected:
  StoreReading() {
    for (const char* label : {"a", "b", "c", "x", "y", "z", "unused"}) {
      db_.uel(label);
    }
    symbol_ = filled("supply", 2, supply);
  }

  // The rows from a handle to the end of its walk.
  std::vector<Row> forwards(void* record) {
    std::vector<Row> rows;
    do {
      rows.push_back({db_.labels(record, 2), db_.level(record)});
    } while (lib().c__ztbrecordmovenext(db_, record) == 1);
    return rows;
  }
  std::vector<Row> backwards(void* record) {
    std::vector<Row> rows;
    do {
      rows.push_back({db_.labels(record, 2), db_.level(record)});
    } while (lib().c__ztbrecordmoveprev(db_, record) == 1);
    return rows;
  }
  Record slice(Keys keys, bool last = false) {
    void* record = nullptr;
    const auto find = last ? lib().c__ztbfindlastrecordslice : lib().c__ztbfindfirstrecordslice;
    EXPECT_EQ(1, find(db_, symbol_, keys, &record)) << db_.lastError();
    return {db_, record};
  }

  void* symbol_ = nullptr;
};

TEST_P(StoreReading, tellsItsStoreAndCountsItsRecords) {
  EXPECT_EQ(GetParam(), storeOf(db_, symbol_));
  EXPECT_EQ(GetParam(), db_.info(ZTB_INFO_RECORD_STORAGE));
  EXPECT_EQ(6, db_.recordCount(symbol_));
}

TEST_P(StoreReading, findsEveryRecordByItsLabels) {
  for (const Row& row : supply) {
    EXPECT_EQ(row.level, db_.level(db_.record(symbol_, Keys(row.labels))));
  }
}

TEST_P(StoreReading, missesWhatIsNotThere) {
  void* record = this;
  EXPECT_FAILURE(db_, "Cannot find record (\"a\",\"z\") in Symbol supply",
                 lib().c__ztbfindrecord(db_, symbol_, Keys{"a", "z"}, &record));
  EXPECT_EQ(nullptr, record);
  EXPECT_FAILURE(db_, "Cannot find element none (on position 2) in Symbol supply",
                 lib().c__ztbfindrecord(db_, symbol_, Keys{"a", "none"}, &record));
}

TEST_P(StoreReading, walksForwardsInKeyOrder) {
  EXPECT_EQ(supply, forwards(db_.first(symbol_)));
  EXPECT_EQ("Last record reached in symbol supply", db_.lastError());
}

TEST_P(StoreReading, walksBackwardsFromTheLastRecord) {
  EXPECT_EQ(std::vector<Row>(supply.rbegin(), supply.rend()), backwards(db_.last(symbol_)));
}

TEST_P(StoreReading, aFailedMoveStaysOnTheRecord) {
  const Record last = db_.last(symbol_);
  EXPECT_EQ(0, lib().c__ztbrecordhasnext(db_, last));
  EXPECT_EQ(0, lib().c__ztbrecordmovenext(db_, last));
  EXPECT_EQ(6, db_.level(last));
  const Record first = db_.first(symbol_);
  EXPECT_EQ(0, lib().c__ztbrecordhasprev(db_, first));
  EXPECT_SILENT_FAILURE(db_, lib().c__ztbrecordmoveprev(db_, first));
  EXPECT_EQ(1, db_.level(first));
}

TEST_P(StoreReading, askingForTheNextRecordMovesNothing) {
  const Record record = db_.record(symbol_, Keys{"b", "x"});
  EXPECT_EQ(1, lib().c__ztbrecordhasnext(db_, record));
  EXPECT_EQ(1, lib().c__ztbrecordhasprev(db_, record));
  EXPECT_EQ(3, db_.level(record));
}

TEST_P(StoreReading, walksASliceBothWays) {
  EXPECT_EQ((std::vector<Row>{supply[1], supply[4]}), forwards(slice({" ", "y"})));
  EXPECT_EQ("Last record reached in slice of symbol supply", db_.lastError());
  EXPECT_EQ((std::vector<Row>{supply[4], supply[1]}), backwards(slice({" ", "y"}, true)));
  EXPECT_EQ((std::vector<Row>{supply[2], supply[3]}), forwards(slice({"b", " "})));
  EXPECT_EQ((std::vector<Row>{supply[2]}), forwards(slice({"b", "x"})));
  EXPECT_EQ(supply, forwards(slice({" ", " "})));
  EXPECT_EQ((std::vector<Row>{supply[0]}), backwards(slice({"a", "x"}, true)));
}

TEST_P(StoreReading, missesAnEmptySlice) {
  void* record = this;
  EXPECT_FAILURE(db_, "Cannot find a record for slice (\" \",\"unused\") in Symbol supply",
                 lib().c__ztbfindfirstrecordslice(db_, symbol_, Keys{" ", "unused"}, &record));
  EXPECT_EQ(nullptr, record);
  EXPECT_FAILURE(db_, "Cannot find a record for slice (\"unused\",\" \") in Symbol supply",
                 lib().c__ztbfindlastrecordslice(db_, symbol_, Keys{"unused", " "}, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_P(StoreReading, readsARecordRaw) {
  std::array<int, 2> keys = {};
  std::array<double, 5> values = {-1, -1, -1, -1, -1};
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db_, db_.record(symbol_, Keys{"c", "y"}), 2, keys.data(),
                                        values.data()));
  EXPECT_EQ((std::array<int, 2>{3, 5}), keys);
  EXPECT_EQ((std::array<double, 5>{5, -1, -1, -1, -1}), values);
}

TEST_P(StoreReading, aCopyStandsOnTheSameRecordAndWalksTheWholeSymbol) {
  const Record inSlice = slice({" ", "y"});
  void* handle = nullptr;
  EXPECT_SUCCESS(db_, lib().c__ztbcopysymboliterator(db_, inSlice, &handle));
  const Record copy(db_, handle);
  EXPECT_EQ(1, lib().c__ztbsamerecord(db_, inSlice, copy));
  EXPECT_EQ((std::vector<Row>(supply.begin() + 1, supply.end())), forwards(copy));
  EXPECT_EQ(0, lib().c__ztbsamerecord(db_, inSlice, copy));
  EXPECT_EQ(2, db_.level(inSlice));
}

TEST_P(StoreReading, aCopyAcrossStoresFailsWithoutAHandle) {
  const Record record = db_.first(symbol_);
  for (const int other : {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE}) {
    if (other == GetParam()) {
      continue;
    }
    selectDefault(db_, other);
    void* copy = this;
    EXPECT_FAILURE(db_,
                   "Unexpected exception in ztbCopySymbolIterator: symbol supply is not on the "
                   "record store of new symbols",
                   lib().c__ztbcopysymboliterator(db_, record, &copy));
    EXPECT_EQ(nullptr, copy);
  }
  EXPECT_EQ(1, db_.level(record));
}

TEST_P(StoreReading, aCopyInAStoreThatDoesNotExistIsANullHandleAndASuccess) {
  const Record record = db_.first(symbol_);
  selectDefault(db_, 7);
  void* copy = this;
  EXPECT_SUCCESS(db_, lib().c__ztbcopysymboliterator(db_, record, &copy));
  EXPECT_EQ(nullptr, copy);
}

TEST_P(StoreReading, theUniverseIsWalkedWhateverTheStoreOfNewSymbols) {
  const Record label = db_.first(db_.universe());
  EXPECT_EQ(Labels{"a"}, db_.labels(label, 1));
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbrecordmovenext(db_, label));
  ASSERT_EQ(1, lib().c__ztbcopysymboliterator(db_, label, &handle));
  const Record copy(db_, handle);
  EXPECT_EQ(1, lib().c__ztbrecordmovenext(db_, copy));
  EXPECT_EQ(Labels{"c"}, db_.labels(copy, 1));
  EXPECT_EQ(Labels{"unused"}, db_.labels(db_.last(db_.universe()), 1));
}

// Two handles that stand on nothing are compared like any others, by where their values are.
TEST_P(StoreReading, handlesBehindTheLastRecordOfOneSymbolAreTheSame) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}});
  const Record first = db_.last(symbol);
  const Record live = db_.first(symbol);
  ASSERT_EQ(1, lib().c__ztbdeleterecord(db_, first));
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbcopysymboliterator(db_, first, &handle));
  const Record second(db_, handle);
  EXPECT_SUCCESS(db_, lib().c__ztbsamerecord(db_, first, second));
  EXPECT_SILENT_FAILURE(db_, lib().c__ztbsamerecord(db_, first, live));
  EXPECT_SILENT_FAILURE(db_, lib().c__ztbsamerecord(db_, live, second));
}

TEST_P(StoreReading, handlesBehindTheLastRecordsOfTwoSymbolsDifferOnTheMapOnly) {
  std::vector<Record> behind;
  for (const char* name : {"p", "q"}) {
    void* symbol = filled(name, 1, {{{"a"}, 1}, {{"b"}, 2}});
    behind.push_back(db_.last(symbol));
    ASSERT_EQ(1, lib().c__ztbdeleterecord(db_, behind.back()));
  }
  db_.markError();
  EXPECT_EQ(on(ZTB_STORAGE_TREE_MAP) ? 0 : 1, lib().c__ztbsamerecord(db_, behind[0], behind[1]));
  EXPECT_TRUE(db_.errorUntouched());
}

TEST_P(StoreReading, handlesOfRecordsThatAreGoneAreTheSame) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}});
  const Record first = db_.first(symbol);
  const Record second = db_.last(symbol);
  EXPECT_SILENT_FAILURE(db_, lib().c__ztbsamerecord(db_, first, second));
  ASSERT_EQ(1, lib().c__ztbclearsymbol(db_, symbol));
  EXPECT_SUCCESS(db_, lib().c__ztbsamerecord(db_, first, second));
}

TEST(TrieReading, theHandlesOfFirstMergedRecordsStandOnNothingAndAreTheSame) {
  Database db;
  selectDefault(db, ZTB_STORAGE_TRIE);
  void* symbol = db.addParameter("p", 2);
  const Record first = db.put(symbol, {"a", "a"});
  const Record other = db.put(db.addParameter("q", 2), {"a", "a"});
  EXPECT_SUCCESS(db, lib().c__ztbsamerecord(db, first, other));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbsamerecord(db, first, db.first(symbol)));
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreReading, allStores(), storeCaseName);

}  // namespace
}  // namespace ztbtest
