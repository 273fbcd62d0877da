// Semi-continuous columns and special ordered sets: answers by hand, and by trying every choice.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

class Sets : public testing::Test {
 protected:
  const lomu::SolverProblem& problem() {
    problem_ = model_.problem();
    problem_.hasIntegers = 1;
    problem_.isSemiContinuous = semiContinuous_.empty() ? nullptr : semiContinuous_.data();
    problem_.sets = sets_.data();
    problem_.setCount = static_cast<int>(sets_.size());
    problem_.setColumns = setColumns_.data();
    problem_.setWeights = setWeights_.data();
    return problem_;
  }
  void addSet(int kind, const std::vector<int>& columns) {
    sets_.push_back({kind, static_cast<int>(setColumns_.size()), static_cast<int>(columns.size())});
    for (const int column : columns) {
      setColumns_.push_back(column);
      setWeights_.push_back(static_cast<double>(setWeights_.size()));
    }
  }
  std::string refusal(const char* solver) {
    std::string reason;
    return openSolver(solver)->load(problem(), reason) ? "taken" : reason;
  }
  SolverResult solve() {
    const auto solver = openSolver("cbc");
    std::string reason;
    EXPECT_TRUE(solver->load(problem(), reason)) << reason;
    return solveLive(*solver, model_);
  }

  void clear() {
    model_ = SmallModel();
    semiContinuous_.clear();
    sets_.clear();
    setColumns_.clear();
    setWeights_.clear();
  }
  // All columns are semi-continuous (kind 0), or a set of this kind.
  void limitChoices(int kind) {
    std::vector<int> columns(model_.cost.size());
    std::iota(columns.begin(), columns.end(), 0);
    if (kind == 0) {
      semiContinuous_.assign(columns.size(), 1);
    } else {
      addSet(kind, columns);
    }
  }
  // The best objective over the columns that may differ from 0 together, by GLPK: infinite where no
  // choice has a point, -infinite where one has no end.
  double bestOfChoices(int kind) {
    double best = kInf;
    for (unsigned choice = 0; choice < 1U << model_.cost.size(); ++choice) {
      const unsigned neighbours = choice & (choice << 1);
      const int chosen = __builtin_popcount(choice);
      if (kind == 1 && chosen > 1) continue;
      if (kind == 2 && (chosen > 2 || (chosen == 2 && neighbours == 0))) continue;
      SmallModel one = model_;
      for (std::size_t j = 0; j < one.cost.size(); ++j) {
        if ((choice >> j & 1U) == 0) one.lower[j] = one.upper[j] = 0;
      }
      const SolverResult result = solveFresh("glpk", one);
      if (result.outcome == Outcome::unbounded) best = -kInf;
      if (result.outcome == Outcome::optimal) best = std::min(best, one.objective(result.level));
    }
    return best;
  }

  SmallModel model_;
  std::vector<char> semiContinuous_;
  std::vector<ztbSolverSet> sets_;
  std::vector<int> setColumns_;
  std::vector<double> setWeights_;

 private:
  lomu::SolverProblem problem_{};
};

// x is 0 or from 5 to 10, y to 10, x + y at least 4.
TEST_F(Sets, ASemiContinuousColumnIsZeroOrWithinItsBounds) {
  model_.column(2, 5, 10);
  model_.column(3, 0, 10);
  model_.row({1, 1}, 4, kInf);
  semiContinuous_ = {1, 0};
  SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 5, 1e-9);
  EXPECT_NEAR(result.level[1], 0, 1e-9);
  model_.cost = {3, 2};
  result = solve();
  EXPECT_NEAR(result.level[0], 0, 1e-9);
  EXPECT_NEAR(result.level[1], 4, 1e-9);
  EXPECT_NEAR(result.rowMarginal[0], 2, 1e-9);
  model_.upper[1] = 3;
  result = solve();
  EXPECT_NEAR(model_.objective(result.level), 15, 1e-9);
  model_.rowUpper[0] = 4.5;
  EXPECT_EQ(solve().outcome, Outcome::infeasible);
}

TEST_F(Sets, ASemiContinuousColumnBelowZero) {
  model_.column(1, -10, -5);
  model_.row({1}, -4, kInf);
  semiContinuous_ = {1};
  EXPECT_NEAR(solve().level[0], 0, 1e-9);
  model_.rowLower[0] = -7;
  EXPECT_NEAR(solve().level[0], -7, 1e-9);
}

