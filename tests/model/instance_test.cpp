// A model instance: bounds, sides, views, the linear form of products, what a solver sees and
// leaves.
#include "providers/model/instance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using lomu::ColumnKind;
using lomu::DrivenKind;
using lomu::Instance;
using lomu::kInfinity;
using lomu::ModelData;
using lomu::ModelType;
using lomu::Outcome;
using lomu::Position;
using lomu::RowType;
using lomu::SolverProblem;
using lomu::SolverResult;
using testing::DoubleNear;
using testing::ElementsAre;

// max 3 x + 2 y + 5, x + y <= 4 from 1 on, x - y >= -2, x in 0..3, y >= 0 and integer
ModelData smallModel() {
  ModelData data;
  data.maximize = true;
  data.objectiveConstant = 5;
  data.columns = {{"x", ColumnKind::continuous, 0, 3}, {"y", ColumnKind::integer, 0, kInfinity}};
  data.rows.push_back({"sum", RowType::lessOrEqual, 4, 3});
  data.rows.push_back({"gap", RowType::greaterOrEqual, -2, 0});
  data.terms = {{0, 0, 3}, {0, 1, 2}, {1, 0, 1}, {2, 1, -1}, {1, 1, 0.5}, {1, 1, 0.5}, {2, 0, 1}};
  return data;
}

// min p * x + x, x * q >= 6, with p and q standing still at 2 and 3
ModelData productModel() {
  ModelData data;
  data.columns = {{"p_var", ColumnKind::continuous, 2, 2},
                  {"q_var", ColumnKind::continuous, 3, 3},
                  {"x", ColumnKind::continuous, 0, 10}};
  data.rows.push_back({"need", RowType::greaterOrEqual, 6, 0});
  data.terms = {{0, 2, 1}};
  data.products = {{0, 0, 2, 1}, {1, 2, 1, 1}};
  return data;
}

std::vector<double> copied(const double* values, int count) {
  return {values, values + count};
}

TEST(Instance, StartsAtItsBounds) {
  ModelData data;
  data.columns = {{"fixed", ColumnKind::continuous, 7, 7},
                  {"above", ColumnKind::continuous, 2, 9},
                  {"below", ColumnKind::continuous, -9, -2},
                  {"free", ColumnKind::continuous, -kInfinity, kInfinity}};
  Instance instance(data);
  EXPECT_EQ(instance.column(0).level, 7);
  EXPECT_EQ(instance.column(1).level, 2);
  EXPECT_EQ(instance.column(2).level, -2);
  EXPECT_EQ(instance.column(3).level, 0);
  EXPECT_EQ(instance.modelStatus(), 13);
  EXPECT_EQ(instance.solveStatus(), 13);
}

TEST(Instance, KeepsItsOwnBoundsBesideTheAlternativeOnes) {
  Instance instance(smallModel());
  instance.setAlternativeUpper(0, 1);
  instance.setAlternativeLower(1, -4);
  EXPECT_EQ(instance.upper(0), 3);
  instance.useAlternativeBounds(true);
  EXPECT_EQ(instance.upper(0), 1);
  EXPECT_EQ(instance.lower(0), 0);
  EXPECT_EQ(instance.lower(1), -4);
  instance.useAlternativeBounds(false);
  EXPECT_EQ(instance.lower(1), 0);
}

TEST(Instance, SpeaksOfInfinityAsItWasTold) {
  Instance instance(smallModel());
  instance.setPlusInfinity(1e30);
  instance.setMinusInfinity(-1e30);
  EXPECT_EQ(instance.upper(1), 1e30);
  instance.setAlternativeLower(1, -2e30);
  instance.setAlternativeUpper(0, 1e30);
  instance.useAlternativeBounds(true);
  EXPECT_EQ(instance.lower(1), -1e30);
  const SolverProblem& problem = instance.solverProblem();
  EXPECT_EQ(problem.lower[1], -kInfinity);
  EXPECT_EQ(problem.upper[0], kInfinity);
}

