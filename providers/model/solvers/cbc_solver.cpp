#include "providers/model/solvers/cbc_solver.h"

#include <CoinError.hpp>
#include <exception>
#include <utility>

#include "providers/model/solvers/cbc_engine.h"
#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/solver_face.h"

namespace lomu {

bool CbcSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  std::string why;
  if (!form.take(problem, why)) {
    reason = "cbc solves linear models: " + why;
    return false;
  }
  problem_ = problem;
  form_ = std::move(form);
  return true;
}

bool CbcSolver::update(const SolverProblem& /*problem*/) {
  return false;
}

void CbcSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    if (settleColumnByColumn(form_, result)) return;
    Watch watch(limits);
    CbcEngine engine;
    engine.take(form_);
    if (problem_.levelIsStart != 0) engine.setStart(problem_.level);
    solveWithIntegers(engine, form_, watch, result);
    confirmPoint(problem_, result);
    return;
  } catch (CoinError& error) {
    result.reason = "cbc: " + error.message();
  } catch (const std::exception& error) {
    result.reason = std::string("cbc: ") + error.what();
  }
  result.outcome = Outcome::failed;
  result.hasPoint = false;
}

}  // namespace lomu

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::CbcSolver>;
}
