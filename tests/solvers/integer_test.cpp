// Small problems with integers worked by hand, by the solvers that take them.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/solvers/small_model.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::Position;
using lomu::SolverResult;

class Integer : public testing::TestWithParam<const char*> {
 protected:
  SolverResult solve(const lomu::SolverLimits& limits = {}) {
    return solveFresh(GetParam(), model_, limits);
  }

  SmallModel model_;
};

// max 5x + 4y, 6x + 4y <= 24, x + 2y <= 6: 21 at (3, 1.5) as reals; in integers 20 at (4, 0).
TEST_P(Integer, findsTheBestPointOfIntegers) {
  model_.column(-5, 0, kInf, true);
  model_.column(-4, 0, kInf, true);
  model_.row({6, 4}, -kInf, 24);
  model_.row({1, 2}, -kInf, 6);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{4, 0}));
}

// A knapsack of 10: values 10, 13, 7, 8, 4 of weights 5, 6, 4, 3, 1; the best is 13 + 8 + 4 = 25 of
// weight 10.
TEST_P(Integer, fillsAKnapsack) {
  const std::vector<double> worth{10, 13, 7, 8, 4};
  for (const double v : worth) model_.column(-v, 0, 1, true);
  model_.row({5, 6, 4, 3, 1}, -kInf, 10);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{0, 1, 0, 1, 1}));
}

// Eight things to eight places, each pair with a cost and a weight, weights at most 89 in all, six
// pairs not allowed. Of all 40,320 ways the best costs 92.
TEST_P(Integer, assignsWithinABudget) {
  constexpr std::array<int, 64> cost{
      30, 18, 15, 31, 16, 24, 38, 15, 37, 12, 13, 21, 30, 1,  25, 18, 41, 25, 47, 9,  5,  3,
      5,  41, 33, 23, 6,  8,  28, 45, 12, 36, 27, 14, 40, 2,  45, 50, 34, 4,  27, 11, 11, 17,
      37, 42, 49, 11, 9,  9,  48, 48, 17, 40, 7,  34, 27, 29, 37, 2,  45, 9,  40, 41};
  constexpr std::array<int, 64> weight{
      16, 13, 12, 16, 16, 18, 9,  18, 19, 11, 15, 5,  22, 4,  12, 10, 16, 16, 14, 1,  4,  28,
      25, 26, 20, 6,  20, 22, 26, 23, 28, 27, 29, 20, 17, 30, 12, 26, 16, 24, 13, 13, 12, 25,
      2,  16, 13, 27, 7,  2,  29, 2,  29, 4,  24, 14, 30, 14, 23, 12, 7,  29, 1,  18};
  constexpr std::array<int, 6> forbidden{3, 7, 23, 27, 30, 47};
  for (const int c : cost) model_.column(c, 0, 1, true);
  for (const int j : forbidden) model_.upper[static_cast<std::size_t>(j)] = 0;
  for (std::size_t k = 0; k < 8; ++k) {
    std::vector<double> thing(64);
    std::vector<double> place(64);
    for (std::size_t q = 0; q < 8; ++q) thing[8 * k + q] = place[8 * q + k] = 1;
    model_.row(thing, 1, 1);
    model_.row(place, 1, 1);
  }
  model_.row({weight.begin(), weight.end()}, -kInf, 89);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model_.objective(result.level), 92, 1e-6);
}

// min 0.0005 x + y, x <= 10 an integer without a lower bound, y + z >= 1 binary. A preprocessor
// that takes so small a cost for none would leave x where it stands.
TEST_P(Integer, hasNoEndByASmallCost) {
  model_.column(0.0005, -kInf, 10, true);
  model_.column(1, 0, 1, true);
  model_.column(0, 0, 1, true);
  model_.row({0, 1, 1}, 1, kInf);
  model_.row({0, 1, -1}, -1, kInf);
  EXPECT_EQ(solve().outcome, Outcome::unbounded);
}

