// The last look at what a solver left: a point is told only when it satisfies the problem.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_POINT_CHECK_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_POINT_CHECK_H_

#include <string>
#include <vector>

#include "providers/model/solver.h"

namespace lomu {

// Empty when the levels satisfy bounds, rows (products included) and integrality, each to 1e-6 of
// the largest number in it; otherwise what they do not satisfy.
std::string violation(const SolverProblem& problem, const std::vector<double>& level);

// Takes `hasPoint` back when the levels violate the problem, and with it an outcome that claims
// them to be best.
void confirmPoint(const SolverProblem& problem, SolverResult& result);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_POINT_CHECK_H_
