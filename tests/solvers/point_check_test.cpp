// The last look at a solver's point, to 1e-6 of the largest number in a bound or row.
#include "providers/model/solvers/point_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

// x from 0 to 4, y free and integer, x + y from 1 to 3, 1e8 x - 1e8 y = 0 but for the test.
class PointCheck : public testing::Test {
 protected:
  PointCheck() {
    model_.column(1, 0, 4);
    model_.column(1, -kInf, kInf, true);
    model_.row({1, 1}, 1, 3);
    model_.row({1e8, -1e8}, -kInf, kInf);
  }
  std::string found(double x, double y) { return lomu::violation(model_.problem(), {x, y}); }

  SmallModel model_;
};

TEST_F(PointCheck, FindsNothingInsideOfAllBounds) {
  EXPECT_EQ(found(0, 1), "");
  EXPECT_EQ(found(4, -1), "");
}

TEST_F(PointCheck, NamesAColumnOutsideOfItsBounds) {
  EXPECT_EQ(found(4 + 3.9e-6, -1), "") << "4e-6 is 1e-6 of the level";
  EXPECT_EQ(found(4.5, -2), "column #0 at 4.500000 is outside of 0.000000 to 4.000000");
  EXPECT_EQ(found(-1.1e-6, 2), "column #0 at -0.000001 is outside of 0.000000 to 4.000000");
}

TEST_F(PointCheck, NamesALevelThatIsNoNumber) {
  EXPECT_EQ(found(std::numeric_limits<double>::quiet_NaN(), 1),
            "column #0 at nan is outside of 0.000000 to 4.000000");
  EXPECT_EQ(found(1, kInf), "column #1 at inf is outside of -inf to inf");
}

TEST_F(PointCheck, NamesAnIntegerColumnBetweenIntegers) {
  EXPECT_EQ(found(1, 1.0000009), "");
  EXPECT_EQ(found(1, 1.25), "column #1 at 1.250000 is no integer");
}

TEST_F(PointCheck, NamesARowOutsideOfItsBounds) {
  EXPECT_EQ(found(0.9999995, 0), "");
  EXPECT_EQ(found(0.5, 0), "row #0 at 0.500000 is outside of 1.000000 to 3.000000");
  EXPECT_EQ(found(4, 1), "row #0 at 5.000000 is outside of 1.000000 to 3.000000");
}

// The terms are 1e8 each, so that a difference of 100 is nothing.
TEST_F(PointCheck, MeasuresARowByItsLargestTerm) {
  model_.rowLower[1] = model_.rowUpper[1] = 0;
  EXPECT_EQ(found(1 + 0.9e-6, 1), "");
  EXPECT_EQ(found(1 + 1.1e-6, 1), "row #1 at 110.000000 is outside of 0.000000 to 0.000000");
}

TEST_F(PointCheck, CountsProductsInRows) {
  model_.products = {{0, 0, 1, 2.0}, {lomu::kObjectiveRow, 0, 1, 1e9}};
  EXPECT_EQ(found(1, 1), "row #0 at 4.000000 is outside of 1.000000 to 3.000000");
  EXPECT_EQ(found(1.5, 0), "");
}

TEST_F(PointCheck, TakesBackAPointThatViolatesTheModel) {
  for (const Outcome outcome : {Outcome::optimal, Outcome::locallyOptimal}) {
    SolverResult result = resultFor(model_);
    result.level = {0.5, 0};
    result.hasPoint = true;
    result.outcome = outcome;
    confirmPoint(model_.problem(), result);
    EXPECT_FALSE(result.hasPoint);
    EXPECT_EQ(result.outcome, Outcome::failed);
    EXPECT_EQ(result.reason,
              "the solution violates the model: row #0 at 0.500000 is outside of 1.000000 to "
              "3.000000");
  }
}

TEST_F(PointCheck, LeavesTheReasonOfALimitAlone) {
  SolverResult result = resultFor(model_);
  result.level = {0.5, 0};
  result.hasPoint = true;
  result.outcome = Outcome::timeLimit;
  confirmPoint(model_.problem(), result);
  EXPECT_FALSE(result.hasPoint);
  EXPECT_EQ(result.outcome, Outcome::timeLimit);
}

}  // namespace
}  // namespace ztbtest
