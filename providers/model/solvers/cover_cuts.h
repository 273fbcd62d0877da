// Cuts by covers: of each row the knapsack that its binary columns make up when the others are
// where they leave most room, and inequalities of it that a point violates.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_COVER_CUTS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_COVER_CUTS_H_

#include <vector>

#include "providers/model/solvers/cut_problem.h"

namespace lomu {

// Adds cuts that `point`, a level for each column, violates.
void findCoverCuts(const CutProblem& problem, const double* point, std::vector<Cut>& cuts);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_COVER_CUTS_H_
