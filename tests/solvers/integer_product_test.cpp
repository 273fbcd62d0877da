// Problems with products of columns and integers, worked by hand, or by trying all integers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#include "tests/solvers/small_model.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

using lomu::kObjectiveRow;
using lomu::Outcome;
using lomu::Position;
using lomu::SolverLimits;
using lomu::SolverResult;

// The square of (x - at) in the objective, without its constant.
void addSquare(SmallModel& model, int x, double at) {
  model.cost[static_cast<std::size_t>(x)] -= 2 * at;
  model.products.push_back({kObjectiveRow, x, x, 1.0});
}

// (1.6, 2.3) would round to (2, 2), which the row forbids; (1, 2) is 0.36 + 0.09 away in squares,
// (2, 1) 1.85. The constant is 2.56 + 5.29.
SmallModel closestPoint() {
  SmallModel model;
  model.column(0, 0, 5, true);
  model.column(0, 0, 5, true);
  model.row({1, 2}, -kInf, 5);
  addSquare(model, 0, 1.6);
  addSquare(model, 1, 2.3);
  return model;
}

// A column that the search had fixed was taken for one to branch on, which ended the process in an
// assertion. The best of all points that the rows leave.
TEST(IntegerProduct, branchesOnNoFixedColumn) {
  SmallModel model;
  model.column(8, -1, 3, true);
  model.column(6, -3, 1, true);
  model.column(0, -1, 0, true);
  model.row({3, 3, 2}, -kInf, 2);
  model.row({-2, 2, -3}, -kInf, 2);
  model.row({2, 3, -2}, -kInf, 1);
  for (const int x : {0, 1, 2}) model.products.push_back({kObjectiveRow, x, x, 3});
  model.products.push_back({kObjectiveRow, 0, 1, 2});
  model.products.push_back({kObjectiveRow, 0, 2, -4});
  model.products.push_back({kObjectiveRow, 1, 2, -4});
  const SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(model.objective(result.level), -10, 1e-6);
}

TEST(IntegerProduct, findsTheClosestIntegerPoint) {
  SmallModel model = closestPoint();
  const SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_TRUE(result.hasPoint);
  EXPECT_EQ(result.level, (std::vector<double>{1, 2}));
  EXPECT_NEAR(model.objective(result.level), 0.45 - 7.85, 1e-9);
  EXPECT_NEAR(result.bound, 0.45 - 7.85, 1e-5);
  EXPECT_EQ(result.position[0], Position::superbasic);
}

TEST(IntegerProduct, roundsBoundsOfIntegersInwards) {
  SmallModel model = closestPoint();
  model.lower[0] = 1.1;
  model.upper[0] = 3.9;
  // (2, 1): 0.16 + 1.69.
  SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{2, 1}));
  EXPECT_EQ(result.position[0], Position::atLower);
  model.upper[0] = 1.9;
  EXPECT_EQ(solveFresh("bonmin", model).outcome, Outcome::infeasible);
}

// (x - 3)^2 + c b where x <= 10 b: with b = 1 it costs c, with b = 0 it costs 9, and a unit more on
// the right of the row is then worth 6.
TEST(IntegerProduct, choosesWhetherToPayForABinary) {
  SmallModel model;
  model.column(0, -5, kInf);
  model.column(2, 0, 1, true);
  model.row({1, -10}, -kInf, 0);
  addSquare(model, 0, 3);
  SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 3, 1e-6);
  EXPECT_EQ(result.level[1], 1);
  EXPECT_EQ(result.position[1], Position::atUpper);
  EXPECT_NEAR(model.objective(result.level), 2 - 9, 1e-6);
  EXPECT_EQ(result.rowMarginal[0], 0);

  model.cost[1] = 10;
  result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 0, 1e-6);
  EXPECT_EQ(result.level[1], 0);
  EXPECT_NEAR(model.objective(result.level), 0, 1e-5);
  EXPECT_NEAR(result.rowMarginal[0], -6, 1e-4);
}

