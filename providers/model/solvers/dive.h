// A first point of a problem in integers, by rounding what its linear problem tells.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_DIVE_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_DIVE_H_

#include <OsiSolverInterface.hpp>

#include "providers/model/solvers/watch.h"

namespace lomu {

struct DiveWay {
  double part;  // of the undecided integers is fixed in a step, one at least
  double down;  // how much further from a whole number those count that it is above of
};

// Fixes integers at the whole numbers nearest to them, the nearest ones first, and solves the
// linear problem again, until all are decided. Where a step leaves no point better than the dual
// objective limit of the solver, it takes one integer, and that the other way when it has to. True
// with a point in the solver, which stood at a best point before; its bounds are changed. Gives up
// after so many iterations, taken from `iterations`, or when the watch says so.
bool dive(OsiSolverInterface& solver, const DiveWay& way, Watch& watch, int& iterations);

// How many integers are not at a whole number.
int undecided(const OsiSolverInterface& solver);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_DIVE_H_
