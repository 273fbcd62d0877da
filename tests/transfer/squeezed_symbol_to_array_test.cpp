// A symbol into a cube over fewer labels than its domains have.
#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class SqueezedSymbolToArray : public ArrayTest {
 protected:
  SqueezedSymbolToArray() {
    someI = addSetOf(db, "someI", {"a", "c"});
    someJ = addSetOf(db, "someJ", {"y"});
  }

  void* someI;
  void* someJ;
};

TEST_F(SqueezedSymbolToArray, placesRecordsInTheSmallerCube) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "y"}, 12);
  db.put(data, {"c", "y"}, 32);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2, 1}, data, {someI, someJ}, {i, j}));
  EXPECT_EQ(0, dropped);
  EXPECT_EQ((Doubles{12, 32}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, clearsTheCellsWithoutARecord) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"c", "x"}, 31);
  Cube<double> cube(4);
  EXPECT_SUCCESS(db, squeezed(cube, {2, 2}, data, {someI, j}, {i, j}));
  EXPECT_EQ((Doubles{0, 0, 31, 0}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, theFirstRecordOutsideASqueezeDomainEndsTheTransferWithSuccess) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "y"}, 12);
  db.put(data, {"b", "y"}, 22);
  db.put(data, {"b", "x"}, 21);
  db.put(data, {"c", "y"}, 32);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2, 1}, data, {someI, someJ}, {i, j}));
  EXPECT_EQ(1, dropped) << "it counts no further";
  EXPECT_EQ((Doubles{12, 0}), cube.cells()) << "c is behind the record that ended the walk";
}

TEST_F(SqueezedSymbolToArray, theFirstRecordOutsideAFullDomainEndsTheTransferWithSuccess) {
  void* const wide = addSetOf(db, "wide", {"a", "nowhere"});
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1);
  db.put(data, {"nowhere"}, 2);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2}, data, {wide}, {i}));
  EXPECT_EQ(1, dropped) << "the squeeze domain has the label, the full domain lacks it";
  EXPECT_EQ((Doubles{1, 0}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, givesTheRecordsOfASetTheirCellNumbersInTheFullCube) {
  void* const set = db.addSet("s", 2);
  db.put(set, {"a", "y"});
  db.put(set, {"c", "y"});
  Cube<int> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2, 1}, set, {someI, someJ}, {i, j}, 99));
  EXPECT_EQ((Integers{2, 6}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, takesTheChosenFieldAndFieldZeroOfAParameter) {
  void* const variable = db.addVariable("v");
  putByNumber(db, variable, {db.uel("c")}, {1, 2, 3, 4, 5});
  void* const data = db.addParameter("p");
  db.put(data, {"c"}, 7);
  for (int field = 0; field < 5; ++field) {
    Cube<double> cube(2);
    EXPECT_SUCCESS(db, squeezed(cube, {2}, variable, {someI}, {i}, field));
    EXPECT_EQ((Doubles{0, field + 1.0}), cube.cells());
  }
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2}, data, {someI}, {i}, 7));
  EXPECT_EQ((Doubles{0, 7}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, takesOneDomainAtTwoPositions) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "c"}, 13);
  db.put(data, {"c", "c"}, 33);
  Cube<double> cube(4);
  EXPECT_SUCCESS(db, squeezed(cube, {2, 2}, data, {someI, someI}, {i, i}));
  EXPECT_EQ((Doubles{0, 13, 0, 33}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, needsNoCertainSizeOfTheFullDomain) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1);
  Cube<double> cube(3);
  EXPECT_SUCCESS(db, squeezed(cube, {3}, data, {i}, {someI}));
  EXPECT_EQ((Doubles{1, 0, 0}), cube.cells());
  EXPECT_EQ(0, dropped);
}