// 2 x + 2 y = 3 has no integers, though it has points between them: told without trying each of
// the 10^10 pairs.
TEST(IntegerProduct, tellsThatThereIsNoIntegerPoint) {
  SmallModel model;
  model.column(0, 0, 1e5, true);
  model.column(0, 0, 1e5, true);
  model.row({2, 2}, 3, 3);
  addSquare(model, 0, 1.5);
  addSquare(model, 1, 1.5);
  const SolverResult result = solveFresh("bonmin", model);
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

TEST(IntegerProduct, tellsARowWithoutTermsThatNothingCanFillInfeasible) {
  SmallModel model;
  model.column(0, 0, 5, true);
  model.column(-1, 0, kInf, true);
  model.row({1, 1}, -kInf, 4);
  model.row({0, 0}, -6, -1);
  addSquare(model, 0, 1.4);
  const SolverResult result = solveFresh("bonmin", model);
  EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

TEST(IntegerProduct, tellsUnbounded) {
  SmallModel model;
  model.column(0, 0, 5, true);
  model.column(-1, 0, kInf, true);
  model.row({1, -1}, -kInf, 0);
  addSquare(model, 0, 1.4);
  const SolverResult result = solveFresh("bonmin", model);
  EXPECT_EQ(result.outcome, Outcome::unbounded) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

// x y with x from -2 to 3 and y from -3 to 2, integers: what is found is told as a local best.
TEST(IntegerProduct, tellsALocalBestWhereItDoesNotCurveUpwards) {
  SmallModel model;
  model.column(0, -2, 3, true);
  model.column(0, -3, 2, true);
  model.products = {{kObjectiveRow, 0, 1, 1.0}};
  const SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::locallyOptimal) << result.reason;
  EXPECT_LE(model.objective(result.level), -4);
  EXPECT_TRUE(std::isinf(result.bound));
}

// max x + 2 y with x^2 + y^2 <= 5: (1, 2) is on the circle, and best of all in it.
TEST(IntegerProduct, standsInRows) {
  SmallModel model;
  model.column(-1, -5, 5, true);
  model.column(-2, -5, 5, true);
  model.row({0, 0}, -kInf, 5);
  model.products = {{0, 0, 0, 1.0}, {0, 1, 1, 1.0}};
  SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{1, 2}));
  model.rowUpper[0] = -1;
  EXPECT_EQ(solveFresh("bonmin", model).outcome, Outcome::infeasible);

  // Its outside is not convex: no corner of the square is 90 away.
  model.rowLower[0] = 90;
  model.rowUpper[0] = kInf;
  result = solveFresh("bonmin", model);
  EXPECT_EQ(result.outcome, Outcome::failed);
  EXPECT_EQ(result.reason, "bonmin found no feasible point, and rows have products");
}

// Products whose one factor stands still are linear, and a model whose integers all stand still is
// a continuous one.
TEST(IntegerProduct, takesModelsOfAllOtherKinds) {
  SmallModel model;
  model.column(-3, 0, 5, true);
  model.column(0, 2, 2);
  model.row({1, 0}, -kInf, 9);
  model.products = {{0, 0, 1, 1.0}};  // x + 2 x <= 9
  SolverResult result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level[0], 3);

  model.isInteger[0] = 0;
  model.rowUpper[0] = 10;
  result = solveFresh("bonmin", model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[0], 10.0 / 3, 1e-6);
  EXPECT_NEAR(result.rowMarginal[0], -1, 1e-6);

  SmallModel still = closestPoint();
  still.lower[0] = still.upper[0] = 2;
  still.isInteger[1] = 0;
  result = solveFresh("bonmin", still);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_NEAR(result.level[1], 1.5, 1e-6);

  SmallModel none;
  none.column(-1, 0, 2.5, true);
  result = solveFresh("bonmin", none);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level[0], 2);
}

// Three integers from 0 to 3 in an objective |L x|^2 + c x with a row: all 64 points are tried.
TEST(IntegerProduct, agreesWithTryingAllIntegers) {
  std::mt19937 random(12);
  const auto between = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random() % 1000) / 1000;
  };
  for (int time = 0; time < 5; ++time) {
    SmallModel model;
    double l[3][3];
    for (auto& row : l) {
      for (double& entry : row) entry = between(-2, 2);
    }
    for (int j = 0; j < 3; ++j) model.column(between(-20, 5), 0, 3, true);
    model.row({between(0, 2), between(0, 2), between(-1, 2)}, 1, 5);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        double entry = 0;
        for (const auto& row : l) entry += row[i] * row[j];
        model.products.push_back({kObjectiveRow, i, j, entry});
      }
    }
    double best = kInf;
    for (int n = 0; n < 64; ++n) {
      const std::vector<double> at{double(n % 4), double(n / 4 % 4), double(n / 16)};
      const double row = model.activity(0, at);
      if (row >= 1 && row <= 5) best = std::min(best, model.objective(at));
    }
    const SolverResult result = solveFresh("bonmin", model);
    if (std::isinf(best)) {
      EXPECT_EQ(result.outcome, Outcome::infeasible) << result.reason;
      continue;
    }
    ASSERT_EQ(result.outcome, Outcome::optimal) << time << ": " << result.reason;
    EXPECT_NEAR(model.objective(result.level), best, 1e-6 * std::max(1.0, std::abs(best))) << time;
  }
}

