// Clp: linear problems, live from the last basis.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CLP_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CLP_SOLVER_H_

#include "providers/model/solvers/clp_program.h"
#include "providers/model/solvers/linear_form.h"

namespace lomu {

class ClpSolver : public Solver {
 public:
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;
  bool ranges(SolverRanges& ranges) override;

 private:
  [[nodiscard]] bool hasSameMatrix(const SolverProblem& problem) const;

  SolverProblem problem_{};
  LinearForm next_;  // what an update fills, kept so that updates allocate nothing
  ClpProgram program_;
  bool beginsAtBasis_ = false;  // the next solve does
  bool hasRanges_ = false;      // the last solve has
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CLP_SOLVER_H_
