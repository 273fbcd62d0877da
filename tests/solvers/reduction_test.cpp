// What is left of problems in integers when what is plain has been taken out; worked by hand, and
// with every point of small problems at random.
#include "providers/model/solvers/reduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "providers/model/solvers/point_check.h"
#include "tests/solvers/every_point.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::LinearForm;
using lomu::Outcome;
using lomu::probeIntegers;
using lomu::Reduction;
using lomu::SolverLimits;
using lomu::SolverResult;
using lomu::Tie;
using lomu::Watch;

class ReductionTest : public testing::Test {
 protected:
  bool reduce(bool everyPoint = true, const SolverLimits& limits = {}) {
    std::string reason;
    EXPECT_TRUE(form_.take(model_.problem(), reason)) << reason;
    watch_.emplace(limits);
    reduction_.emplace(form_, everyPoint, *watch_);
    return reduction_->run();
  }
  bool reduceAndProbe(bool everyPoint) {
    if (!reduce(everyPoint)) return false;
    LinearForm probed = reduction_->small();
    std::vector<Tie> ties;
    if (!probeIntegers(probed, *watch_, 0, &ties)) return true;
    return reduction_->take(probed, ties) && reduction_->run();
  }
  [[nodiscard]] const LinearForm& small() const { return reduction_->small(); }
  void binaries(int count) {
    for (int j = 0; j < count; ++j) model_.column(0, 0, 1, true);
  }
  // Three binaries that no reduction can do without: any two of them, but not all.
  void hardRows() { model_.row(padded({1, 1, 1}), 2, 2); }
  std::vector<double> padded(std::vector<double> row) const {
    row.resize(model_.cost.size());
    return row;
  }

  SmallModel model_;
  LinearForm form_;
  std::optional<Watch> watch_;
  std::optional<Reduction> reduction_;
};

TEST_F(ReductionTest, leavesAProblemThatSaysNothingPlain) {
  binaries(3);
  model_.cost = {-1, -2, -3};
  hardRows();
  ASSERT_TRUE(reduce(false));
  EXPECT_EQ(small().columnCount, 4);
  EXPECT_EQ(small().rowCount, 1);
  EXPECT_EQ(small().lower, (std::vector<double>{0, 0, 0, 1}));
  EXPECT_EQ(small().cost, (std::vector<double>{-1, -2, -3, 0}));
}

// 2k <= 7 with k an integer is k <= 3, and 4y >= 2 is y >= 0.5.
TEST_F(ReductionTest, makesBoundsOfRowsWithOneColumn) {
  binaries(3);
  model_.column(-1, 0, 9, true);
  model_.column(1, 0, 9);
  hardRows();
  model_.row({0, 0, 0, 2, 0}, -kInf, 7);
  model_.row({0, 0, 0, 0, 4}, 2, kInf);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().rowCount, 1);
  EXPECT_EQ(small().upper[3], 3);
  EXPECT_EQ(small().lower[4], 0.5);
}

// With 1.9999985 a check lets 2 pass, which a solver does not take: the row is to say.
TEST_F(ReductionTest, leavesRowsThatAreAHairOffAnInteger) {
  binaries(2);
  model_.row({1, 1}, -kInf, 1.9999985);
  model_.row({1, 0}, -kInf, 0.9999985);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().rowCount, 2);
  EXPECT_EQ(small().rowUpper, (std::vector<double>{1.9999985, 0.9999985}));
}

TEST_F(ReductionTest, leavesOutRowsThatNothingBreaksAndColumnsThatStandStill) {
  binaries(3);
  model_.column(7, 2, 2, true);
  hardRows();
  model_.row({1, 2, 3, 0}, 0, 6);
  // With the 2 that stands, a + b + 2 * 2 >= 5 is a + b >= 1, which the first row says, too.
  model_.row({1, 1, 0, 2}, 5, kInf);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().columnCount, 4);
  EXPECT_EQ(small().cost.back(), 14);
  EXPECT_EQ(small().rowCount, 2);
  EXPECT_EQ(small().rowLower[1], 1);
  EXPECT_EQ(reduction_->whole((std::vector<double>{1, 1, 0, 1}).data()),
            (std::vector<double>{1, 1, 0, 2}));
  EXPECT_EQ(reduction_->part({1, 1, 0, 2}), (std::vector<double>{1, 1, 0, 1}));
}

