#include "store/dmap_vector.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <vector>

#include "tests/stores/vector_rows.h"
#include "tests/support/stdout_capture.h"

namespace ztb::storetest {
namespace {

using ztbtest::StdoutCapture;

TEST(VectorStore, isEmptyAtFirst) {
  Vector vector(2);
  EXPECT_EQ(0, vector.store.size());
  EXPECT_TRUE(vector.store.empty());
  EXPECT_TRUE(vector.store.begin().equals(vector.store.end()));
  EXPECT_EQ(dmap::StorageKind::dMapVector, vector.store.kind());
}

TEST(VectorStore, walksInNumericOrderOfSortedRows) {
  Vector vector(2, {{1, 2}, {1, 10}, {2, 1}});
  EXPECT_EQ((Rows{{{1, 2}, 1}, {{1, 10}, 2}, {{2, 1}, 3}}), vector.rows());
}

TEST(VectorStore, neverSortsWhatIsAppended) {
  Vector vector(1, keysOver({5, 2, 9}));
  EXPECT_EQ(keysOver({5, 2, 9}), vector.keys());
}

TEST(VectorStore, appendOfAKeyPresentAddsASecondRowSilently) {
  StdoutCapture output;
  Vector vector(1, keysOver({3, 3}));
  EXPECT_EQ((Rows{{{3}, 1}, {{3}, 2}}), vector.rows());
  EXPECT_EQ("", output.text());
}

TEST(VectorStore, appendGivesTheNewRow) {
  Vector vector(1, keysOver({3}));
  EXPECT_EQ(1, vector.append({7}, 2).row());
}

TEST(VectorStore, keepsAllFiveSlots) {
  DMapVector variable(1, 2);
  const int key = 1;
  const VectorIterator row = variable.append(&key, slots);
  EXPECT_EQ(std::vector<double>(slots, slots + 5),
            std::vector<double>(row.get().values, row.get().values + 5));
}

TEST(VectorStore, keepsATextNumberAsADouble) {
  DMapVector set(1, 0);
  const int key = 1;
  const double textNumber = 2147483646;
  EXPECT_EQ(textNumber, *set.append(&key, &textNumber).get().values);
}

TEST(VectorStore, insertIntoAnEmptyStoreAppends) {
  Vector vector(2);
  EXPECT_EQ(0, vector.insert({4, 4}, 9).row());
  EXPECT_EQ((Rows{{{4, 4}, 9}}), vector.rows());
}

TEST(VectorStore, insertAboveTheLastRowAppends) {
  Vector vector(2, {{1, 1}});
  EXPECT_EQ(1, vector.insert({1, 2}, 9).row());
  EXPECT_EQ((std::vector<Key>{{1, 1}, {1, 2}}), vector.keys());
}

TEST(VectorStore, insertOfTheLastRowsKeyWarnsOnceAndChangesNothing) {
  Vector vector(1, keysOver({1, 5}));
  StdoutCapture output;
  EXPECT_EQ(1, vector.insert({5}, 9).row());
  EXPECT_EQ(warning, output.text());
  EXPECT_EQ((Rows{{{1}, 1}, {{5}, 2}}), vector.rows());
}

TEST(VectorStore, insertOfAnotherKeyPresentWarnsOnceAndChangesNothing) {
  Vector vector(1, keysOver({1, 5, 9}));
  StdoutCapture output;
  EXPECT_EQ(0, vector.insert({1}, 9).row());
  EXPECT_EQ(warning, output.text());
  EXPECT_EQ((Rows{{{1}, 1}, {{5}, 2}, {{9}, 3}}), vector.rows());
}

TEST(VectorStore, insertBelowTheFirstRowShiftsAllRowsUp) {
  Vector vector(2, {{3, 3}, {4, 4}});
  EXPECT_EQ(0, vector.insert({3, 1}, 9).row());
  EXPECT_EQ((Rows{{{3, 1}, 9}, {{3, 3}, 1}, {{4, 4}, 2}}), vector.rows());
}

TEST(VectorStore, insertBelowTheFirstRowShiftsAllFiveSlots) {
  DMapVector variable(1, 2);
  const std::array<double, 5> others = {9, 8, 7, 6, 5};
  const int four = 4;
  const int three = 3;
  variable.append(&four, slots);
  variable.insert(&three, others.data());
  const dmap::RecordView second = variable.iteratorAt(1).get();
  EXPECT_EQ(4, *second.keys);
  EXPECT_EQ(std::vector<double>(slots, slots + 5),
            std::vector<double>(second.values, second.values + 5));
}

void expectUnsorted(Vector& vector, const Key& key) {
  const Rows before = vector.rows();
  try {
    vector.insert(key, 99);
    FAIL() << "took a key between two rows";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("keys must reach the vector store sorted", error.what());
  }
  EXPECT_EQ(before, vector.rows());
}

TEST(VectorStore, insertBetweenTwoRowsThrowsWhereTheBoundIsTheRowBelow) {
  Vector vector(1, keysOver({1, 3, 5}));
  ASSERT_EQ(0, vector.lowerBound({2}));
  expectUnsorted(vector, {2});
}

TEST(VectorStore, insertBetweenTwoRowsThrowsWhereTheBoundIsTheEnd) {
  Vector vector(1, keysOver({3, 5, 7, 9}));
  ASSERT_EQ(4, vector.lowerBound({6}));
  expectUnsorted(vector, {6});
}

TEST(VectorStore, insertHintAboveTheHintGoesTheWayOfInsert) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(2, vector.insertHint({5}, 9, 0).row());
  EXPECT_EQ(keysOver({1, 3, 5}), vector.keys());
}

TEST(VectorStore, insertHintBelowTheRowBeforeTheHintGoesTheWayOfInsert) {
  Vector vector(1, keysOver({3, 5, 7}));
  EXPECT_EQ(0, vector.insertHint({1}, 9, 2).row());
  EXPECT_EQ(keysOver({1, 3, 5, 7}), vector.keys());
}

TEST(VectorStore, insertHintPlacesAKeyBetweenTheHintAndTheRowBeforeIt) {
  Vector vector(1, keysOver({1, 3, 7}));
  EXPECT_EQ(2, vector.insertHint({5}, 9, 2).row());
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 2}, {{5}, 9}, {{7}, 3}}), vector.rows());
}

