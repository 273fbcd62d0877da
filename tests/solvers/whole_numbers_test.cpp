// Which problems hold nothing but whole numbers.
#include "providers/model/solvers/whole_numbers.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

class WholeNumbers : public testing::Test {
 protected:
  // A binary column x and a column y that need not be an integer: x + y >= 2, y <= 30 x.
  WholeNumbers() {
    model_.column(1.25, 0, 1, true);
    model_.column(3, -kInf, 40);
    model_.row({1, 1}, 2, kInf);
    model_.row({30, -1}, 0, kInf);
  }
  bool holds() {
    lomu::LinearForm form;
    std::string reason;
    EXPECT_TRUE(form.take(model_.problem(), reason)) << reason;
    return lomu::hasWholeNumbers(form);
  }
  SmallModel model_;
};

TEST_F(WholeNumbers, areThereWithHundredthsOfCost) {
  EXPECT_TRUE(holds());
  model_.cost[0] = -0.07;
  EXPECT_TRUE(holds());
}

TEST_F(WholeNumbers, haveNoSmallerPartsOfCost) {
  for (const double cost : {0.001, 1.255, 1.25 + 1e-9, 1e-12, 2e6}) {
    model_.cost[0] = cost;
    EXPECT_FALSE(holds()) << cost;
  }
}

TEST_F(WholeNumbers, areThoseOfSidesAndBounds) {
  model_.rowLower[0] = 2.5;
  EXPECT_FALSE(holds());
  model_.rowLower[0] = 200000;
  EXPECT_FALSE(holds());
  model_.rowLower[0] = 2;
  model_.upper[1] = 40.5;
  EXPECT_FALSE(holds());
}

TEST_F(WholeNumbers, areThoseOfCoefficients) {
  model_.rows[1][0] = 30.5;
  EXPECT_FALSE(holds());
  model_.rows[1][0] = 20000;
  EXPECT_FALSE(holds());
}

// A row that such a column is put out of is divided by its coefficient.
TEST_F(WholeNumbers, areOnesAtColumnsThatNeedNotBeIntegers) {
  model_.rows[1][1] = -3;
  EXPECT_FALSE(holds());
  model_.isInteger[1] = 1;
  EXPECT_TRUE(holds());
}

}  // namespace
}  // namespace ztbtest