// Nothing is left of this one by its equalities, which glpsol tells, too. Of what remains when the
// first columns are settled, the dual method of Clp stopped at 1e100, which ended the process.
TEST_P(Integer, tellsWhereEqualitiesLeaveNothing) {
  for (const double cost : {98, 0, 0, 5, 5, 1, 1, 0}) model_.column(cost, -kInf, kInf, true);
  model_.lower = {0, -kInf, 0, -5, -kInf, 0, 0, -kInf};
  model_.upper = {1, kInf, 100, kInf, kInf, 1, 1, 100};
  model_.row({0, 0, 0, 0, -1, 0, 0, 1}, -kInf, 23);
  model_.row({5, -3, 0, 0, 0, 0, 0, 0}, 26, 26);
  model_.row({2, 912, 7, 1, 1, 0, 0, 286}, 9, kInf);
  model_.row({-366, -771, 0, 3, 5, 0, 0, 0}, -9, kInf);
  model_.row({2, 2, 0, 5, 1, 0, -2, 2}, -kInf, 15);
  model_.row({0, 5, -44, 0, -3, 0, 2, 2}, -kInf, 7);
  model_.row({2, 0, -1, 0, -2, -3, -1, 3}, 4, 11);
  model_.row({0, 0, 1, 0, -3, 0, 3, 7}, -2, -2);
  model_.row({2, 0, 0, -1, -2, 1, 0, 0}, 6, 6);
  model_.row({0, -21, 0, 1, -1, 0, 2, -1}, 3, kInf);
  EXPECT_EQ(solveFresh(GetParam(), model_).outcome, Outcome::infeasible);
}

// Coefficients from 0.00015 to 8570: Gomory's cuts took the best point, which glpsol finds, away
// and left 15115.05.
TEST_P(Integer, findsTheBestPointOfABadlyScaledProblem) {
  model_.column(-0.000997483414132, 0, 100);
  model_.column(-9.14987699129, 0, 10, true);
  model_.column(-49.9878094997, 0, 100, true);
  model_.column(5.01393422484, 0, 1, true);
  model_.column(0.000656567736063, 0, 10000, true);
  model_.column(974.848359358, 0, 100);
  model_.column(-92.9218810052, 0, 1, true);
  model_.column(-0.358438096009, 0, 10000, true);
  model_.column(11.8013426196, 0, 1);
  model_.column(0.0973666934296, 0, 1, true);
  model_.row({0.084, -0.287, 0.834, 0, -0.111, 0, 0, 0, 0.803, 0}, 17.369, 17.569);
  model_.row({0, -8060, 2880, 630, 0, 0, 2830, 0, 8570, 0}, 72600, kInf);
  model_.row({9.8, -31.8, 42, 0, 0, 0, -45.4, 82.7, -27.7, -83.8}, 548216.2, 548236.2);
  model_.row({4730, -6240, -2990, 0, 0, 0, 0, 0, 0, 4300}, 239030, kInf);
  model_.row({0, 0, 0, -0.00821, 0, 0, -0.00668, 0, 0.00369, -0.00015}, 0, kInf);
  model_.row({0, 0, -6.24, -5.33, 0, 0, -4.62, 2.7, -2.71, 0}, -kInf, 17557.92);
  model_.row({0, -85.7, -73.8, 0, 0, -77, -48.7, 81.6, 0, 0}, -kInf, 529402.2);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(model_.objective(result.level), 14086.49245, 0.01);
}

