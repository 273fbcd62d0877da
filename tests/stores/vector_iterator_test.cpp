// A scalar on the vector store, and the iterators of the store.
#include <gtest/gtest.h>

#include "tests/stores/vector_rows.h"
#include "tests/support/stdout_capture.h"

namespace ztb::storetest {
namespace {

using ztbtest::StdoutCapture;

class VectorScalar : public testing::Test {
 protected:
  VectorIterator put(double value) { return store_.append(nullptr, &value); }

  DMapVector store_{0, 1};
};

TEST_F(VectorScalar, isEmptyAtFirst) {
  EXPECT_EQ(0, store_.size());
  EXPECT_TRUE(store_.empty());
  EXPECT_TRUE(store_.begin().equals(store_.end()));
}

TEST_F(VectorScalar, holdsOneRecordWhoseValuesTheNextOverwrites) {
  put(1);
  put(2);
  EXPECT_EQ(1, store_.size());
  EXPECT_FALSE(store_.empty());
  EXPECT_FALSE(store_.begin().equals(store_.end()));
  EXPECT_EQ((Rows{{{}, 2}}), rowsOf(store_, 0));
  EXPECT_EQ(nullptr, store_.begin().get().keys);
}

TEST_F(VectorScalar, everyWayInOverwrites) {
  double value = 3;
  store_.insert(nullptr, &value);
  EXPECT_EQ(3, *store_.begin().get().values);
  value = 4;
  store_.insertHint(nullptr, &value, store_.begin());
  EXPECT_EQ(4, *store_.begin().get().values);
  value = 5;
  store_.insertOrAssign(store_.begin(), nullptr, &value);
  EXPECT_EQ(5, *store_.begin().get().values);
  EXPECT_EQ(1, store_.size());
}

TEST_F(VectorScalar, findIsTheEndWithARecordAndWithout) {
  EXPECT_TRUE(store_.find(nullptr).equals(store_.end()));
  put(1);
  EXPECT_TRUE(store_.find(nullptr).equals(store_.end()));
}

TEST_F(VectorScalar, eraseEmptiesAndTheStoreIsUsableAfterwards) {
  put(1);
  store_.erase(store_.begin());
  EXPECT_TRUE(store_.empty());
  EXPECT_TRUE(store_.find(nullptr).equals(store_.end()));
  put(2);
  EXPECT_EQ((Rows{{{}, 2}}), rowsOf(store_, 0));
  store_.clear();
  EXPECT_TRUE(store_.empty());
}

TEST_F(VectorScalar, withoutARecordGetGivesNothing) {
  EXPECT_EQ(nullptr, store_.begin().get().keys);
  EXPECT_EQ(nullptr, store_.begin().get().values);
}

TEST_F(VectorScalar, indexOfIsMinus1WithARecordToo) {
  EXPECT_EQ(-1, store_.indexOf(store_.begin()));
  put(1);
  EXPECT_EQ(-1, store_.indexOf(store_.begin()));
}

TEST_F(VectorScalar, reserveDoesNothing) {
  put(7);
  store_.reserve(100);
  EXPECT_EQ((Rows{{{}, 7}}), rowsOf(store_, 0));
}

TEST_F(VectorScalar, holdsFiveSlotsForAVariable) {
  DMapVector variable(0, 2);
  const VectorIterator record = variable.append(nullptr, slots);
  EXPECT_TRUE(std::equal(slots, slots + 5, record.get().values));
}

TEST(VectorIteratorValue, theNullIteratorStandsOnNothing) {
  const VectorIterator null;
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(-1, null.row());
  EXPECT_EQ(0, null.dim());
  EXPECT_EQ(0, null.type());
  EXPECT_EQ(dmap::StorageKind::dMap, null.kind());
  EXPECT_EQ(nullptr, null.get().values);
}

TEST(VectorIteratorValue, withoutEitherArrayStandsOnNothing) {
  dmap::FlatArray<int> keys;
  dmap::FlatArray<double> values;
  EXPECT_TRUE(VectorIterator(1, 1, 0, &keys, nullptr).isNull());
  EXPECT_TRUE(VectorIterator(1, 1, 0, nullptr, &values).isNull());
  EXPECT_FALSE(VectorIterator(1, 1, 0, &keys, &values).isNull());
}

TEST(VectorIteratorValue, carriesTheStoresDimensionTypeAndKind) {
  DMapVector store(3, 2);
  EXPECT_EQ(3, store.end().dim());
  EXPECT_EQ(2, store.end().type());
  EXPECT_EQ(dmap::StorageKind::dMapVector, store.end().kind());
  EXPECT_FALSE(store.end().isNull());
}

TEST(VectorIteratorValue, stepsByOneRowUnchecked) {
  Vector vector(1, keysOver({1, 3}));
  VectorIterator position = vector.store.end();
  position.prev();
  EXPECT_EQ(3, *position.get().keys);
  position.prev();
  position.prev();
  EXPECT_EQ(-1, position.row());
  EXPECT_EQ(nullptr, position.get().keys);
  EXPECT_EQ(nullptr, position.get().values);
  position.next();
  EXPECT_TRUE(position.equals(vector.store.begin()));
}

TEST(VectorIteratorValue, getGivesNothingOnARowThatTheArraysDoNotHave) {
  Vector vector(2, {{1, 1}});
  EXPECT_EQ(nullptr, vector.store.end().get().keys);
  EXPECT_EQ(nullptr, vector.store.end().get().values);
}

TEST(VectorIteratorValue, survivesTheGrowthOfTheArrays) {
  Vector vector(1, keysOver({1}));
  const VectorIterator first = vector.store.begin();
  for (int i = 2; i <= 1000; ++i) {
    vector.append({i}, i);
  }
  EXPECT_EQ(1, *first.get().keys);
  EXPECT_EQ(1.0, *first.get().values);
}

TEST(VectorIteratorValue, writingThroughAViewChangesTheRecord) {
  Vector vector(1, keysOver({1, 2}));
  *vector.store.iteratorAt(1).get().values = 9;
  EXPECT_EQ((Rows{{{1}, 1}, {{2}, 9}}), vector.rows());
}

TEST(VectorIteratorValue, equalsComparesDimensionTypeAndRow) {
  DMapVector first(1, 1);
  DMapVector otherType(1, 0);
  DMapVector otherDim(2, 1);
  EXPECT_TRUE(first.begin().equals(first.begin()));
  EXPECT_FALSE(first.begin().equals(first.iteratorAt(1)));
  EXPECT_TRUE(first.begin().notEquals(first.iteratorAt(1)));
  EXPECT_FALSE(first.begin().equals(otherType.begin()));
  EXPECT_FALSE(first.begin().equals(otherDim.begin()));
}

}  // namespace
}  // namespace ztb::storetest
