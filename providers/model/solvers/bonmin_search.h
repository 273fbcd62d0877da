// Bonmin's branch and bound over the integers of a problem: continuous problems by Ipopt at its
// nodes. Where objective or rows do not curve upwards, what it finds is a local best.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SEARCH_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SEARCH_H_

#include "providers/model/solver.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

// Fills outcome, hasPoint and levels, and adds to the iterations; the bound where `boundHolds`,
// since what Ipopt finds at a node bounds nothing where it is a local best. That there is no
// point is Bonmin's word. REQUIRES integer columns with bounds that are integers and do not cross,
// one of which moves.
void searchByBonmin(const SolverProblem& problem, bool boundHolds, Watch& watch,
                    SolverResult& result);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SEARCH_H_
