// A linear problem as Cbc searches it: Clp's interface, mended where what it does by itself was
// seen to give wrong answers or to end the process.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CBC_INTERFACE_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CBC_INTERFACE_H_

#include <OsiClpSolverInterface.hpp>

#include "providers/model/solvers/linear_form.h"

namespace lomu {

class CbcInterface : public OsiClpSolverInterface {
 public:
  CbcInterface() = default;
  // Behind the columns of `form` comes one at 0 in no row: without it a row in which all columns
  // are fails an assertion of markHotStart, which takes the length of a row for its number.
  explicit CbcInterface(const LinearForm& form);

  [[nodiscard]] OsiSolverInterface* clone(bool copyData = true) const override;
  // Tightens bounds by rows that have a little room. By the rows as they are, those of integers
  // are rounded without any: 0.1 x <= 0.6 left x at most 5.
  int tightenBounds(int lightweight = 0) override;
  // Cbc solves once more what the first solve found no best point of; where that proved that there
  // is none, the dual method may then stop at 1e100, which an assertion of Clp's interface ends the
  // process for.
  void initialSolve() override;
  void resolve() override;
  // What strong branching asks for is solved as any other step. Clp's short way took a branch with
  // the best point of a known problem for one without a point.
  void markHotStart() override { OsiSolverInterface::markHotStart(); }
  void solveFromHotStart() override { OsiSolverInterface::solveFromHotStart(); }
  void unmarkHotStart() override { OsiSolverInterface::unmarkHotStart(); }

 private:
  bool isUnsolvable_ = false;  // by the last first solve
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CBC_INTERFACE_H_
