#include "store/dmap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace ztb::dmap {
namespace {

using Pair = std::array<int, 2>;

// A parameter of dimension 2.
class KeyedDMap : public testing::Test {
 protected:
  DMapIterator insert(const Pair& key, double value) { return store_.insert(key.data(), &value); }

  std::vector<Pair> keys() {
    std::vector<Pair> result;
    for (DMapIterator it = store_.begin(); it.notEquals(store_.end()); it.next()) {
      result.push_back({it.get().keys[0], it.get().keys[1]});
    }
    return result;
  }
  double valueOf(const Pair& key) {
    const DMapIterator it = store_.find(key.data());
    return it.equals(store_.end()) ? std::nan("") : *it.get().values;
  }
  // Where an iterator stands, as a place in order of iteration; the record count for the end.
  int placeOf(const DMapIterator& position) {
    return position.equals(store_.end()) ? store_.size() : store_.indexOf(position);
  }

  DMap store_{2, typeParameter};
};

TEST_F(KeyedDMap, isEmptyAtFirst) {
  EXPECT_EQ(0, store_.size());
  EXPECT_TRUE(store_.empty());
  EXPECT_TRUE(store_.begin().equals(store_.end()));
  EXPECT_EQ(StorageKind::dMap, store_.kind());
}

TEST_F(KeyedDMap, walksInNumericOrderWhateverTheOrderOfInsertion) {
  insert({2, 1}, 1);
  insert({1, 10}, 2);
  insert({1, 2}, 3);
  EXPECT_EQ((std::vector<Pair>{{1, 2}, {1, 10}, {2, 1}}), keys());
  EXPECT_EQ(3, store_.size());
  EXPECT_FALSE(store_.empty());
}

TEST_F(KeyedDMap, comparesKeysAsSignedIntegers) {
  insert({1, 1}, 1);
  insert({-1, 5}, 2);
  insert({0, 7}, 3);
  EXPECT_EQ((std::vector<Pair>{{-1, 5}, {0, 7}, {1, 1}}), keys());
}

TEST_F(KeyedDMap, insertOfAKeyPresentKeepsTheValuesAndReturnsTheRecord) {
  const DMapIterator first = insert({1, 1}, 5);
  const DMapIterator second = insert({1, 1}, 6);
  EXPECT_TRUE(first.equals(second));
  EXPECT_EQ(5.0, valueOf({1, 1}));
  EXPECT_EQ(1, store_.size());
}

TEST_F(KeyedDMap, appendOfAKeyThatSortsFirstStillEndsInSortedPosition) {
  insert({2, 2}, 1);
  const Pair key{1, 1};
  const double value = 7;
  const DMapIterator added = store_.append(key.data(), &value);
  EXPECT_EQ(0, store_.indexOf(added));
  EXPECT_EQ((std::vector<Pair>{{1, 1}, {2, 2}}), keys());
}

TEST_F(KeyedDMap, appendOfAKeyPresentKeepsTheRecordAndReturnsIt) {
  const DMapIterator present = insert({2, 2}, 1);
  const Pair key{2, 2};
  const double value = 7;
  EXPECT_TRUE(store_.append(key.data(), &value).equals(present));
  EXPECT_EQ(1.0, valueOf({2, 2}));
}

TEST_F(KeyedDMap, aBadHintChangesNothingButTime) {
  for (int i = 1; i <= 5; ++i) {
    insert({i, i}, i);
  }
  const double value = 9;
  const Pair key{3, 1};
  const DMapIterator added = store_.insertHint(key.data(), &value, store_.begin());
  EXPECT_EQ(2, store_.indexOf(added));
  const Pair present{1, 1};
  EXPECT_EQ(0, store_.indexOf(store_.insertHint(present.data(), &value, store_.end())));
  EXPECT_EQ(1.0, valueOf({1, 1}));
}

TEST_F(KeyedDMap, insertOrAssignAddsOrOverwrites) {
  const Pair key{1, 2};
  double value = 1;
  EXPECT_EQ(0, store_.indexOf(store_.insertOrAssign(store_.end(), key.data(), &value)));
  value = 2;
  EXPECT_EQ(0, store_.indexOf(store_.insertOrAssign(store_.begin(), key.data(), &value)));
  EXPECT_EQ(2.0, valueOf({1, 2}));
  EXPECT_EQ(1, store_.size());
}

TEST_F(KeyedDMap, insertOrAssignReplacesAllFiveSlots) {
  DMap variable(1, typeVariable);
  const int key = 4;
  const std::array<double, 5> first{1, 2, 3, 4, 5};
  const std::array<double, 5> second{6, 7, 8, 9, 10};
  variable.insert(&key, first.data());
  const DMapIterator record = variable.insertOrAssign(variable.end(), &key, second.data());
  EXPECT_TRUE(std::equal(second.begin(), second.end(), record.get().values));
  variable.insert(&key, first.data());
  EXPECT_TRUE(std::equal(second.begin(), second.end(), variable.begin().get().values));
}

TEST_F(KeyedDMap, keysAndValuesAreCopied) {
  Pair key{1, 2};
  double value = 3;
  store_.insert(key.data(), &value);
  key = {8, 9};
  value = 4;
  EXPECT_EQ((std::vector<Pair>{{1, 2}}), keys());
  EXPECT_EQ(3.0, valueOf({1, 2}));
}

TEST_F(KeyedDMap, lowerBoundIsExactAndTakes0AsTheInteger0) {
  insert({1, 5}, 1);
  insert({1, 7}, 2);
  insert({3, 1}, 3);
  const auto place = [this](const Pair& key) { return placeOf(store_.lowerBound(key.data())); };
  EXPECT_EQ(0, place({1, 0}));
  EXPECT_EQ(0, place({1, 5}));
  EXPECT_EQ(1, place({1, 6}));
  EXPECT_EQ(2, place({2, 0}));
  EXPECT_EQ(2, place({1, 8}));
  EXPECT_EQ(3, place({3, 2}));
}

TEST_F(KeyedDMap, findGivesTheRecordOrTheEnd) {
  insert({1, 5}, 1);
  const Pair present{1, 5};
  const Pair absent{1, 4};
  const Pair free{1, 0};
  EXPECT_TRUE(store_.find(present.data()).equals(store_.begin()));
  EXPECT_TRUE(store_.find(absent.data()).equals(store_.end()));
  EXPECT_TRUE(store_.find(free.data()).equals(store_.end()));
}

TEST_F(KeyedDMap, eraseRemovesTheRecordAndOthersStayGood) {
  insert({1, 1}, 1);
  const DMapIterator second = insert({2, 2}, 2);
  const DMapIterator third = insert({3, 3}, 3);
  store_.erase(second);
  EXPECT_EQ((std::vector<Pair>{{1, 1}, {3, 3}}), keys());
  EXPECT_EQ(3.0, *third.get().values);
  EXPECT_EQ(1, store_.indexOf(third));
}

TEST_F(KeyedDMap, iteratorsAndViewsStayGoodAcrossInsertions) {
  const DMapIterator record = insert({500, 1}, 1.5);
  const RecordView view = record.get();
  for (int i = 1; i <= 1000; ++i) {
    insert({i, 2}, i);
  }
  EXPECT_EQ(500, view.keys[0]);
  EXPECT_EQ(1.5, *view.values);
  EXPECT_EQ(1.5, *record.get().values);
}

TEST_F(KeyedDMap, clearEmptiesAndTheStoreIsUsableAfterwards) {
  insert({1, 1}, 1);
  insert({2, 2}, 2);
  const DMapIterator end = store_.end();
  store_.clear();
  EXPECT_TRUE(store_.empty());
  EXPECT_TRUE(store_.begin().equals(end));
  insert({3, 3}, 3);
  EXPECT_EQ((std::vector<Pair>{{3, 3}}), keys());
}

TEST_F(KeyedDMap, indexOfCountsFrom0AndIsMinus1ForTheEnd) {
  insert({1, 1}, 1);
  const DMapIterator second = insert({2, 2}, 2);
  EXPECT_EQ(0, store_.indexOf(store_.begin()));
  EXPECT_EQ(1, store_.indexOf(second));
  EXPECT_EQ(-1, store_.indexOf(store_.end()));
}

TEST_F(KeyedDMap, iteratorAtWalksToTheIndex) {
  for (int i = 1; i <= 3; ++i) {
    insert({i, i}, i);
  }
  EXPECT_EQ(1, store_.iteratorAt(0).get().keys[0]);
  EXPECT_EQ(3, store_.iteratorAt(2).get().keys[0]);
  EXPECT_TRUE(store_.iteratorAt(3).equals(store_.end()));
}

TEST_F(KeyedDMap, iteratorAtStopsAtTheEndForALargerIndex) {
  insert({1, 1}, 1);
  EXPECT_TRUE(store_.iteratorAt(100).equals(store_.end()));
}

TEST_F(KeyedDMap, iteratorAtANegativeIndexIsTheBegin) {
  insert({1, 1}, 1);
  insert({2, 2}, 2);
  EXPECT_TRUE(store_.iteratorAt(-1).equals(store_.begin()));
  EXPECT_TRUE(store_.iteratorAt(-2'000'000'000).equals(store_.begin()));
}

TEST_F(KeyedDMap, reserveDoesNothing) {
  insert({1, 1}, 1);
  store_.reserve(1'000'000);
  store_.reserve(-5);
  EXPECT_EQ((std::vector<Pair>{{1, 1}}), keys());
}

TEST(DMapOfSets, textNumberComesBackAsTheSameDouble) {
  DMap store(1, typeSet);
  const int key = 3;
  const double textNumber = 2147483646.0;
  store.insert(&key, &textNumber);
  EXPECT_EQ(textNumber, *store.begin().get().values);
}

}  // namespace
}  // namespace ztb::dmap
