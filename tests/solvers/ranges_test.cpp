// Ranges of costs and right-hand sides: worked by hand, and by solving at both ends and beyond.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/solvers/random_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::Position;
using lomu::SolverResult;

struct Ranges {
  std::vector<double> costLower, costUpper, rhsLower, rhsUpper;

  explicit Ranges(const SmallModel& model)
      : costLower(model.cost.size()),
        costUpper(model.cost.size()),
        rhsLower(model.rows.size()),
        rhsUpper(model.rows.size()) {}
  bool take(lomu::Solver& solver) {
    lomu::SolverRanges plain{costLower.data(), costUpper.data(), rhsLower.data(), rhsUpper.data()};
    return solver.ranges(plain);
  }
};

class RangesTest : public testing::TestWithParam<const char*> {
 protected:
  static double optimum(SmallModel& model) {
    const SolverResult result = solveFresh("glpk", model);
    return result.outcome == Outcome::optimal ? model.objective(result.level) : kInf;
  }

  // The point stays the best one for a cost at an end, and is none beyond it.
  void checkCost(const SmallModel& model, const SolverResult& best, std::size_t j, double end,
                 double outwards) {
    if (std::isinf(end)) return;
    SmallModel moved = model;
    moved.cost[j] = end;
    EXPECT_NEAR(optimum(moved), moved.objective(best.level), 1e-6) << "cost " << j;
    moved.cost[j] = end + outwards * 0.1;
    EXPECT_LT(optimum(moved), moved.objective(best.level) - 1e-6) << "cost " << j;
    ++costs_;
  }

  // The objective follows the marginal as far as an end, and no farther.
  void checkRow(const SmallModel& model, const SolverResult& best, std::size_t i, double end,
                double outwards) {
    if (std::isinf(end)) return;
    const bool atUpper = best.rowPosition[i] == Position::atUpper;
    const double by = end - (atUpper ? model.rowUpper[i] : model.rowLower[i]);
    const auto expected = [&](double move) {
      return model.objective(best.level) + best.rowMarginal[i] * move;
    };
    SmallModel moved = model;
    const double inside = by - outwards * 1e-7;
    moved.rowLower[i] = model.rowLower[i] + inside;
    moved.rowUpper[i] = model.rowUpper[i] + inside;
    EXPECT_NEAR(optimum(moved), expected(inside), 1e-5) << "row " << i;
    const double beyond = by + outwards * 0.05;
    moved.rowLower[i] = model.rowLower[i] + beyond;
    moved.rowUpper[i] = model.rowUpper[i] + beyond;
    EXPECT_GT(optimum(moved), expected(beyond) + 1e-7) << "row " << i;
    ++rows_;
  }

  int costs_ = 0;
  int rows_ = 0;
};

// max 5 x + 4 y + z with 6 x + 4 y + 4 z <= 24 and x + 2 y <= 6: best at (3, 1.5, 0), rows worth
// 0.75 and 0.5. With costs a and b of x and y the rows are worth (2 a - b) / 8 and (3 b - 2 a) / 4,
// and z stays out while the first is 0.25 at least. x + y <= 10 has room.
TEST_P(RangesTest, ofAModelByHand) {
  SmallModel model;
  for (const double cost : {-5.0, -4.0, -1.0}) model.column(cost, 0, kInf);
  model.row({6, 4, 4}, -kInf, 24);
  model.row({1, 2, 0}, -kInf, 6);
  model.row({1, 1, 0}, -kInf, 10);
  const auto solver = openSolver(GetParam());
  std::string reason;
  Ranges ranges(model);
  ASSERT_TRUE(solver->load(model.problem(), reason)) << reason;
  EXPECT_FALSE(ranges.take(*solver)) << "not solved yet";
  ASSERT_EQ(solveLive(*solver, model).outcome, Outcome::optimal);
  ASSERT_TRUE(ranges.take(*solver));
  EXPECT_NEAR(ranges.costLower[0], -6, 1e-9);
  EXPECT_NEAR(ranges.costUpper[0], -3, 1e-9);
  EXPECT_NEAR(ranges.costLower[1], -8, 1e-9);
  EXPECT_NEAR(ranges.costUpper[1], -10.0 / 3, 1e-9);
  EXPECT_NEAR(ranges.costLower[2], -3, 1e-9);
  EXPECT_EQ(ranges.costUpper[2], kInf);
  EXPECT_NEAR(ranges.rhsLower[0], 12, 1e-9);
  EXPECT_NEAR(ranges.rhsUpper[0], 36, 1e-9);
  EXPECT_NEAR(ranges.rhsLower[1], 4, 1e-9);
  EXPECT_NEAR(ranges.rhsUpper[1], 12, 1e-9);
  EXPECT_NEAR(ranges.rhsLower[2], 4.5, 1e-9);
  EXPECT_NEAR(ranges.rhsUpper[2], 4.5, 1e-9);
}

