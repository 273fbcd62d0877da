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

// Numbers from a generator that is the same everywhere.
class Numbers {
 public:
  explicit Numbers(unsigned seed) : state_(seed * 2654435761U) {}
  int between(int least, int most) {
    state_ = state_ * 1664525U + 1013904223U;
    return least + static_cast<int>((state_ >> 8) % static_cast<unsigned>(most - least + 1));
  }
  bool happens(int inTen) { return between(1, 10) <= inTen; }

 private:
  unsigned state_;
};

// Adds a row with seven of ten coefficients up to `size`, divided by `divisor`.
void addRow(SmallModel& model, Numbers& numbers, int size, double divisor) {
  std::vector<double> coefficients;
  for (std::size_t j = 0; j < model.cost.size(); ++j) {
    coefficients.push_back(numbers.happens(7) ? numbers.between(-size, size) / divisor : 0);
  }
  const double lower = numbers.happens(4) ? -kInf : numbers.between(-6, 6);
  const double upper = (std::isinf(lower) ? 0 : lower) + numbers.between(0, 8);
  model.row(coefficients, lower, numbers.happens(4) ? kInf : upper);
}

// Each of the solvers tells what GLPK tells; that.
Outcome compareWithGlpk(SmallModel& model, const std::vector<const char*>& solvers) {
  const SolverResult expected = solveFresh("glpk", model);
  for (const char* solver : solvers) {
    SCOPED_TRACE(solver);
    const SolverResult result = solveFresh(solver, model);
    EXPECT_EQ(result.outcome, expected.outcome);
    if (result.outcome != Outcome::optimal || expected.outcome != Outcome::optimal) continue;
    EXPECT_NEAR(model.objective(result.level), model.objective(expected.level), 1e-6);
  }
  return expected.outcome;
}

// Problems of a few columns and rows with small numbers, where solvers meet every corner; many have
// no end or no point.
TEST(TinyProblems, areTheSameToAll) {
  std::array<int, 8> seen{};
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    SCOPED_TRACE(seed);
    Numbers numbers(seed);
    SmallModel model;
    const int columns = numbers.between(1, 4);
    for (int j = 0; j < columns; ++j) {
      const double lower = numbers.happens(3) ? -kInf : numbers.between(-2, 0);
      const double upper = numbers.happens(6) ? kInf : numbers.between(1, 8);
      model.column(numbers.between(-3, 3), lower, upper);
    }
    for (int rows = numbers.between(0, 3); rows > 0; --rows) addRow(model, numbers, 3, 1);
    ++seen.at(static_cast<std::size_t>(compareWithGlpk(model, {"clp", "cbc"})));
  }
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::optimal)), 300);
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::infeasible)), 100);
  EXPECT_GT(seen.at(static_cast<std::size_t>(Outcome::unbounded)), 300);
}

// The same with integers, some of them below 0, where a cut that is none takes the best point away.
TEST(TinyProblems, withIntegersAreTheSameToAll) {
  int optima = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    SCOPED_TRACE(seed);
    Numbers numbers(seed);
    SmallModel model;
    const int columns = numbers.between(3, 8);
    for (int j = 0; j < columns; ++j) {
      const int cost = numbers.between(-60, 60);
      const int lower = numbers.between(-2, 0);
      model.column(cost / 10.0, lower, numbers.between(1, 20), numbers.happens(5));
    }
    for (int rows = numbers.between(2, 7); rows > 0; --rows) addRow(model, numbers, 40, 10);
    if (compareWithGlpk(model, {"cbc"}) == Outcome::optimal) ++optima;
  }
  EXPECT_GT(optima, 500);
}

INSTANTIATE_TEST_SUITE_P(Live, Differential,
                         testing::Values(Pair{"clp", "glpk"}, Pair{"glpk", "clp"}),
                         [](const auto& tested) { return std::string(tested.param.live); });

}  // namespace
}  // namespace ztbtest
