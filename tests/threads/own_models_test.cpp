// Models and solvers in several threads, each thread with its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <ztb/model.hpp>

#include "tests/threads/together.h"

namespace threadtest {
namespace {

// min 2 cheap + 3 dear, cheap + dear >= need, cheap <= 4: the optimum is worked by hand.
double cheapest(double need) {
  return 2 * std::min(need, 4.0) + 3 * std::max(need - 4, 0.0);
}

class Problem {
 public:
  explicit Problem(int kind = ztbColumnContinuous) : model_(make(kind)), tie_(database_, model_) {
    need_.emplace(database_.addParameter("need", {"*"}));
  }

  void solve(const std::string& solver, double need, double tolerance) {
    need_->clear();
    need_->merge("town").setLevel(need);
    tie_.update(database_.symbol("need_var"), ztb::Action::fix, *need_, ztb::Missing::keep);
    tie_.solve(solver);
    ASSERT_EQ(ztbModelOptimal, model_.status()) << solver;
    ASSERT_NEAR(cheapest(need), model_.objective(), tolerance) << solver;
    ASSERT_NEAR(std::min(need, 4.0), database_.symbol("cheap").find()->level(), tolerance)
        << solver;
  }

 private:
  static ztb::Model make(int kind) {
    ztb::Model model;
    model.setObjective("total");
    const int cheap = model.addColumn("cheap", 0, 4, kind);
    const int dear = model.addColumn("dear", 0, 1e30, kind);
    const int need = model.addColumn("need_var[town]", 1, 1);
    const int row = model.addRow("enough", ztbRowGreaterOrEqual, 0);
    model.addTerm(0, cheap, 2);
    model.addTerm(0, dear, 3);
    model.addTerm(row, cheap, 1);
    model.addTerm(row, dear, 1);
    model.addTerm(row, need, -1);
    return model;
  }

  ztb::Model model_;
  ztb::Database database_;
  ztb::ModelTie tie_;
  std::optional<ztb::Symbol> need_;
};

class Models : public testing::TestWithParam<int> {};

TEST_P(Models, areSolvedAgainAndAgainByTheirOwnThreads) {
  together(GetParam(), [](int thread) {
    for (const char* solver : {"clp", "glpk"}) {
      Problem problem;
      for (int time = 0; time < 20; ++time) {
        problem.solve(solver, 1 + (thread + time) % 9, 1e-9);
      }
    }
  });
}

TEST_P(Models, areSearchedForIntegers) {
  together(GetParam(), [](int thread) {
    for (const char* solver : {"cbc", "glpk"}) {
      Problem problem(ztbColumnInteger);
      for (int time = 0; time < 5; ++time) problem.solve(solver, 1 + (thread + time) % 9, 1e-6);
    }
  });
}

TEST_P(Models, takeTurnsWithASolverThatCannotShare) {
  together(GetParam(), [](int thread) {
    Problem problem;
    for (int time = 0; time < 5; ++time) problem.solve("ipopt", 1.5 + (thread + time) % 9, 1e-4);
  });
}

INSTANTIATE_TEST_SUITE_P(Two, Models, testing::Values(2));
INSTANTIATE_TEST_SUITE_P(Eight, Models, testing::Values(8));

// A live solver goes along with its database.
TEST(Model, goesFromThreadToThreadWithItsLiveSolver) {
  for (const char* solver : {"clp", "cbc", "glpk", "ipopt", "bonmin"}) {
    const double tolerance =
        std::string(solver) == "ipopt" || std::string(solver) == "bonmin" ? 1e-4 : 1e-9;
    auto problem = std::make_unique<Problem>();
    std::thread([&] { problem->solve(solver, 3, tolerance); }).join();
    problem->solve(solver, 5, tolerance);
    problem->solve(solver, 6, tolerance);
    std::thread([&] {
      problem->solve(solver, 7, tolerance);
      problem.reset();
    }).join();
  }
}

}  // namespace
}  // namespace threadtest
