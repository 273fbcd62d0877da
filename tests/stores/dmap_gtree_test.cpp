#include "store/dmap_gtree.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <variant>
#include <vector>

#include "tests/stores/rows.h"

namespace ztb::storetest {
namespace {

using dmap::DMapGTree;
using dmap::TreeIterator;

// A parameter with records of given keys, valued 1, 2, 3 and so on.
class Trie {
 public:
  explicit Trie(int dim, const std::vector<Key>& keys = {}) : dim_(dim), store(dim, 1) {
    appendAll(store, keys);
  }

  TreeIterator append(const Key& key, double value) { return store.append(key.data(), &value); }
  TreeIterator insert(const Key& key, double value) { return store.insert(key.data(), &value); }
  TreeIterator insertOrAssign(const Key& key, double value) {
    return store.insertOrAssign(store.end(), key.data(), &value);
  }
  TreeIterator find(const Key& key) { return store.find(key.data()); }
  TreeIterator lowerBound(const Key& key) { return store.lowerBound(key.data()); }
  Rows rows() { return rowsOf(store, dim_); }
  Key keyAt(const TreeIterator& position) const {
    const int* keys = position.get().keys;
    return keys == nullptr ? Key() : Key(keys, keys + dim_);
  }

 private:
  int dim_;

 public:
  DMapGTree store;
};

TEST(TrieStore, isEmptyAtFirst) {
  Trie trie(2);
  EXPECT_EQ(0, trie.store.size());
  EXPECT_TRUE(trie.store.empty());
  EXPECT_EQ(dmap::StorageKind::dMapGTree, trie.store.kind());
}

TEST(TrieStore, beginOfAnEmptyStoreIsItsEndOnOneDimensionOnly) {
  EXPECT_TRUE(Trie(1).store.begin().equals(Trie(1).store.end()));
  EXPECT_FALSE(Trie(2).store.begin().equals(Trie(2).store.end()));
}

TEST(TrieStore, walksInNumericOrder) {
  Trie trie(2, {{1, 2}, {1, 10}, {2, 1}});
  EXPECT_EQ((Rows{{{1, 2}, 1}, {{1, 10}, 2}, {{2, 1}, 3}}), trie.rows());
}

TEST(TrieStore, walksBackwardsFromTheEnd) {
  Trie trie(2, {{1, 2}, {1, 10}, {2, 1}});
  TreeIterator position = trie.store.end();
  std::vector<Key> keys;
  do {
    position.prev();
    keys.push_back(trie.keyAt(position));
  } while (position.notEquals(trie.store.begin()));
  EXPECT_EQ((std::vector<Key>{{2, 1}, {1, 10}, {1, 2}}), keys);
}

TEST(TrieStore, appendOfTheLastKeyOverwritesAndOfAnotherKeyPresentKeeps) {
  Trie trie(1, keysOver({1, 3}));
  trie.append({3}, 9);
  trie.append({1}, 9);
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 9}}), trie.rows());
}

TEST(TrieStore, insertHintPaysNoAttentionToTheHint) {
  Trie trie(1, keysOver({1, 9}));
  const int key = 5;
  const double value = 7;
  trie.store.insertHint(&key, &value, trie.store.end());
  EXPECT_EQ((Rows{{{1}, 1}, {{5}, 7}, {{9}, 2}}), trie.rows());
}

TEST(TrieStore, keepsAllFiveSlots) {
  DMapGTree variable(2, 2);
  const Key key = {1, 2};
  const TreeIterator record = variable.append(key.data(), slots);
  EXPECT_TRUE(std::equal(slots, slots + 5, record.get().values));
}

TEST(TrieStore, keepsATextNumberAsADouble) {
  DMapGTree set(1, 0);
  const int key = 1;
  const double textNumber = 2147483646;
  EXPECT_EQ(textNumber, *set.append(&key, &textNumber).get().values);
}

TEST(TrieStore, insertOrAssignAddsTheFirstRecordOnEveryDimension) {
  for (const int dim : {1, 2, 3, 20}) {
    Trie trie(dim);
    const Key key(static_cast<std::size_t>(dim), 4);
    trie.insertOrAssign(key, 7);
    EXPECT_EQ((Rows{{key, 7}}), trie.rows()) << dim;
  }
}

TEST(TrieStore, insertOrAssignOverwritesTheRecordOfTheKey) {
  Trie trie(2, {{1, 1}, {1, 2}, {2, 2}});
  trie.insertOrAssign({1, 2}, 9);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 2}, 9}, {{2, 2}, 3}}), trie.rows());
}

