#include "providers/model/solvers/cbc_solver.h"

#include <CoinError.hpp>
#include <exception>
#include <utility>

#include "providers/model/solvers/cbc_engine.h"
#include "providers/model/solvers/choice_search.h"
#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/solver_face.h"

namespace lomu {

bool CbcSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  std::string why;
  const bool withSets = hasSets(problem);
  if (withSets) sets_.take(problem);
  if (!form.take(withSets ? sets_.problem() : problem, why)) {
    reason = "cbc solves linear models: " + why;
    return false;
  }
  if (!form.costsSuitClp(reason)) return false;
  if (withSets) form.choices = sets_.choices();
  problem_ = problem;
  form_ = std::move(form);
  return true;
}

bool CbcSolver::update(const SolverProblem& /*problem*/) {
  return false;
}

void CbcSolver::solveForm(const SolverLimits& limits, SolverResult& result) {
  if (settleColumnByColumn(form_, result)) return;
  Watch watch(limits);
  CbcEngine engine;
  engine.take(form_);
  if (problem_.levelIsStart != 0) {
    engine.setStart(hasSets(problem_) ? sets_.problem().level : problem_.level);
  }
  solveWithChoices(engine, form_, watch, result);
}

void CbcSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    if (!hasSets(problem_)) {
      solveForm(limits, result);
    } else {
      SolverResult whole;
      whole.begin(form_.cost.size(), form_.rowLower.size());
      solveForm(limits, whole);
      whole.level.resize(result.level.size());
      whole.position.resize(result.position.size());
      whole.rowMarginal.resize(result.rowMarginal.size());
      whole.rowPosition.resize(result.rowPosition.size());
      result = std::move(whole);
      // Proofs would be those of the binary columns too.
      result.columnRay.clear();
      result.rowRay.clear();
    }
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
