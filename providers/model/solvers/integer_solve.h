// Problems with integers, the same way for every engine: the problem without integrality first,
// where the search does not solve it itself, then the search, then the linear problem with the
// integers fixed at the point found, which gives levels, positions and marginals. Where there is no
// point, the problem without integrality tells infeasible from unbounded.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_INTEGER_SOLVE_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_INTEGER_SOLVE_H_

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class IntegerEngine {
 public:
  IntegerEngine() = default;
  virtual ~IntegerEngine() = default;
  IntegerEngine(const IntegerEngine&) = delete;
  IntegerEngine& operator=(const IntegerEngine&) = delete;

  // Takes a form over, the first or another one of the same shape.
  virtual void take(const LinearForm& form) = 0;
  // Solves without integrality. REQUIRES bounds that do not cross and a matrix that is not zero.
  virtual void solveLinear(Watch& watch, SolverResult& result) = 0;
  // Searches for the best point with integers. Fills outcome, hasPoint and levels, and adds to the
  // iterations. REQUIRES, where it needs one, that solveLinear just found an optimum.
  virtual void searchIntegers(Watch& watch, SolverResult& result) = 0;
  [[nodiscard]] virtual bool needsLinearFirst() const { return true; }
};

// Solves what `engine` holds, which is `form`; at the end it holds a form of the same shape. A
// point that breaks a choice of the form is left as the search found it.
void solveWithIntegers(IntegerEngine& engine, const LinearForm& form, Watch& watch,
                       SolverResult& result);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_INTEGER_SOLVE_H_
