// What objectives of best points differ by at least, for problems whose best points are known.
#include "providers/model/solvers/objective_step.h"

#include <gtest/gtest.h>

#include <string>

#include "providers/model/solvers/linear_form.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

double stepOf(SmallModel& model) {
  lomu::LinearForm form;
  std::string reason;
  EXPECT_TRUE(form.take(model.problem(), reason)) << reason;
  return lomu::objectiveStep(form);
}

TEST(ObjectiveStep, isTheDivisorOfCostsOfIntegers) {
  SmallModel model;
  model.column(6, 0, 1, true);
  model.column(-9, 0, 7, true);
  model.column(1, 4, 4, true);  // stands still
  model.column(0, 0, kInf, false);
  model.row({1.5, 1, 0, 0.3}, 1, kInf);
  EXPECT_EQ(stepOf(model), 3);
}

TEST(ObjectiveStep, takesPartsOfOne) {
  SmallModel model;
  model.column(0.25, 0, 1, true);
  model.column(1.5, 0, 7, true);
  EXPECT_EQ(stepOf(model), 0.25);
  SmallModel third;
  third.column(1.0 / 3, 0, 1, true);
  EXPECT_EQ(stepOf(third), 0);
  SmallModel none;
  none.column(0, 0, 1, true);
  EXPECT_EQ(stepOf(none), 0);
}

// Two periods: x + s0 - s1 = d, x <= 10 y, and x0 + x1 <= 12.
SmallModel lots(double demand, double capacity, double shared) {
  SmallModel model;
  for (int t = 0; t < 2; ++t) {
    model.column(2, 0, kInf, false);  // x
    model.column(4, 0, kInf, false);  // s
    model.column(16, 0, 1, true);     // y
  }
  model.row({1, -1, 0, 0, 0, 0}, demand, demand);
  model.row({0, 1, 0, 1, -1, 0}, 3, 3);
  model.row({1, 0, -capacity, 0, 0, 0}, -kInf, 0);
  model.row({0, 0, 0, 1, 0, -capacity}, -kInf, 0);
  model.row({1, 0, 0, shared, 0, 0}, -kInf, 12);
  return model;
}

TEST(ObjectiveStep, takesFlowsOfWholeNumbers) {
  SmallModel whole = lots(4, 10, 1);
  EXPECT_EQ(stepOf(whole), 2);
  SmallModel halfDemand = lots(4.5, 10, 1);
  EXPECT_EQ(stepOf(halfDemand), 0);
  SmallModel halfCapacity = lots(4, 9.5, 1);
  EXPECT_EQ(stepOf(halfCapacity), 0);
  SmallModel twice = lots(4, 10, 2);
  EXPECT_EQ(stepOf(twice), 0);
}

// An end c after two jobs, one before the other or after it; in fives, where all of a row is.
TEST(ObjectiveStep, takesDifferencesOfWholeNumbers) {
  const auto jobs = [](double length, double end) {
    SmallModel model;
    model.column(3, 0, kInf, false);  // c
    model.column(0, 0, end, false);
    model.column(0, 0, kInf, false);
    model.column(0, 0, 1, true);
    model.row({5, -5, 0, 0}, 20, kInf);
    model.row({1, 0, -1, 0}, length, kInf);
    model.row({0, 1, -1, 50}, 7, kInf);
    model.row({0, -1, 1, -50}, -46, kInf);
    return stepOf(model);
  };
  EXPECT_EQ(jobs(7, kInf), 3);
  EXPECT_EQ(jobs(7, 11), 3);
  EXPECT_EQ(jobs(7.5, kInf), 0);
  EXPECT_EQ(jobs(7, 11.5), 0);
}

// x + y = 1, y + z = 1, z + x = 1 has x = y = z = 0.5 alone: no signs make these flows.
TEST(ObjectiveStep, knowsAnOddCircle) {
  SmallModel model;
  for (int j = 0; j < 3; ++j) model.column(1, 0, 1, false);
  model.row({1, 1, 0}, 1, 1);
  model.row({0, 1, 1}, 1, 1);
  model.row({1, 0, 1}, 1, 1);
  EXPECT_EQ(stepOf(model), 0);
}

TEST(ObjectiveStep, isNoneWhereAContinuousCostIsNotWhole) {
  SmallModel model;
  model.column(1, 0, 1, true);
  model.column(1, 0, kInf, false);
  model.row({1, 3}, 2, kInf);
  EXPECT_EQ(stepOf(model), 0);
}

}  // namespace
}  // namespace ztbtest