TEST_F(SqueezedSymbolToArray, knowsNoLabelOfAnAliasAsFullDomain) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2}, data, {someI}, {db.addAlias("ali", i)}));
  EXPECT_EQ(1, dropped);
  EXPECT_EQ((Doubles{0, 0}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, refusesNoSymbolTheUniverseAndAScalarWithTheCubeAsItWas) {
  Cube<double> cube(2);
  EXPECT_FAILURE(db, "Empty symbol pointer", squeezed(cube, {2}, nullptr, {someI}, {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Can't map universe", squeezed(cube, {2}, db.universe(), {someI}, {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Can't map scalars",
                 squeezed(cube, {2}, db.addParameter("s", 0), {someI}, {i}));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SqueezedSymbolToArray, looksAtTheCubesSizeBeforeTheFieldAndAtBothBeforeTheCube) {
  void* const variable = db.addVariable("v");
  Cube<double> cube(2);
  EXPECT_FAILURE(db, "Zero sized cube", squeezed(cube, {0}, variable, {nullptr}, {nullptr}, 9));
  EXPECT_EQ(-1, dropped);
  EXPECT_FAILURE(db, "Field 9 is out of bounds [0,4]",
                 squeezed(cube, {2}, variable, {nullptr}, {nullptr}, 9));
  EXPECT_EQ(-1, dropped);
  EXPECT_TRUE(cube.untouched());
}

TEST_F(SqueezedSymbolToArray, countsTheCellsInThirtyTwoBitsBeforeItTouchesTheCube) {
  void* const data = db.addParameter("wide", 2);
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Zero sized cube",
                 squeezed(cube, {65536, 65536}, data, {nullptr, nullptr}, {nullptr, nullptr}));
  EXPECT_TRUE(cube.untouched());
  EXPECT_EQ(-1, dropped);
}

TEST_F(SqueezedSymbolToArray, clearsAsManyCellsAsThirtyTwoBitsCount) {
  void* const data = db.addParameter("wide", 3);
  Cube<double> cube(4);
  // 2 to the power of 32, and 4, is 4 in 32 bits.
  EXPECT_FAILURE(db, "Cube dimension 1 is 4 while card(i) is 3.",
                 squeezed(cube, {4, 1, 1073741825}, data, {i, j, j}, {i, j, j}));
  EXPECT_EQ((Doubles{0, 0, 0, 0}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, aRefusedDomainLeavesTheCubeCleared) {
  void* const data = db.addParameter("p");
  Cube<double> cube(2);
  EXPECT_FAILURE(db, "Cannot use universe as domain symbol p",
                 squeezed(cube, {2}, data, {someI}, {db.universe()}));
  EXPECT_EQ(-1, dropped);
  EXPECT_EQ((Doubles{0, 0}), cube.cells());
}

TEST_F(SqueezedSymbolToArray, checksTheFullDomainBeforeTheSqueezeDomainAtEachPosition) {
  void* const data = db.addParameter("p", 2);
  void* const wide = db.addSet("wide", 3);
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Domain symbol wide has dimension 3, needs to be 1",
                 squeezed(cube, {2, 1}, data, {nullptr, nullptr}, {wide, nullptr}));
  EXPECT_FAILURE(db, "No domain symbol handle specified for symbol p",
                 squeezed(cube, {2, 1}, data, {nullptr, nullptr}, {i, db.universe()}));
  EXPECT_FAILURE(db, "Cube dimension 1 is 3 while card(someI) is 2.",
                 squeezed(cube, {3, 1}, data, {someI, nullptr}, {i, wide}));
  EXPECT_FAILURE(db, "Cannot use universe as domain symbol p",
                 squeezed(cube, {2, 1}, data, {someI, wide}, {i, db.universe()}));
  EXPECT_FAILURE(db, "Domain symbol wide has dimension 3, needs to be 1",
                 squeezed(cube, {2, 1}, data, {someI, wide}, {i, j}));
  EXPECT_FAILURE(db, "Cube dimension 2 is 2 while card(someJ) is 1.",
                 squeezed(cube, {2, 2}, data, {someI, someJ}, {i, j}));
  EXPECT_EQ(-1, dropped);
}

TEST_F(SqueezedSymbolToArray, failsOnAFullDomainWithALabelNumberThatNoLabelHas) {
  putInSetByNumber(db, i, {99});
  Cube<double> cube(2);
  EXPECT_UNEXPECTED(db, "ztbSparseSymbolToSqzdArray",
                    squeezed(cube, {2}, db.addParameter("p"), {someI}, {i}));
  EXPECT_EQ(-1, dropped);
}

TEST_F(SqueezedSymbolToArray, givesSpecialValuesAsTheCallerSpellsThem) {
  void* const data = db.addParameter("p");
  putByNumber(db, data, {db.uel("a")}, {doubleOf(plusInfinityBits)});
  spellSpecialValues({-1, -2, -3, -4, -5});
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, squeezed(cube, {2}, data, {someI}, {i}));
  EXPECT_EQ((Doubles{-3, 0}), cube.cells());
}

}  // namespace
}  // namespace ztbtest
