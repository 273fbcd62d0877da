// The one record of a scalar, which stands inline in the store.
#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "store/dmap.h"

namespace ztb::dmap {
namespace {

using Five = std::array<double, 5>;

Five slotsOf(const DMapIterator& record) {
  Five result;
  for (std::size_t slot = 0; slot < 5; ++slot) {
    result[slot] = record.get().values[slot];
  }
  return result;
}

TEST(ScalarDMap, hasNoRecordAtFirst) {
  DMap store(0, typeParameter);
  EXPECT_EQ(0, store.size());
  EXPECT_TRUE(store.empty());
  EXPECT_TRUE(store.begin().equals(store.end()));
  EXPECT_TRUE(store.find(nullptr).equals(store.end()));
  EXPECT_EQ(-1, store.indexOf(store.begin()));
  EXPECT_FALSE(store.end().isNull());
}

TEST(ScalarDMap, everyWayInOverwrites) {
  DMap store(0, typeParameter);
  const std::array<std::function<DMapIterator(const double*)>, 4> ways = {
      [&](const double* v) { return store.append(nullptr, v); },
      [&](const double* v) { return store.insert(nullptr, v); },
      [&](const double* v) { return store.insertHint(nullptr, v, store.end()); },
      [&](const double* v) { return store.insertOrAssign(store.end(), nullptr, v); }};
  double value = 1;
  for (const auto& way : ways) {
    const DMapIterator record = way(&value);
    EXPECT_TRUE(record.equals(store.begin()));
    EXPECT_EQ(value, *record.get().values);
    EXPECT_EQ(1, store.size());
    value += 1;
  }
}

TEST(ScalarDMap, ofOneSlotTouchesOneSlot) {
  DMap store(0, typeParameter);
  const double one = 7;  // an array of one: reading a second element would be out of bounds
  const DMapIterator record = store.insert(nullptr, &one);
  EXPECT_EQ((Five{7, 0, 0, 0, 0}), slotsOf(record));
}

TEST(ScalarDMap, ofFiveSlotsTouchesFive) {
  DMap store(0, typeVariable);
  const Five first{1, 2, 3, 4, 5};
  EXPECT_EQ(first, slotsOf(store.insert(nullptr, first.data())));
  const Five second{6, 7, 8, 9, 10};
  EXPECT_EQ(second, slotsOf(store.append(nullptr, second.data())));
}

TEST(ScalarDMap, endIsOneDoublePastTheStartWhateverTheSlots) {
  for (const int type : {typeParameter, typeEquation}) {
    DMap store(0, type);
    const Five values{};
    store.insert(nullptr, values.data());
    auto* start = static_cast<double*>(store.begin().position());
    EXPECT_EQ(start + 1, store.end().position());
    DMapIterator it = store.begin();
    it.next();
    EXPECT_TRUE(it.equals(store.end()));
    it.prev();
    EXPECT_TRUE(it.equals(store.begin()));
  }
}

TEST(ScalarDMap, theKeysOfItsRecordAreThePosition) {
  DMap store(0, typeParameter);
  const double value = 1;
  const DMapIterator record = store.insert(nullptr, &value);
  EXPECT_EQ(record.position(), static_cast<const void*>(record.get().keys));
  EXPECT_EQ(record.position(), static_cast<void*>(record.get().values));
}

TEST(ScalarDMap, findGivesTheRecord) {
  DMap store(0, typeParameter);
  const double value = 1;
  const DMapIterator record = store.insert(nullptr, &value);
  EXPECT_TRUE(store.find(nullptr).equals(record));
}

TEST(ScalarDMap, lowerBoundIsTheEndWithoutARecordAndNullWithOne) {
  DMap store(0, typeParameter);
  EXPECT_TRUE(store.lowerBound(nullptr).equals(store.end()));
  EXPECT_FALSE(store.lowerBound(nullptr).isNull());
  const double value = 1;
  store.insert(nullptr, &value);
  EXPECT_TRUE(store.lowerBound(nullptr).isNull());
}

TEST(ScalarDMap, indexOfAndIteratorAt) {
  DMap store(0, typeVariable);
  const Five values{};
  store.insert(nullptr, values.data());
  EXPECT_EQ(0, store.indexOf(store.begin()));
  EXPECT_EQ(-1, store.indexOf(store.end()));
  EXPECT_TRUE(store.iteratorAt(0).equals(store.begin()));
  EXPECT_TRUE(store.iteratorAt(1).equals(store.end()));
  EXPECT_TRUE(store.iteratorAt(-1).equals(store.begin()));
}

TEST(ScalarDMap, eraseAndClearLeaveTheValuesUnread) {
  DMap store(0, typeVariable);
  const Five values{1, 2, 3, 4, 5};
  const DMapIterator record = store.insert(nullptr, values.data());
  store.erase(record);
  EXPECT_EQ(0, store.size());
  EXPECT_TRUE(store.begin().equals(store.end()));
  EXPECT_EQ(values, slotsOf(record));

  store.insert(nullptr, values.data());
  store.clear();
  EXPECT_EQ(0, store.size());
  EXPECT_TRUE(store.empty());
  EXPECT_EQ(values, slotsOf(record));

  const Five later{9, 8, 7, 6, 5};
  store.append(nullptr, later.data());
  EXPECT_EQ(1, store.size());
  EXPECT_EQ(later, slotsOf(record));
}

TEST(ScalarDMap, itsPointerStaysGoodForTheLifeOfTheStore) {
  DMap store(0, typeParameter);
  double value = 1;
  const DMapIterator record = store.insert(nullptr, &value);
  store.clear();
  value = 4;
  store.insert(nullptr, &value);
  EXPECT_EQ(4.0, *record.get().values);
}

TEST(ScalarDMap, anAliasIsAFiveSlotStoreThatStaysEmpty) {
  EXPECT_EQ(5, slotCount(typeAlias));
  DMap store(1, typeAlias);
  EXPECT_TRUE(store.empty());
}

}  // namespace
}  // namespace ztb::dmap