// With b at 1, 7a + 3b <= 8 leaves a 5 short of its 7 at a = 0: 2a + 3b <= 3. Then b is 1 short.
TEST_F(ReductionTest, tightensCoefficients) {
  binaries(2);
  model_.row({7, 3}, -kInf, 8);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().value, (std::vector<double>{2, 2}));
  EXPECT_EQ(small().rowUpper, (std::vector<double>{2}));
  EXPECT_EQ(reduction_->strengthened(), 2);
}

// The same row turned around, with 1 + a in the place of a.
TEST_F(ReductionTest, tightensCoefficientsOfTheOtherSide) {
  model_.column(0, 1, 2, true);
  binaries(1);
  model_.row({-7, -3}, -15, kInf);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().value, (std::vector<double>{-2, -2}));
  EXPECT_EQ(small().rowLower, (std::vector<double>{-4}));
}

// 4a + 6b - 2k <= 7 with whole numbers is <= 6.
TEST_F(ReductionTest, roundsSidesToMultiplesOfACommonDivisor) {
  binaries(2);
  model_.column(0, 0, 9, true);
  model_.row({4, 6, -2}, -5, 7);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().rowLower, (std::vector<double>{-4}));
  EXPECT_EQ(small().rowUpper, (std::vector<double>{6}));
}

// b is 1 - a, in the row and in the cost.
TEST_F(ReductionTest, putsOneColumnInThePlaceOfAnother) {
  binaries(4);
  model_.cost = {1, 10, 0, 0};
  model_.row({1, 1, 0, 0}, 1, 1);
  model_.row({0, 3, 2, 2}, 4, 5);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().rowCount, 1);
  EXPECT_EQ(small().columnCount, 4);
  std::vector<double> whole = reduction_->whole((std::vector<double>{1, 1, 1, 1}).data());
  EXPECT_EQ(whole[0] + whole[1], 1);
  for (const double a : {0.0, 1.0}) {
    const std::vector<double> part = reduction_->part({a, 1 - a, 1, 1});
    double cost = 0;
    for (std::size_t j = 0; j < part.size(); ++j) cost += small().cost[j] * part[j];
    EXPECT_EQ(cost, 10 - 9 * a);
  }
}

// Twice, and turned around: from 3 to 16 is from 4 to 16, once from 2 to 8.
TEST_F(ReductionTest, makesOneRowOfParallelOnes) {
  binaries(4);
  model_.row({1, 2, 3, 4}, 1, 8);
  model_.row({2, 4, 6, 8}, 3, 16);
  model_.row({-1, -2, -3, -4}, -7, -1);
  ASSERT_TRUE(reduce());
  EXPECT_EQ(small().rowCount, 1);
  ASSERT_EQ(small().value.size(), 4U);
  const double factor = small().value[0];
  EXPECT_EQ(small().rowLower[0], factor > 0 ? 2 * factor : 7 * factor);
  EXPECT_EQ(small().rowUpper[0], factor > 0 ? 7 * factor : 2 * factor);
}

// Nothing holds c down but its cost holds it up.
TEST_F(ReductionTest, sendsColumnsToBoundsUnlessEveryPointIsToStay) {
  binaries(4);
  model_.cost = {0, 0, 0, 4};
  hardRows();
  model_.row({5, 3, 2, 4}, -kInf, 13);
  ASSERT_TRUE(reduce(false));
  EXPECT_EQ(small().columnCount, 4);
  EXPECT_EQ(small().rowCount, 1);
  ASSERT_TRUE(reduce(true));
  EXPECT_EQ(small().columnCount, 5);
}

