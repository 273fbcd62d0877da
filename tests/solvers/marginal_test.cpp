// Marginals of rows on random problems with rows of every type: against what the objective does
// when a right-hand side is moved, and against complementary slackness and duality.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/solvers/random_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::Position;
using lomu::SolverResult;

class Marginal : public testing::TestWithParam<const char*> {
 protected:
  double optimum(SmallModel& model) {
    const SolverResult result = solveFresh(GetParam(), model);
    EXPECT_EQ(result.outcome, Outcome::optimal) << result.reason;
    return model.objective(result.level);
  }
};

TEST_P(Marginal, isTheChangeOfTheObjectiveByUnitOfRightHandSide) {
  constexpr double kStep = 1e-3;
  for (unsigned seed = 1; seed <= 4; ++seed) {
    RandomModel random(seed, 14, 10, 0.6);
    SmallModel& model = random.model;
    const SolverResult result = solveFresh(GetParam(), model);
    ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
      const double low = model.rowLower[i];
      const double high = model.rowUpper[i];
      model.rowLower[i] = low + kStep;
      model.rowUpper[i] = high + kStep;
      const double above = optimum(model);
      model.rowLower[i] = low - kStep;
      model.rowUpper[i] = high - kStep;
      const double below = optimum(model);
      model.rowLower[i] = low;
      model.rowUpper[i] = high;
      EXPECT_NEAR(result.rowMarginal[i], (above - below) / (2 * kStep), 1e-4)
          << "row " << i << " of seed " << seed;
    }
  }
}

TEST_P(Marginal, vanishesWhereARowHasRoomAndHasTheSideAsItsSign) {
  for (unsigned seed = 5; seed <= 14; ++seed) {
    RandomModel random(seed, 20, 15, 0.5);
    SmallModel& model = random.model;
    const SolverResult result = solveFresh(GetParam(), model);
    ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
      const double activity = model.activity(i, result.level);
      const double marginal = result.rowMarginal[i];
      if (result.rowPosition[i] == Position::basic) {
        EXPECT_EQ(marginal, 0);
      }
      if (activity > model.rowLower[i] + 1e-4) {
        EXPECT_LE(marginal, 1e-7);
      }
      if (activity < model.rowUpper[i] - 1e-4) {
        EXPECT_GE(marginal, -1e-7);
      }
    }
    // The dual objective: right-hand sides and bounds, each at the side that its marginal has.
    double dual = 0;
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
      const double y = result.rowMarginal[i];
      if (std::abs(y) > 1e-7) dual += y * (y > 0 ? model.rowLower[i] : model.rowUpper[i]);
    }
    for (std::size_t j = 0; j < model.cost.size(); ++j) {
      double d = model.cost[j];
      for (std::size_t i = 0; i < model.rows.size(); ++i) {
        d -= result.rowMarginal[i] * model.rows[i][j];
      }
      dual += d * (d > 0 ? model.lower[j] : model.upper[j]);
    }
    EXPECT_NEAR(dual, model.objective(result.level), 1e-5);
  }
}

INSTANTIATE_TEST_SUITE_P(Solvers, Marginal, testing::Values("clp", "cbc", "glpk", "ipopt"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace ztbtest
