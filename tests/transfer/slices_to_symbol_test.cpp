// The wanted labels of a cube into the records of a set or parameter.
#include <cmath>
#include <limits>

#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class SlicesToSymbol : public ArrayTest {
 protected:
  SlicesToSymbol() : data(db.addParameter("p", 2)) { db.put(data, {"old", "old"}, 1); }

  const Doubles cells = {11, 12, 21, 22, 31, 32};
  void* data;
};

TEST_F(SlicesToSymbol, takesTheLabelsOfTheSlicesFromACubeOverTheFullDomains) {
  void* const someI = addSetOf(db, "someI", {"c", "a"});
  void* const someJ = addSetOf(db, "someJ", {"y"});
  EXPECT_SUCCESS(db, fromSlices(data, {someI, someJ}, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ((std::vector<Row>{{{"a", "y"}, 12}, {{"c", "y"}, 32}}), db.rows(data));
}

TEST_F(SlicesToSymbol, takesEverythingWithTheFullDomainsAsSlices) {
  EXPECT_SUCCESS(db, fromSlices(data, {i, j}, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ((std::vector<Row>{{{"a", "x"}, 11},
                              {{"a", "y"}, 12},
                              {{"b", "x"}, 21},
                              {{"b", "y"}, 22},
                              {{"c", "x"}, 31},
                              {{"c", "y"}, 32}}),
            db.rows(data));
}

TEST_F(SlicesToSymbol, passesOverLabelsThatTheFullDomainLacks) {
  void* const first = addSetOf(db, "first", {"0", "b", "nowhere"});
  void* const second = addSetOf(db, "second", {"unused", "a", "x", "zz"});
  EXPECT_SUCCESS(db, fromSlices(data, {first, second}, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ((std::vector<Row>{{{"b", "x"}, 21}}), db.rows(data));
}

TEST_F(SlicesToSymbol, succeedsWithAnEmptySymbolWhenNoLabelOfASliceIsKnown) {
  void* const strangers = addSetOf(db, "strangers", {"m", "n"});
  EXPECT_SUCCESS(db, fromSlices(data, {i, strangers}, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ(0, db.recordCount(data));
  EXPECT_SUCCESS(db, fromSlices(data, {db.addSet("none"), j}, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(SlicesToSymbol, leavesOutZerosOfBothSignsAndKeepsNaN) {
  const Doubles mixed = {0.0, -0.0, std::nan(""), 1, doubleOf(epsilonBits), 0};
  EXPECT_SUCCESS(db, fromSlices(data, {i, j}, {i, j}, mixed.data(), {3, 2}));
  const std::vector<Row> rows = db.rows(data);
  ASSERT_EQ(3U, rows.size());
  EXPECT_EQ((Labels{"b", "x"}), rows[0].labels);
  EXPECT_TRUE(std::isnan(rows[0].level));
  EXPECT_EQ((Row{{"b", "y"}, 1}), rows[1]);
  EXPECT_EQ((Row{{"c", "x"}, doubleOf(epsilonBits)}), rows[2]);
}

TEST_F(SlicesToSymbol, leavesOutTheZerosOfASetToo) {
  void* const set = db.addSet("s", 2);
  const Integers numbers = {0, 4, 0, 0, -1, 0};
  EXPECT_SUCCESS(db, fromSlices(set, {i, j}, {i, j}, numbers.data(), {3, 2}));
  const Record record = db.first(set);
  int keys[2];
  double text = 0;
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, record, 2, keys, &text));
  EXPECT_EQ((Labels{"a", "y"}), db.labels(record, 2));
  EXPECT_EQ(4, text);
  ASSERT_EQ(1, lib().c__ztbrecordmovenext(db, record));
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, record, 2, keys, &text));
  EXPECT_EQ((Labels{"c", "x"}), db.labels(record, 2));
  EXPECT_EQ(-1, text);
  EXPECT_EQ(2, db.recordCount(set));
}

TEST_F(SlicesToSymbol, leavesOutAZeroEvenWhenTheCallerSpellsEpsilonSo) {
  spellSpecialValues({doubleOf(undefinedBits), doubleOf(notAvailableBits),
                      doubleOf(plusInfinityBits), doubleOf(minusInfinityBits), 0.0});
  const Doubles mixed = {0, 1, 0, 0, 0, 0};
  EXPECT_SUCCESS(db, fromSlices(data, {i, j}, {i, j}, mixed.data(), {3, 2}));
  EXPECT_EQ((std::vector<Row>{{{"a", "y"}, 1}}), db.rows(data));
}

TEST_F(SlicesToSymbol, storesTheCallersSpecialValuesAsTheLibrarysOwn) {
  spellSpecialValues({-1, -2, -3, -4, -5});
  const Doubles mixed = {-1, -2, -3, -4, -5, -6};
  EXPECT_SUCCESS(db, fromSlices(data, {i, j}, {i, j}, mixed.data(), {3, 2}));
  const Doubles stored = storedLevels(db, data);
  ASSERT_EQ(6U, stored.size());
  EXPECT_EQ(undefinedBits, bitsOf(stored[0]));
  EXPECT_EQ(notAvailableBits, bitsOf(stored[1]));
  EXPECT_EQ(plusInfinityBits, bitsOf(stored[2]));
  EXPECT_EQ(minusInfinityBits, bitsOf(stored[3]));
  EXPECT_EQ(epsilonBits, bitsOf(stored[4]));
  EXPECT_EQ(-6, stored[5]);
}

TEST_F(SlicesToSymbol, takesOneDomainAndOneSliceAtTwoPositions) {
  void* const some = addSetOf(db, "some", {"a", "c"});
  const Doubles square = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_SUCCESS(db, fromSlices(data, {some, some}, {i, i}, square.data(), {3, 3}));
  EXPECT_EQ((std::vector<Row>{{{"a", "a"}, 1}, {{"a", "c"}, 3}, {{"c", "a"}, 7}, {{"c", "c"}, 9}}),
            db.rows(data));
}

TEST_F(SlicesToSymbol, refusesNoSymbolTheUniverseAndAScalarWithTheRecordKept) {
  void* const scalar = db.addParameter("scalar", 0);
  db.put(scalar, {}, 5);
  EXPECT_FAILURE(db, "Empty symbol pointer", fromSlices(nullptr, {i}, {i}, cells.data(), {3}));
  EXPECT_FAILURE(db, "Can't map universe", fromSlices(db.universe(), {i}, {i}, cells.data(), {3}));
  EXPECT_FAILURE(db, "Can't map scalars", fromSlices(scalar, {i}, {i}, cells.data(), {3}));
  EXPECT_EQ(5, db.level(db.first(scalar)));
}

TEST_F(SlicesToSymbol, aVariableIsRefusedAndHasLostItsRecords) {
  void* const variable = db.addVariable("v");
  db.put(variable, {"a"});
  EXPECT_FAILURE(db, "Copy into var/equ symbol v not possible",
                 fromSlices(variable, {nullptr}, {nullptr}, cells.data(), {3}));
  EXPECT_EQ(0, db.recordCount(variable));
}

TEST_F(SlicesToSymbol, checksAtEachPositionTheFullDomainItsSizeThenTheSlice) {
  void* const empty = db.addSet("empty");
  EXPECT_FAILURE(
      db, "Cannot use universe as domain symbol p",
      fromSlices(data, {nullptr, nullptr}, {db.universe(), nullptr}, cells.data(), {9, 9}));
  EXPECT_EQ(0, db.recordCount(data)) << "emptied before the domains are looked at";
  EXPECT_FAILURE(db, "Cube dimension 1 is 9 while card(i) is 3.",
                 fromSlices(data, {nullptr, nullptr}, {i, nullptr}, cells.data(), {9, 9}));
  EXPECT_FAILURE(db, "Zero sized dimension 1",
                 fromSlices(data, {nullptr, nullptr}, {empty, nullptr}, cells.data(), {0, 9}));
  EXPECT_FAILURE(db, "No domain symbol handle specified for symbol p",
                 fromSlices(data, {nullptr, nullptr}, {i, db.universe()}, cells.data(), {3, 9}));
  EXPECT_FAILURE(db, "Cannot use universe as domain symbol p",
                 fromSlices(data, {i, nullptr}, {i, db.universe()}, cells.data(), {3, 9}));
  EXPECT_FAILURE(db, "Zero sized dimension 2",
                 fromSlices(data, {i, nullptr}, {i, empty}, cells.data(), {3, 0}));
}

TEST_F(SlicesToSymbol, failsOnAFullDomainWithALabelNumberThatNoLabelHas) {
  putInSetByNumber(db, i, {99});
  void* const symbol = db.addParameter("q");
  EXPECT_UNEXPECTED(db, "ztbDenseArraySlicesToSymbol",
                    fromSlices(symbol, {i}, {i}, cells.data(), {4}));
  EXPECT_EQ(0, db.recordCount(symbol));
}

TEST_F(SlicesToSymbol, passesOverLabelNumbersOfASliceThatNoLabelHas) {
  void* const odd = addSetOf(db, "odd", {"b"});
  putInSetByNumber(db, odd, {-3});
  putInSetByNumber(db, odd, {99});
  void* const symbol = db.addParameter("q");
  EXPECT_SUCCESS(db, fromSlices(symbol, {odd}, {i}, cells.data(), {3}));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 12}}), db.rows(symbol));
}

}  // namespace
}  // namespace ztbtest
