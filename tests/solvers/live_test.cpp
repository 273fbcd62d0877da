// A solver that lives from solve to solve against one made afresh for each.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/solvers/random_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

class Live : public testing::TestWithParam<const char*> {
 protected:
  // Compares a step of the live solver with a fresh one and sums their iterations.
  void step(lomu::Solver& live, SmallModel& model) {
    ASSERT_TRUE(live.update(model.problem()));
    const SolverResult ours = solveLive(live, model);
    const SolverResult fresh = solveFresh(GetParam(), model);
    ASSERT_EQ(ours.outcome, fresh.outcome) << ours.reason;
    if (fresh.hasPoint) {
      const double expected = model.objective(fresh.level);
      ASSERT_NEAR(model.objective(ours.level), expected, 1e-7 * (1 + std::abs(expected)));
    }
    liveIterations_ += ours.iterations;
    freshIterations_ += fresh.iterations;
  }

  double liveIterations_ = 0;
  double freshIterations_ = 0;
};

TEST_P(Live, equalsAFreshSolveThroughRandomChanges) {
  RandomModel random(11, 40, 30, 0.3);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  for (int k = 0; k < 400; ++k) {
    random.change();
    if (k % 10 == 0) random.change();
    ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "step " << k;
  }
  EXPECT_LT(liveIterations_, freshIterations_ / 3);
}

// The way of a database's updates: the solver is told that no coefficient changed.
TEST_P(Live, equalsAFreshSolveThroughChangesOfBoundsAlone) {
  int infeasible = 0;
  for (unsigned seed = 1; seed <= 5; ++seed) {
    RandomModel random(seed, 60, 40, 0.2);
    random.model.coefficientsAsOf = seed;
    const auto live = openSolver(GetParam());
    std::string reason;
    ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
    for (int k = 0; k < 200; ++k) {
      random.changeBounds();
      ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "seed " << seed << " step " << k;
      if (solveLive(*live, random.model).outcome == Outcome::infeasible) ++infeasible;
    }
  }
  EXPECT_GT(infeasible, 50);
  EXPECT_LT(infeasible, 500);
  EXPECT_LT(liveIterations_, freshIterations_ / 2);
}

// Bounds, then cost, then the matrix, then bounds again, each told by its number.
TEST_P(Live, takesCoefficientsOfAnotherNumber) {
  RandomModel random(8, 30, 20, 0.3);
  random.model.coefficientsAsOf = 1;
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  for (int k = 0; k < 100; ++k) {
    random.changeBounds();
    if (k % 3 == 0) {
      random.change();
      ++random.model.coefficientsAsOf;
    }
    ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "step " << k;
  }
}

// The way of driven costs: the solver is told that the matrix is the same.
TEST_P(Live, equalsAFreshSolveThroughCostsAndBoundsOfTheSameMatrix) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    RandomModel random(seed, 60, 25, 0.3);
    random.standStill();
    random.model.matrixAsOf = seed;
    const auto live = openSolver(GetParam());
    std::string reason;
    ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
    for (std::size_t k = 0; k < 150; ++k) {
      if (k % 3 != 0) {
        for (std::size_t j = k % 7; j < 60; j += 7) random.model.cost[j] = 3.0 - (j * k) % 11;
        random.model.coefficientsAsOf = k + 1;
      }
      if (k % 3 != 1) random.changeBounds();
      if (k % 10 == 0) random.moveOneThatStood();
      ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "seed " << seed << " step " << k;
    }
  }
  EXPECT_LT(liveIterations_, freshIterations_);
}

TEST_P(Live, equalsAFreshSolveWhereColumnsThatStoodStillMove) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    RandomModel random(seed, 60, 25, 0.3);
    random.standStill();
    random.model.coefficientsAsOf = seed % 2;  // 0 promises nothing
    const auto live = openSolver(GetParam());
    std::string reason;
    ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
    for (int k = 0; k < 150; ++k) {
      random.moveOneThatStood();
      if (random.model.coefficientsAsOf == 0 && k % 5 == 0) random.change();
      ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "seed " << seed << " step " << k;
    }
  }
  EXPECT_LT(liveIterations_, freshIterations_ / 3);
}