TEST(Instance, GivesASolverAMinimizationWithoutTheObjectiveRow) {
  Instance instance(smallModel());
  const SolverProblem& problem = instance.solverProblem();
  EXPECT_EQ(problem.columnCount, 2);
  EXPECT_EQ(problem.rowCount, 2);
  EXPECT_THAT(copied(problem.cost, 2), ElementsAre(-3, -2));
  EXPECT_THAT(copied(problem.rowLower, 2), ElementsAre(1, -2));
  EXPECT_THAT(copied(problem.rowUpper, 2), ElementsAre(4, kInfinity));
  EXPECT_EQ(problem.start[2], 4);
  EXPECT_THAT(copied(problem.value, 4), ElementsAre(1, 1, 1, -1));
  EXPECT_EQ(problem.isInteger[0], 0);
  EXPECT_EQ(problem.isInteger[1], 1);
  EXPECT_TRUE(problem.hasIntegers);
}

// Only products let coefficients change: with a factor's level, or where linearity is forced.
TEST(Instance, TellsASolverWhenCoefficientsMayHaveChanged) {
  Instance linear(smallModel());
  const auto number = linear.solverProblem().coefficientsAsOf;
  EXPECT_NE(number, 0U);
  std::vector<double> offset(3);
  ASSERT_TRUE(linear.linearize(offset.data(), true));
  linear.forceLinear(true);
  EXPECT_EQ(linear.solverProblem().coefficientsAsOf, number);
  EXPECT_THAT(copied(linear.solverProblem().cost, 2), ElementsAre(-3, -2));
  EXPECT_THAT(copied(linear.solverProblem().value, 4), ElementsAre(1, 1, 1, -1));

  Instance withProducts(productModel());
  const auto before = withProducts.solverProblem().coefficientsAsOf;
  EXPECT_NE(withProducts.solverProblem().coefficientsAsOf, before);
}

// Of smallModel, one carrier is the cost of x, another the coefficient of x in sum.
TEST(Instance, TellsCostsFromOtherCoefficientsThatAreDriven) {
  ModelData data = smallModel();
  const auto x = static_cast<int>(data.columns.size());
  data.columns.push_back({"cost_var", ColumnKind::continuous, 0, 0});
  data.columns.push_back({"entry_var", ColumnKind::continuous, 1, 1});
  Instance instance(
      data, {2, {{DrivenKind::coefficient, x, 0, 0}, {DrivenKind::coefficient, x + 1, 1, 0}}});
  const SolverProblem& problem = instance.solverProblem();
  const auto coefficients = problem.coefficientsAsOf;
  const auto matrix = problem.matrixAsOf;
  EXPECT_NE(matrix, 0U);
  const auto drive = [&](int carrier, double value) {
    instance.setAlternativeLower(carrier, value);
    instance.setAlternativeUpper(carrier, value);
    instance.solverProblem();
  };
  drive(x, 7);
  EXPECT_EQ(problem.cost[0], -7);
  EXPECT_NE(problem.coefficientsAsOf, coefficients);
  EXPECT_EQ(problem.matrixAsOf, matrix);
  drive(x + 1, 9);
  EXPECT_EQ(problem.value[0], 9);
  EXPECT_EQ(problem.cost[0], -7);
  EXPECT_NE(problem.matrixAsOf, matrix);
}

TEST(Instance, ARangeMovesWithItsRightHandSide) {
  Instance instance(smallModel());
  instance.setAlternativeRhs(1, 10);
  instance.useAlternativeRhs(true);
  const SolverProblem& problem = instance.solverProblem();
  EXPECT_EQ(problem.rowLower[0], 7);
  EXPECT_EQ(problem.rowUpper[0], 10);
  EXPECT_EQ(instance.rhs(1), 4) << "readers see the row's own side";
}

TEST(Instance, TheRightHandSideOfTheObjectiveIsItsConstantTurned) {
  Instance instance(smallModel());
  EXPECT_EQ(instance.rhs(0), -5);
  EXPECT_EQ(instance.rowType(0), RowType::free);
}