TEST(TrieStore, insertOrAssignOfAnAbsentKeyOverwritesTheRecordWhereTheBoundFell) {
  Trie trie(2, {{1, 1}, {1, 3}, {2, 2}});
  trie.insertOrAssign({1, 2}, 9);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 3}, 9}, {{2, 2}, 3}}), trie.rows());
}

TEST(TrieStore, insertOrAssignAboveAllRecordsThrowsBadVariantAccess) {
  Trie trie(2, {{1, 1}});
  try {
    trie.insertOrAssign({2, 1}, 9);
    FAIL() << "found a bound above all records";
  } catch (const std::bad_variant_access& error) {
    EXPECT_STREQ("bad variant access", error.what());
  }
  EXPECT_EQ((Rows{{{1, 1}, 1}}), trie.rows());
}

TEST(TrieStore, insertOrAssignPutsAFirstRecordInAStoreWhoseRecordsWereAllErased) {
  Trie trie(2, {{1, 1}});
  trie.store.erase(trie.store.begin());
  trie.insertOrAssign({1, 5}, 9);
  EXPECT_EQ((Rows{{{1, 5}, 9}}), trie.rows());
}

TEST(TrieStore, insertOrAssignThrowsWhereTheBoundStandsOnNoRecord) {
  Trie trie(3, {{1, 1, 1}, {1, 2, 1}, {1, 3, 1}});
  trie.store.erase(trie.find({1, 2, 1}));
  try {
    trie.insertOrAssign({1, 2, 1}, 9);
    FAIL() << "overwrote a record that is not there";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("the lower bound stands on no record", error.what());
  }
}

TEST(TrieStore, lowerBoundOfAnEmptyStoreIsItsEndOnEveryDimension) {
  for (const int dim : {1, 2, 20}) {
    Trie trie(dim);
    EXPECT_TRUE(trie.lowerBound(Key(static_cast<std::size_t>(dim), 1)).equals(trie.store.end()));
  }
}

TEST(TrieStore, lowerBoundAboveAllRecordsIsTheDefaultIterator) {
  Trie trie(2, {{1, 1}});
  EXPECT_TRUE(trie.lowerBound({2, 1}).isDefault());
  EXPECT_TRUE(trie.lowerBound({1, 2}).isDefault());
  EXPECT_FALSE(trie.lowerBound({1, 1}).isDefault());
}

TEST(TrieStore, isEndBoundTakesTheDefaultIteratorAsTheEnd) {
  Trie trie(2, {{1, 1}});
  const auto bounds = [&](const Key& key) {
    return trie.store.isEndBound(trie.store.lowerBound(key.data()), key.data());
  };
  EXPECT_TRUE(bounds({2, 1}));
  EXPECT_FALSE(bounds({1, 1}));
}

TEST(TrieStore, findGivesTheRecordOrTheEndAndNeverMatches0) {
  Trie trie(2, {{1, 1}, {1, 3}});
  EXPECT_EQ((Key{1, 3}), trie.keyAt(trie.find({1, 3})));
  EXPECT_TRUE(trie.find({1, 2}).equals(trie.store.end()));
  EXPECT_TRUE(trie.find({1, 0}).equals(trie.store.end()));
  EXPECT_TRUE(trie.find({0, 0}).equals(trie.store.end()));
}

TEST(TrieStore, indexOfTheEndIsTheRecordCountAndIteratorAtItIsTheEnd) {
  Trie trie(2, {{1, 1}, {1, 3}});
  EXPECT_EQ(2, trie.store.indexOf(trie.store.end()));
  EXPECT_EQ(1, trie.store.indexOf(trie.find({1, 3})));
  EXPECT_TRUE(trie.store.iteratorAt(2).equals(trie.store.end()));
  EXPECT_EQ((Key{1, 3}), trie.keyAt(trie.store.iteratorAt(1)));
}

TEST(TrieStore, clearEmptiesAndASortedLoadWorksAfterwards) {
  Trie trie(2, {{1, 1}, {5, 5}});
  trie.store.clear();
  EXPECT_TRUE(trie.store.empty());
  trie.append({1, 1}, 7);
  trie.append({2, 1}, 8);
  EXPECT_EQ((Rows{{{1, 1}, 7}, {{2, 1}, 8}}), trie.rows());
}

