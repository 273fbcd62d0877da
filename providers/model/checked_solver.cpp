#include "providers/model/checked_solver.h"

#include <utility>

#include "providers/model/solvers/claim_check.h"

namespace lomu {

bool CheckedSolver::load(const SolverProblem& problem, std::string& reason) {
  problem_ = &problem;
  isWarm_ = false;
  return solver_->load(problem, reason);
}

bool CheckedSolver::update(const SolverProblem& problem) {
  problem_ = &problem;
  return solver_->update(problem);
}

void CheckedSolver::solve(const SolverLimits& limits, SolverResult& result) {
  doubt_.clear();
  solver_->solve(limits, result);
  if (!std::exchange(isWarm_, true)) return;
  doubt_ = claimDoubt(*problem_, result);
  if (doubt_.empty()) return;
  const double iterations = result.iterations;
  result.begin(result.level.size(), result.rowMarginal.size());
  if (!solver_->load(*problem_, result.reason)) return;
  solver_->solve(limits, result);
  result.iterations += iterations;
}

}  // namespace lomu
