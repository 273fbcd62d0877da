// Live solvers through long series of random changes, each step against a fresh solve by another
// solver: status and objective agree every time.
//
// ZTB_DIFFERENTIAL_STEPS in the environment: the number of steps of all problems together, for each
// solver.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "providers/model/checked_solver.h"
#include "tests/solvers/changing_problem.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

int stepsOfAProblem() {
  const char* steps = std::getenv("ZTB_DIFFERENTIAL_STEPS");
  return (steps == nullptr ? 400 : std::atoi(steps)) / 10;
}

SolverResult resultFor(const lomu::SolverProblem& problem) {
  SolverResult result;
  result.begin(static_cast<std::size_t>(problem.columnCount),
               static_cast<std::size_t>(problem.rowCount));
  return result;
}

SolverResult fresh(const std::string& solver, const lomu::SolverProblem& problem) {
  const auto made = openSolver(solver);
  std::string reason;
  EXPECT_TRUE(made->load(problem, reason)) << reason;
  SolverResult result = resultFor(problem);
  made->solve({}, result);
  return result;
}

struct Pair {
  const char* live;
  const char* judge;
};

class Differential : public testing::TestWithParam<Pair> {
 protected:
  // A series of changes of one problem.
  void compare(ChangingProblem changing, int steps) {
    lomu::CheckedSolver live(openSolver(GetParam().live));
    lomu::SolverProblem problem = changing.problem();
    std::string reason;
    ASSERT_TRUE(live.load(problem, reason)) << reason;
    for (int step = 0; step < steps; ++step) {
      SolverResult ours = resultFor(problem);
      live.solve({}, ours);
      const SolverResult other = fresh(GetParam().judge, problem);
      ASSERT_EQ(ours.outcome, other.outcome)
          << "step " << step << " " << live.doubt() << " " << ours.reason << other.reason;
      ++seen_.at(static_cast<std::size_t>(ours.outcome));
      if (other.outcome == Outcome::optimal) {
        const double expected = changing.objective(other.level);
        ASSERT_NEAR(changing.objective(ours.level), expected, 1e-6 * (1 + std::abs(expected)))
            << "step " << step << " " << live.doubt();
      }
      changing.change();
      problem = changing.problem();
      ASSERT_TRUE(live.update(problem));
    }
  }

  [[nodiscard]] int seen(Outcome outcome) const {
    return seen_.at(static_cast<std::size_t>(outcome));
  }

 private:
  std::array<int, 8> seen_{};
};

TEST_P(Differential, everyStepIsWhatAFreshSolveByAnotherTells) {
  const int steps = stepsOfAProblem();
#ifdef ZTB_NETLIB
  const std::string folder = std::string(ZTB_NETLIB) + "/";
  for (const char* name : {"adlittle", "afiro", "israel", "stair"}) {
    SCOPED_TRACE(name);
    compare(ChangingProblem(folder + name + ".mps", 17), steps);
  }
#endif
  for (unsigned seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    const int size = 12 * static_cast<int>(seed);
    compare(ChangingProblem(size, size * 2 / 3, 0.25, 0, seed), steps);
  }
  compare(ChangingProblem::transport(6, 9, 5), steps);
  compare(ChangingProblem::transport(12, 5, 6), steps);
  EXPECT_GT(seen(Outcome::optimal), 3 * steps);
  EXPECT_GT(seen(Outcome::infeasible), steps / 2);
  EXPECT_GT(seen(Outcome::unbounded), steps / 5);
}

// Problems of a few columns and rows with small whole numbers, many without an end or a point,
// where solvers meet every corner: each solver tells of each what GLPK tells.
TEST(TinyProblems, areTheSameToAll) {
  std::array<int, 8> seen{};
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    unsigned state = seed * 2654435761U;
    const auto number = [&](int least, int most) {
      state = state * 1664525U + 1013904223U;
      return least + static_cast<int>((state >> 8) % static_cast<unsigned>(most - least + 1));
    };
    SmallModel model;
    const int columns = number(1, 4);
    for (int j = 0; j < columns; ++j) {
      const double lower = number(1, 10) <= 3 ? -kInf : number(-2, 0);
      const double upper = number(1, 10) <= 6 ? kInf : number(1, 8);
      model.column(number(-3, 3), lower, upper);
    }
    for (int rows = number(0, 3); rows > 0; --rows) {
      std::vector<double> coefficients;
      for (int j = 0; j < columns; ++j) {
        coefficients.push_back(number(1, 10) <= 7 ? number(-3, 3) : 0);
      }
      const double lower = number(1, 10) <= 4 ? -kInf : number(-6, 6);
      const double upper = (std::isinf(lower) ? 0 : lower) + number(0, 8);
      model.row(coefficients, lower, number(1, 10) <= 4 ? kInf : upper);
    }
    const SolverResult expected = solveFresh("glpk", model);
    ++seen.at(static_cast<std::size_t>(expected.outcome));
    for (const char* solver : {"clp", "cbc"}) {
      const SolverResult result = solveFresh(solver, model);
      ASSERT_EQ(result.outcome, expected.outcome) << solver << ", " << seed;
      if (expected.outcome != Outcome::optimal) continue;
      ASSERT_NEAR(model.objective(result.level), model.objective(expected.level), 1e-6)
          << solver << ", " << seed;
    }
  }
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::optimal)), 300);
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::infeasible)), 100);
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::unbounded)), 300);
}

INSTANTIATE_TEST_SUITE_P(Live, Differential,
                         testing::Values(Pair{"clp", "glpk"}, Pair{"glpk", "clp"}),
                         [](const auto& tested) { return std::string(tested.param.live); });

}  // namespace
}  // namespace ztbtest
