#include "providers/model/solvers/glpk_solver.h"

#include <exception>
#include <utility>

#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/solver_face.h"

namespace lomu {

bool GlpkSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  std::string why;
  if (!form.take(problem, why)) {
    reason = "glpk solves linear models: " + why;
    return false;
  }
  problem_ = problem;
  form_ = std::move(form);
  program_.forget();
  isLoaded_ = true;
  return true;
}

bool GlpkSolver::update(const SolverProblem& problem) {
  LinearForm form;
  std::string reason;
  if (!form.take(problem, reason) || !form.sameShape(form_)) return false;
  problem_ = problem;
  form_ = std::move(form);
  return true;
}

void GlpkSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    hasRanges_ = false;
    const bool isFirst = std::exchange(isLoaded_, false);
    if (settleColumnByColumn(form_, result)) return;
    Watch watch(limits);
    program_.take(form_);
    const bool begins = isFirst && !form_.hasIntegers && problem_.position != nullptr &&
                        problem_.rowPosition != nullptr &&
                        program_.begin(problem_.position, problem_.rowPosition);
    solveWithIntegers(program_, form_, watch, result);
    confirmPoint(problem_, result);
    result.startTaken = begins;
    hasRanges_ = result.outcome == Outcome::optimal && !form_.hasIntegers;
  } catch (const std::exception& error) {
    result.outcome = Outcome::failed;
    result.hasPoint = false;
    result.reason = std::string("glpk: ") + error.what();
  }
}

bool GlpkSolver::ranges(SolverRanges& ranges) {
  return hasRanges_ && program_.ranges(ranges);
}

}  // namespace lomu

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::GlpkSolver>;
}