TEST_P(Live, keepsItsBasisWhenAColumnBeginsToMove) {
  RandomModel random(5, 60, 40, 0.3);
  random.standStill();
  random.model.coefficientsAsOf = 1;
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  ASSERT_EQ(solveLive(*live, random.model).outcome, Outcome::optimal);
  for (std::size_t j = 0; j < 60; j += 3) {
    random.model.upper[j] += 0.01;
    ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "column " << j;
  }
  EXPECT_LT(liveIterations_, freshIterations_ / 5);
}

TEST_P(Live, needsFewIterationsForSmallChangesOfCostsAndBounds) {
  RandomModel random(9, 60, 40, 0.3);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  ASSERT_EQ(solveLive(*live, random.model).outcome, Outcome::optimal);
  for (std::size_t k = 0; k < 40; ++k) {
    random.model.coefficientsAsOf = 2 * k + 1;
    random.model.cost[k] *= 1.1;
    ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "cost " << k;
    random.model.upper[k] -= 0.01;
    ASSERT_NO_FATAL_FAILURE(step(*live, random.model)) << "bound " << k;
  }
  EXPECT_LT(liveIterations_, freshIterations_ / 10);
}

// min x + 2 y, 3 x + 4 y + 5 z >= 60, x from 0 to 10, with y and z at 1: x is 17 at least.
TEST_P(Live, columnsThatStandStillAddToTheirRows) {
  SmallModel model;
  model.column(1, 0, 10);
  model.column(2, 1, 1);
  model.column(0, 1, 1);
  model.row({3, 4, 5}, 60, kInf);
  model.coefficientsAsOf = 1;
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  EXPECT_EQ(solveLive(*live, model).outcome, Outcome::infeasible);

  const auto solved = [&] {
    EXPECT_TRUE(live->update(model.problem()));
    return solveLive(*live, model);
  };
  model.lower[2] = model.upper[2] = 7;  // 3 x >= 21
  SolverResult result = solved();
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(result.level[0], 7, 1e-9);
  EXPECT_EQ(result.level[2], 7);
  EXPECT_NEAR(result.rowMarginal[0], 1.0 / 3, 1e-9);
  EXPECT_EQ(result.rowPosition[0], lomu::Position::atLower);
  EXPECT_EQ(result.position[2], lomu::Position::atLower);

  model.upper[1] = kInf;   // y, at 2 for 4, is dearer than x, at 1 for 3
  model.rowLower[0] = 81;  // 3 x + 4 y >= 46: x at 10, y at 4
  result = solved();
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(result.level[0], 10, 1e-9);
  EXPECT_NEAR(result.level[1], 4, 1e-9);
  EXPECT_NEAR(result.rowMarginal[0], 0.5, 1e-9);

  model.lower[2] = model.upper[2] = kInf;
  EXPECT_EQ(solved().outcome, Outcome::infeasible);
  model.lower[2] = model.upper[2] = 2;  // 3 x + 4 y >= 71
  result = solved();
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(result.level[1], 10.25, 1e-9);
}

// min x, x + a d >= 10 with d at 1.
TEST_P(Live, theCoefficientOfAColumnThatStandsStillCounts) {
  SmallModel model;
  model.column(1, 0, 10);
  model.column(0, 1, 1);
  model.row({1, 2}, 10, kInf);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  EXPECT_NEAR(solveLive(*live, model).level[0], 8, 1e-9);
  model.rows[0][1] = 5;
  ASSERT_TRUE(live->update(model.problem()));
  EXPECT_NEAR(solveLive(*live, model).level[0], 5, 1e-9);
}

