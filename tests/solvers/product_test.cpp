// Problems with products of columns, worked by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/solvers/small_model.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

using lomu::kObjectiveRow;
using lomu::Outcome;
using lomu::Position;
using lomu::SolverResult;

// min (x - 1)^2 + (y - 2.5)^2 less its constant, x - 2y >= -2, -x - 2y >= -6, -x + 2y >= -2: at
// (1.4, 1.7), where the first row's marginal is 0.8.
TEST(Product, projectsAPointOnAPolygon) {
  SmallModel model;
  model.column(-2, 0, kInf);
  model.column(-5, 0, kInf);
  model.row({1, -2}, -2, kInf);
  model.row({-1, -2}, -6, kInf);
  model.row({-1, 2}, -2, kInf);
  model.products = {{kObjectiveRow, 0, 0, 1.0}, {kObjectiveRow, 1, 1, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 1.4, 1e-6);
  EXPECT_NEAR(result.level[1], 1.7, 1e-6);
  EXPECT_NEAR(result.rowMarginal[0], 0.8, 1e-6);
  EXPECT_EQ(result.rowPosition[0], Position::atLower);
  EXPECT_EQ(result.rowMarginal[1], 0);
  EXPECT_EQ(result.rowPosition[1], Position::basic);
}

// (x + y)^2 + c x z with all columns from -1 to 1: curved upwards without the second term, and not
// with it, however small c is.
TEST(Product, ofAnObjectiveThatCurvesUpwardsHasABestPoint) {
  SmallModel model;
  for (int j = 0; j < 3; ++j) model.column(0.1 * j, -1, 1);
  model.products = {
      {kObjectiveRow, 0, 0, 1.0}, {kObjectiveRow, 0, 1, 2.0}, {kObjectiveRow, 1, 1, 1.0}};
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::optimal);
  model.products.push_back({kObjectiveRow, 0, 2, 1e-3});
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::locallyOptimal);
  // z^2 outweighs it, but the direction x = -y has nothing to set against x z.
  model.products.push_back({kObjectiveRow, 2, 2, 1.0});
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::locallyOptimal);
  model.products.push_back({kObjectiveRow, 1, 1, 1e-3});
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::optimal);
}

// min -x y, x + y <= 8: (4, 4), and a unit more is worth 4.
TEST(Product, multipliesDifferentColumns) {
  SmallModel model;
  model.column(0, 0, kInf);
  model.column(0, 0, kInf);
  model.row({1, 1}, -kInf, 8);
  model.products = {{kObjectiveRow, 0, 1, -1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, Outcome::locallyOptimal) << result.reason;
  EXPECT_NEAR(result.level[0], 4, 1e-5);
  EXPECT_NEAR(result.level[1], 4, 1e-5);
  EXPECT_NEAR(result.rowMarginal[0], -4, 1e-5);
}

// min x + y, x y >= 9: (3, 3), where d(6)/d(9) = 1/3.
TEST(Product, standsInRows) {
  SmallModel model;
  model.column(1, 0, kInf);
  model.column(1, 0, kInf);
  model.row({0, 0}, 9, kInf);
  model.products = {{0, 1, 0, 1.0}};
  model.level = {1, 7};
  const SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, Outcome::locallyOptimal) << result.reason;
  EXPECT_NEAR(result.level[0], 3, 1e-5);
  EXPECT_NEAR(result.level[1], 3, 1e-5);
  EXPECT_NEAR(result.rowMarginal[0], 1.0 / 3, 1e-5);
}

