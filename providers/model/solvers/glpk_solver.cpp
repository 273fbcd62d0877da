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
    if (settleColumnByColumn(form_, result)) return;
    Watch watch(limits);
    program_.take(form_);
    solveWithIntegers(program_, form_, watch, result);
    confirmPoint(problem_, result);
  } catch (const std::exception& error) {
    result.outcome = Outcome::failed;
    result.hasPoint = false;
    result.reason = std::string("glpk: ") + error.what();
  }
}

}  // namespace lomu

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::GlpkSolver>;
}
