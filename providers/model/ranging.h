// How far costs and right-hand sides of a model can each move, one at a time, while the basis of
// its last solve stays optimal.
#ifndef ZTB_PROVIDERS_MODEL_RANGING_H_
#define ZTB_PROVIDERS_MODEL_RANGING_H_

#include <vector>

#include "providers/model/catalogue.h"
#include "providers/model/instance.h"

namespace lomu {

// Infinite where there is no end. Of a column that solvers do not see, and of the objective's row,
// there is none.
struct Ranging {
  std::vector<double> costLower, costUpper;  // an entry a column
  std::vector<double> rhsLower, rhsUpper;    // an entry a row
};

// Has the solver of `row` solve the instance once more from the basis that its last solve left.
// Throws ModelError when that was no optimum, when the model was changed since, and when the
// solver has no ranges.
Ranging findRanges(Instance& instance, const CatalogueRow& row, const SolverLimits& limits);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_RANGING_H_