TEST_F(ReductionTest, tellsThatNothingIsPossible) {
  binaries(2);
  model_.row({1, 1}, 3, kInf);
  EXPECT_FALSE(reduce());
  model_.rowLower = {1.2};
  model_.rowUpper = {1.8};
  EXPECT_FALSE(reduce());
}

TEST_F(ReductionTest, endsWithTheWatch) {
  binaries(2);
  model_.row({1, 1}, 2, kInf);
  for (int k = 1; k <= 600; ++k) model_.row({1, -k / 1000.0}, 0, kInf);
  SolverLimits limits;
  limits.terminated = [](void*) { return std::int32_t{1}; };
  ASSERT_TRUE(reduce(true, limits));
  EXPECT_GT(small().rowCount, 300);
}

// With every point to stay each point of the whole problem is one of the small one and the other
// way round; without, the best objective is the same.
TEST_F(ReductionTest, losesNoBestPoint) {
  constexpr unsigned kProblems = 3000;
  int smaller = 0;
  for (unsigned seed = 0; seed < kProblems; ++seed) {
    SCOPED_TRACE(seed);
    model_ = randomSmallIntegers(seed);
    const bool everyPoint = seed % 2 == 0;
    const bool isPossible = reduceAndProbe(everyPoint);
    const double best = bestOfEveryPoint(form_);
    if (!isPossible) {
      ASSERT_EQ(best, kInf);
      continue;
    }
    if (small().value.size() < form_.value.size()) ++smaller;
    const double smallBest = bestOfEveryPoint(small());
    if (std::isfinite(best)) {
      ASSERT_NEAR(smallBest, best, 1e-6);
    } else {
      ASSERT_EQ(smallBest, best);
    }
    forEveryPoint(small(), [&](const IntegerPoint& point) {
      std::vector<double> level = point.level;
      if (std::isinf(point.least)) level[point.moving] = std::min(0.0, point.most);
      ASSERT_EQ(lomu::violation(form_.problem(), reduction_->whole(level.data())), "");
    });
    if (!everyPoint) continue;
    forEveryPoint(form_, [&](const IntegerPoint& point) {
      std::vector<double> level = point.level;
      if (std::isinf(point.least)) level[point.moving] = std::min(0.0, point.most);
      ASSERT_EQ(lomu::violation(small().problem(), reduction_->part(level)), "");
    });
  }
  EXPECT_GT(smaller, kProblems / 4);
}

// Half of them from a start, which is some point.
TEST_F(ReductionTest, leavesCbcTheBestPoints) {
  for (unsigned seed = 10000; seed < 10400; ++seed) {
    SCOPED_TRACE(seed);
    model_ = randomSmallIntegers(seed);
    std::string reason;
    ASSERT_TRUE(form_.take(model_.problem(), reason)) << reason;
    const double best = bestOfEveryPoint(form_);
    forEveryPoint(form_, [&](const IntegerPoint& point) { model_.level = point.level; });
    lomu::SolverProblem problem = model_.problem();
    problem.levelIsStart = seed % 2 == 0 && std::isfinite(best) ? 1 : 0;
    const auto solver = openSolver("cbc");
    ASSERT_TRUE(solver->load(problem, reason)) << reason;
    SolverResult result = resultFor(model_);
    solver->solve(SolverLimits{}, result);
    ASSERT_EQ(result.startTaken, problem.levelIsStart != 0);
    if (best == kInf) {
      ASSERT_EQ(result.outcome, Outcome::infeasible) << result.reason;
    } else if (best == -kInf) {
      ASSERT_EQ(result.outcome, Outcome::unbounded) << result.reason;
    } else {
      ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
      ASSERT_NEAR(model_.objective(result.level), best, 1e-6);
      ASSERT_NEAR(result.bound, best, 1e-6);
    }
  }
}

}  // namespace
}  // namespace ztbtest