TEST_F(Sets, OneColumnAtMostOfASetOfKind1) {
  model_.column(-3, 0, 4);
  model_.column(-2, 0, 10);
  model_.column(-4, 0, 3);
  model_.row({1, 1, 1}, -kInf, 20);
  addSet(1, {0, 1, 2});
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model_.objective(result.level), -20, 1e-9);
  EXPECT_NEAR(result.level[1], 10, 1e-9);
}

// The highest y at x = 3.5 on a line through (0, 0), (2, 5), (5, 4) and (9, 10) is 4.5; that of the
// points' hull would be above 6.
TEST_F(Sets, TwoNeighboursAtMostOfASetOfKind2) {
  for (const double y : {0.0, 5.0, 4.0, 10.0}) model_.column(-y, 0, 1);
  model_.row({1, 1, 1, 1}, 1, 1);
  model_.row({0, 2, 5, 9}, 3.5, 3.5);
  addSet(2, {0, 1, 2, 3});
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model_.objective(result.level), -4.5, 1e-9);
  EXPECT_NEAR(result.level[1], 0.5, 1e-9);
  EXPECT_NEAR(result.level[2], 0.5, 1e-9);
}

// Against the best of all choices of the columns that may differ from 0.
TEST_F(Sets, AreTheBestOfAllChoices) {
  std::mt19937 random(3);
  const auto between = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  for (int kind = 0; kind <= 2; ++kind) {
    for (int round = 0; round < 15; ++round) {
      SCOPED_TRACE(testing::Message() << "kind " << kind << " round " << round);
      clear();
      constexpr int kColumns = 5;
      for (int j = 0; j < kColumns; ++j) {
        const int low = kind == 0 ? between(1, 4) : between(-2, 0);
        model_.column(between(-5, 5), low, low + between(2, 6));
      }
      for (int i = 0; i < 3; ++i) {
        std::vector<double> row;
        for (int j = 0; j < kColumns; ++j) row.push_back(between(-3, 3));
        model_.row(row, i == 0 ? 1 : -kInf, between(2, 12));
      }
      limitChoices(kind);
      const double best = bestOfChoices(kind);
      const SolverResult result = solve();
      if (std::isinf(best)) {
        EXPECT_EQ(result.outcome, Outcome::infeasible);
        continue;
      }
      ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
      EXPECT_NEAR(model_.objective(result.level), best, 1e-6);
    }
  }
}

TEST_F(Sets, AreRefusedByTheOtherSolvers) {
  model_.column(1, 0, 4);
  model_.column(1, 0, 4);
  model_.row({1, 1}, 1, 5);
  addSet(1, {0, 1});
  const std::string why =
      "the model has semi-continuous columns or special ordered sets, which cbc solves";
  EXPECT_EQ(refusal("clp"), "clp solves linear models without integers: " + why);
  EXPECT_EQ(refusal("glpk"), "glpk solves linear models: " + why);
  EXPECT_EQ(refusal("ipopt"), "ipopt solves continuous models: " + why);
  EXPECT_EQ(refusal("bonmin"), "bonmin solves models with products and integers: " + why);
}

// x is 0 or at least 2, without end, and x + y at least 1: 2 of x cost less than 1 of y.
TEST_F(Sets, ASemiContinuousColumnNeedsNoUpperBound) {
  model_.column(1, 2, kInf);
  model_.column(3, 0, 10);
  model_.row({1, 1}, 1, kInf);
  semiContinuous_ = {1, 0};
  SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 2, 1e-9);
  EXPECT_NEAR(result.level[1], 0, 1e-9);
  EXPECT_NEAR(result.bound, 2, 1e-9);
  // 1 of y costs less than 2 of x.
  model_.cost[1] = 1.5;
  result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0, 1e-9);
  EXPECT_NEAR(result.level[1], 1, 1e-9);
  EXPECT_NEAR(result.rowMarginal[0], 1.5, 1e-9);
  // Far beyond what anyone would make up for a bound.
  model_.rowLower[0] = 4e8;
  result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 4e8, 1);
  model_.cost[0] = -1;
  EXPECT_EQ(solve().outcome, Outcome::unbounded);
}

// The same below 0: x is 0 or at most -2.
TEST_F(Sets, ASemiContinuousColumnNeedsNoLowerBound) {
  model_.column(-1, -kInf, -2);
  model_.column(3, 0, 10);
  model_.row({-1, 1}, 1, kInf);
  semiContinuous_ = {1, 0};
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], -2, 1e-9);
  model_.cost[0] = 1;
  EXPECT_EQ(solve().outcome, Outcome::unbounded);
}