// max x + y on the circle of radius 1: sqrt(2).
TEST(Product, curvesARow) {
  SmallModel model;
  model.column(-1, -kInf, kInf);
  model.column(-1, -kInf, kInf);
  model.row({0, 0}, -kInf, 1);
  model.products = {{0, 0, 0, 1.0}, {0, 1, 1, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model.objective(result.level), -std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(result.rowMarginal[0], -std::sqrt(0.5), 1e-5);
}

// The inside of a circle is convex however it is written, its line and its outside are not.
TEST(Product, ofRowsThatHoldAConvexSetLeavesABestPoint) {
  SmallModel model;
  model.column(-1, -3, 3);
  model.column(-1, -3, 3);
  model.row({0, 0}, -1, kInf);
  model.products = {{0, 0, 0, -1.0}, {0, 1, 1, -1.0}};
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::optimal);
  model.rowUpper[0] = -1;
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::locallyOptimal);
  model.rowLower[0] = -kInf;
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::locallyOptimal);
  // Products that cancel leave an equation of a line, x + y = 1.
  model.row({1, 1}, 1, 1);
  model.rowUpper[0] = kInf;
  model.products = {{1, 0, 1, 2.0}, {1, 1, 0, -2.0}};
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::optimal);
  // Beside a row that is convex, an objective that is not.
  model.products = {{0, 0, 0, -1.0}, {0, 1, 1, -1.0}, {kObjectiveRow, 0, 1, 1.0}};
  model.rowLower[0] = -1;
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::locallyOptimal);
}

// x^2 + y^2 <= 1 and x + y >= 5 hold at no point, and rows that are convex tell so.
TEST(Product, ofRowsThatHoldAConvexSetTellsInfeasible) {
  SmallModel model;
  model.column(1, -9, 9);
  model.column(0, -9, 9);
  model.row({0, 0}, -kInf, 1);
  model.row({1, 1}, 5, kInf);
  model.products = {{0, 0, 0, 1.0}, {0, 1, 1, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
}

// x y on a square from -1 to 1 has a saddle in (0, 0), where a start must not stay.
TEST(Product, leavesASaddle) {
  SmallModel model;
  model.column(0, -1, 1);
  model.column(0, -1, 1);
  model.products = {{kObjectiveRow, 0, 1, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, Outcome::locallyOptimal) << result.reason;
  EXPECT_NEAR(model.objective(result.level), -1, 1e-6);
}

TEST(Product, tellsInfeasibleLinearRowsUnderACurvedObjective) {
  SmallModel model;
  model.column(1, 0, kInf);
  model.column(1, 0, kInf);
  model.row({1, 1}, -kInf, 1);
  model.row({1, 1}, 2, kInf);
  model.products = {{kObjectiveRow, 0, 0, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

TEST(Product, tellsUnbounded) {
  SmallModel model;
  model.column(0, 0, kInf);
  model.column(0, 0, kInf);
  model.row({1, -1}, 0, 0);
  model.products = {{kObjectiveRow, 0, 1, -1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

// x^2 >= 30 with x at most 5: the set is not convex, so Ipopt proves nothing.
TEST(Product, doesNotClaimThatCurvedRowsAreInfeasible) {
  SmallModel model;
  model.column(0, -5, 5);
  model.row({0}, 30, kInf);
  model.products = {{0, 0, 0, 1.0}};
  const SolverResult result = solveFresh("ipopt", model);
  EXPECT_EQ(result.outcome, Outcome::failed);
  EXPECT_EQ(result.reason, "ipopt found no feasible point near its start, and rows have products");
  EXPECT_FALSE(result.hasPoint);
}

TEST(Product, tellsCrossingBoundsInfeasible) {
  SmallModel model;
  model.column(0, 5, -5);
  model.column(0, 0, 1);
  model.products = {{kObjectiveRow, 0, 1, 1.0}};
  EXPECT_EQ(solveFresh("ipopt", model).outcome, Outcome::infeasible);
}

TEST(Product, printsNothing) {
  SmallModel model;
  model.column(0, -1, 1);
  model.column(0, -1, 1);
  model.products = {{kObjectiveRow, 0, 1, 1.0}};
  StdoutCapture capture;
  solveFresh("ipopt", model);
  EXPECT_EQ(capture.text(), "");
}

}  // namespace
}  // namespace ztbtest
