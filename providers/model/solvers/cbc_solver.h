// Cbc: problems with integers, semi-continuous columns and special ordered sets, and linear ones,
// made afresh for every solve.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CBC_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CBC_SOLVER_H_

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/set_form.h"

namespace lomu {

class CbcSolver : public Solver {
 public:
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;

 private:
  void solveForm(const SolverLimits& limits, SolverResult& result);

  SolverProblem problem_{};
  SetForm sets_;
  LinearForm form_;  // of the problem, or of sets_ where it has any
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CBC_SOLVER_H_
