// GLPK: linear problems, live from the last basis, and problems with integers.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_SOLVER_H_

#include "providers/model/solvers/glpk_program.h"
#include "providers/model/solvers/linear_form.h"

namespace lomu {

class GlpkSolver : public Solver {
 public:
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;
  bool ranges(SolverRanges& ranges) override;

 private:
  SolverProblem problem_{};
  LinearForm form_;
  GlpkProgram program_;
  bool isLoaded_ = false;   // and not solved yet
  bool hasRanges_ = false;  // the last solve has
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_GLPK_SOLVER_H_