// Clp's short way of looking at branches took one with the best point, which glpsol finds,
// for one without a point: 536.549 was told.
TEST_P(Integer, looksAtBranchesAsAtOtherSteps) {
  model_.column(0.266919114109, 0, 100, true);
  model_.column(4.77523738219, 0, 1, true);
  model_.column(37.6624228639, 0, 10, true);
  model_.column(0.483785783145, 0, 100, true);
  model_.column(-1.07255429985, 0, 1, true);
  model_.column(-10.0398823919, 0, 1);
  model_.column(0.935289163309, 0, 100, true);
  model_.column(-5.01972148279, 0, 10);
  model_.column(-4.03101023171, 0, 1);
  model_.column(-1.39819115398, 0, 10, true);
  model_.column(-27.2804690217, 0, 1, true);
  model_.column(0.805299289054, 0, 10, true);
  model_.column(67.303812219, 0, 10);
  model_.row({12.4, -10.6, 0, -12.1, 0, 0, -3.99, 0, -18.4, 0, 0, 0, 0}, -899.172, -869.172);
  model_.row({0, 0, 0, 0, 0, 0.502, -0.189, -0.332, 0.334, -0.273, 0, 0, -0.096}, -7.88744,
             -7.08744);
  model_.row({0, 0, 0, 8.32, -49.3, 0, 0, 56.9, -40.5, 63.3, 0, 39.4, -52.9}, 594.462, 766.462);
  model_.row({-1.44, 0, 0, 0, 0.451, 0, 0, 0, 0, 1.67, 0, 2.75, 0}, 5.97, 6.35);
  model_.row({2.55, -20.6, -22.7, 4.01, 0, 0, 0, 0, 0, 0, 0.395, 0, 0}, 164.58, 204.58);
  model_.row({0, -53.2, -84.4, 0, 0, 0, 0, 0, 0, 0, -103, 0, 0}, -kInf, -491.4);
  model_.row({0, 7.49, 0, 0, -7.71, 0, 0, 0, 0, 0, 1.44, 0, 0}, -kInf, 1.6);
  model_.row({0.521, 0, -0.216, 0, 0.0907, 0, 0, 0, 0.372, -0.505, 0, 0.197, 0.312}, 8.908, 9.062);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(model_.objective(result.level), 457.1101937, 1e-4);
}

// Five plants supply five customers, each pair at a fixed cost and a cost for each unit up to a
// capacity. The optimum as the programs of Cbc and GLPK tell it.
TEST_P(Integer, suppliesAtFixedCosts) {
  constexpr std::array<double, 25> unitCost{
      2.0176536012, 5.5116723739, 5.8492707759, 7.9532235898, 6.6215595081,
      1.3958839383, 7.1626437716, 2.0483794976, 7.4015046805, 7.1720718555,
      3.2659693658, 1.1403562725, 4.9988009725, 8.1075760014, 3.8337119408,
      8.493289426,  3.5101429205, 1.566942336,  2.7325845603, 8.5587386936,
      4.1202420667, 8.4833853394, 2.4093048666, 3.8912862036, 5.545595035};
  constexpr std::array<double, 25> fixedCost{6, 5,  14, 23, 40, 27, 44, 52, 22, 33, 13, 11, 46,
                                             8, 56, 17, 27, 50, 9,  51, 53, 28, 25, 7,  41};
  constexpr std::array<double, 25> capacity{23, 23, 12, 16, 25, 13, 24, 22, 18, 14, 16, 23, 18,
                                            12, 21, 19, 12, 11, 24, 20, 16, 25, 10, 14, 22};
  constexpr std::array<double, 5> supply{38, 22, 23, 20, 30};
  constexpr std::array<double, 5> demand{19, 10, 12, 15, 16};
  for (std::size_t pair = 0; pair < 25; ++pair) {
    model_.column(unitCost[pair], 0, kInf);
    model_.column(fixedCost[pair], 0, 1, true);
  }
  for (std::size_t plant = 0; plant < 5; ++plant) {
    std::vector<double> row(50);
    for (std::size_t customer = 0; customer < 5; ++customer) row[2 * (5 * plant + customer)] = 1;
    model_.row(row, -kInf, supply[plant]);
  }
  for (std::size_t customer = 0; customer < 5; ++customer) {
    std::vector<double> row(50);
    for (std::size_t plant = 0; plant < 5; ++plant) row[2 * (5 * plant + customer)] = 1;
    const bool isExact = customer == 0 || customer == 4;
    model_.row(row, demand[customer], isExact ? demand[customer] : kInf);
  }
  for (std::size_t pair = 0; pair < 25; ++pair) {
    std::vector<double> row(50);
    row[2 * pair] = 1;
    row[2 * pair + 1] = -capacity[pair];
    model_.row(row, -kInf, 0);
  }
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model_.objective(result.level), 321.2488603301, 1e-6);
}

