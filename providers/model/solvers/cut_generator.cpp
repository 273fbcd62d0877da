#include "providers/model/solvers/cut_generator.h"

#include <algorithm>
#include <cstddef>

#include "providers/model/at.h"

namespace lomu {

// Whether the solver has the columns of the problem, and behind them perhaps others, within their
// bounds: Cbc's heuristics search problems too from which they have taken columns.
bool CutGenerator::isPartOf(const OsiSolverInterface& solver) const {
  constexpr double kRoom = 1e-6;
  constexpr double kBoundless = 1e20;
  const int columns = problem_->columnCount();
  if (solver.getNumCols() < columns || solver.getNumRows() < problem_->rowCount()) return false;
  const double* lower = solver.getColLower();
  const double* upper = solver.getColUpper();
  for (int j = 0; j < columns; ++j) {
    if (lower[j] > -kBoundless && lower[j] < problem_->lower[at(j)] - kRoom) return false;
    if (upper[j] < kBoundless && upper[j] > problem_->upper[at(j)] + kRoom) return false;
  }
  return true;
}

std::vector<Cut> CutGenerator::cutsAt(const OsiSolverInterface& solver, bool inTree) const {
  std::vector<Cut> found;
  if (atRoot_ != nullptr) {
    if (!inTree && !atRoot_->hasRun()) atRoot_->run(solver);
    if (!atRoot_->areUseful()) return found;
    found = atRoot_->take(way_);
  }
  if (found.empty()) find_(*problem_, solver.getColSolution(), found);
  return found;
}

void CutGenerator::generateCuts(const OsiSolverInterface& solver, OsiCuts& cuts,
                                const CglTreeInfo info) {
  if (!isPartOf(solver)) return;
  const std::vector<Cut> found = cutsAt(solver, info.inTree);
  // As Cbc asks its own: in the first rounds for all of the search, later for the node alone.
  const bool forAll =
      (info.options & 16) != 0 ||
      (!info.inTree && ((info.options & 4) != 0 || ((info.options & 8) != 0 && info.pass == 0)));
  for (const Cut& cut : found) {
    OsiRowCut row;
    row.setRow(static_cast<int>(cut.column.size()), cut.column.data(), cut.value.data(), false);
    row.setUb(cut.right);
    if (forAll) row.setGloballyValid();
    cuts.insertIfNotDuplicate(row);
  }
}

}  // namespace lomu
