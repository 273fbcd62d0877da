#include "providers/model/solvers/clp_solver.h"

#include <CoinError.hpp>
#include <exception>
#include <stdexcept>
#include <utility>

#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/solver_face.h"

namespace lomu {

bool ClpSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  std::string why;
  if (!form.take(problem, why)) {
    reason = "clp solves linear models without integers: " + why;
    return false;
  }
  if (form.hasIntegers) {
    reason = "clp solves linear models without integers: the model has integer columns";
    return false;
  }
  if (!form.costsSuitClp(reason)) return false;
  problem_ = {};
  program_.load(std::move(form));
  problem_ = problem;
  beginsAtBasis_ = problem.position != nullptr && problem.rowPosition != nullptr &&
                   program_.begin(problem.position, problem.rowPosition);
  return true;
}

// Bounds decide what a product comes to.
bool ClpSolver::hasSameMatrix(const SolverProblem& problem) const {
  return problem.matrixAsOf != 0 && problem.matrixAsOf == problem_.matrixAsOf &&
         problem.productCount == 0 && problem.hasIntegers == 0;
}

bool ClpSolver::update(const SolverProblem& problem) {
  if (!program_.isWhole()) return false;
  if (hasSameMatrix(problem)) {
    const bool hasSameCosts =
        problem.coefficientsAsOf != 0 && problem.coefficientsAsOf == problem_.coefficientsAsOf;
    if (!program_.update(problem, !hasSameCosts)) return false;
    problem_ = problem;
    return true;
  }
  std::string reason;
  if (!next_.take(problem, reason) || !next_.sameShape(program_.form())) return false;
  // A fresh one refuses them with the reason.
  if (!next_.costsSuitClp(reason)) return false;
  program_.update(next_);
  problem_ = problem;
  return true;
}

void ClpSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    if (!program_.isWhole()) throw std::logic_error("the model was not handed over whole");
    hasRanges_ = false;
    if (settleColumnByColumn(program_.form(), program_.boundsCross(), result)) return;
    Watch watch(limits);
    program_.solve(watch, result);
    confirmPoint(problem_, result);
    result.startTaken = std::exchange(beginsAtBasis_, false);
    hasRanges_ = result.outcome == Outcome::optimal;
    if (result.outcome == Outcome::failed) program_.forgetWork();
    return;
  } catch (CoinError& error) {
    result.reason = "clp: " + error.message();
  } catch (const std::exception& error) {
    result.reason = std::string("clp: ") + error.what();
  }
  result.outcome = Outcome::failed;
  result.hasPoint = false;
}

bool ClpSolver::ranges(SolverRanges& ranges) {
  return hasRanges_ && program_.isWhole() && program_.ranges(ranges);
}

}  // namespace lomu

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::ClpSolver>;
}