// 2 x + d >= 1 and q1 + q2 = q3 with all but x standing still; then 2 becomes 0, and what is left
// are sums that are off by rounding.
TEST_P(Live, rowsOfWhichNothingMovesAreHeldToTheTolerance) {
  SmallModel model;
  model.column(1, 0, 10);
  model.column(0, 2, 2);
  for (const double still : {0.1, 0.2, 0.3}) model.column(0, still, still);
  model.row({2, 1, 0, 0, 0}, 1, kInf);
  model.row({0, 0, 1, 1, -1}, 0, 0);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  ASSERT_EQ(solveLive(*live, model).outcome, Outcome::optimal);
  model.rows[0][0] = 0;
  for (const double cost : {1.0, -1.0}) {
    model.cost[0] = cost;
    ASSERT_TRUE(live->update(model.problem()));
    const SolverResult result = solveLive(*live, model);
    ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
    EXPECT_EQ(result.level[0], cost > 0 ? 0 : 10);
  }
}

TEST_P(Live, theFirstColumnThatMoves) {
  SmallModel model;
  model.column(1, 3, 3);
  model.column(1, 2, 2);
  model.row({1, 1}, 4, kInf);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  SolverResult result = solveLive(*live, model);
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_THAT(result.level, testing::ElementsAre(3, 2));
  model.lower[0] = 0;
  ASSERT_TRUE(live->update(model.problem()));
  result = solveLive(*live, model);
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_THAT(result.level, testing::ElementsAre(2, 2));
}

// x + y at least 1 and at most 2, x in [2, 9], y in [0, 8]. Bounds that a nonbasic column loses,
// and those that a free one gets, ended the process in an assertion of Clp.
TEST_P(Live, takesBoundsAwayAndGivesThemBack) {
  SmallModel model;
  model.column(-1, 2, 9);
  model.column(-1, 0, 8);
  model.row({2, 2}, 2, 4);
  model.coefficientsAsOf = 1;
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  const auto solved = [&] {
    EXPECT_TRUE(live->update(model.problem()));
    const SolverResult result = solveLive(*live, model);
    EXPECT_EQ(result.outcome, Outcome::optimal) << result.reason;
    return model.objective(result.level);
  };
  EXPECT_NEAR(solved(), -2, 1e-9);
  model.lower[0] = -kInf;
  model.upper[0] = kInf;
  EXPECT_NEAR(solved(), -2, 1e-9);
  model.cost = {1, 1};
  model.coefficientsAsOf = 2;
  model.lower[1] = -kInf;
  model.upper[1] = kInf;
  EXPECT_NEAR(solved(), 1, 1e-9);
  model.lower = {2, 0};
  model.upper = {9, 8};
  EXPECT_NEAR(solved(), 2, 1e-9);
}

// The same of a row: y - z minimized with 2 x - 3 y + 3 z <= 3, so that y is at least
// (2 x + 3 z - 3) / 3.
TEST_P(Live, takesASideOfARowAwayAndGivesItBack) {
  SmallModel model;
  model.column(0, 1, kInf);
  model.column(1, -1, 2);
  model.column(-1, 2, 4);
  model.row({2, -3, 3}, -kInf, 3);
  model.coefficientsAsOf = 1;
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  const auto solved = [&] {
    EXPECT_TRUE(live->update(model.problem()));
    const SolverResult result = solveLive(*live, model);
    EXPECT_EQ(result.outcome, Outcome::optimal) << result.reason;
    return model.objective(result.level);
  };
  EXPECT_NEAR(solved(), -1.0 / 3, 1e-9);
  model.lower[2] = -2;
  model.upper[2] = 0;
  EXPECT_NEAR(solved(), -1.0 / 3, 1e-9);
  model.lower[0] = -kInf;
  model.rowUpper[0] = kInf;
  EXPECT_NEAR(solved(), -1, 1e-9);  // y at -1, z at 0
  model.lower[0] = 3;
  model.rowUpper[0] = 3;
  EXPECT_NEAR(solved(), 1, 1e-9);  // y at z + 1
}

