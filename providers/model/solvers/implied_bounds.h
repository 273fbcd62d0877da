// Bounds that the rows of a problem imply for columns that have none.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_IMPLIED_BOUNDS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_IMPLIED_BOUNDS_H_

#include <vector>

#include "providers/model/solver.h"

namespace lomu {

// How far columns reach: their own bounds, with 0 between those of a semi-continuous one, and for
// each that is infinite the tightest one that a row implies by the reach of its other columns, if
// one does. No point that satisfies the rows and bounds is outside, so a bound that is implied may
// stand where any finite one is needed.
struct Reach {
  std::vector<double> lower, upper;

  explicit Reach(const SolverProblem& problem);

 private:
  struct Sums;

  bool narrow(const SolverProblem& problem, const Sums& least, const Sums& most);
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_IMPLIED_BOUNDS_H_
