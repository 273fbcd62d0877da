// Small linear problems worked by hand, by every solver.
#include <gtest/gtest.h>

#include <string>

#include "tests/solvers/random_model.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::Position;
using lomu::SolverResult;

class Linear : public testing::TestWithParam<const char*> {
 protected:
  SolverResult solve() { return solveFresh(GetParam(), model_, {}); }

  void expectOptimum(double objective) {
    const SolverResult result = solve();
    ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
    EXPECT_TRUE(result.hasPoint);
    EXPECT_NEAR(model_.objective(result.level), objective, 1e-6);
  }
  void expectNoPoint(Outcome outcome) {
    const SolverResult result = solve();
    EXPECT_EQ(result.outcome, outcome) << result.reason;
    EXPECT_FALSE(result.hasPoint);
  }

  SmallModel model_;
};

// min -3x - 5y, x <= 4, 2y <= 12, 3x + 2y <= 18: 36 at (2, 6), duals 0, -1.5, -1.
TEST_P(Linear, findsTheVertexAndItsMarginals) {
  model_.column(-3, 0, kInf);
  model_.column(-5, 0, kInf);
  model_.row({1, 0}, -kInf, 4);
  model_.row({0, 2}, -kInf, 12);
  model_.row({3, 2}, -kInf, 18);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 2, 1e-6);
  EXPECT_NEAR(result.level[1], 6, 1e-6);
  EXPECT_EQ(result.rowMarginal[0], 0);
  EXPECT_NEAR(result.rowMarginal[1], -1.5, 1e-6);
  EXPECT_NEAR(result.rowMarginal[2], -1, 1e-6);
  EXPECT_EQ(result.rowPosition[0], Position::basic);
  EXPECT_EQ(result.rowPosition[1], Position::atUpper);
  EXPECT_EQ(result.rowPosition[2], Position::atUpper);
  EXPECT_EQ(result.position[0], Position::basic);
  EXPECT_EQ(result.position[1], Position::basic);
}

// min x + 2y, x + y = 10, x - y >= -2, x <= 7: (7, 3).
TEST_P(Linear, takesEquationsAndBounds) {
  model_.column(1, 0, 7);
  model_.column(2, 0, kInf);
  model_.row({1, 1}, 10, 10);
  model_.row({1, -1}, -2, kInf);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 7, 1e-6);
  EXPECT_NEAR(result.level[1], 3, 1e-6);
  EXPECT_NEAR(result.rowMarginal[0], 2, 1e-6);
  EXPECT_EQ(result.position[0], Position::atUpper);
  EXPECT_EQ(result.rowPosition[1], Position::basic);
}

TEST_P(Linear, takesRangesAtTheirLowerEnd) {
  model_.column(1, -kInf, kInf);
  model_.row({2}, 3, 8);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 1.5, 1e-6);
  EXPECT_EQ(result.rowPosition[0], Position::atLower);
  EXPECT_NEAR(result.rowMarginal[0], 0.5, 1e-6);
}

TEST_P(Linear, takesRangesAtTheirUpperEnd) {
  model_.column(-1, -kInf, kInf);
  model_.row({2}, 3, 8);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 4, 1e-6);
  EXPECT_EQ(result.rowPosition[0], Position::atUpper);
  EXPECT_NEAR(result.rowMarginal[0], -0.5, 1e-6);
}

// Free x and y, min x + y, x + 2y >= 4, 3x + y >= 7: (2, 1).
TEST_P(Linear, takesFreeColumns) {
  model_.column(1, -kInf, kInf);
  model_.column(1, -kInf, kInf);
  model_.row({1, 2}, 4, kInf);
  model_.row({3, 1}, 7, kInf);
  expectOptimum(3);
}

TEST_P(Linear, takesNegativeUpperBounds) {
  model_.column(-1, -kInf, -2);
  model_.column(1, -5, -1);
  model_.row({1, 1}, -20, kInf);
  expectOptimum(-3);
}

// Three constraints meet in (1, 1).
TEST_P(Linear, endsInADegenerateVertex) {
  model_.column(-1, 0, kInf);
  model_.column(-1, 0, kInf);
  model_.row({1, 0}, -kInf, 1);
  model_.row({0, 1}, -kInf, 1);
  model_.row({1, 1}, -kInf, 2);
  model_.row({2, 1}, -kInf, 3);
  expectOptimum(-2);
}