TEST_P(RangesTest, holdAtTheirEndsAndNotBeyond) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(seed);
    RandomModel random(seed, 12, 7, 0.6);
    if (seed % 2 == 0) random.standStill();
    SmallModel& model = random.model;
    const auto solver = openSolver(GetParam());
    std::string reason;
    ASSERT_TRUE(solver->load(model.problem(), reason)) << reason;
    SolverResult best = solveLive(*solver, model);
    // The second is a live one.
    model.upper[1] += 0.5;
    ASSERT_TRUE(solver->update(model.problem()));
    best = solveLive(*solver, model);
    ASSERT_EQ(best.outcome, Outcome::optimal) << best.reason;
    Ranges ranges(model);
    ASSERT_TRUE(ranges.take(*solver));
    for (std::size_t j = 0; j < model.cost.size(); ++j) {
      ASSERT_LE(ranges.costLower[j], model.cost[j] + 1e-9);
      ASSERT_GE(ranges.costUpper[j], model.cost[j] - 1e-9);
      if (model.lower[j] == model.upper[j]) {
        EXPECT_TRUE(std::isinf(ranges.costLower[j]) && std::isinf(ranges.costUpper[j]));
      }
      checkCost(model, best, j, ranges.costLower[j], -1);
      checkCost(model, best, j, ranges.costUpper[j], 1);
    }
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
      if (best.rowPosition[i] == Position::basic) continue;
      checkRow(model, best, i, ranges.rhsLower[i], -1);
      checkRow(model, best, i, ranges.rhsUpper[i], 1);
    }
  }
  EXPECT_GT(costs_, 50);
  EXPECT_GT(rows_, 15);
}

// A solve that begins with the basis of another one ends at once.
TEST_P(RangesTest, aBasisIsTakenAndSavesTheIterations) {
  RandomModel random(4, 30, 20, 0.4);
  const SolverResult first = solveFresh(GetParam(), random.model);
  ASSERT_EQ(first.outcome, Outcome::optimal);
  ASSERT_GT(first.iterations, 3);
  std::vector<std::int32_t> columns;
  std::vector<std::int32_t> rows;
  for (const Position position : first.position) columns.push_back(static_cast<int>(position));
  for (const Position position : first.rowPosition) rows.push_back(static_cast<int>(position));
  lomu::SolverProblem problem = random.model.problem();
  problem.position = columns.data();
  problem.rowPosition = rows.data();
  const auto solver = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(solver->load(problem, reason)) << reason;
  SolverResult result = solveLive(*solver, random.model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_TRUE(result.startTaken);
  EXPECT_LE(result.iterations, 1);
  EXPECT_NEAR(random.model.objective(result.level), random.model.objective(first.level), 1e-7);
  result = solveLive(*solver, random.model);
  EXPECT_FALSE(result.startTaken) << "only the first solve begins so";

  rows[0] = rows[0] == ztbSolverBasic ? ztbSolverAtLower : ztbSolverBasic;
  ASSERT_TRUE(solver->load(problem, reason)) << reason;
  result = solveLive(*solver, random.model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_FALSE(result.startTaken) << "one basic row or column too many or too few";
}

// Two columns of one row stood in the basis, the second one at 0, between its bounds. As many
// are basic as there are rows, and all others at a bound.
TEST_P(RangesTest, areOfAVertex) {
  SmallModel model;
  model.column(2, 0, kInf);
  model.column(0, 2, 3);
  model.column(0, -1, kInf);
  model.column(0, 1, kInf);
  model.row({-3, -3, 3, 2}, -9, -6);
  const SolverResult result = solveFresh(GetParam(), model);
  ASSERT_EQ(result.outcome, Outcome::optimal);
  int basic = result.rowPosition[0] == Position::basic ? 1 : 0;
  for (std::size_t j = 0; j < result.level.size(); ++j) {
    const double level = result.level[j];
    const bool isAtBound = level == model.lower[j] || level == model.upper[j];
    EXPECT_TRUE(isAtBound || result.position[j] == Position::basic) << j << " at " << level;
    basic += result.position[j] == Position::basic ? 1 : 0;
  }
  EXPECT_EQ(basic, 1);
}

// The first row stood between its sides without being basic, and the ranges of that basis were
// wrong.
TEST_P(RangesTest, areOfAVertexOfRowsToo) {
  SmallModel model;
  model.column(0, -2, kInf);
  model.column(1, 0, 8);
  model.column(4, 0, kInf);
  model.column(2, -2, kInf);
  model.column(-1, -kInf, kInf);
  model.row({-1, 1, 2, 1, 1}, 0, 2);
  model.row({0, 2, 0, 3, 3}, -kInf, 2);
  model.row({0, 1, 3, 1, -1}, 0, 2);
  const SolverResult result = solveFresh(GetParam(), model);
  ASSERT_EQ(result.outcome, Outcome::optimal);
  EXPECT_NEAR(model.objective(result.level), -2, 1e-9);
  int basic = 0;
  for (const Position position : result.position) basic += position == Position::basic ? 1 : 0;
  for (const Position position : result.rowPosition) {
    EXPECT_NE(position, Position::superbasic);
    basic += position == Position::basic ? 1 : 0;
  }
  EXPECT_EQ(basic, 3);
}

INSTANTIATE_TEST_SUITE_P(Solvers, RangesTest, testing::Values("clp", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(Ranges, ofSolversThatHaveNone) {
  SmallModel model;
  model.column(1, 0, 4);
  model.row({1}, 1, kInf);
  for (const char* name : {"cbc", "ipopt", "bonmin"}) {
    const auto solver = openSolver(name);
    std::string reason;
    ASSERT_TRUE(solver->load(model.problem(), reason)) << reason;
    ASSERT_EQ(solveLive(*solver, model).outcome, Outcome::optimal);
    EXPECT_FALSE(Ranges(model).take(*solver)) << name;
  }
}

}  // namespace
}  // namespace ztbtest
