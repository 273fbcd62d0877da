// A symbol into a cube by the rank of each label in a domain set.
#include <climits>

#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class SparseSymbolToArray : public ArrayTest {
 protected:
  void* sparseParameter() {
    void* const data = db.addParameter("p", 2);
    db.put(data, {"c", "x"}, 31);
    db.put(data, {"a", "y"}, 12);
    return data;
  }
};

TEST_F(SparseSymbolToArray, placesRecordsByTheRanksOfTheirLabelsAndClearsTheRest) {
  void* const data = sparseParameter();
  Cube<double> cube(6);
  EXPECT_SUCCESS(db, sparse(cube, {3, 2}, data, {i, j}));
  EXPECT_EQ(0, dropped);
  EXPECT_EQ((Doubles{0, 12, 0, 0, 31, 0}), cube.cells());
  EXPECT_EQ(2, db.recordCount(data));
}

TEST_F(SparseSymbolToArray, isRowMajorWithTheLastIndexFastest) {
  void* const two = addSetOf(db, "two", {"t1", "t2"});
  void* const three = addSetOf(db, "three", {"u1", "u2", "u3"});
  void* const four = addSetOf(db, "four", {"v1", "v2", "v3", "v4"});
  void* const data = db.addParameter("p", 3);
  db.put(data, {"t2", "u3", "v4"}, 5);
  db.put(data, {"t2", "u1", "v2"}, 6);
  Cube<double> cube(24);
  EXPECT_SUCCESS(db, sparse(cube, {2, 3, 4}, data, {two, three, four}));
  Doubles expected(24);
  expected[23] = 5;
  expected[13] = 6;
  EXPECT_EQ(expected, cube.cells());
}

TEST_F(SparseSymbolToArray, ranksLabelsByTheRecordsOfTheDomainAndNotByTheirNumbers) {
  void* const some = addSetOf(db, "some", {"y", "b"});
  void* const data = db.addParameter("p");
  db.put(data, {"y"}, 2);
  db.put(data, {"b"}, 1);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, sparse(cube, {2}, data, {some}));
  EXPECT_EQ((Doubles{1, 2}), cube.cells());
}

TEST_F(SparseSymbolToArray, dropsRecordsOutsideADomainAndGoesOn) {
  void* const data = sparseParameter();
  db.put(data, {"a", "nowhere"}, 1);
  db.put(data, {"nowhere", "x"}, 2);
  db.put(data, {"nowhere", "nowhere"}, 3);
  db.put(data, {"z", "y"}, 4);
  Cube<double> cube(6);
  EXPECT_SUCCESS(db, sparse(cube, {3, 2}, data, {i, j}));
  EXPECT_EQ(4, dropped);
  EXPECT_EQ((Doubles{0, 12, 0, 0, 31, 0}), cube.cells());
}

TEST_F(SparseSymbolToArray, numbersThePlacedRecordsOfASetFromOne) {
  void* const set = db.addSet("s", 2);
  db.put(set, {"c", "x"});
  db.put(set, {"b", "nowhere"});
  db.put(set, {"a", "y"});
  db.put(set, {"b", "x"});
  Cube<int> cube(6);
  EXPECT_SUCCESS(db, sparse(cube, {3, 2}, set, {i, j}, 99));
  EXPECT_EQ(1, dropped);
  EXPECT_EQ((Integers{0, 1, 2, 0, 3, 0}), cube.cells());
}

TEST_F(SparseSymbolToArray, takesTheChosenFieldOfAnEquation) {
  void* const equation = db.addEquation("e");
  putByNumber(db, equation, {db.uel("b")}, {1, 2, 3, 4, 5});
  for (int field = 0; field < 5; ++field) {
    Cube<double> cube(3);
    EXPECT_SUCCESS(db, sparse(cube, {3}, equation, {i}, field));
    EXPECT_EQ((Doubles{0, field + 1.0, 0}), cube.cells());
  }
}

TEST_F(SparseSymbolToArray, takesFieldZeroOfAParameterWhateverIsAskedFor) {
  void* const data = sparseParameter();
  Cube<double> cube(6);
  EXPECT_SUCCESS(db, sparse(cube, {3, 2}, data, {i, j}, 7));
  EXPECT_EQ((Doubles{0, 12, 0, 0, 31, 0}), cube.cells());
}

TEST_F(SparseSymbolToArray, givesAnEmptyCubeForAnEmptySymbol) {
  Cube<double> cube(3);
  EXPECT_SUCCESS(db, sparse(cube, {3}, db.addParameter("p"), {i}));
  EXPECT_EQ(0, dropped);
  EXPECT_EQ((Doubles{0, 0, 0}), cube.cells());
}

TEST_F(SparseSymbolToArray, takesOneDomainAtTwoPositionsAgainAndAgain) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "c"}, 1);
  db.put(data, {"c", "b"}, 2);
  for (int repeat = 0; repeat < 3; ++repeat) {
    Cube<double> cube(9);
    EXPECT_SUCCESS(db, sparse(cube, {3, 3}, data, {i, i}));
    EXPECT_EQ((Doubles{0, 0, 1, 0, 0, 0, 0, 2, 0}), cube.cells());
  }
}

TEST_F(SparseSymbolToArray, takesAOneDimensionalParameterAsADomain) {
  void* const weights = db.addParameter("w");
  db.put(weights, {"a"}, 1);
  db.put(weights, {"c"}, 1);
  void* const data = db.addParameter("p");
  db.put(data, {"c"}, 5);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, sparse(cube, {2}, data, {weights}));
  EXPECT_EQ((Doubles{0, 5}), cube.cells());
}

