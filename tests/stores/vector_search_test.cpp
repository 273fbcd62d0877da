// Looking keys up in the vector store, and what follows from where the search lands.
#include <gtest/gtest.h>

#include <array>

#include "tests/stores/vector_rows.h"
#include "tests/support/stdout_capture.h"

namespace ztb::storetest {
namespace {

using ztbtest::StdoutCapture;

TEST(VectorStore, lowerBoundFindsEveryKeyPresent) {
  for (int rows = 1; rows <= 17; ++rows) {
    Vector vector(1);
    for (int row = 0; row < rows; ++row) {
      vector.append({2 * row + 2}, row);
    }
    for (int row = 0; row < rows; ++row) {
      EXPECT_EQ(row, vector.lowerBound({2 * row + 2})) << "of " << rows;
      EXPECT_EQ(row, vector.find({2 * row + 2})) << "of " << rows;
    }
    EXPECT_EQ(0, vector.lowerBound({1})) << "below all of " << rows;
    EXPECT_EQ(rows == 1 ? 0 : rows, vector.lowerBound({99})) << "above all of " << rows;
  }
}

TEST(VectorStore, lowerBoundOfAKeyBetweenRowsIsTheRowBelowOrTheEnd) {
  Vector three(1, keysOver({1, 3, 5}));
  EXPECT_EQ(0, three.lowerBound({2}));
  EXPECT_EQ(1, three.lowerBound({4}));
  Vector four(1, keysOver({3, 5, 7, 9}));
  EXPECT_EQ(0, four.lowerBound({4}));
  EXPECT_EQ(4, four.lowerBound({6}));
  EXPECT_EQ(2, four.lowerBound({8}));
}

TEST(VectorStore, lowerBoundOfAnEmptyStoreIsTheEnd) {
  Vector vector(1);
  EXPECT_EQ(0, vector.lowerBound({1}));
  EXPECT_EQ(0, vector.store.end().row());
}

TEST(VectorStore, lowerBoundOfASingleRowIsThatRowWhateverTheKey) {
  Vector vector(1, keysOver({5}));
  EXPECT_EQ(0, vector.lowerBound({1}));
  EXPECT_EQ(0, vector.lowerBound({9}));
}

TEST(VectorStore, isEndBoundTellsASingleRowBelowTheKey) {
  Vector vector(2, {{5, 5}});
  const auto bounds = [&](const Key& key) {
    return vector.store.isEndBound(vector.store.lowerBound(key.data()), key.data());
  };
  EXPECT_TRUE(bounds({5, 6}));
  EXPECT_FALSE(bounds({5, 5}));
  EXPECT_FALSE(bounds({4, 9}));
}

TEST(VectorStore, findOfAnAbsentKeyIsTheEnd) {
  Vector vector(1, keysOver({1, 3, 5}));
  for (const int absent : {2, 4, 6, -1}) {
    EXPECT_EQ(3, vector.find({absent})) << absent;
  }
}

TEST(VectorStore, findInTurnFindsWhatFindDoes) {
  Vector ascending(2, {{1, 1}, {1, 4}, {2, 1}, {3, 2}, {7, 7}});
  // In order, with absent ones between, again, and back.
  const std::vector<Key> asked = {{1, 1}, {1, 4}, {1, 5}, {2, 1}, {3, 2}, {7, 7}, {8, 1},
                                  {1, 1}, {2, 1}, {3, 2}, {3, 2}, {1, 4}, {7, 7}};
  const std::vector<int> rows = {0, 1, 5, 2, 3, 4, 5, 0, 2, 3, 3, 1, 4};
  for (std::size_t k = 0; k < asked.size(); ++k) {
    EXPECT_EQ(rows[k], ascending.findInTurn(asked[k])) << k;
  }
  const VectorIterator second = ascending.store.find(asked[1].data());
  ascending.store.erase(second);
  EXPECT_EQ(0, ascending.findInTurn({1, 1}));
  EXPECT_EQ(1, ascending.findInTurn({2, 1}));
  ascending.store.clear();
  EXPECT_EQ(0, ascending.findInTurn({1, 1}));
}

// A search that halves does not come to rows that stand in no order, and lands on another of rows
// that match.
TEST(VectorStore, findInTurnLooksAtNoRowThatASearchWouldMiss) {
  Vector unsorted(1, keysOver({5, 9, 3, 7}));
  EXPECT_EQ(4, unsorted.find({5}));
  EXPECT_EQ(4, unsorted.findInTurn({5}));
  Vector matching(2, {{1, 1}, {1, 2}, {1, 0}, {1, 3}});
  EXPECT_EQ(2, matching.find({1, 1}));
  EXPECT_EQ(2, matching.findInTurn({1, 1}));
}

TEST(VectorStore, a0InTheKeyMatchesAnythingWhereTheSearchLands) {
  Vector vector(2, {{1, 1}, {1, 2}, {2, 1}});
  EXPECT_EQ(1, vector.find({1, 0}));
  EXPECT_EQ(1, vector.find({0, 0}));
  EXPECT_EQ(1, vector.find({0, 2}));
  EXPECT_EQ(2, vector.find({2, 0}));
}

TEST(VectorStore, a0InARowMatchesAnything) {
  Vector vector(2, {{1, 0}, {2, 2}});
  EXPECT_EQ(0, vector.find({1, 7}));
  StdoutCapture output;
  EXPECT_EQ(0, vector.insert({1, 9}, 9).row());
  EXPECT_EQ(warning, output.text());
}

TEST(VectorStore, insertOrAssignOverwritesTheRowOfTheKey) {
  Vector vector(1, keysOver({1, 3}));
  EXPECT_EQ(0, vector.insertOrAssign({1}, 9).row());
  EXPECT_EQ((Rows{{{1}, 9}, {{3}, 2}}), vector.rows());
}

TEST(VectorStore, insertOrAssignOfAnAbsentKeyOverwritesTheRowWhereTheBoundFell) {
  Vector vector(1, keysOver({1, 3, 5}));
  EXPECT_EQ(0, vector.insertOrAssign({2}, 9).row());
  EXPECT_EQ((Rows{{{1}, 9}, {{3}, 2}, {{5}, 3}}), vector.rows());
}

TEST(VectorStore, insertOrAssignAboveASingleRowOverwritesIt) {
  Vector vector(1, keysOver({1}));
  vector.insertOrAssign({2}, 9);
  EXPECT_EQ((Rows{{{1}, 9}}), vector.rows());
}

TEST(VectorStore, insertOrAssignAppendsWhereTheBoundIsTheEndEvenOutOfOrder) {
  Vector vector(1, keysOver({3, 5, 7, 9}));
  EXPECT_EQ(4, vector.insertOrAssign({6}, 9).row());
  EXPECT_EQ(keysOver({3, 5, 7, 9, 6}), vector.keys());
}

TEST(VectorStore, insertOrAssignOverwritesAllFiveSlots) {
  DMapVector variable(1, 3);
  const int key = 1;
  const std::array<double, 5> others = {9, 8, 7, 6, 5};
  variable.append(&key, slots);
  const VectorIterator row = variable.insertOrAssign(variable.end(), &key, others.data());
  EXPECT_TRUE(std::equal(others.begin(), others.end(), row.get().values));
}

}  // namespace
}  // namespace ztb::storetest
