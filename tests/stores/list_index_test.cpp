// Sorted records are a list with an index beside it: it finds what a standard map finds, while
// records come behind the others, and after one has come between them or gone.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "store/dmap.h"

namespace ztb::dmap {
namespace {

using Key = std::array<int, 3>;

// The key in place `number` of an order with room between any two keys and in front of them.
Key keyAt(int number) {
  return {2 + 2 * (number / 300), 2 + 2 * (number / 17 % 18), 2 + 2 * (number % 17)};
}

class ListIndex : public testing::TestWithParam<int> {
 protected:
  void append(int number) {
    const double value = number;
    store_.append(keyAt(number).data(), &value);
    model_[keyAt(number)] = value;
  }
  void load() {
    for (int number = 0; number < GetParam(); ++number) {
      append(number);
    }
  }

  // Every key, and the places in front of and behind it, found as the model finds them.
  void check() {
    std::vector<Key> asked = {{0, 0, 0}, {1, 99, 99}, {9999, 0, 0}};
    for (const auto& [key, value] : model_) {
      asked.push_back(key);
      asked.push_back({key[0], key[1], key[2] - 1});
      asked.push_back({key[0], key[1], key[2] + 1});
      asked.push_back({key[0], key[1] + 1, 0});
    }
    for (const Key& key : asked) {
      const auto expected = model_.lower_bound(key);
      const DMapIterator bound = store_.lowerBound(key.data());
      ASSERT_EQ(bound.equals(store_.end()), expected == model_.end());
      if (expected != model_.end()) {
        const RecordView record = bound.get();
        ASSERT_TRUE(std::equal(record.keys, record.keys + 3, expected->first.begin()));
        ASSERT_EQ(*record.values, expected->second);
      }
      ASSERT_EQ(store_.find(key.data()).equals(store_.end()), !model_.contains(key));
    }
    ASSERT_EQ(static_cast<std::size_t>(store_.size()), model_.size());
    DMapIterator position = store_.begin();
    for (const auto& [key, value] : model_) {
      ASSERT_EQ(*position.get().values, value);
      position.next();
    }
    ASSERT_TRUE(position.equals(store_.end()));
  }

  DMap store_{3, typeParameter};
  std::map<Key, double> model_;
};

TEST_P(ListIndex, FindsEveryRecordAndEveryPlaceBetween) {
  load();
  check();
}

TEST_P(ListIndex, KnowsRecordsThatCameBehindTheOthersAfterASearch) {
  load();
  store_.lowerBound(keyAt(0).data());
  for (int number = GetParam(); number < 2 * GetParam() + 200; ++number) {
    append(number);
    ASSERT_EQ(*store_.find(keyAt(number / 2).data()).get().values, number / 2);
  }
  check();
}

TEST_P(ListIndex, OverwritesAndKeepsRecordsThatAreThere) {
  load();
  const int place = GetParam() / 2;
  store_.find(keyAt(0).data());
  const double value = -1;
  store_.insert(keyAt(place).data(), &value);
  ASSERT_EQ(*store_.find(keyAt(place).data()).get().values, place);
  store_.insertOrAssign(store_.end(), keyAt(place).data(), &value);
  model_[keyAt(place)] = value;
  check();
}

TEST_P(ListIndex, GivesWayToATreeWhenARecordComesBetweenOthers) {
  load();
  store_.find(keyAt(0).data());
  const Key between{2, 2, 3};
  const double value = 7;
  store_.insert(between.data(), &value);
  model_[between] = value;
  check();
}

TEST_P(ListIndex, GivesWayToATreeWhenARecordGoes) {
  load();
  for (const int number : {GetParam() / 2, 0, GetParam() - 1}) {
    const DMapIterator position = store_.find(keyAt(number).data());
    if (!position.equals(store_.end())) {
      store_.erase(position);
    }
    model_.erase(keyAt(number));
    check();
  }
}

TEST_P(ListIndex, EndsWithTheRecords) {
  load();
  store_.find(keyAt(0).data());
  store_.clear();
  model_.clear();
  check();
  load();
  check();
}

// Where an index begins to be made, and around the ends of its entries and levels.
INSTANTIATE_TEST_SUITE_P(Sizes, ListIndex,
                         testing::Values(1, 63, 64, 65, 72, 127, 128, 129, 1025, 2048, 2049, 5000));

}  // namespace
}  // namespace ztb::dmap