// min 3x + 10y, x + 4y >= 5.5, y integer: y = 1 and x = 1.5, or y = 0 and x = 5.5, or y = 2 and
// x = 0: 14.5, 16.5, 20. With y at 1 a unit of right-hand side costs 3, and of y 10 - 4 * 3.
TEST_P(Integer, leavesTheMarginalsOfTheLinearProblemWithIntegersFixed) {
  model_.column(3, 0, kInf);
  model_.column(10, 0, kInf, true);
  model_.row({1, 4}, 5.5, kInf);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 1.5, 1e-9);
  EXPECT_EQ(result.level[1], 1);
  EXPECT_NEAR(result.rowMarginal[0], 3, 1e-9);
  EXPECT_EQ(result.rowPosition[0], Position::atLower);
  EXPECT_EQ(result.position[0], Position::basic);
  EXPECT_EQ(result.position[1], Position::superbasic);
}

// 2x - 2y = 1 has no integers, though reals without end.
TEST_P(Integer, tellsInfeasibleWhenOnlyTheIntegersAre) {
  model_.column(-1, 0, 50, true);
  model_.column(-1, 0, 50, true);
  model_.row({2, -2}, 1, 1);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

TEST_P(Integer, tellsUnbounded) {
  model_.column(-1, 0, kInf, true);
  model_.column(0.5, 0, kInf, true);
  model_.row({1, -1}, -kInf, 2.5);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

// z is unbounded below in reals, but x has no integer.
// Where a search stopped at a far end of its own making. Column 1 falls without an end, and column
// 4 keeps the rows.
TEST_P(Integer, tellsUnboundedWhereASearchStopsFarOut) {
  model_.column(1.6, -2, 1);
  model_.column(-1.31, -1, kInf);
  model_.column(1.16, 0, 8);
  model_.column(3.55, -2, kInf, true);
  model_.column(2.13, -2, kInf, true);
  model_.column(0.94, -1, kInf);
  model_.column(6.56, 0, 2);
  model_.column(-5.85, -2, 3);
  model_.row({0.561, -1.196, -2.408, 1.571, 1.882, 2.036, -1.495, -1.4}, -2, kInf);
  model_.row({0, 1.17, -1.707, -0.931, -3.198, 1.017, -1.328, 0}, -2, kInf);
  model_.row({0, 0.812, 0, 0.798, -2.396, 0.335, 1.057, 1.304}, -kInf, 6);
  EXPECT_EQ(solve().outcome, Outcome::unbounded);
}

// The third column is in no row, and each more of it is better by 2.
TEST_P(Integer, tellsUnboundedByAColumnInNoRow) {
  model_.column(-4, 0, 7);
  model_.column(2, -3, kInf);
  model_.column(-2, -1, kInf);
  model_.column(2, 0, kInf, true);
  model_.row({-2, -2, 0, -1}, 0, kInf);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
}

// The points (2k, 0, 3k) satisfy all rows, with the objective -19k.
TEST_P(Integer, tellsUnboundedWhereColumnsHaveNoEndOnEitherSide) {
  model_.column(-5, -2, kInf, true);
  model_.column(1, -1, 0, true);
  model_.column(-3, -kInf, kInf);
  model_.row({2, -3, 1}, -2, kInf);
  model_.row({1, -1, 0}, -1, kInf);
  model_.row({-3, -3, 2}, -3, 1);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
}

TEST_P(Integer, tellsInfeasibleWhereTheRealsAreUnbounded) {
  model_.column(0, 0.2, 0.8, true);
  model_.column(-1, 0, kInf);
  model_.row({1, -1}, -kInf, 3);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
}

// 2x + 2y = 1 has no integers; z is unbounded in reals.
TEST_P(Integer, tellsInfeasibleBySearchWhereTheRealsAreUnbounded) {
  model_.column(0, 0, 1, true);
  model_.column(0, 0, 1, true);
  model_.column(-1, 0, kInf);
  model_.row({2, 2, 0}, 1, 1);
  model_.row({1, 0, -1}, -kInf, 3);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
}

TEST_P(Integer, takesIntegersOfFractionalAndNegativeBounds) {
  model_.column(1, -2.5, 7.5, true);
  model_.column(-1, -7.25, -1.5, true);
  model_.row({1, 1}, -100, 100);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{-2, -2}));
}

TEST_P(Integer, solvesIntegersWithoutRows) {
  model_.column(1, 0.5, 7, true);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{1}));
}