// x is 0 or from 0.5 to 1e9, and at least 0.3: a binary column at 3e-10 is no 0 of it.
TEST_F(Sets, ASemiContinuousColumnMayHaveALargeUpperBound) {
  model_.column(1, 0.5, 1e9);
  model_.row({1}, 0.3, kInf);
  semiContinuous_ = {1};
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0.5, 1e-9);
}

// Of x and y, both free, one is 0; x = y leaves 0 alone, though without the set both grow.
TEST_F(Sets, ASetWithoutBoundsHoldsWhatWouldHaveNoEnd) {
  model_.column(-1, -kInf, kInf);
  model_.column(-1, -kInf, kInf);
  model_.row({1, -1}, 0, 0);
  addSet(1, {0, 1});
  SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0, 1e-9);
  EXPECT_NEAR(result.level[1], 0, 1e-9);
  model_.rowLower[0] = -3;
  model_.rowUpper[0] = 2;
  // x - y from -3 to 2: y = 3 alone.
  result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[1], 3, 1e-9);
  model_.rowUpper[0] = kInf;
  result = solve();
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
  model_.cost = {1, -1};
  EXPECT_NEAR(model_.objective(solve().level), -3, 1e-9);
}

// Without bounds, against the best of all choices: unbounded where one has no end.
TEST_F(Sets, WithoutBoundsAreTheBestOfAllChoices) {
  std::mt19937 random(5);
  const auto between = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  int optima = 0;
  int endless = 0;
  for (int round = 0; round < 150; ++round) {
    const int kind = round % 3;
    SCOPED_TRACE(testing::Message() << "kind " << kind << " round " << round);
    clear();
    constexpr int kColumns = 5;
    for (int j = 0; j < kColumns; ++j) {
      const bool isEndless = between(0, 3) > 0;
      const double low = kind == 0 ? between(1, 4) : isEndless && between(0, 1) == 0 ? -kInf : -1;
      model_.column(between(-2, 6), low, isEndless ? kInf : 6);
    }
    for (int i = 0; i < 4; ++i) {
      std::vector<double> row;
      for (int j = 0; j < kColumns; ++j) row.push_back(between(-2, 4));
      model_.row(row, i == 3 ? -kInf : between(0, 3), i == 3 ? between(4, 20) : kInf);
    }
    limitChoices(kind);
    const double best = bestOfChoices(kind);
    const SolverResult result = solve();
    if (std::isinf(best)) {
      endless += best < 0 ? 1 : 0;
      EXPECT_EQ(result.outcome, best > 0 ? Outcome::infeasible : Outcome::unbounded)
          << result.reason;
      continue;
    }
    ++optima;
    ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
    EXPECT_NEAR(model_.objective(result.level), best, 1e-6);
  }
  EXPECT_GT(optima, 40);
  EXPECT_GT(endless, 10);
}

// At most one of x, y and z, whose sum is at most 40: 3 z = 120 is best, 2 y = 80 without it.
TEST_F(Sets, TakeBoundsThatARowImplies) {
  for (const double cost : {-1.0, -2.0, -3.0}) model_.column(cost, 0, kInf);
  model_.row({1, 1, 1}, -kInf, 40);
  addSet(1, {0, 1, 2});
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[2], 40, 1e-6);
  model_.row({0, 0, 1}, -kInf, 0);
  EXPECT_NEAR(model_.objective(solve().level), -80, 1e-6);
}

// x - 2 y = 4 and y at most 3 let x reach 10, by -y >= -3 of a row; y >= -5 lets it fall to -6. Of
// x and y one is not 0: x = 4 or y = -2, and x + y is least at -2.
TEST_F(Sets, TakeBoundsThatFollowFromOneAnother) {
  model_.column(1, -kInf, kInf);
  model_.column(1, -5, kInf);
  model_.row({1, -2}, 4, 4);
  model_.row({0, -1}, -3, kInf);
  addSet(1, {0, 1});
  const SolverResult result = solve();
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0, 1e-6);
  EXPECT_NEAR(result.level[1], -2, 1e-6);
}

// x is 0 or at least 5, and x + y at most 12; y from 0 to 2, x + y at least 3: x is 5.
TEST_F(Sets, ASemiContinuousColumnTakesItsUpperBoundFromARow) {
  model_.column(1, 5, kInf);
  model_.column(3, 0, 2);
  model_.row({1, 1}, 3, 12);
  semiContinuous_ = {1, 0};
  EXPECT_NEAR(model_.objective(solve().level), 5, 1e-6);
  model_.cost[0] = -1;
  EXPECT_NEAR(model_.objective(solve().level), -12, 1e-6);
}

}  // namespace
}  // namespace ztbtest
