#include "providers/model/conflict_trial.h"

#include <algorithm>
#include <limits>
#include <string>

#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"

namespace lomu {

namespace {

// Bounds alone change between the solves here.
constexpr std::uint64_t kSameCoefficients = std::numeric_limits<std::uint64_t>::max();

// A search over integers that takes longer is given up; what it was to show then stays open.
constexpr double kSecondsOfSearch = 30;

}  // namespace

Trial::Trial(const SolverProblem& problem, const CatalogueRow& solver, const SolverLimits& limits,
             Clock::time_point end)
    : problem_(problem),
      lower(problem.lower, problem.lower + problem.columnCount),
      upper(problem.upper, problem.upper + problem.columnCount),
      rowLower(problem.rowLower, problem.rowLower + problem.rowCount),
      rowUpper(problem.rowUpper, problem.rowUpper + problem.rowCount),
      solver_(SolverLibrary::makeSolver(solver.library)),
      limits_(limits),
      end_(end) {
  problem_.coefficientsAsOf = problem_.matrixAsOf = kSameCoefficients;
}

const SolverProblem& Trial::problem() {
  problem_.lower = lower.data();
  problem_.upper = upper.data();
  problem_.rowLower = rowLower.data();
  problem_.rowUpper = rowUpper.data();
  return problem_;
}

void Trial::solve() {
  // Clp may end the process over a column that lost its bounds while the solver lived.
  std::string reason;
  const bool isTaken = solver_->load(problem(), reason);
  if (!isTaken && !wasTaken_) throw ModelError("cannot be explained: " + reason);
  result_.begin(lower.size(), rowLower.size());
  // Without a row that implied the bounds of a column of a set: what is left is not searched.
  if (!isTaken) {
    result_.outcome = Outcome::failed;
    return;
  }
  wasTaken_ = true;
  limits_.seconds = std::chrono::duration<double>(end_ - Clock::now()).count();
  if (problem_.hasIntegers != 0) limits_.seconds = std::min(limits_.seconds, kSecondsOfSearch);
  if (limits_.seconds <= 0) {
    result_.outcome = Outcome::timeLimit;
    return;
  }
  solver_->solve(limits_, result_);
}

bool Trial::infeasible(bool& unknown) {
  solve();
  if (result_.outcome == Outcome::infeasible) return true;
  const bool feasible = result_.hasPoint || result_.outcome == Outcome::optimal ||
                        result_.outcome == Outcome::unbounded;
  unknown = unknown || !feasible;
  return false;
}

}  // namespace lomu
