// What deleting and clearing leave behind in the trie, as a caller of the exported names meets it.
#include <array>

#include "tests/stores/store_case.h"

namespace ztbtest {
namespace {

class TrieRemains : public testing::Test {
 protected:
  TrieRemains() {
    for (const char* label : {"a", "b", "c", "d"}) {
      db_.uel(label);
    }
  }

  void* filled(int dim, const std::vector<Row>& rows) {
    void* symbol = db_.addParameter("p", dim);
    for (const Row& row : rows) {
      db_.put(symbol, Keys(row.labels), row.level);
    }
    symbol = moveTo(db_, symbol, ZTB_STORAGE_TRIE);
    selectDefault(db_, ZTB_STORAGE_TRIE);
    return symbol;
  }
  void erase(void* symbol, Keys keys) {
    EXPECT_SUCCESS(db_, lib().c__ztbdeleterecord(db_, db_.record(symbol, keys)));
  }

  Database db_;
};

TEST_F(TrieRemains, anEmptiedBranchOfThreeDimensionsStopsAWalk) {
  void* symbol = filled(3, {{{"a", "a", "a"}, 1}, {{"a", "b", "a"}, 2}, {{"a", "c", "a"}, 3}});
  erase(symbol, {"a", "b", "a"});
  EXPECT_EQ(2, db_.recordCount(symbol));
  EXPECT_EQ(3, db_.level(db_.record(symbol, {"a", "c", "a"})));
  const Record record = db_.first(symbol);
  EXPECT_SUCCESS(db_, lib().c__ztbrecordmovenext(db_, record));
  double value = 0;
  EXPECT_FAILURE(db_, "Unexpected exception in ztbGetLevel: the record handle stands on no record",
                 lib().c__ztbgetlevel(db_, record, &value));
  EXPECT_FAILURE(db_,
                 "Unexpected exception in ztbRecordMoveNext: the path leads through a missing "
                 "node of the trie",
                 lib().c__ztbrecordmovenext(db_, record));
}

TEST_F(TrieRemains, anEmptiedBranchKeepsTheSymbolFromMovingWithoutHarm) {
  void* symbol = filled(3, {{{"a", "a", "a"}, 1}, {{"a", "b", "a"}, 2}, {{"a", "c", "a"}, 3}});
  erase(symbol, {"a", "b", "a"});
  for (const int store : {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR}) {
    void* handle = symbol;
    EXPECT_FAILURE(db_,
                   "Unexpected exception in ztbSelectRecordStorage: the position stands on no "
                   "record",
                   lib().c__ztbselectrecordstorage(db_, &handle, store));
    EXPECT_EQ(symbol, handle);
    EXPECT_EQ(symbol, db_.find("p"));
    EXPECT_EQ(2, db_.recordCount(symbol));
    EXPECT_EQ(3, db_.level(db_.record(symbol, {"a", "c", "a"})));
  }
}

TEST_F(TrieRemains, anEmptiedBranchTakesARecordAgain) {
  void* symbol = filled(3, {{{"a", "a", "a"}, 1}, {{"a", "b", "a"}, 2}, {{"a", "c", "a"}, 3}});
  erase(symbol, {"a", "b", "a"});
  db_.put(symbol, {"a", "b", "d"}, 4);
  EXPECT_EQ((std::vector<Row>{{{"a", "a", "a"}, 1}, {{"a", "b", "d"}, 4}, {{"a", "c", "a"}, 3}}),
            db_.rows(symbol));
}

TEST_F(TrieRemains, theLastRecordBehindAnEmptiedBranchIsNotDeleted) {
  selectDefault(db_, ZTB_STORAGE_TRIE);
  void* symbol = db_.addParameter("p", 3);
  // By number the first record goes in by the sequential entry, and the last one is remembered.
  const std::array<int, 3> first = {1, 1, 1};
  const std::array<double, 5> values = {1};
  ASSERT_EQ(1,
            lib().c__ztbmergerecordint(db_, symbol, first.data(), 1, 0, nullptr, 1, values.data()));
  db_.put(symbol, {"a", "b", "a"}, 2);
  db_.put(symbol, {"a", "c", "a"}, 3);
  erase(symbol, {"a", "b", "a"});
  const Record last = db_.record(symbol, {"a", "c", "a"});
  EXPECT_FAILURE(db_,
                 "Unexpected exception in ztbDeleteRecord: the trie holds a branch without records",
                 lib().c__ztbdeleterecord(db_, last));
  EXPECT_EQ(2, db_.recordCount(symbol));
  EXPECT_EQ(3, db_.level(last));
}

TEST_F(TrieRemains, walkingAndDeletingThreeDimensionsEmptiesTheSymbol) {
  void* symbol = filled(
      3, {{{"a", "a", "a"}, 1}, {{"a", "a", "b"}, 2}, {{"a", "b", "a"}, 3}, {{"a", "d", "d"}, 4}});
  const Record record = db_.first(symbol);
  for (int left = 3; left >= 0; --left) {
    EXPECT_SUCCESS(db_, lib().c__ztbdeleterecord(db_, record));
    EXPECT_EQ(left, db_.recordCount(symbol));
  }
  void* none = this;
  EXPECT_FAILURE(db_, "Cannot find a record in Symbol p",
                 lib().c__ztbfindfirstrecord(db_, symbol, &none));
}

TEST_F(TrieRemains, theOnlyRecordsNodeStaysAndTheSymbolIsEmpty) {
  void* symbol = filled(2, {{{"b", "b"}, 1}});
  erase(symbol, {"b", "b"});
  EXPECT_EQ(0, db_.recordCount(symbol));
  EXPECT_EQ(std::vector<Row>{}, db_.rows(symbol));
  db_.put(symbol, {"b", "c"}, 2);
  db_.put(symbol, {"c", "a"}, 3);
  EXPECT_EQ((std::vector<Row>{{{"b", "c"}, 2}, {{"c", "a"}, 3}}), db_.rows(symbol));
}

// The only record of one dimension, deleted; its node stays, and its key or another one comes
// again.
class TrieOnlyRecordDeleted : public TrieRemains {
 protected:
  void* emptied(int type = ZTB_PARAMETER) {
    void* symbol = db_.add("p", 1, type);
    db_.put(symbol, {"b"}, 1);
    symbol = moveTo(db_, symbol, ZTB_STORAGE_TRIE);
    selectDefault(db_, ZTB_STORAGE_TRIE);
    erase(symbol, {"b"});
    EXPECT_EQ(0, db_.recordCount(symbol));
    return symbol;
  }
  int store(void* symbol, int key, const std::array<double, 5>& values) {
    return lib().c__ztbmergerecordint(db_, symbol, &key, 1, 0, nullptr, 1, values.data());
  }
};

TEST_F(TrieOnlyRecordDeleted, theSameKeyByNumberHoldsTheNewValue) {
  void* symbol = emptied();
  EXPECT_SUCCESS(db_, store(symbol, 2, {5}));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 5}}), db_.rows(symbol));
  EXPECT_EQ(5, db_.level(db_.record(symbol, {"b"})));
}