TEST(Instance, RestoresAViewOnceAndOnlyItsOwn) {
  Instance instance(smallModel());
  instance.setAlternativeUpper(0, 1);
  void* view = instance.storeView();
  instance.useAlternativeBounds(true);
  instance.setPlusInfinity(1e20);
  instance.restoreView(&instance);
  EXPECT_EQ(instance.upper(0), 1);
  instance.restoreView(view);
  EXPECT_EQ(instance.upper(0), 3);
  EXPECT_EQ(instance.upper(1), kInfinity);
  instance.useAlternativeBounds(true);
  instance.restoreView(view);
  EXPECT_EQ(instance.upper(0), 1);
}

TEST(Instance, IsLinearWhileAFactorOfEachProductStandsStill) {
  Instance instance(productModel());
  EXPECT_EQ(instance.type(), ModelType::linear);
  instance.setAlternativeUpper(0, 5);
  EXPECT_EQ(instance.type(), ModelType::linear);
  instance.useAlternativeBounds(true);
  EXPECT_EQ(instance.type(), ModelType::quadratic);
  instance.forceLinear(true);
  EXPECT_EQ(instance.type(), ModelType::quadratic) << "the switch alone makes nothing linear";
  EXPECT_EQ(instance.shownType(), ModelType::linear);
  instance.forceLinear(false);
  EXPECT_EQ(instance.shownType(), ModelType::quadratic);

  ModelData data = productModel();
  data.columns[2].kind = ColumnKind::integer;
  EXPECT_EQ(Instance(data).type(), ModelType::mixedInteger);
  data.columns[0].upper = 3;
  Instance withIntegers(data);
  EXPECT_EQ(withIntegers.type(), ModelType::mixedIntegerQuadratic);
  withIntegers.forceLinear(true);
  EXPECT_EQ(withIntegers.shownType(), ModelType::mixedInteger);
}

TEST(Instance, TellsTheTypeThatItsAlternativeBoundsMake) {
  Instance instance(productModel());
  instance.setAlternativeUpper(0, 5);
  EXPECT_EQ(instance.alternativeType(), ModelType::quadratic);
  EXPECT_EQ(instance.type(), ModelType::linear);
  instance.setAlternativeUpper(0, 2);
  EXPECT_EQ(instance.alternativeType(), ModelType::linear);
}

// As a failed solve leaves them: linearity forced, right-hand sides shifted.
TEST(Instance, SwitchesLeftOnDoNotCountOnceAProductMoves) {
  Instance instance(productModel());
  std::vector<double> offset(2);
  ASSERT_TRUE(instance.linearize(offset.data(), true));
  instance.setAlternativeRhs(1, 99);
  instance.useAlternativeRhs(true);
  instance.forceLinear(true);
  EXPECT_EQ(instance.solverProblem().rowLower[0], 99);
  instance.setAlternativeUpper(1, 5);
  instance.useAlternativeBounds(true);
  EXPECT_EQ(instance.solverProblem().productCount, 2);
  EXPECT_EQ(instance.solverProblem().rowLower[0], 6);
  EXPECT_THAT(copied(instance.solverProblem().value, 2), ElementsAre(0, 0));
  instance.forceLinear(false);
  EXPECT_EQ(instance.solverProblem().rowLower[0], 99) << "an alternative of its own";
}

TEST(Instance, LinearizesProductsAtThePresentLevels) {
  Instance instance(productModel());
  instance.column(2).level = 4;
  std::vector<double> offset(2, -1);
  ASSERT_TRUE(instance.linearize(offset.data(), true));
  // p x at (2, 4) is 4 p + 2 x - 8; x q at (4, 3) is 3 x + 4 q - 12.
  EXPECT_THAT(offset, ElementsAre(-8, -12));
  EXPECT_EQ(instance.solverProblem().productCount, 2);
  instance.forceLinear(true);
  const SolverProblem& problem = instance.solverProblem();
  EXPECT_EQ(problem.productCount, 0);
  EXPECT_THAT(copied(problem.cost, 3), ElementsAre(4, 0, 3));
  EXPECT_THAT(copied(problem.value, 2), ElementsAre(4, 3));

  instance.column(2).level = 0;
  ASSERT_TRUE(instance.linearize(offset.data(), false));
  EXPECT_THAT(offset, ElementsAre(0, 0));
  EXPECT_EQ(instance.solverProblem().cost[0], 4) << "changed without update";
}

