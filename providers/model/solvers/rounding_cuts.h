// Cuts by mixed integer rounding: rows that are tight at a point, and sums of a few of them without
// the continuous columns that are off their bounds there, in which columns are measured from their
// nearer bounds, moving ones too, and coefficients are then rounded (H. Marchand and L. A. Wolsey,
// "Aggregation and mixed integer rounding to solve MIPs", Operations Research 49, 2001).
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_CUTS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_CUTS_H_

#include <vector>

#include "providers/model/solvers/cut_problem.h"

namespace lomu {

// Adds cuts that `point`, a level for each column, violates.
void findRoundingCuts(const CutProblem& problem, const double* point, std::vector<Cut>& cuts);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_CUTS_H_