TEST(TrieStore, insertOfTheOldLastKeyAfterClearAddsNoRecord) {
  Trie trie(2, {{1, 1}, {5, 5}});
  trie.store.clear();
  trie.insert({5, 5}, 7);
  EXPECT_TRUE(trie.store.empty());
}

TEST(TrieStore, reserveChangesNothingButBlocks) {
  Trie trie(1);
  trie.store.reserve(100);
  trie.append({1}, 1);
  EXPECT_EQ((Rows{{{1}, 1}}), trie.rows());
  DMapGTree(0, 1).reserve(100);
}

TEST(TrieStore, iteratorsStayGoodAcrossInsertions) {
  Trie trie(2, {{500, 500}});
  const TreeIterator record = trie.store.begin();
  for (int i = 1; i < 1000; ++i) {
    trie.insert({i, 1}, i);
  }
  EXPECT_EQ((Key{500, 500}), trie.keyAt(record));
  EXPECT_EQ(1.0, *record.get().values);
}

TEST(TrieStore, aDimensionThatNoKeyHasGivesAStoreThatHoldsNothing) {
  for (const int dim : {-1, 21}) {
    DMapGTree store(dim, 1);
    EXPECT_TRUE(store.append(nullptr, slots).isNull());
    EXPECT_TRUE(store.insert(nullptr, slots).isNull());
    EXPECT_EQ(0, store.size());
  }
}

class TrieScalar : public testing::Test {
 protected:
  TreeIterator put(double value) { return store_.append(nullptr, &value); }

  DMapGTree store_{0, 1};
};

TEST_F(TrieScalar, withoutARecordIsEmptyAndYetBeginIsNotTheEnd) {
  EXPECT_EQ(0, store_.size());
  EXPECT_TRUE(store_.empty());
  EXPECT_FALSE(store_.begin().equals(store_.end()));
  EXPECT_TRUE(store_.find(nullptr).equals(store_.end()));
}

TEST_F(TrieScalar, holdsOneRecordWhoseValuesTheNextOverwrites) {
  put(1);
  put(2);
  EXPECT_EQ(1, store_.size());
  EXPECT_EQ((Rows{{{}, 2}}), rowsOf(store_, 0));
  EXPECT_TRUE(store_.find(nullptr).equals(store_.begin()));
  EXPECT_EQ(nullptr, store_.begin().get().keys);
}

TEST_F(TrieScalar, everyWayInOverwrites) {
  double value = 3;
  store_.insert(nullptr, &value);
  EXPECT_EQ(3, *store_.begin().get().values);
  value = 4;
  store_.insertHint(nullptr, &value, store_.end());
  EXPECT_EQ(4, *store_.begin().get().values);
  value = 5;
  store_.insertOrAssign(store_.end(), nullptr, &value);
  EXPECT_EQ(5, *store_.begin().get().values);
  EXPECT_EQ(1, store_.size());
}

TEST_F(TrieScalar, holdsFiveSlotsForAVariable) {
  DMapGTree variable(0, 2);
  EXPECT_TRUE(std::equal(slots, slots + 5, variable.append(nullptr, slots).get().values));
}

TEST_F(TrieScalar, lowerBoundIsTheEndWithARecordAndWithout) {
  EXPECT_TRUE(store_.lowerBound(nullptr).equals(store_.end()));
  put(1);
  EXPECT_TRUE(store_.lowerBound(nullptr).equals(store_.end()));
}

TEST_F(TrieScalar, clearZeroesTheValuesAndKeepsTheRecord) {
  put(7);
  store_.clear();
  EXPECT_EQ(1, store_.size());
  EXPECT_EQ((Rows{{{}, 0}}), rowsOf(store_, 0));
}

TEST_F(TrieScalar, eraseRemovesTheRecordAndZeroesTheValues) {
  put(7);
  store_.erase(store_.begin());
  EXPECT_TRUE(store_.empty());
  EXPECT_EQ(0, *store_.begin().get().values);
}

TEST_F(TrieScalar, releaseRemovesTheRecord) {
  put(7);
  store_.release();
  EXPECT_TRUE(store_.empty());
}

TEST_F(TrieScalar, placesCountInDoubles) {
  put(7);
  EXPECT_EQ(0, store_.indexOf(store_.begin()));
  EXPECT_EQ(1, store_.indexOf(store_.end()));
  EXPECT_TRUE(store_.iteratorAt(1).equals(store_.end()));
  TreeIterator position = store_.begin();
  position.next();
  EXPECT_TRUE(position.equals(store_.end()));
  position.prev();
  EXPECT_TRUE(position.equals(store_.begin()));
}

