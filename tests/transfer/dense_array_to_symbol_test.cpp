// A whole cube into the records of a set or parameter.
#include <limits>

#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class DenseArrayToSymbol : public ArrayTest {
 protected:
  // A symbol with one record, which an emptied symbol has lost.
  void* occupied(int type, int dim = 1) {
    void* const symbol = db.add("occupied", dim, type);
    db.put(symbol, Keys(Labels(static_cast<std::size_t>(dim), "old")));
    return symbol;
  }
};

TEST_F(DenseArrayToSymbol, makesARecordOfEveryCellForAParameterZerosToo) {
  void* const data = occupied(ZTB_PARAMETER, 2);
  const Doubles cells = {11, 0, 0, 22, -0.0, 32};
  EXPECT_SUCCESS(db, fromDense(data, {i, j}, cells.data(), {3, 2}));
  EXPECT_EQ((std::vector<Row>{{{"a", "x"}, 11},
                              {{"a", "y"}, 0},
                              {{"b", "x"}, 0},
                              {{"b", "y"}, 22},
                              {{"c", "x"}, -0.0},
                              {{"c", "y"}, 32}}),
            db.rows(data));
  EXPECT_EQ(bitsOf(-0.0), bitsOf(storedLevels(db, data)[4]));
}

TEST_F(DenseArrayToSymbol, makesARecordOfEveryCellThatIsNotZeroForASet) {
  void* const set = occupied(ZTB_SET, 2);
  const Integers cells = {0, 3, -7, 0, 0, 1};
  EXPECT_SUCCESS(db, fromDense(set, {i, j}, cells.data(), {3, 2}));
  std::vector<std::pair<Labels, double>> records;
  const Record record = db.first(set);
  do {
    int keys[2];
    double text = 0;
    ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, record, 2, keys, &text));
    records.emplace_back(db.labels(record, 2), text);
  } while (lib().c__ztbrecordmovenext(db, record) == 1);
  EXPECT_EQ(
      (std::vector<std::pair<Labels, double>>{{{"a", "y"}, 3}, {{"b", "x"}, -7}, {{"c", "y"}, 1}}),
      records);
}

TEST_F(DenseArrayToSymbol, takesTheCellsOfASetAsTextNumbers) {
  const Record worded = db.put(db.addSet("worded"), {"a"});
  ASSERT_EQ(1, lib().c__ztbsetelemtext(db, worded, "first text"));
  void* const set = db.addSet("s");
  const Integers cells = {0, 1, 0};
  EXPECT_SUCCESS(db, fromDense(set, {i}, cells.data(), {3}));
  EXPECT_EQ("first text", db.elementText(db.record(set, {"b"})));
}

TEST_F(DenseArrayToSymbol, walksThreePositionsWithTheLastOneFastest) {
  void* const k = addSetOf(db, "k", {"m", "n"});
  void* const data = db.addParameter("p", 3);
  Doubles cells(12);
  for (std::size_t n = 0; n < cells.size(); ++n) {
    cells[n] = static_cast<double>(n);
  }
  EXPECT_SUCCESS(db, fromDense(data, {j, i, k}, cells.data(), {2, 3, 2}));
  EXPECT_EQ(12, db.recordCount(data));
  EXPECT_EQ(0, db.level(db.record(data, {"x", "a", "m"})));
  EXPECT_EQ(1, db.level(db.record(data, {"x", "a", "n"})));
  EXPECT_EQ(3, db.level(db.record(data, {"x", "b", "n"})));
  EXPECT_EQ(10, db.level(db.record(data, {"y", "c", "m"})));
  EXPECT_EQ(11, db.level(db.record(data, {"y", "c", "n"})));
}

TEST_F(DenseArrayToSymbol, takesOneDomainAtTwoPositions) {
  void* const data = db.addParameter("p", 2);
  const Doubles cells = {1, 2, 3, 4};
  EXPECT_SUCCESS(db, fromDense(data, {j, j}, cells.data(), {2, 2}));
  EXPECT_EQ((std::vector<Row>{{{"x", "x"}, 1}, {{"x", "y"}, 2}, {{"y", "x"}, 3}, {{"y", "y"}, 4}}),
            db.rows(data));
}

TEST_F(DenseArrayToSymbol, refusesNoSymbolTheUniverseAndAScalarWithTheRecordKept) {
  void* const scalar = db.addParameter("scalar", 0);
  db.put(scalar, {}, 5);
  const Doubles cells = {1, 2, 3};
  EXPECT_FAILURE(db, "Empty symbol pointer", fromDense(nullptr, {i}, cells.data(), {3}));
  EXPECT_FAILURE(db, "Can't map universe", fromDense(db.universe(), {i}, cells.data(), {3}));
  EXPECT_FAILURE(db, "Can't map scalars", fromDense(scalar, {i}, cells.data(), {3}));
  EXPECT_EQ(5, db.level(db.first(scalar)));
}

