#include "providers/model/solvers/cbc_interface.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "providers/model/solvers/clp_program.h"

namespace lomu {

CbcInterface::CbcInterface(const LinearForm& form) {
  messageHandler()->setLogLevel(0);
  setHintParam(OsiDoReducePrint, true, OsiHintTry);
  ClpSolve choice;
  leaveInterrupts(choice);
  setSolveOptions(choice);
  loadProblem(form.columnCount, form.rowCount, form.start.data(), form.rowOf.data(),
              form.value.data(), form.lower.data(), form.upper.data(), form.cost.data(),
              form.rowLower.data(), form.rowUpper.data());
  for (int j = 0; j < form.columnCount; ++j) {
    if (form.isInteger[static_cast<std::size_t>(j)] != 0) setInteger(j);
  }
  addCol(0, nullptr, nullptr, 0, 0, 0);
}

OsiSolverInterface* CbcInterface::clone(bool copyData) const {
  return copyData ? new CbcInterface(*this) : new CbcInterface();
}

void CbcInterface::initialSolve() {
  OsiClpSolverInterface::initialSolve();
  isUnsolvable_ = isProvenPrimalInfeasible() || isProvenDualInfeasible();
}

void CbcInterface::resolve() {
  if (!std::exchange(isUnsolvable_, false)) OsiClpSolverInterface::resolve();
}

int CbcInterface::tightenBounds(int lightweight) {
  // That of Clp for what a row may be missed by.
  constexpr double kRoom = 1e-7;
  ClpSimplex& simplex = *getModelPtr();
  const int rows = simplex.numberRows();
  double* const lower = simplex.rowLower();
  double* const upper = simplex.rowUpper();
  const std::vector<double> ownLower(lower, lower + rows);
  const std::vector<double> ownUpper(upper, upper + rows);
  for (int i = 0; i < rows; ++i) {
    lower[i] -= kRoom * std::max(1.0, std::abs(lower[i]));
    upper[i] += kRoom * std::max(1.0, std::abs(upper[i]));
  }
  const int changed = OsiClpSolverInterface::tightenBounds(lightweight);
  std::copy(ownLower.begin(), ownLower.end(), lower);
  std::copy(ownUpper.begin(), ownUpper.end(), upper);
  return changed;
}

}  // namespace lomu