TEST_F(TrieOnlyRecordDeleted, anotherKeyByNumberIsTheOnlyRecord) {
  for (const int key : {1, 3}) {
    Database other;
    for (const char* label : {"a", "b", "c"}) {
      other.uel(label);
    }
    selectDefault(other, ZTB_STORAGE_TRIE);
    void* symbol = other.addParameter("p");
    other.put(symbol, {"b"}, 1);
    ASSERT_EQ(1, lib().c__ztbdeleterecord(other, other.record(symbol, {"b"})));
    const std::array<double, 5> values = {5};
    EXPECT_SUCCESS(
        other, lib().c__ztbmergerecordint(other, symbol, &key, 1, 0, nullptr, 1, values.data()));
    EXPECT_EQ((std::vector<Row>{{{key == 1 ? "a" : "c"}, 5}}), other.rows(symbol));
    EXPECT_EQ(1, other.recordCount(symbol));
  }
}

TEST_F(TrieOnlyRecordDeleted, allFiveSlotsAreNew) {
  void* symbol = emptied(ZTB_VARIABLE);
  EXPECT_SUCCESS(db_, store(symbol, 2, {5, 6, 7, 8, 9}));
  std::array<int, 1> keys = {};
  std::array<double, 5> values = {};
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db_, db_.first(symbol), 1, keys.data(), values.data()));
  EXPECT_EQ((std::array<double, 5>{5, 6, 7, 8, 9}), values);
  EXPECT_EQ(1, db_.recordCount(symbol));
}

