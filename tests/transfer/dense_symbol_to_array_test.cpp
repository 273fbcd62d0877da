// A symbol that fills its cube, into the cube: record by record, without a look at labels.
#include <climits>

#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class DenseSymbolToArray : public ArrayTest {
 protected:
  void* filledParameter() {
    void* const data = db.addParameter("p", 2);
    db.put(data, {"b", "y"}, 22);
    db.put(data, {"a", "x"}, 11);
    db.put(data, {"a", "y"}, 12);
    db.put(data, {"b", "x"}, 21);
    return data;
  }
};

TEST_F(DenseSymbolToArray, putsTheRecordsIntoTheCellsInTheirOrder) {
  void* const data = filledParameter();
  Cube<double> cube(4);
  EXPECT_SUCCESS(db, dense(cube, {2, 2}, data));
  EXPECT_EQ((Doubles{11, 12, 21, 22}), cube.cells());
  EXPECT_EQ(4, db.recordCount(data));
}

TEST_F(DenseSymbolToArray, looksAtTheCubesSizeAndNotAtItsShape) {
  Cube<double> cube(4);
  EXPECT_SUCCESS(db, dense(cube, {1, 4}, filledParameter()));
  EXPECT_EQ((Doubles{11, 12, 21, 22}), cube.cells());
}

TEST_F(DenseSymbolToArray, takesTheChosenFieldOfAVariable) {
  void* const variable = db.addVariable("v");
  putByNumber(db, variable, {db.uel("a")}, {1, 2, 3, 4, 5});
  putByNumber(db, variable, {db.uel("b")}, {10, 20, 30, 40, 50});
  for (int field = 0; field < 5; ++field) {
    Cube<double> cube(2);
    EXPECT_SUCCESS(db, dense(cube, {2}, variable, field));
    EXPECT_EQ((Doubles{field + 1.0, 10 * (field + 1.0)}), cube.cells());
  }
}

TEST_F(DenseSymbolToArray, takesFieldZeroOfAParameterWhateverIsAskedFor) {
  void* const data = filledParameter();
  for (const int field : {7, -1, 4}) {
    Cube<double> cube(4);
    EXPECT_SUCCESS(db, dense(cube, {2, 2}, data, field));
    EXPECT_EQ((Doubles{11, 12, 21, 22}), cube.cells());
  }
}

TEST_F(DenseSymbolToArray, takesFieldZeroOfAnyTypeWithOneSlot) {
  void* const symbol = db.add("odd", 1, -1);
  db.put(symbol, {"a"}, 7);
  db.put(symbol, {"b"}, 8);
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, dense(cube, {2}, symbol, 4));
  EXPECT_EQ((Doubles{7, 8}), cube.cells());
}

TEST_F(DenseSymbolToArray, refusesFieldsThatAVariableOrEquationDoesNotHave) {
  void* const variable = db.addVariable("v");
  void* const equation = db.addEquation("e");
  db.put(variable, {"a"});
  db.put(equation, {"a"});
  Cube<double> cube(1);
  EXPECT_FAILURE(db, "Field -1 is out of bounds [0,4]", dense(cube, {1}, variable, -1));
  EXPECT_FAILURE(db, "Field 5 is out of bounds [0,4]", dense(cube, {1}, variable, 5));
  EXPECT_FAILURE(db, "Field 5 is out of bounds [0,4]", dense(cube, {1}, equation, 5));
  EXPECT_TRUE(cube.untouched());
}

TEST_F(DenseSymbolToArray, numbersTheCellsOfASetFromOneWhateverItHolds) {
  void* const set = db.addSet("s");
  for (const char* label : {"c", "a", "b"}) {
    const Record record = db.put(set, {label});
    ASSERT_EQ(1, lib().c__ztbsetelemtext(db, record, label));
  }
  Cube<int> cube(3);
  EXPECT_SUCCESS(db, dense(cube, {3}, set, 99));
  EXPECT_EQ((Integers{1, 2, 3}), cube.cells());
}

TEST_F(DenseSymbolToArray, refusesNoSymbolAScalarAndTheUniverse) {
  Cube<double> cube(1);
  EXPECT_FAILURE(db, "Empty symbol pointer", dense(cube, {1}, nullptr));
  EXPECT_FAILURE(db, "Can't map scalars", dense(cube, {1}, db.addParameter("scalar", 0)));
  EXPECT_FAILURE(db, "Can't map universe", dense(cube, {6}, db.universe()));
  EXPECT_TRUE(cube.untouched());
}