TEST(VectorStore, insertHintOnNoRowAppendsUnchecked) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(2, vector.insertHint({2}, 9, 2).row());
  EXPECT_EQ(keysOver({1, 3, 2}), vector.keys());
}

TEST(VectorStore, insertHintOnTheNullIteratorAppendsUnchecked) {
  Vector vector(1, keysOver({1, 3}));
  const int key = 2;
  const double value = 9;
  EXPECT_EQ(2, vector.store.insertHint(&key, &value, VectorIterator()).row());
  EXPECT_EQ(keysOver({1, 3, 2}), vector.keys());
}

TEST(VectorStore, insertHintOfTheHintsKeyPutsASecondRowInFrontOfIt) {
  StdoutCapture output;
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(1, vector.insertHint({3}, 9, 1).row());
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 9}, {{3}, 2}}), vector.rows());
  EXPECT_EQ("", output.text());
}

TEST(VectorStore, insertHintOfTheKeyBeforeTheHintPutsASecondRowInFrontOfTheHint) {
  StdoutCapture output;
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(1, vector.insertHint({1}, 9, 1).row());
  EXPECT_EQ((Rows{{{1}, 1}, {{1}, 9}, {{3}, 2}}), vector.rows());
  EXPECT_EQ("", output.text());
}

TEST(VectorStore, insertHintOfAnUnsortedKeyThrowsAndKeepsTheRows) {
  Vector vector(1, keysOver({1, 3, 5}));
  EXPECT_THROW(vector.insertHint({2}, 9, 0), std::logic_error);
  EXPECT_THROW(vector.insertHint({2}, 9, 2), std::logic_error);
  EXPECT_EQ(keysOver({1, 3, 5}), vector.keys());
}

TEST(VectorStore, aSortedLoadByHintOfTheLastRowNeverWarns) {
  StdoutCapture output;
  Vector vector(2);
  VectorIterator last = vector.store.end();
  std::vector<Key> expected;
  for (int i = 1; i <= 20; ++i) {
    for (int j = 1; j <= 20; ++j) {
      const Key key = {i, j};
      const double value = 1;
      vector.store.insertFollowing(key.data(), &value, last);
      ASSERT_EQ(static_cast<int>(expected.size()), last.row());
      expected.push_back(key);
    }
  }
  EXPECT_EQ(expected, vector.keys());
  EXPECT_EQ(400, vector.store.size());
  EXPECT_EQ("", output.text());
}

// Records of dimension 1 behind the last row, or behind no row, all at once.
VectorIterator insertAll(Vector& vector, const std::vector<int>& keys, VectorIterator hint) {
  std::vector<double> values;
  for (const int key : keys) values.push_back(100.0 + key);
  vector.store.insertAllFollowing(keys.data(), values.data(), static_cast<int>(keys.size()), hint);
  return hint;
}

