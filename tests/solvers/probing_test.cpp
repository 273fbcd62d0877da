// What integers must be, by trying both of two values; worked by hand.
#include "providers/model/solvers/probing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/solvers/every_point.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::LinearForm;
using lomu::Outcome;
using lomu::SolverLimits;
using lomu::SolverResult;
using lomu::Watch;

class Probing : public testing::Test {
 protected:
  bool probe(const SolverLimits& limits = {}) {
    std::string reason;
    EXPECT_TRUE(form_.take(model_.problem(), reason)) << reason;
    Watch watch(limits);
    return lomu::probeIntegers(form_, watch);
  }
  void binaries(int count) {
    for (int j = 0; j < count; ++j) model_.column(0, 0, 1, true);
  }
  // With the first of three at 0, the third is to be 1 and 0 at once. So it is 1, and the second 0.
  void decideTwoOfThree() {
    binaries(3);
    model_.row({1, 1, 0}, 1, 1);
    model_.row({1, 0, 1}, 1, kInf);
    model_.row({1, 0, -1}, 0, kInf);
  }

  SmallModel model_;
  LinearForm form_;
};

TEST_F(Probing, leavesTheValueThatContradictsNothing) {
  decideTwoOfThree();
  EXPECT_TRUE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{1, 0, 0}));
  EXPECT_EQ(form_.upper, (std::vector<double>{1, 0, 1}));
}

// k >= 5b, k >= 5 - 5b, k <= 5 + 4b, k <= 9 - 4b: with b at 0 as with b at 1, k is 5.
TEST_F(Probing, takesWhatBothValuesLeadTo) {
  binaries(1);
  model_.column(1, 0, 9, true);
  model_.row({-5, 1}, 0, kInf);
  model_.row({5, 1}, 5, kInf);
  model_.row({-4, 1}, -kInf, 5);
  model_.row({4, 1}, -kInf, 9);
  EXPECT_TRUE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{0, 5}));
  EXPECT_EQ(form_.upper, (std::vector<double>{1, 5}));
}

// Of a, b, c with a + b = 1, b + c = 1, a + c = 1 none can be.
TEST_F(Probing, leavesAContradictionToTheSearch) {
  binaries(3);
  model_.row({1, 1, 0}, 1, 1);
  model_.row({0, 1, 1}, 1, 1);
  model_.row({1, 0, 1}, 1, 1);
  EXPECT_FALSE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(form_.upper, (std::vector<double>{1, 1, 1}));
}

// Two of seven are less than a third.
TEST_F(Probing, leavesAProblemAsItIsWhenLittleIsDecided) {
  decideTwoOfThree();
  binaries(4);
  for (auto& row : model_.rows) row.resize(7);
  EXPECT_FALSE(probe());
  EXPECT_EQ(form_.lower, std::vector<double>(7, 0.0));
  EXPECT_EQ(form_.upper, std::vector<double>(7, 1.0));
}

// 0.1 + 0.2 is a little more than 0.3; a + b >= 2 - 1e-6 holds at 1 and 0.999999, but not at 0.
TEST_F(Probing, leavesRowsTheRoomOfACheck) {
  binaries(2);
  model_.row({0.1, 0.2}, -kInf, 0.3);
  model_.row({1, 1}, 2 - 1e-6, kInf);
  EXPECT_TRUE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{1, 1}));

  // 2x + 2y = 1.9999985 is missed by 1.5e-6 of terms of 2 at (1, 0), which a check lets pass.
  model_ = {};
  binaries(2);
  model_.row({2, 2}, 1.9999985, 1.9999985);
  model_.row({1, -1}, 0, kInf);
  EXPECT_TRUE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{1, 0}));
  EXPECT_EQ(form_.upper, (std::vector<double>{1, 0}));
}

// y - 7x >= 0 and y <= 7x + 3 with x at 1 have y from 7 to 10; bounds of y are no integers' bounds.
TEST_F(Probing, leavesColumnsThatAreNoIntegers) {
  decideTwoOfThree();
  model_.column(1, -kInf, kInf);
  for (auto& row : model_.rows) row.resize(4);
  model_.row({-7, 0, 0, 1}, 0, 3);
  EXPECT_TRUE(probe());
  EXPECT_EQ(form_.lower, (std::vector<double>{1, 0, 0, -kInf}));
  EXPECT_EQ(form_.upper, (std::vector<double>{1, 0, 1, kInf}));
}