// Twenty-four columns of which half are to be chosen so that four sums are near to numbers at once:
// more pairs of them are about equally good than a search comes through.
SmallModel endless() {
  constexpr int kColumns = 24;
  SmallModel model;
  for (int j = 0; j < kColumns; ++j) model.column(0, 0, 1, true);
  model.row(std::vector<double>(kColumns, 1.0), 12, 12);
  for (int sum = 0; sum < 4; ++sum) {
    const auto weight = [&](int j) {
      return 1 + std::fmod((j + 1) * std::sqrt(2.0 + 3 * sum), 1.0);
    };
    for (int i = 0; i < kColumns; ++i) {
      model.cost[static_cast<std::size_t>(i)] -= 2 * 18 * weight(i);
      for (int j = 0; j < kColumns; ++j) {
        model.products.push_back({kObjectiveRow, i, j, weight(i) * weight(j)});
      }
    }
  }
  return model;
}

struct State {
  int patience;
  int told = 0;
  double objective = kInf;
  double bound = -kInf;
  static std::int32_t ended(void* context) {
    return static_cast<State*>(context)->patience-- <= 0 ? 1 : 0;
  }
  static void tell(void* context, double objective, double bound) {
    auto& state = *static_cast<State*>(context);
    ++state.told;
    state.objective = objective;
    state.bound = bound;
  }
};

TEST(IntegerProduct, leavesItsBestPointAndBoundWhenTheCallerEndsIt) {
  SmallModel model = endless();
  State state{400};
  SolverLimits limits;
  limits.terminated = &State::ended;
  limits.progress = &State::tell;
  limits.context = &state;
  const SolverResult result = solveFresh("bonmin", model, limits);
  ASSERT_EQ(result.outcome, Outcome::terminated) << result.reason;
  ASSERT_TRUE(result.hasPoint);
  EXPECT_EQ(std::ranges::count(result.level, 1.0), 12);
  EXPECT_GT(state.told, 0);
  // The square of a sum less 36 times the sum is never below -18^2.
  EXPECT_GE(result.bound, -4 * 18.0 * 18 - 1e-3);
  EXPECT_LE(result.bound, model.objective(result.level) + 1e-6);
}

TEST(IntegerProduct, endsWhenTimeIsOver) {
  SmallModel model = endless();
  SolverLimits limits;
  limits.seconds = 0.2;
  const SolverResult result = solveFresh("bonmin", model, limits);
  EXPECT_EQ(result.outcome, Outcome::timeLimit) << result.reason;
  EXPECT_TRUE(result.hasPoint);
}

// Equal halves of many odd-sized things on five scales at once.
SmallModel halves() {
  SmallModel model;
  constexpr int kThings = 40;
  constexpr int kScales = 5;
  for (int j = 0; j < kThings; ++j) model.column(0, 0, 1, true);
  for (int i = 0; i < 2 * kScales; ++i) model.column(1, 0, kInf);
  unsigned state = 12345;
  for (int i = 0; i < kScales; ++i) {
    std::vector<double> row(kThings + 2 * kScales, 0.0);
    int sum = 0;
    for (int j = 0; j < kThings; ++j) {
      state = state * 1103515245U + 12345U;
      const int size = static_cast<int>(state / 65536U % 100U);
      row[static_cast<std::size_t>(j)] = size;
      sum += size;
    }
    row[static_cast<std::size_t>(kThings + 2 * i)] = 1;
    row[static_cast<std::size_t>(kThings + 2 * i + 1)] = -1;
    const double half = sum / 2;
    model.row(row, half, half);
  }
  return model;
}

// Heuristics of Bonmin hand such a model to a search of their own that asks nobody for a minute of
// the processor.
TEST(IntegerProduct, endsWhereItsHeuristicsWouldSearch) {
  SmallModel model = halves();
  State asked{1000};
  SolverLimits limits;
  limits.terminated = &State::ended;
  limits.context = &asked;
  EXPECT_EXIT(
      {
        alarm(50);
        std::exit(solveFresh("bonmin", model, limits).outcome == Outcome::terminated ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

// Whatever it is at: what is left of the problems that it tries before it branches makes it talk.
TEST(IntegerProduct, printsNothingWhereverItIsEnded) {
  SmallModel model = halves();
  for (const int times : {100, 220, 400}) {
    StdoutCapture capture;
    State asked{times};
    SolverLimits limits;
    limits.terminated = &State::ended;
    limits.context = &asked;
    ASSERT_EQ(solveFresh("bonmin", model, limits).outcome, Outcome::terminated) << times;
    ASSERT_EQ(capture.text(), "") << times;
  }
}

TEST(IntegerProduct, endsAtTheLimitOfIterations) {
  SmallModel model = endless();
  SolverLimits limits;
  limits.iterations = 30;
  const SolverResult result = solveFresh("bonmin", model, limits);
  EXPECT_EQ(result.outcome, Outcome::iterationLimit) << result.reason;
  EXPECT_TRUE(result.hasPoint);
}

TEST(IntegerProduct, printsNothing) {
  SmallModel model = closestPoint();
  StdoutCapture capture;
  solveFresh("bonmin", model);
  EXPECT_EQ(capture.text(), "");
}

}  // namespace
}  // namespace ztbtest