TEST_F(SparseSymbolToArray, takesASetAsItsOwnDomain) {
  Cube<int> cube(3);
  EXPECT_SUCCESS(db, sparse(cube, {3}, i, {i}));
  EXPECT_EQ((Integers{1, 2, 3}), cube.cells());
}

TEST_F(SparseSymbolToArray, refusesNoSymbolTheUniverseAndAScalar) {
  Cube<double> cube(6);
  EXPECT_FAILURE(db, "Empty symbol pointer", sparse(cube, {3}, nullptr, {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Can't map universe", sparse(cube, {3}, db.universe(), {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Can't map scalars", sparse(cube, {3}, db.addParameter("s", 0), {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SparseSymbolToArray, looksAtTheCubesSizeBeforeTheFieldAndAtBothBeforeAnyDomain) {
  void* const variable = db.addVariable("v");
  Cube<double> cube(6);
  EXPECT_FAILURE(db, "Zero sized cube", sparse(cube, {0}, variable, {nullptr}, 9));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Field 9 is out of bounds [0,4]", sparse(cube, {3}, variable, {nullptr}, 9));
  EXPECT_FAILURE(db, "Field -1 is out of bounds [0,4]", sparse(cube, {3}, variable, {nullptr}, -1));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SparseSymbolToArray, checksTheDomainsPositionByPosition) {
  void* const data = sparseParameter();
  Cube<double> cube(9);
  EXPECT_FAILURE(db, "Cube dimension 1 is 2 while card(i) is 3.",
                 sparse(cube, {2, 2}, data, {i, db.universe()}));
  EXPECT_FAILURE(db, "Cannot use universe as domain symbol p",
                 sparse(cube, {3, 2}, data, {i, db.universe()}));
  EXPECT_FAILURE(db, "Cube dimension 2 is 3 while card(j) is 2.",
                 sparse(cube, {3, 3}, data, {i, j}));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SparseSymbolToArray, countsTheCellsInThirtyTwoBits) {
  void* const data = sparseParameter();
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Zero sized cube", sparse(cube, {65536, 65536}, data, {nullptr, nullptr}));
  EXPECT_FAILURE(db, "Zero sized cube", sparse(cube, {INT_MIN, 2}, data, {nullptr, nullptr}));
  EXPECT_FAILURE(db, "Cube dimension 1 is 65537 while card(i) is 3.",
                 sparse(cube, {65537, 65536}, data, {i, j}));
  EXPECT_TRUE(cube.untouched());
  EXPECT_EQ(-1, dropped);
}

TEST_F(SparseSymbolToArray, refusesACubeWhoseCellsThirtyTwoBitsCountBelowZero) {
  void* const rows = db.addSet("rows");
  for (int label = 0; label < 46341; ++label) {
    putInSetByNumber(db, rows, {db.uel(numbered("r", label).c_str())});
  }
  Cube<double> cube(4);
  // 46341 squared is 2147488281, the first square above what a positive number of 32 bits is.
  EXPECT_FAILURE(db,
                 "Unexpected exception in ztbSparseSymbolToDenseArray: a cube of these sizes has "
                 "more cells than can be counted",
                 sparse(cube, {46341, 46341}, sparseParameter(), {rows, rows}));
  EXPECT_FAILURE(db,
                 "Unexpected exception in ztbSparseSymbolToSqzdArray: a cube of these sizes has "
                 "more cells than can be counted",
                 squeezed(cube, {46341, 46341}, db.find("p"), {rows, rows}, {rows, rows}));
  EXPECT_TRUE(cube.untouched());
  EXPECT_FAILURE(db,
                 "Unexpected exception in ztbDenseArrayToSymbol: a cube of these sizes has more "
                 "cells than can be counted",
                 fromDense(db.find("p"), {rows, rows}, cube, {46341, 46341}));
}

TEST_F(SparseSymbolToArray, doesNotKnowLabelNumbersThatNoLabelHas) {
  void* const data = db.addParameter("p");
  putByNumber(db, data, {-5}, {1});
  putByNumber(db, data, {2}, {2});
  putByNumber(db, data, {99}, {3});
  Cube<double> cube(3);
  EXPECT_SUCCESS(db, sparse(cube, {3}, data, {i}));
  EXPECT_EQ(2, dropped);
  EXPECT_EQ((Doubles{2, 0, 0}), cube.cells());
}

TEST_F(SparseSymbolToArray, failsOnADomainWithALabelNumberThatNoLabelHas) {
  putInSetByNumber(db, i, {99});
  Cube<double> cube(4);
  EXPECT_UNEXPECTED(db, "ztbSparseSymbolToDenseArray",
                    sparse(cube, {4}, db.addParameter("p"), {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SparseSymbolToArray, givesSpecialValuesAsTheCallerSpellsThem) {
  void* const data = db.addParameter("p");
  putByNumber(db, data, {db.uel("a")}, {doubleOf(epsilonBits)});
  putByNumber(db, data, {db.uel("c")}, {doubleOf(notAvailableBits)});
  Cube<double> plain(3);
  EXPECT_SUCCESS(db, sparse(plain, {3}, data, {i}));
  EXPECT_EQ(epsilonBits, bitsOf(plain.cells()[0]));
  EXPECT_EQ(notAvailableBits, bitsOf(plain.cells()[2]));
  spellSpecialValues({-1, -2, -3, -4, -5});
  Cube<double> spelt(3);
  EXPECT_SUCCESS(db, sparse(spelt, {3}, data, {i}));
  EXPECT_EQ((Doubles{-5, 0, -2}), spelt.cells()) << "an empty cell is 0 in any spelling";
}

}  // namespace
}  // namespace ztbtest
