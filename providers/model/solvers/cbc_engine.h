// Clp for the linear problems and Cbc for the search over integers. Not Cbc's own program in one
// call: where presolve leaves next to nothing, that one was seen to call a problem infeasible that
// is not.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CBC_ENGINE_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CBC_ENGINE_H_

#include "providers/model/solvers/clp_program.h"
#include "providers/model/solvers/integer_solve.h"

namespace lomu {

class CbcEngine : public IntegerEngine {
 public:
  void take(const LinearForm& form) override;
  void solveLinear(Watch& watch, SolverResult& result) override;
  void searchIntegers(Watch& watch, SolverResult& result) override;
  // The program solves the linear problem its own way.
  [[nodiscard]] bool needsLinearFirst() const override { return false; }

  // A point that the next search is to begin with, if its integers can be completed to one.
  void setStart(const double* level) { start_.assign(level, level + form_.columnCount); }

 private:
  bool completeStart(Watch& watch, SolverResult& result);
  // Searches a form from `start`, where one was taken, and returns the best point or none.
  std::vector<double> search(const LinearForm& form, const std::vector<double>& start, Watch& watch,
                             SolverResult& result);
  // Searches what a reduction leaves of the form. False where that is the form itself, or told no
  // point: that there is none is what the whole problem is to say.
  bool searchReduced(Watch& watch, SolverResult& result);

  LinearForm form_;
  ClpProgram program_;
  std::vector<double> start_;  // empty: none
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CBC_ENGINE_H_
