// Clp for the linear problems and Cbc for the search over integers.
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

 private:
  LinearForm form_;
  ClpProgram program_;
  bool loaded_ = false;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CBC_ENGINE_H_
