// Whether the products of an objective curve upwards everywhere, so that a local optimum over
// linear rows is a global one.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_

#include <span>

#include "providers/model/solver.h"

namespace lomu {

// By a Cholesky factorization with pivoting of each group of columns that products connect. False
// also where a group has more than 3000 columns, which is not looked at. `columnCount`: columns of
// the problem.
bool curvesUpwards(std::span<const SolverProduct> products, int columnCount);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_