TEST(Instance, TakesLevelsIntoTheirBoundsForTheGradient) {
  Instance instance(productModel());
  instance.column(2).level = 40;
  std::vector<double> offset(2);
  instance.linearize(offset.data(), true);
  EXPECT_THAT(offset, ElementsAre(-20, -30));
}

TEST(Instance, HandsOutSetsInTheOrderOfTheirWeights) {
  ModelData data = smallModel();
  data.columns[0].semiContinuous = true;
  data.columns[0].lower = 2;
  data.columns[1].kind = ColumnKind::continuous;
  data.sets = {{"s", 2, {{1, 7.5}, {0, 3}}}, {"t", 1, {{0, 1}}}};
  Instance instance(data);
  EXPECT_EQ(instance.type(), ModelType::mixedInteger);
  EXPECT_EQ(instance.column(0).level, 0) << "0 is allowed beside the bounds";
  const SolverProblem& problem = instance.solverProblem();
  EXPECT_EQ(problem.hasIntegers, 1);
  EXPECT_EQ(problem.isSemiContinuous[0], 1);
  EXPECT_EQ(problem.isSemiContinuous[1], 0);
  ASSERT_EQ(problem.setCount, 2);
  EXPECT_EQ(problem.sets[0].kind, 2);
  EXPECT_EQ(problem.sets[0].first, 0);
  EXPECT_EQ(problem.sets[0].count, 2);
  EXPECT_EQ(problem.sets[1].kind, 1);
  EXPECT_EQ(problem.sets[1].first, 2);
  EXPECT_EQ(problem.sets[1].count, 1);
  EXPECT_THAT(std::vector<int>(problem.setColumns, problem.setColumns + 3), ElementsAre(0, 1, 0));
  EXPECT_THAT(copied(problem.setWeights, 3), ElementsAre(3, 7.5, 1));
}

TEST(Instance, HasNoSemiContinuousColumnsUnlessTheModelHas) {
  Instance instance(smallModel());
  EXPECT_EQ(instance.solverProblem().isSemiContinuous, nullptr);
  EXPECT_EQ(instance.solverProblem().setCount, 0);
}

TEST(Instance, TakesZeroOfASemiContinuousColumnForWithinBounds) {
  ModelData data = smallModel();
  data.columns[0].semiContinuous = true;
  data.columns[0].lower = 2;
  Instance instance(data);
  SolverResult result;
  result.outcome = Outcome::optimal;
  result.hasPoint = true;
  result.level = {0, 1};
  result.position = {Position::basic, Position::basic};
  result.rowMarginal = {0, 0};
  result.rowPosition = {Position::basic, Position::basic};
  instance.takeResult(result);
  EXPECT_EQ(instance.column(0).condition, 0);
  result.level = {1, 1};
  instance.takeResult(result);
  EXPECT_EQ(instance.column(0).condition, 2);
}

// A factor that may be 0 or 2 does not stand still.
TEST(Instance, IsQuadraticWithAFactorThatMayBeZero) {
  ModelData data = productModel();
  data.columns[0].semiContinuous = true;
  EXPECT_EQ(Instance(data).type(), ModelType::mixedIntegerQuadratic);
}

TEST(Instance, CountsAnOffsetThatIsNotFinite) {
  ModelData data = productModel();
  data.columns[2].upper = kInfinity;
  Instance instance(data);
  instance.column(2).level = kInfinity;
  std::vector<double> offset(2);
  EXPECT_FALSE(instance.linearize(offset.data(), false));
}

