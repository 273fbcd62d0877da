#include "providers/model/checked_solver.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "providers/model/solvers/claim_check.h"

namespace lomu {

bool CheckedSolver::load(const SolverProblem& problem, std::string& reason) {
  problem_ = &problem;
  isWarm_ = problem.position != nullptr;
  return solver_->load(problem, reason);
}

bool CheckedSolver::update(const SolverProblem& problem) {
  problem_ = &problem;
  return solver_->update(problem);
}

namespace {

double secondsSince(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

// What a limit leaves has a bound where the marginals of the last basis prove one.
void CheckedSolver::solve(const SolverLimits& limits, SolverResult& result) {
  solveBelieved(limits, result);
  const bool isLimited = result.outcome == Outcome::timeLimit ||
                         result.outcome == Outcome::iterationLimit ||
                         result.outcome == Outcome::terminated;
  if (isLimited && std::isinf(result.bound)) {
    result.bound = provenBound(*problem_, result.rowMarginal);
  }
}

void CheckedSolver::solveBelieved(const SolverLimits& limits, SolverResult& result) {
  doubt_.clear();
  const auto begin = std::chrono::steady_clock::now();
  if (!std::exchange(isWarm_, true)) {
    solver_->solve(limits, result);
    coldSeconds_ = secondsSince(begin);
    return;
  }
  SolverLimits warm = limits;
  const double most = std::max(kLeastWarmSeconds, kMostColdSolves * coldSeconds_);
  const bool isCapped = coldSeconds_ > 0 && most < limits.seconds;
  if (isCapped) warm.seconds = most;
  solver_->solve(warm, result);
  SolverLimits rest = limits;
  if (isCapped && result.outcome == Outcome::timeLimit) {
    doubt_ = "it took far longer than a fresh solve";
    rest.barrier = 1;
  } else {
    doubt_ = claimDoubt(*problem_, result);
  }
  if (doubt_.empty()) return;
  rest.seconds = std::max(0.0, limits.seconds - secondsSince(begin));
  const double iterations = result.iterations;
  result.begin(result.level.size(), result.rowMarginal.size());
  cold_ = *problem_;
  cold_.position = nullptr;
  cold_.rowPosition = nullptr;
  if (!solver_->load(cold_, result.reason)) return;
  const auto again = std::chrono::steady_clock::now();
  solver_->solve(rest, result);
  coldSeconds_ = secondsSince(again);
  result.iterations += iterations;
}

}  // namespace lomu
