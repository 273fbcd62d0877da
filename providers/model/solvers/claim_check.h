// What a solver claims, held against the proof that it leaves: a ray or marginals. A proof has to
// hold by more than the tolerances that solvers work with, so that no other solver may claim the
// contrary.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CLAIM_CHECK_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CLAIM_CHECK_H_

#include <optional>
#include <string>
#include <vector>

#include "providers/model/solver.h"

namespace lomu {

// For the functions below, a problem has no products but where a factor of each stands still.

// Whether `rowRay`, or the same with the sign turned, gives a sum of the rows that the columns
// cannot reach. An empty ray proves bounds that cross, and nothing else.
bool provesInfeasible(const SolverProblem& problem, const std::vector<double>& rowRay);

// The sides of rows and bounds of columns that such a proof rests on, a flag each: a problem with
// these alone has no point, but for what rounding leaves of a column's sum, which is taken for 0.
struct ProofParts {
  std::vector<char> rowLower, rowUpper, lower, upper;
};

// Those of a ray that proves that no point exists; nothing of one that does not.
std::optional<ProofParts> partsOfProof(const SolverProblem& problem,
                                       const std::vector<double>& rowRay);

// Whether `level` is a point, and `columnRay`, or the same with the sign turned, a way from it that
// stays within rows and bounds and lowers the cost.
bool provesUnbounded(const SolverProblem& problem, const std::vector<double>& level,
                     const std::vector<double>& columnRay);

// The first column whose level is no bound, and farther out than the sides and bounds of the
// problem explain; -1 without one. A solver ran there for want of an end, or along a pivot that
// rounding left.
int runawayColumn(const SolverProblem& problem, const std::vector<double>& level);

// The first column that its cost, less the weighted rows, draws where it has no end, be it ever so
// little; -1 without one.
int endlessColumn(const SolverProblem& problem, const std::vector<double>& rowMarginal);

// Empty when the marginals of the rows prove that no point is better than the levels, to 1e-6 of
// the terms of the objective, and no column ran away; otherwise what speaks against it. Leaves the
// marginals of the columns, the levels of the rows and the cost in the first case.
std::string optimumDoubt(const SolverProblem& problem, SolverResult& result);

// Empty when the outcome of `result` may be believed; otherwise why not. A limit is no claim; of an
// optimum with integers nothing but its point can be looked at.
std::string claimDoubt(const SolverProblem& problem, SolverResult& result);

// What no objective of the problem is below, integers or not, as the marginals of the rows prove
// it: any numbers prove one, those of a dual feasible basis that of the basis. Minus infinity where
// they prove none, and for a problem that is not linear.
double provenBound(const SolverProblem& problem, const std::vector<double>& rowMarginal);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CLAIM_CHECK_H_