TEST(Instance, WorksOutRowsAndMarginalsFromWhatASolverLeaves) {
  // max 3x + 2y + 5: x at its bound 3, y basic at 1 on sum. The row's marginal is 2, x's is 3 - 2
  // = 1.
  Instance instance(smallModel());
  SolverResult result;
  result.outcome = Outcome::optimal;
  result.hasPoint = true;
  result.iterations = 7;
  result.level = {3, 1};
  result.position = {Position::atUpper, Position::basic};
  result.rowMarginal = {-2, 0};
  result.rowPosition = {Position::atUpper, Position::basic};
  instance.takeResult(result);
  EXPECT_EQ(instance.row(0).level, 16);
  EXPECT_EQ(instance.row(0).marginal, 0);
  EXPECT_EQ(instance.row(1).level, 4);
  EXPECT_EQ(instance.row(1).marginal, 2);
  EXPECT_EQ(instance.row(2).level, 2);
  EXPECT_EQ(instance.column(0).marginal, 1);
  EXPECT_EQ(instance.column(1).marginal, 0);
  EXPECT_EQ(instance.column(0).status, 1);
  EXPECT_EQ(instance.modelStatus(), 1);
  EXPECT_EQ(instance.solveStatus(), 1);
  EXPECT_EQ(instance.iterations(), 7);
}

TEST(Instance, MarginalsOfPinnedFactorsAreThoseOfTheSolution) {
  // min p x + x with x = 2 from need (q x >= 6): d/dp = x = 2, d/dq = -(p + 1) x / q = -2.
  Instance instance(productModel());
  SolverResult result;
  result.outcome = Outcome::optimal;
  result.hasPoint = true;
  result.level = {2, 3, 2};
  result.position = {Position::atLower, Position::atLower, Position::basic};
  result.rowMarginal = {1};  // (p + 1) / q
  result.rowPosition = {Position::atLower};
  instance.takeResult(result);
  EXPECT_EQ(instance.row(0).level, 6);
  EXPECT_EQ(instance.row(1).level, 6);
  EXPECT_EQ(instance.column(0).marginal, 2);
  EXPECT_EQ(instance.column(1).marginal, -2);
}

TEST(Instance, MarksWhatIsOutsideItsBounds) {
  Instance instance(smallModel());
  SolverResult result;
  result.outcome = Outcome::iterationLimit;
  result.hasPoint = true;
  result.level = {3.5, 5};
  result.position.resize(2, Position::basic);
  result.rowMarginal.resize(2, 0);
  result.rowPosition.resize(2, Position::basic);
  instance.takeResult(result);
  EXPECT_EQ(instance.column(0).condition, 2);
  EXPECT_EQ(instance.column(1).condition, 0);
  EXPECT_EQ(instance.row(1).condition, 2);
  EXPECT_EQ(instance.row(2).condition, 0);
  EXPECT_EQ(instance.modelStatus(), 6);
  EXPECT_EQ(instance.solveStatus(), 2);
}

struct StatusCase {
  Outcome outcome;
  bool hasPoint;
  int model;
  int solve;
};

class Statuses : public testing::TestWithParam<StatusCase> {};

TEST_P(Statuses, AreToldApartAndKeepThePointBefore) {
  Instance instance(smallModel());
  instance.column(0).level = 2;
  SolverResult result;
  result.outcome = GetParam().outcome;
  result.hasPoint = GetParam().hasPoint;
  result.level = {1, 1};
  result.position.resize(2, Position::basic);
  result.rowMarginal.resize(2, 0);
  result.rowPosition.resize(2, Position::basic);
  instance.takeResult(result);
  EXPECT_EQ(instance.modelStatus(), GetParam().model);
  EXPECT_EQ(instance.solveStatus(), GetParam().solve);
  EXPECT_EQ(instance.column(0).level, GetParam().hasPoint ? 1 : 2);
}

INSTANTIATE_TEST_SUITE_P(All, Statuses,
                         testing::Values(StatusCase{Outcome::optimal, true, 1, 1},
                                         StatusCase{Outcome::locallyOptimal, true, 2, 1},
                                         StatusCase{Outcome::unbounded, false, 3, 1},
                                         StatusCase{Outcome::infeasible, false, 4, 1},
                                         StatusCase{Outcome::iterationLimit, true, 6, 2},
                                         StatusCase{Outcome::iterationLimit, false, 13, 2},
                                         StatusCase{Outcome::timeLimit, true, 6, 3},
                                         StatusCase{Outcome::timeLimit, false, 13, 3},
                                         StatusCase{Outcome::terminated, false, 13, 4},
                                         StatusCase{Outcome::failed, false, 13, 13}));

}  // namespace