TEST_F(TrieScalar, iteratorsCarryDimension0AndType0WhateverTheType) {
  DMapGTree variable(0, 2);
  EXPECT_EQ(0, variable.begin().type());
  EXPECT_EQ(0, variable.begin().dim());
  EXPECT_EQ(dmap::StorageKind::dMapGTree, variable.begin().kind());
}

TEST(TreeIteratorValue, theDefaultIteratorHasDimension0AndYetAPath) {
  const TreeIterator none;
  EXPECT_TRUE(none.isDefault());
  EXPECT_EQ(0, none.dim());
  EXPECT_EQ(0, none.type());
  EXPECT_EQ(dmap::StorageKind::dMap, none.kind());
  EXPECT_TRUE(gtree::endPath == none.path());
  EXPECT_THROW(static_cast<void>(none.isNull()), std::bad_variant_access);
  EXPECT_THROW(static_cast<void>(none.get()), std::bad_variant_access);
  EXPECT_THROW(static_cast<void>(none.scalar()), std::bad_variant_access);
  TreeIterator moved;
  EXPECT_THROW(moved.next(), std::bad_variant_access);
  EXPECT_THROW(moved.prev(), std::bad_variant_access);
}

TEST(TreeIteratorValue, comparisonIsSteeredByTheLeftSidesDimension) {
  Trie trie(2, {{1, 1}});
  const TreeIterator none;
  EXPECT_FALSE(trie.store.begin().equals(none));
  EXPECT_TRUE(trie.store.begin().notEquals(none));
  EXPECT_THROW(static_cast<void>(none.equals(trie.store.begin())), std::bad_variant_access);
  EXPECT_THROW(static_cast<void>(none.notEquals(none)), std::bad_variant_access);
}

TEST(TreeIteratorValue, ofATreeIsNeverNull) {
  Trie trie(2);
  EXPECT_FALSE(trie.store.begin().isNull());
  EXPECT_FALSE(trie.store.end().isNull());
  EXPECT_THROW(static_cast<void>(trie.store.begin().scalar()), std::bad_variant_access);
}

TEST(TreeIteratorValue, ofAScalarIsNullWithoutAPlace) {
  EXPECT_TRUE(TreeIterator(static_cast<double*>(nullptr)).isNull());
  double value = 0;
  EXPECT_FALSE(TreeIterator(&value).isNull());
  EXPECT_THROW(static_cast<void>(TreeIterator(&value).path()), std::bad_variant_access);
}

TEST(TreeIteratorValue, getGivesNothingOnAMissingNode) {
  Trie trie(2);
  EXPECT_EQ(nullptr, trie.store.begin().get().keys);
  EXPECT_EQ(nullptr, trie.store.begin().get().values);
  EXPECT_EQ(nullptr, trie.store.end().get().values);
}

TEST(TreeIteratorValue, aViewsKeysChangeWhenAnotherTreeIteratorIsRead) {
  Trie first(2, {{1, 2}});
  Trie second(2, {{8, 9}});
  const dmap::RecordView view = first.store.begin().get();
  EXPECT_EQ((Key{1, 2}), (Key{view.keys[0], view.keys[1]}));
  const dmap::RecordView other = second.store.begin().get();
  EXPECT_EQ(view.keys, other.keys);
  EXPECT_EQ((Key{8, 9}), (Key{view.keys[0], view.keys[1]}));
  EXPECT_NE(view.values, other.values);
}

TEST(TreeIteratorValue, writingThroughAViewChangesTheRecord) {
  Trie trie(1, keysOver({1, 2}));
  *trie.find({2}).get().values = 9;
  EXPECT_EQ((Rows{{{1}, 1}, {{2}, 9}}), trie.rows());
}

TEST(TreeIteratorValue, equalsComparesDimensionTypeAndPath) {
  Trie trie(1, keysOver({1, 2}));
  DMapGTree otherType(1, 0);
  EXPECT_TRUE(trie.store.begin().equals(trie.find({1})));
  EXPECT_FALSE(trie.store.begin().equals(trie.find({2})));
  EXPECT_FALSE(trie.store.end().equals(otherType.end()));
}

}  // namespace
}  // namespace ztb::storetest