TEST_F(DenseArrayToSymbol, aVariableAnEquationAndAnAliasAreRefusedAndHaveLostTheirRecords) {
  const Doubles cells = {1, 2, 3};
  for (const auto& [name, type] : {std::pair{"v", ZTB_VARIABLE}, std::pair{"e", ZTB_EQUATION}}) {
    void* const symbol = db.add(name, 1, type);
    db.put(symbol, {"old"});
    EXPECT_FAILURE(db, std::string("Copy into var/equ symbol ") + name + " not possible",
                   fromDense(symbol, {nullptr}, cells.data(), {3}));
    EXPECT_EQ(0, db.recordCount(symbol));
  }
  EXPECT_FAILURE(db, "Copy into var/equ symbol ali not possible",
                 fromDense(db.addAlias("ali", i), {nullptr}, cells.data(), {3}));
}

TEST_F(DenseArrayToSymbol, aRefusedDomainLeavesTheSymbolEmpty) {
  void* const data = occupied(ZTB_PARAMETER);
  const Doubles cells = {1, 2, 3};
  EXPECT_FAILURE(db, "Cube dimension 1 is 2 while card(i) is 3.",
                 fromDense(data, {i}, cells.data(), {2}));
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(DenseArrayToSymbol, checksDomainSizeAndEmptinessPositionByPosition) {
  void* const data = db.addParameter("p", 2);
  void* const empty = db.addSet("empty");
  const Doubles cells(9);
  EXPECT_FAILURE(db, "Zero sized dimension 1",
                 fromDense(data, {empty, nullptr}, cells.data(), {0, 2}));
  EXPECT_FAILURE(db, "Cube dimension 1 is 0 while card(i) is 3.",
                 fromDense(data, {i, nullptr}, cells.data(), {0, 2}));
  EXPECT_FAILURE(db, "No domain symbol handle specified for symbol p",
                 fromDense(data, {i, nullptr}, cells.data(), {3, 0}));
  EXPECT_FAILURE(db, "Zero sized dimension 2", fromDense(data, {i, empty}, cells.data(), {3, 0}));
}

TEST_F(DenseArrayToSymbol, aSetAsItsOwnDomainIsEmptyWhenItIsCounted) {
  const Integers cells = {1, 1, 1};
  EXPECT_FAILURE(db, "Cube dimension 1 is 3 while card(i) is 0.",
                 fromDense(i, {i}, cells.data(), {3}));
}

TEST_F(DenseArrayToSymbol, storesTheCallersSpecialValuesAsTheLibrarysOwn) {
  spellSpecialValues({-1, -2, -3, -4, -5});
  void* const k = addSetOf(db, "k", {"1", "2", "3", "4", "5", "6"});
  void* const data = db.addParameter("p");
  const Doubles cells = {-1, -2, -3, -4, -5, -6};
  EXPECT_SUCCESS(db, fromDense(data, {k}, cells.data(), {6}));
  const Doubles stored = storedLevels(db, data);
  EXPECT_EQ(undefinedBits, bitsOf(stored[0]));
  EXPECT_EQ(notAvailableBits, bitsOf(stored[1]));
  EXPECT_EQ(plusInfinityBits, bitsOf(stored[2]));
  EXPECT_EQ(minusInfinityBits, bitsOf(stored[3]));
  EXPECT_EQ(epsilonBits, bitsOf(stored[4]));
  EXPECT_EQ(-6, stored[5]);
}

TEST_F(DenseArrayToSymbol, storesZerosAsEpsilonWhenTheCallerSpellsItSo) {
  spellSpecialValues({doubleOf(undefinedBits), doubleOf(notAvailableBits),
                      doubleOf(plusInfinityBits), doubleOf(minusInfinityBits), 0.0});
  void* const data = db.addParameter("p");
  const Doubles cells = {0.0, -0.0};
  EXPECT_SUCCESS(db, fromDense(data, {j}, cells.data(), {2}));
  EXPECT_EQ(epsilonBits, bitsOf(storedLevels(db, data)[0]));
  EXPECT_EQ(bitsOf(-0.0), bitsOf(storedLevels(db, data)[1])) << "the bits are compared";
}

TEST_F(DenseArrayToSymbol, doesNotMapTheCellsOfASet) {
  spellSpecialValues({1, 2, 3, 4, 5});
  void* const set = db.addSet("s");
  const Integers cells = {1, 5};
  EXPECT_SUCCESS(db, fromDense(set, {j}, cells.data(), {2}));
  double text = 0;
  int key = 0;
  ASSERT_EQ(1, lib().c__ztbsetspecialvalues(db, (Doubles{1e300, 1, 2, 3, 4}).data()));
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, db.first(set), 1, &key, &text));
  EXPECT_EQ(1, text);
}

TEST_F(DenseArrayToSymbol, keepsTheNumbersOfADomainThatNoLabelHas) {
  void* const odd = db.addSet("odd");
  putInSetByNumber(db, odd, {99});
  void* const data = db.addParameter("p");
  const Doubles cells = {4};
  EXPECT_SUCCESS(db, fromDense(data, {odd}, cells.data(), {1}));
  int key = 0;
  double value = 0;
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, db.first(data), 1, &key, &value));
  EXPECT_EQ(99, key);
  EXPECT_EQ(4, value);
}

}  // namespace
}  // namespace ztbtest
