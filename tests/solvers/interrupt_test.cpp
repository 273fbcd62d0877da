// Whose the signal of an interrupt is while a solver runs: the program's, never the solver's.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "tests/solvers/random_model.h"

namespace ztbtest {
namespace {

using lomu::SolverLimits;

void ownHandler(int /*signal*/) {}

// Asked whenever the solver asks whether it is to end.
struct HandlerWatch {
  int times = 0;
  int foreign = 0;
  static std::int32_t ended(void* context) {
    auto& watch = *static_cast<HandlerWatch*>(context);
    struct sigaction present {};
    sigaction(SIGINT, nullptr, &present);
    ++watch.times;
    if (present.sa_handler != &ownHandler) ++watch.foreign;
    return 0;
  }
};

class Interrupt : public testing::TestWithParam<const char*> {
 protected:
  Interrupt() {
    struct sigaction own {};
    own.sa_handler = &ownHandler;
    sigaction(SIGINT, &own, &before_);
    limits_.terminated = &HandlerWatch::ended;
    limits_.context = &watch_;
  }
  ~Interrupt() override { sigaction(SIGINT, &before_, nullptr); }

  void expectOwn() {
    struct sigaction after {};
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, &ownHandler);
    EXPECT_GT(watch_.times, 0);
    EXPECT_EQ(watch_.foreign, 0);
  }

  HandlerWatch watch_;
  SolverLimits limits_;

 private:
  struct sigaction before_ {};
};

TEST_P(Interrupt, staysTheProgramsInAFreshSolve) {
  RandomModel random(7, 60, 50, 0.4);
  solveFresh(GetParam(), random.model, limits_);
  expectOwn();
}

TEST_P(Interrupt, staysTheProgramsInALiveSolve) {
  RandomModel random(7, 60, 50, 0.4);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random.model.problem(), reason)) << reason;
  solveLive(*live, random.model);
  for (double& cost : random.model.cost) cost = -cost;
  if (!live->update(random.model.problem())) return;  // solved afresh then, which is tried above
  solveLive(*live, random.model, limits_);
  expectOwn();
}

INSTANTIATE_TEST_SUITE_P(Solvers, Interrupt,
                         testing::Values("clp", "cbc", "glpk", "ipopt", "bonmin"),
                         [](const auto& tested) { return std::string(tested.param); });

class SearchInterrupt : public Interrupt {};

// Whose relaxations have fractions.
TEST_P(SearchInterrupt, staysTheProgramsWhileIntegersAreSearched) {
  SmallModel model;
  const std::vector<double> weights{12, 17, 23, 31};
  for (const double weight : weights) model.column(-weight - 1, 0, 3, true);
  model.row(weights, -kInf, 129.5);
  model.row({5, 3, 8, 2}, -kInf, 31.5);
  solveFresh(GetParam(), model, limits_);
  expectOwn();
}

INSTANTIATE_TEST_SUITE_P(Solvers, SearchInterrupt, testing::Values("cbc", "glpk", "bonmin"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace ztbtest