// 0.6 / 0.1 and 0.3 / 0.1 are a little below 6 and 3 in binary numbers.
TEST_P(Integer, reachesBoundsOfRowsThatRoundingMisses) {
  model_.column(-1, 0, kInf, true);
  model_.column(-1, 0, kInf, true);
  model_.row({0.1, 0}, -kInf, 0.6);
  model_.row({0, 0.1}, -kInf, 0.3);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{6, 3}));
}

// 0.3 y <= x <= 6: y at most 20.
TEST_P(Integer, reachesWhatHangsOnABoundThatRoundingMisses) {
  model_.column(0, 0, kInf, true);
  model_.column(-1, 0, kInf);
  model_.row({-1, 0.3}, -kInf, 0);
  model_.row({0.1, 0}, -kInf, 0.6);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level[0], 6);
  EXPECT_NEAR(result.level[1], 20, 1e-6);
}

// x = (2 y - 3.66) / 3: y = 2 gives 0.1133, which is too little, y = 3 gives 0.78. The second row
// has all columns.
TEST_P(Integer, solvesProblemsWithARowOfAllColumns) {
  model_.column(1, 0, 1);
  model_.column(4, 0, 3, true);
  model_.row({1, 0}, 0.114, kInf);
  model_.row({-3, 2}, 3.66, 3.66);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0.78, 1e-9);
  EXPECT_EQ(result.level[1], 3);
}

// x is above 0 only with z = 1, which costs 3 and lets it be 5: -2. At 5e-6, z is no 0.
TEST_P(Integer, takesNoFractionForZeroBesideALargeCoefficient) {
  model_.column(-1, 0, 5);
  model_.column(3, 0, 1, true);
  model_.row({1, -1e6}, -kInf, 0);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 5, 1e-9);
  EXPECT_EQ(result.level[1], 1);
}

// Costs that differ in the seventh digit decide.
TEST_P(Integer, seesSmallDifferencesOfTheObjective) {
  model_.column(1.0000001, 0, 1, true);
  model_.column(1, 0, 1, true);
  model_.column(1.0000002, 0, 1, true);
  model_.row({1, 1, 1}, 1.5, 2);
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{1, 1, 0}));
}

// (0, 0, 1, -1) satisfies all rows, and (0, -1, 1, -1) leads from there without end, each step 3
// less. Presolved, Clp calls 3 the least.
TEST_P(Integer, isUnboundedWhereAColumnFallsWithoutEnd) {
  model_.column(-1, -kInf, 0);
  model_.column(3, -kInf, kInf);
  model_.column(1, -1, kInf);
  model_.column(1, -kInf, kInf);
  model_.column(0, 0, 1, true);
  model_.column(0, 0, 1, true);
  model_.row({-1, 1, 0, -1, 0, 0}, 1, kInf);
  model_.row({2, -1, 4, 4, 0, 0}, 0, kInf);
  model_.row({-2, 4, 4, -2, 0, 0}, 2, kInf);
  model_.row({2, 4, -1, 2, 0, 0}, -kInf, 16);
  model_.row({0, 0, 0, 0, 1, 1}, -kInf, 1);
  const SolverResult result = solve();
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
}

// The best is -25, and a search that may stop at half of it has to give a solution that good.
TEST_P(Integer, mayStopWithinTheRelativeGap) {
  const std::vector<double> worth{10, 13, 7, 8, 4};
  for (const double v : worth) model_.column(-v, 0, 1, true);
  model_.row({5, 6, 4, 3, 1}, -kInf, 10);
  lomu::SolverLimits limits;
  limits.relativeGap = 0.5;
  const SolverResult result = solve(limits);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  ASSERT_TRUE(result.hasPoint);
  EXPECT_LE(model_.activity(0, result.level), 10);
  EXPECT_LE(model_.objective(result.level), -12.5);
}

TEST_P(Integer, printsNothing) {
  model_.column(-5, 0, kInf, true);
  model_.column(-4, 0, kInf, true);
  model_.row({6, 4}, -kInf, 24);
  model_.row({1, 2}, -kInf, 6);
  StdoutCapture capture;
  solve();
  model_.row({2, 2}, 1, 1);
  solve();
  EXPECT_EQ(capture.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Solvers, Integer, testing::Values("cbc", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace ztbtest