TEST_P(Linear, takesEquationsThatFollowFromEachOther) {
  model_.column(1, 0, kInf);
  model_.column(3, 0, kInf);
  model_.row({1, 1}, 4, 4);
  model_.row({2, 2}, 8, 8);
  model_.row({3, 3}, 12, 12);
  expectOptimum(4);
}

TEST_P(Linear, tellsInfeasibleRows) {
  model_.column(1, 0, kInf);
  model_.column(1, 0, kInf);
  model_.row({1, 1}, -kInf, 1);
  model_.row({1, 1}, 2, kInf);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, tellsInfeasibleFromUnboundedWhenItIsDualInfeasibleToo) {
  model_.column(-1, 0, kInf);
  model_.column(-1, 0, kInf);
  model_.row({1, -1}, -kInf, -1);
  model_.row({-1, 1}, -kInf, 0);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, tellsUnbounded) {
  model_.column(-1, 0, kInf);
  model_.column(1, 0, kInf);
  model_.row({1, -1}, -kInf, 3);
  model_.row({1, -2}, -kInf, 5);
  model_.cost[1] = 0.5;
  expectNoPoint(Outcome::unbounded);
}

// Presolvers may take costs of 0.001 for nothing.
TEST_P(Linear, tellsUnboundedByASmallCost) {
  model_.column(-0.001, 0, kInf);
  model_.column(1, 2, 3);
  model_.column(1, 0, kInf);
  model_.row({1, 1, -2}, -kInf, kInf);
  model_.row({0, 1, 1}, 1, 4);
  expectNoPoint(Outcome::unbounded);
}

// Both columns at their upper ends reach 2.
TEST_P(Linear, tellsARowThatIsBarelyOutOfReachInfeasible) {
  model_.column(1, 0, 1);
  model_.column(3, 0, 1);
  model_.column(0, 0, 9);
  model_.row({1, 1, 0}, 2.0005, kInf);
  model_.row({1, 0, 1}, 0.5, kInf);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, findsTheVertexOfARowThatIsBarelyWithinReach) {
  model_.column(1, 0, 1);
  model_.column(0, 0, 1);
  model_.row({1, 1}, 1.9995, kInf);
  expectOptimum(0.9995);
}

TEST_P(Linear, tellsUnboundedAlongAFreeColumn) {
  model_.column(1, -kInf, kInf);
  model_.column(0, 0, 1);
  model_.row({1, 1}, -kInf, 3);
  expectNoPoint(Outcome::unbounded);
}

TEST_P(Linear, tellsCrossingBoundsOfAColumnInfeasible) {
  model_.column(1, 2, 1);
  model_.row({1}, 0, 5);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, tellsCrossingBoundsOfARowInfeasible) {
  model_.column(1, 0, 9);
  model_.row({1}, 5, 4);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, solvesWithoutRows) {
  model_.column(2, -3, 8);
  model_.column(-1, -3, 8);
  model_.column(0, 4, 8);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{-3, 8, 4}));
  EXPECT_EQ(result.position[0], Position::atLower);
  EXPECT_EQ(result.position[1], Position::atUpper);
}

// x falls without an end, whatever y and z do.
TEST_P(Linear, tellsUnboundedBesideARowThatHolds) {
  model_.column(-2, 0, kInf);
  model_.column(2, 0, kInf);
  model_.column(3, -kInf, kInf);
  model_.row({0, 1, 1}, 6, kInf);
  expectNoPoint(Outcome::unbounded);
}

// With x = 10 - w the rows hold for b = 9 and c = -1, and -x + w falls with w.
TEST_P(Linear, tellsUnboundedBetweenColumnsThatCancel) {
  model_.column(-1, -kInf, kInf);
  model_.column(3, -1, kInf);
  model_.column(0, -1, kInf);
  model_.column(1, -kInf, 1);
  model_.row({-2, -1, 0, -2}, 3, 10);
  model_.row({1, 1, -1, 1}, 4, kInf);
  expectNoPoint(Outcome::unbounded);
}

TEST_P(Linear, tellsUnboundedWithoutRows) {
  model_.column(-2, 0, kInf);
  expectNoPoint(Outcome::unbounded);
}

TEST_P(Linear, solvesWithoutColumns) {
  model_.row({}, -1, 1);
  expectOptimum(0);
}

