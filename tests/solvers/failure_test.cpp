// Errors for which GLPK would end the process.
#include <gtest/gtest.h>

#include <string>

#include "tests/solvers/small_model.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

// GLPK does not accept a gap below 0, and says so by its error routine.
TEST(Failure, insideOfGlpkIsAnOutcomeWithItsTextAndTheSolverGoesOn) {
  SmallModel model;
  model.column(-5, 0, kInf, true);
  model.column(-4, 0, kInf, true);
  model.row({6, 4}, -kInf, 24);
  model.row({1, 2}, -kInf, 6);
  const auto solver = openSolver("glpk");
  std::string reason;
  ASSERT_TRUE(solver->load(model.problem(), reason)) << reason;
  lomu::SolverLimits limits;
  limits.relativeGap = -1;
  StdoutCapture capture;
  const SolverResult refused = solveLive(*solver, model, limits);
  EXPECT_EQ(capture.text(), "");
  EXPECT_EQ(refused.outcome, Outcome::failed);
  EXPECT_FALSE(refused.hasPoint);
  EXPECT_NE(refused.reason.find("glpk: glp_intopt: mip_gap = -1"), std::string::npos)
      << refused.reason;

  const SolverResult result = solveLive(*solver, model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  EXPECT_EQ(result.level, (std::vector<double>{4, 0}));
}

}  // namespace
}  // namespace ztbtest