TEST_F(TrieOnlyRecordDeleted, theTextOfASetIsNew) {
  void* set = db_.addSet("s");
  EXPECT_SUCCESS(db_, lib().c__ztbsetelemtext(db_, db_.put(set, {"b"}), "old"));
  set = moveTo(db_, set, ZTB_STORAGE_TRIE);
  selectDefault(db_, ZTB_STORAGE_TRIE);
  erase(set, {"b"});
  const int key = 2;
  EXPECT_SUCCESS(db_, lib().c__ztbmergesetrecordint(db_, set, &key, 1, 0, nullptr, "new"));
  EXPECT_EQ(1, db_.recordCount(set));
  EXPECT_EQ("new", db_.elementText(db_.first(set)));
}

TEST_F(TrieOnlyRecordDeleted, theSameKeyByNumberWithoutValuesOrByLabelIsARecordAgain) {
  void* symbol = emptied();
  const int key = 2;
  EXPECT_SUCCESS(db_, lib().c__ztbmergerecordint(db_, symbol, &key, 1, 0, nullptr, 0, nullptr));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 0}}), db_.rows(symbol));
  erase(symbol, {"b"});
  db_.put(symbol, {"b"}, 7);
  EXPECT_EQ((std::vector<Row>{{{"b"}, 7}}), db_.rows(symbol));
}

TEST_F(TrieOnlyRecordDeleted, onTwoDimensionsAnotherKeyByNumberIsTheOnlyRecord) {
  void* symbol = filled(2, {{{"b", "b"}, 1}});
  erase(symbol, {"b", "b"});
  const std::array<int, 2> key = {3, 1};
  const std::array<double, 5> values = {5};
  EXPECT_SUCCESS(
      db_, lib().c__ztbmergerecordint(db_, symbol, key.data(), 1, 0, nullptr, 1, values.data()));
  EXPECT_EQ((std::vector<Row>{{{"c", "a"}, 5}}), db_.rows(symbol));
}

TEST_F(TrieRemains, afterClearingTheLastKeyOfBeforeIsMergedIntoNothing) {
  void* symbol = filled(1, {{{"a"}, 1}, {{"b"}, 2}});
  EXPECT_SUCCESS(db_, lib().c__ztbclearsymbol(db_, symbol));
  const Record record = db_.put(symbol, {"b"}, 5);
  EXPECT_EQ(5, db_.level(record));
  EXPECT_EQ(0, db_.recordCount(symbol));
  EXPECT_EQ(std::vector<Row>{}, db_.rows(symbol));
}

TEST_F(TrieRemains, afterClearingALowerKeyIsMergedAndAnotherAboveIsOnlyCounted) {
  void* symbol = filled(1, {{{"a"}, 1}, {{"c"}, 2}});
  EXPECT_SUCCESS(db_, lib().c__ztbclearsymbol(db_, symbol));
  db_.put(symbol, {"b"});
  EXPECT_EQ((std::vector<Row>{{{"b"}, 0}}), db_.rows(symbol));
  db_.put(symbol, {"d"});
  EXPECT_EQ(2, db_.recordCount(symbol));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 0}}), db_.rows(symbol));
}

}  // namespace
}  // namespace ztbtest