TEST_F(Probing, endsWithTheWatch) {
  decideTwoOfThree();
  SolverLimits limits;
  limits.terminated = [](void*) { return std::int32_t{1}; };
  EXPECT_FALSE(probe(limits));
  EXPECT_EQ(form_.lower, (std::vector<double>{0, 0, 0}));
}

// As above with the costs 2, 1, 1 of the integers and 3 of y, at least 7x + 1.5: 2 + 3 * 8.5. A
// unit of the last row costs 3, and the others, which integers alone are in, nothing.
TEST_F(Probing, changesNeitherPointNorMarginalsNorBoundOfASolve) {
  decideTwoOfThree();
  model_.cost = {2, 1, 1};
  model_.column(3, -kInf, kInf);
  for (auto& row : model_.rows) row.resize(4);
  model_.row({-7, 0, 0, 1}, 1.5, kInf);
  const SolverResult result = solveFresh("cbc", model_);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{1, 0, 0, 8.5}));
  EXPECT_NEAR(result.rowMarginal[3], 3, 1e-9);
  EXPECT_NEAR(result.bound, 27.5, 1e-6);
}

// a + b = 1, and c = 5 a by two rows: b and c follow from a.
TEST_F(Probing, findsIntegersThatFollowFromAnother) {
  binaries(2);
  model_.column(0, 0, 5, true);
  model_.row({1, 1, 0}, 1, 1);
  model_.row({-5, 0, 1}, 0, kInf);
  model_.row({0, 5, 1}, -kInf, 5);
  std::string reason;
  ASSERT_TRUE(form_.take(model_.problem(), reason)) << reason;
  Watch watch{SolverLimits{}};
  std::vector<lomu::Tie> ties;
  lomu::probeIntegers(form_, watch, 0, &ties);
  ASSERT_EQ(ties.size(), 2U);
  for (const lomu::Tie& tie : ties) {
    EXPECT_EQ(tie.other, 0);
    EXPECT_EQ(tie.offset, tie.column == 1 ? 1 : 0);
    EXPECT_EQ(tie.factor, tie.column == 1 ? -1 : 5);
  }
}

// Every choice of integers that bounds and rows allow is left, and what it leaves the last column.
TEST_F(Probing, losesNoPoint) {
  constexpr unsigned kProblems = 3000;
  int changed = 0;
  for (unsigned seed = 0; seed < kProblems; ++seed) {
    SCOPED_TRACE(seed);
    model_ = randomSmallIntegers(seed);
    std::string reason;
    ASSERT_TRUE(form_.take(model_.problem(), reason)) << reason;
    const LinearForm whole = form_;
    Watch watch{SolverLimits{}};
    const bool isChanged = lomu::probeIntegers(form_, watch, 0);
    if (isChanged && (form_.lower != whole.lower || form_.upper != whole.upper)) ++changed;
    forEveryPoint(whole, [&](const IntegerPoint& point) {
      for (std::size_t j = 0; j + 1 < point.level.size(); ++j) {
        ASSERT_LE(form_.lower[j], point.level[j]) << j;
        ASSERT_GE(form_.upper[j], point.level[j]) << j;
      }
      ASSERT_LE(form_.lower.back(), point.least + 1e-5);
      ASSERT_GE(form_.upper.back(), point.most - 1e-5);
    });
  }
  EXPECT_GT(changed, kProblems / 4);
}

// Whether anything is solved at all is left to the rows: the start of a search is taken as before.
TEST_F(Probing, leavesTheStartOfASearch) {
  decideTwoOfThree();
  model_.cost = {2, 1, 1};
  model_.level = {1, 0, 1};
  lomu::SolverProblem problem = model_.problem();
  problem.levelIsStart = 1;
  const auto solver = openSolver("cbc");
  std::string reason;
  ASSERT_TRUE(solver->load(problem, reason)) << reason;
  SolverResult result = resultFor(model_);
  solver->solve(SolverLimits{}, result);
  EXPECT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_TRUE(result.startTaken);
  EXPECT_EQ(result.level, (std::vector<double>{1, 0, 0}));
}

}  // namespace
}  // namespace ztbtest