TEST(VectorStore, manyAscendingRecordsFollowAtOnce) {
  Vector vector(1);
  VectorIterator last = insertAll(vector, {2, 3, 7}, vector.store.end());
  EXPECT_EQ(2, last.row());
  last = insertAll(vector, {8}, last);
  last = insertAll(vector, {}, last);
  EXPECT_EQ(3, last.row());
  EXPECT_EQ((Rows{{{2}, 102}, {{3}, 103}, {{7}, 107}, {{8}, 108}}), vector.rows());
  vector.store.clear();
  EXPECT_EQ(1, insertAll(vector, {1, 2}, vector.store.end()).row());
  EXPECT_EQ((Rows{{{1}, 101}, {{2}, 102}}), vector.rows());
}

TEST(VectorStore, manyRecordsOfTwoPositionsAndFiveSlotsFollow) {
  DMapVector variable(2, 2);
  std::vector<int> keys;
  std::vector<double> values;
  for (int k = 0; k < 100; ++k) {
    keys.insert(keys.end(), {k / 10 + 1, k % 10 + 1});
    for (int slot = 0; slot < 5; ++slot) values.push_back(10 * k + slot);
  }
  VectorIterator hint = variable.end();
  variable.insertAllFollowing(keys.data(), values.data(), 60, hint);
  variable.insertAllFollowing(keys.data() + 120, values.data() + 300, 40, hint);
  ASSERT_EQ(100, variable.size());
  std::vector<double> third(100);
  variable.copySlot(3, third.data());
  for (int k = 0; k < 100; ++k) {
    const dmap::RecordView record = variable.iteratorAt(k).get();
    ASSERT_EQ((Key{k / 10 + 1, k % 10 + 1}), Key(record.keys, record.keys + 2));
    ASSERT_EQ(10.0 * k + 4, record.values[4]);
    ASSERT_EQ(10.0 * k + 3, third[static_cast<std::size_t>(k)]);
  }
}

// As one after the other: a key of the hint's gets a second row, silently; what goes in between the
// hint and the row before it is put there; what sorts elsewhere throws, behind those before it.
TEST(VectorStore, manyRecordsThatDoNotAscendGoOneByOne) {
  Vector vector(1, keysOver({1, 3, 5}));
  StdoutCapture output;
  const VectorIterator last = insertAll(vector, {6, 6, 7}, vector.store.iteratorAt(2));
  EXPECT_EQ("", output.text());
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 2}, {{5}, 3}, {{6}, 106}, {{6}, 106}, {{7}, 107}}),
            vector.rows());
  EXPECT_EQ(5, last.row());
  EXPECT_THROW(insertAll(vector, {8, 2}, last), std::logic_error);
  EXPECT_EQ(keysOver({1, 3, 5, 6, 6, 7, 8}), vector.keys());
  insertAll(vector, {2}, vector.store.iteratorAt(1));
  EXPECT_EQ(keysOver({1, 2, 3, 5, 6, 6, 7, 8}), vector.keys());
  EXPECT_THROW(insertAll(vector, {4, 5}, vector.store.iteratorAt(7)), std::logic_error);
}

TEST(VectorStore, eraseMovesLaterRowsDown) {
  Vector vector(2, {{1, 1}, {2, 2}, {3, 3}});
  vector.store.erase(vector.store.iteratorAt(1));
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{3, 3}, 3}}), vector.rows());
  EXPECT_EQ(2, vector.store.size());
  vector.append({4, 4}, 4);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{3, 3}, 3}, {{4, 4}, 4}}), vector.rows());
}

TEST(VectorStore, anIteratorNamesAPlaceNotARecord) {
  Vector vector(1, keysOver({1, 3, 5}));
  const VectorIterator second = vector.store.iteratorAt(1);
  vector.store.erase(vector.store.begin());
  EXPECT_EQ(5, *second.get().keys);
  vector.insert({2}, 9);
  EXPECT_EQ(3, *second.get().keys);
}

TEST(VectorStore, eraseOfTheOnlyRowLeavesAnEmptyStore) {
  Vector vector(1, keysOver({1}));
  vector.store.erase(vector.store.begin());
  EXPECT_TRUE(vector.store.empty());
  EXPECT_EQ(0, vector.insert({5}, 1).row());
}