TEST_P(Live, recoversFromInfeasibleAndUnboundedSteps) {
  SmallModel model;
  model.column(1, 0, kInf);
  model.column(1, 0, kInf);
  model.row({1, 1}, 2, kInf);
  model.row({1, -1}, -kInf, 5);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  step(*live, model);
  model.upper = {0.5, 0.5};
  step(*live, model);  // infeasible
  model.upper = {kInf, kInf};
  model.cost = {-1, -1};
  step(*live, model);  // unbounded
  model.lower[0] = 3;
  model.upper[0] = 2;
  step(*live, model);  // bounds cross
  model.upper[0] = 3;
  model.cost = {1, 2};
  step(*live, model);
  model.rows[0] = {0, 0};
  model.rows[1] = {0, 0};
  model.rowLower[0] = -1;
  step(*live, model);  // an empty matrix
  model.rows[0] = {2, 1};
  model.rowLower[0] = 9;
  step(*live, model);
}

// Covers of the edges of a ring of five: every column at a half. A coefficient 2 then makes the
// levels 1/3 and 2/3 in turn, by the marginals 1/3, 2/3, 1/3, 2/3, 1/3 of the rows.
TEST_P(Live, aMatrixOfOnesTakesAnotherNumber) {
  SmallModel model;
  constexpr std::size_t kRing = 5;
  for (std::size_t j = 0; j < kRing; ++j) model.column(1, 0, kInf);
  for (std::size_t i = 0; i < kRing; ++i) {
    std::vector<double> ends(kRing, 0.0);
    ends[i] = ends[(i + 1) % kRing] = 1;
    model.row(ends, 1, kInf);
  }
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  EXPECT_NEAR(model.objective(solveLive(*live, model).level), 5.0 / 2, 1e-9);
  model.rows[0][0] = 2;
  ASSERT_TRUE(live->update(model.problem()));
  EXPECT_NEAR(model.objective(solveLive(*live, model).level), 7.0 / 3, 1e-9);
  EXPECT_NEAR(model.objective(solveFresh(GetParam(), model).level), 7.0 / 3, 1e-9);
}

TEST_P(Live, takesAnotherProblemInThePlaceOfTheFirst) {
  RandomModel first(3, 10, 8, 0.5);
  RandomModel second(4, 15, 6, 0.5);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(first.model.problem(), reason)) << reason;
  ASSERT_EQ(solveLive(*live, first.model).outcome, Outcome::optimal);
  ASSERT_TRUE(live->load(second.model.problem(), reason)) << reason;
  const SolverResult ours = solveLive(*live, second.model);
  const SolverResult fresh = solveFresh(GetParam(), second.model);
  ASSERT_EQ(ours.outcome, Outcome::optimal) << ours.reason;
  EXPECT_NEAR(second.model.objective(ours.level), second.model.objective(fresh.level), 1e-7);
}

INSTANTIATE_TEST_SUITE_P(Solvers, Live, testing::Values("clp", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

// The integers of a live problem, again and again.
TEST(LiveIntegers, equalAFreshSolve) {
  RandomModel random(21, 12, 6, 0.6);
  for (std::size_t j = 0; j < 5; ++j) random.model.isInteger[2 * j] = 1;
  // Equations would leave no integers.
  random.model.rowLower[0] -= 2;
  random.model.rowUpper[0] += 2;
  random.model.rowLower[5] -= 2;
  random.model.rowUpper[5] += 2;
  const auto live = openSolver("glpk");
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  for (int k = 0; k < 40; ++k) {
    random.model.cost[static_cast<std::size_t>(k) % 12] *= -1;
    random.model.rowUpper[2] += 0.25 * (k % 3 - 1);
    ASSERT_TRUE(live->update(random.model.problem()));
    const SolverResult ours = solveLive(*live, random.model);
    const SolverResult fresh = solveFresh("cbc", random.model);
    ASSERT_EQ(ours.outcome, fresh.outcome) << "step " << k << " " << ours.reason << fresh.reason;
    if (!fresh.hasPoint) continue;
    EXPECT_NEAR(random.model.objective(ours.level), random.model.objective(fresh.level), 1e-6)
        << "step " << k;
  }
}

}  // namespace
}  // namespace ztbtest
