// Clp for the linear problems and Cbc's own program, preprocessing, cuts, heuristics and all, for
// the search over integers. The program keeps some of its state in variables of the process, so
// searches take turns.
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

  LinearForm form_;
  ClpProgram program_;
  std::vector<double> start_;  // empty: none
  bool loaded_ = false;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CBC_ENGINE_H_