TEST(VectorStore, clearKeepsTheMemoryOfTheArrays) {
  Vector vector(1);
  for (int i = 1; i <= 100; ++i) {
    vector.append({i}, i);
  }
  const double* before = vector.store.begin().get().values;
  vector.store.clear();
  EXPECT_TRUE(vector.store.empty());
  for (int i = 1; i <= 100; ++i) {
    vector.append({i}, i);
    EXPECT_EQ(before, vector.store.begin().get().values);
  }
}

TEST(VectorStore, releaseGivesTheMemoryBackAndTheStoreIsUsable) {
  Vector vector(1, keysOver({1, 2}));
  vector.store.release();
  EXPECT_TRUE(vector.store.empty());
  vector.append({4}, 7);
  EXPECT_EQ((Rows{{{4}, 7}}), vector.rows());
}

TEST(VectorStore, indexOfIsTheRowAndMinus1AtTheEnd) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(0, vector.store.indexOf(vector.store.begin()));
  EXPECT_EQ(1, vector.store.indexOf(vector.store.iteratorAt(1)));
  EXPECT_EQ(-1, vector.store.indexOf(vector.store.end()));
}

TEST(VectorStore, iteratorAtTheRecordCountIsTheEnd) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_TRUE(vector.store.iteratorAt(2).equals(vector.store.end()));
}

TEST(VectorStore, everyRowPastTheLastCountsAsTheEnd) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_FALSE(vector.store.isEnd(vector.store.iteratorAt(1)));
  EXPECT_TRUE(vector.store.isEnd(vector.store.iteratorAt(2)));
  EXPECT_TRUE(vector.store.isEnd(vector.store.iteratorAt(3)));
}

TEST(VectorStore, reserveMakesRoomInAnEmptyStore) {
  Vector vector(2);
  vector.store.reserve(10);
  EXPECT_TRUE(vector.store.empty());
  const double* first = vector.append({1, 1}, 1).get().values;
  for (int i = 2; i <= 10; ++i) {
    vector.append({i, i}, i);
  }
  EXPECT_EQ(first, vector.store.begin().get().values);
  EXPECT_EQ(10, vector.store.size());
  vector.append({11, 11}, 11);
  EXPECT_EQ(11U, vector.rows().size());
}

TEST(VectorStore, reserveZeroFillsTheRowsAndCountsNone) {
  Vector vector(2, {{7, 7}, {8, 8}});
  vector.store.clear();
  vector.store.reserve(3);
  EXPECT_EQ(0, vector.store.size());
  for (int row = 0; row < 3; ++row) {
    const dmap::RecordView record = vector.store.iteratorAt(row).get();
    EXPECT_EQ((Key{0, 0}), (Key{record.keys[0], record.keys[1]})) << row;
    EXPECT_EQ(0, *record.values) << row;
  }
  EXPECT_EQ(nullptr, vector.store.iteratorAt(3).get().keys);
}

TEST(VectorStore, anEraseAfterReserveEndsTheReservedRows) {
  Vector vector(1);
  vector.store.reserve(10);
  vector.append({1}, 1);
  vector.append({2}, 2);
  vector.store.erase(vector.store.begin());
  vector.append({3}, 3);
  EXPECT_EQ((Rows{{{2}, 2}, {{3}, 3}}), vector.rows());
  EXPECT_EQ(nullptr, vector.store.end().get().keys);
}

TEST(VectorStore, aDimensionThatNoKeyHasGivesAStoreThatHoldsNothing) {
  for (const int dim : {-1, 21}) {
    DMapVector store(dim, 1);
    EXPECT_TRUE(store.append(nullptr, slots).isNull());
    EXPECT_TRUE(store.insert(nullptr, slots).isNull());
    EXPECT_TRUE(store.insertHint(nullptr, slots, store.end()).isNull());
    EXPECT_TRUE(store.insertOrAssign(store.end(), nullptr, slots).isNull());
    store.reserve(5);
    EXPECT_EQ(0, store.size());
    EXPECT_TRUE(store.find(nullptr).equals(store.end()));
  }
}

TEST(VectorStore, reserveBeyondAnyMemoryThrowsAndKeepsTheStore) {
  Vector vector(1, keysOver({1}));
  try {
    vector.store.reserve(-1);
    FAIL() << "reserved a negative number of rows";
  } catch (const std::length_error& error) {
    EXPECT_STREQ("vector too long", error.what());
  }
  EXPECT_EQ((Rows{{{1}, 1}}), vector.rows());
}

}  // namespace
}  // namespace ztb::storetest
