// Every instantiation of the store, one for each dimension with one and with five slots; and the
// dimensions that no instantiation has.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include "store/dmap.h"

namespace ztb::dmap {
namespace {

class DMapOfDimension : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  // Keys that agree but for the last position, which is `last`.
  std::vector<int> key(int last) const {
    std::vector<int> result(static_cast<std::size_t>(dim_), 3);
    result.back() = last;
    return result;
  }
  // Exactly as many doubles as a record has, so that one more would be out of bounds.
  std::vector<double> values(double first) const {
    std::vector<double> result(static_cast<std::size_t>(slotCount(type_)));
    double value = first;
    std::ranges::generate(result, [&] { return value++; });
    return result;
  }

  int dim_ = std::get<0>(GetParam());
  int type_ = std::get<1>(GetParam());
  DMap store_{dim_, type_};
};

TEST_P(DMapOfDimension, keepsKeysAndSlotsInOrder) {
  for (const int last : {7, 2, 11}) {
    store_.insert(key(last).data(), values(last * 10.0).data());
  }
  EXPECT_EQ(3, store_.size());
  DMapIterator it = store_.begin();
  for (const int last : {2, 7, 11}) {
    EXPECT_EQ(dim_, it.dim());
    EXPECT_EQ(type_, it.type());
    const RecordView record = it.get();
    const std::vector<int> wantedKey = key(last);
    const std::vector<double> wantedValues = values(last * 10.0);
    EXPECT_TRUE(std::ranges::equal(wantedKey, std::vector<int>(record.keys, record.keys + dim_)));
    EXPECT_TRUE(std::equal(wantedValues.begin(), wantedValues.end(), record.values));
    it.next();
  }
  EXPECT_TRUE(it.equals(store_.end()));
  it.prev();
  EXPECT_EQ(11, it.get().keys[dim_ - 1]);
}

TEST_P(DMapOfDimension, everyOperationReachesItsMap) {
  store_.append(key(1).data(), values(1).data());
  store_.insertHint(key(3).data(), values(3).data(), store_.end());
  store_.insertOrAssign(store_.begin(), key(1).data(), values(50).data());
  EXPECT_EQ(50.0, *store_.find(key(1).data()).get().values);
  EXPECT_EQ(1, store_.indexOf(store_.lowerBound(key(2).data())));
  EXPECT_TRUE(store_.find(key(2).data()).equals(store_.end()));
  EXPECT_EQ(3, store_.iteratorAt(1).get().keys[dim_ - 1]);
  store_.erase(store_.begin());
  EXPECT_EQ(1, store_.size());
  store_.clear();
  EXPECT_TRUE(store_.empty());
}

TEST_P(DMapOfDimension, theFirstPositionIsMostSignificant) {
  std::vector<int> low(static_cast<std::size_t>(dim_), 9);
  std::vector<int> high(static_cast<std::size_t>(dim_), 1);
  low.front() = 1;
  high.front() = 2;
  store_.insert(high.data(), values(2).data());
  store_.insert(low.data(), values(1).data());
  EXPECT_EQ(1, store_.begin().get().keys[0]);
}

INSTANTIATE_TEST_SUITE_P(AllDimensions, DMapOfDimension,
                         testing::Combine(testing::Range(1, 21),
                                          testing::Values(typeSet, typeParameter, typeVariable,
                                                          typeEquation)));

class DMapOfImpossibleDimension : public testing::TestWithParam<int> {};

TEST_P(DMapOfImpossibleDimension, givesNullIteratorsAndHoldsNothing) {
  DMap store(GetParam(), typeVariable);
  const std::array<int, 32> keys{};
  const std::array<double, 5> values{};
  EXPECT_TRUE(store.append(keys.data(), values.data()).isNull());
  EXPECT_TRUE(store.insert(keys.data(), values.data()).isNull());
  EXPECT_TRUE(store.insertHint(keys.data(), values.data(), {}).isNull());
  EXPECT_TRUE(store.insertOrAssign({}, keys.data(), values.data()).isNull());
  EXPECT_TRUE(store.lowerBound(keys.data()).isNull());
  EXPECT_TRUE(store.find(keys.data()).isNull());
  EXPECT_TRUE(store.begin().isNull());
  EXPECT_TRUE(store.end().isNull());
  EXPECT_EQ(0, store.size());
  EXPECT_TRUE(store.empty());
  EXPECT_EQ(-1, store.indexOf({}));
  EXPECT_TRUE(store.iteratorAt(0).isNull());
  store.erase({});
  store.clear();
  store.reserve(3);
  EXPECT_EQ(0, store.size());
}

INSTANTIATE_TEST_SUITE_P(Outside, DMapOfImpossibleDimension, testing::Values(-1, 21, 31, 256, 257));

}  // namespace
}  // namespace ztb::dmap