TEST_F(DenseSymbolToArray, refusesACubeWithoutCells) {
  void* const data = filledParameter();
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Zero sized cube", dense(cube, {4, 0}, data));
  EXPECT_FAILURE(db, "Zero sized cube", dense(cube, {0, 4}, data));
  EXPECT_FAILURE(db, "Zero sized cube", dense(cube, {0}, db.addParameter("empty")));
}

TEST_F(DenseSymbolToArray, needsExactlyOneRecordForEachCell) {
  void* const data = filledParameter();
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Size of cube 6 and number of record 4 in p do not match",
                 dense(cube, {2, 3}, data));
  EXPECT_FAILURE(db, "Size of cube 2 and number of record 4 in p do not match",
                 dense(cube, {2, 1}, data));
  EXPECT_FAILURE(db, "Size of cube 3 and number of record 0 in empty do not match",
                 dense(cube, {3}, db.addParameter("empty")));
  EXPECT_TRUE(cube.untouched());
}

TEST_F(DenseSymbolToArray, comparesTheSizesBeforeItLooksAtTheField) {
  void* const variable = db.addVariable("v");
  db.put(variable, {"a"});
  Cube<double> cube(1);
  EXPECT_FAILURE(db, "Size of cube 2 and number of record 1 in v do not match",
                 dense(cube, {2}, variable, 9));
}

TEST_F(DenseSymbolToArray, countsTheCellsInSixtyFourBits) {
  void* const data = filledParameter();
  Cube<double> cube(4);
  EXPECT_FAILURE(db, "Size of cube 4294967296 and number of record 4 in p do not match",
                 dense(cube, {65536, 65536}, data));
  EXPECT_FAILURE(db, "Size of cube 4294967300 and number of record 4 in p do not match",
                 dense(cube, {4, 1073741825}, data));
}

TEST_F(DenseSymbolToArray, refusesACubeOfMoreCellsThanCanBeCounted) {
  void* const data = db.addParameter("q", 4);
  db.put(data, {"a", "a", "a", "a"}, 1);
  Cube<double> cube(1);
  EXPECT_UNEXPECTED(db, "ztbDenseSymbolToDenseArray",
                    dense(cube, {INT_MAX, INT_MAX, INT_MAX, INT_MAX}, data));
  EXPECT_FAILURE(db, "Zero sized cube", dense(cube, {INT_MAX, INT_MAX, INT_MAX, 0}, data));
}

TEST_F(DenseSymbolToArray, findsNoRecordsInAnAlias) {
  Cube<double> cube(3);
  EXPECT_FAILURE(db, "Size of cube 3 and number of record 0 in ali do not match",
                 dense(cube, {3}, db.addAlias("ali", i)));
}

TEST_F(DenseSymbolToArray, givesSpecialValuesAsTheyAreStoredWhenNoMappingIsNeeded) {
  void* const data = db.addParameter("p");
  const std::uint64_t bits[] = {undefinedBits, notAvailableBits, plusInfinityBits,
                                minusInfinityBits, epsilonBits};
  for (int n = 0; n < 5; ++n) {
    putByNumber(db, data, {n + 1}, {doubleOf(bits[n])});
  }
  Cube<double> cube(5);
  EXPECT_SUCCESS(db, dense(cube, {5}, data));
  for (std::size_t n = 0; n < 5; ++n) {
    EXPECT_EQ(bits[n], bitsOf(cube.cells()[n]));
  }
}

TEST_F(DenseSymbolToArray, givesSpecialValuesAsTheCallerSpellsThem) {
  void* const data = db.addParameter("p");
  const std::uint64_t bits[] = {undefinedBits, notAvailableBits, plusInfinityBits,
                                minusInfinityBits, epsilonBits};
  for (int n = 0; n < 5; ++n) {
    putByNumber(db, data, {n + 1}, {doubleOf(bits[n])});
  }
  spellSpecialValues({-1, -2, -3, -4, -5});
  Cube<double> cube(5);
  EXPECT_SUCCESS(db, dense(cube, {5}, data));
  EXPECT_EQ((Doubles{-1, -2, -3, -4, -5}), cube.cells());
}

TEST_F(DenseSymbolToArray, mapsEpsilonAloneWhenOnlyThatDiffers) {
  void* const data = db.addParameter("p");
  putByNumber(db, data, {1}, {doubleOf(epsilonBits)});
  putByNumber(db, data, {2}, {doubleOf(undefinedBits)});
  spellSpecialValues({doubleOf(undefinedBits), doubleOf(notAvailableBits),
                      doubleOf(plusInfinityBits), doubleOf(minusInfinityBits), 0.0});
  Cube<double> cube(2);
  EXPECT_SUCCESS(db, dense(cube, {2}, data));
  EXPECT_EQ((Doubles{0.0, 1e300}), cube.cells());
}

}  // namespace
}  // namespace ztbtest
