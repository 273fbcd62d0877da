// Solver libraries of others: one written in C, and those that are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"
#include "tests/solvers/small_model.h"
#include "tests/support/library_name.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::Position;
using lomu::SolverLibrary;
using lomu::SolverResult;

std::string refusal(const std::string& path) {
  try {
    SolverLibrary::makeSolver(path);
  } catch (const lomu::ModelError& error) {
    return error.what();
  }
  return "none";
}

std::string plainPath(const std::string& kind) {
  return std::string(ZTB_PLAIN_SOLVERS) + "/" + libraryName(kind);
}

// The least of x - y over a box.
SmallModel box() {
  SmallModel model;
  model.column(1, 1, 4);
  model.column(-1, 2, 5);
  return model;
}

TEST(SolverLibrary, InCSolvesAndTakesChanges) {
  SmallModel model = box();
  const auto solver = SolverLibrary::makeSolver(plainPath("plain"));
  std::string reason;
  ASSERT_TRUE(solver->load(model.problem(), reason)) << reason;
  SolverResult result = solveLive(*solver, model);
  EXPECT_EQ(result.outcome, Outcome::optimal);
  EXPECT_TRUE(result.hasPoint);
  EXPECT_EQ(result.iterations, 2);
  EXPECT_EQ(result.level, (std::vector<double>{1, 5}));
  EXPECT_EQ(result.position, (std::vector<Position>{Position::atLower, Position::atUpper}));

  model.upper[1] = 3;
  ASSERT_TRUE(solver->update(model.problem()));
  result = solveLive(*solver, model);
  EXPECT_EQ(result.level, (std::vector<double>{1, 3}));
}

TEST(SolverLibrary, InCTellsWhatItRefusesAndWhyItFailed) {
  SmallModel model = box();
  model.row({1, 1}, 0, 10);
  const auto solver = SolverLibrary::makeSolver(plainPath("plain"));
  std::string reason;
  EXPECT_FALSE(solver->load(model.problem(), reason));
  EXPECT_EQ(reason, "plain takes no rows, the model has 1");

  SmallModel endless;
  endless.column(-1, 0, kInf);
  ASSERT_TRUE(solver->load(endless.problem(), reason));
  const SolverResult result = solveLive(*solver, endless);
  EXPECT_EQ(result.outcome, Outcome::failed);
  EXPECT_FALSE(result.hasPoint);
  EXPECT_EQ(result.reason, "column 0 has no end");
}

TEST(SolverLibrary, InCAsksWhetherToEnd) {
  SmallModel model = box();
  const auto solver = SolverLibrary::makeSolver(plainPath("plain"));
  std::string reason;
  ASSERT_TRUE(solver->load(model.problem(), reason));
  lomu::SolverLimits limits;
  int asked = 0;
  limits.context = &asked;
  limits.terminated = [](void* context) -> std::int32_t { return ++*static_cast<int*>(context); };
  EXPECT_EQ(solveLive(*solver, model, limits).outcome, Outcome::terminated);
  EXPECT_EQ(asked, 1);
}

TEST(SolverLibrary, OfAnotherVersionIsRefused) {
  EXPECT_EQ(
      refusal(plainPath("plain_older")),
      plainPath("plain_older") + " has version 5 of the interface to solvers, expected version 6");
  EXPECT_EQ(
      refusal(plainPath("plain_newer")),
      plainPath("plain_newer") + " has version 7 of the interface to solvers, expected version 6");
  EXPECT_TRUE(SolverLibrary::canOpen(plainPath("plain_newer"))) << "so that the reason is told";
}

TEST(SolverLibrary, ThatIsNoneIsRefused) {
  EXPECT_EQ(refusal("libc.so.6"), "libc.so.6 is no solver library: it has no ztbSolverLibrary");
  EXPECT_THAT(refusal("/nowhere/libsolver.so"),
              testing::StartsWith("the solver cannot be opened: /nowhere/libsolver.so: "));
}

TEST(SolverLibrary, ThatGivesAnUnknownOutcomeHasFailed) {
  SmallModel model = box();
  const auto solver = SolverLibrary::makeSolver(plainPath("plain_strange"));
  std::string reason;
  ASSERT_TRUE(solver->load(model.problem(), reason));
  const SolverResult result = solveLive(*solver, model);
  EXPECT_EQ(result.outcome, Outcome::failed);
  EXPECT_FALSE(result.hasPoint);
  EXPECT_EQ(result.reason, "it gave outcome 42, expected 0 to 7");
}

}  // namespace
}  // namespace ztbtest