TEST_P(Linear, tellsARowThatNothingCanFillInfeasible) {
  model_.row({}, 1, 2);
  expectNoPoint(Outcome::infeasible);
}

// Beside rows that hold, and with a cost that has no end.
TEST_P(Linear, tellsARowWithoutTermsThatNothingCanFillInfeasible) {
  model_.column(-1, 0, kInf);
  model_.column(1, -2, 5);
  model_.row({0, 1}, -kInf, 3);
  model_.row({0, 0}, 5, kInf);
  expectNoPoint(Outcome::infeasible);
}

TEST_P(Linear, solvesNothingAtAll) {
  expectOptimum(0);
}

TEST_P(Linear, takesEmptyColumnsAndFreeRows) {
  model_.column(1, 0, kInf);
  model_.column(3, -2, 5);  // in no row
  model_.column(0, -kInf, kInf);
  model_.row({1, 0, 0}, 2, kInf);
  model_.row({5, 0, 1}, -kInf, kInf);
  model_.row({0, 0, 0}, -1, 1);
  expectOptimum(2 - 6);
}

TEST_P(Linear, tellsUnboundedAlongAnEmptyColumn) {
  model_.column(1, 0, kInf);
  model_.column(-1, 0, kInf);
  model_.row({1, 0}, 2, kInf);
  expectNoPoint(Outcome::unbounded);
}

TEST_P(Linear, takesFixedColumns) {
  model_.column(1, 3, 3);
  model_.column(2, 0, kInf);
  model_.row({1, 1}, 5, kInf);
  expectOptimum(3 + 4);
}

TEST_P(Linear, takesAllColumnsFixed) {
  model_.column(1, 3, 3);
  model_.column(2, 4, 4);
  model_.row({1, 1}, 5, kInf);
  expectOptimum(11);
}

TEST_P(Linear, tellsAllColumnsFixedOutsideOfARowInfeasible) {
  model_.column(1, 3, 3);
  model_.column(2, 1, 1);
  model_.row({1, 1}, 5, kInf);
  expectNoPoint(Outcome::infeasible);
}

// x * y with x fixed at 2 is 2 y, in a row and in the objective: min y + 2 y, 2 y >= 6.
TEST_P(Linear, countsProductsWithAFactorThatStandsStill) {
  model_.column(0, 2, 2);
  model_.column(1, 0, kInf);
  model_.row({0, 0}, 6, kInf);
  model_.products = {{0, 0, 1, 1.0}, {lomu::kObjectiveRow, 1, 0, 1.0}};
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[1], 3, 1e-6);
  EXPECT_NEAR(result.rowMarginal[0], 1.5, 1e-6);
}

TEST_P(Linear, printsNothing) {
  model_.column(-3, 0, kInf);
  model_.column(-5, 0, kInf);
  model_.row({1, 0}, -kInf, 4);
  model_.row({3, 2}, -kInf, 18);
  StdoutCapture capture;
  solve();
  model_.rowUpper[0] = -1;
  solve();
  EXPECT_EQ(capture.text(), "");
}

// x is 60.19 / 29, and 27 of it are 56.03897, which is too little by 8e-4.
TEST_P(Linear, tellsInfeasibleWhereALittleIsMissing) {
  model_.column(0, 0, kInf);
  model_.row({29}, 60.19, 60.19);
  model_.row({27}, 56.0398, kInf);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
}

INSTANTIATE_TEST_SUITE_P(Solvers, Linear, testing::Values("clp", "cbc", "glpk", "ipopt", "bonmin"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(Barrier, ofClpComesToWhatTheSimplexMethodComesTo) {
  lomu::SolverLimits limits;
  limits.barrier = 1;
  for (unsigned seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(seed);
    RandomModel random(seed, 30, 20, 0.3);
    if (seed == 3) random.model.rowLower[1] = 1e4;
    if (seed == 4) random.model.lower.assign(30, -kInf);
    const SolverResult ours = solveFresh("clp", random.model, limits);
    const SolverResult other = solveFresh("glpk", random.model);
    ASSERT_EQ(ours.outcome, other.outcome) << ours.reason;
    if (other.outcome != Outcome::optimal) continue;
    const double expected = random.model.objective(other.level);
    EXPECT_NEAR(random.model.objective(ours.level), expected, 1e-6 * (1 + std::abs(expected)));
  }
}

}  // namespace
}  // namespace ztbtest
