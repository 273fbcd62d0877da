// What GLPK leaves to its simplex method, counted in iterations: nothing of problems over integers
// that its presolve solves.
#include <gtest/gtest.h>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

// Two of the first and three of the second of integers with 2 x >= 3 and 3 y >= 7: rows of one
// column, which presolve makes bounds. Without integers, or with costs in thousandths, which are
// not presolved, the simplex method has to move both columns, or both rows.
SmallModel rowsOfOneColumn(bool integers, double cost) {
  SmallModel model;
  model.column(cost, 0, 9, integers);
  model.column(cost, 0, 9, integers);
  model.row({2, 0}, 3, kInf);
  model.row({0, 3}, 7, kInf);
  return model;
}

TEST(GlpkPresolve, solvesRowsOfOneInteger) {
  SmallModel model = rowsOfOneColumn(true, 1);
  const SolverResult result = solveFresh("glpk", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(model.objective(result.level), 5);
  EXPECT_EQ(result.iterations, 0);
}

TEST(GlpkPresolve, isNotThereWhereNumbersAreNotWhole) {
  SmallModel model = rowsOfOneColumn(true, 1.001);
  const SolverResult result = solveFresh("glpk", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_DOUBLE_EQ(model.objective(result.level), 5 * 1.001);
  EXPECT_GE(result.iterations, 2);
}

// x >= y + 1 and y >= x + 1 leave no point. Presolve would move the lower bounds on for ever where
// nothing ends the two, and for hours where their upper bounds are far away.
TEST(GlpkPresolve, isNotThereWhereItWouldNotEnd) {
  for (const double upper : {kInf, 1e12}) {
    SmallModel model;
    model.column(1, 0, upper, true);
    model.column(1, 0, upper, true);
    model.row({1, -1}, 1, kInf);
    model.row({-1, 1}, 1, kInf);
    EXPECT_EQ(solveFresh("glpk", model).outcome, Outcome::infeasible) << upper;
  }
}

}  // namespace
}  // namespace ztbtest
