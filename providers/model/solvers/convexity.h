// Whether products curve one way everywhere, so that a local optimum is a global one.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_

#include <span>

#include "providers/model/solver.h"

namespace lomu {

// By a Cholesky factorization with pivoting of each group of columns that products connect. False
// also where a group has more than 3000 columns, which is not looked at. `columnCount`: columns of
// the problem.
bool curvesUpwards(std::span<const SolverProduct> products, int columnCount);

// Whether the rows with products hold a convex set: those with an upper side curve upwards, those
// with a lower one downwards, and those with both neither way. `products`: of columns that move.
bool rowsAreConvex(const SolverProblem& problem, std::span<const SolverProduct> products);

// The same, and the objective curves upwards.
bool isConvex(const SolverProblem& problem, std::span<const SolverProduct> products);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CONVEXITY_H_
