// Rows and bounds that cannot hold together, none of which can be left out: why a linear model,
// with integers or without, has no solution.
//
// A deletion filter: parts of the model are left out as long as the rest has no
// solution, halves of it first. On a model of many rows an elastic filter comes before it, which
// finds the rows among which the conflict is: every row may be broken at a cost, and what is broken
// in the cheapest point may not be in the next one.
#ifndef ZTB_PROVIDERS_MODEL_CONFLICT_H_
#define ZTB_PROVIDERS_MODEL_CONFLICT_H_

#include <string>
#include <vector>

#include "providers/model/catalogue.h"
#include "providers/model/solver.h"

namespace lomu {

enum class ConflictPart { row, rowLower, rowUpper, column, columnLower, columnUpper };

// A row or column of the problem with the side that counts; both sides of a row that is an equation
// and of a column that stands still are one part.
struct ConflictMember {
  ConflictPart part;
  int number;
};

struct Conflict {
  std::vector<ConflictMember> members;
  // Each member was shown to be needed. False when the time was over before, or the solver gave up
  // in between: the members cannot hold together all the same.
  bool irreducible = true;
  // Members hold together unless columns have to be integers, too, each within its bounds, or 0
  // beside them, or in an ordered set; and which of these the model has, in words.
  bool byIntegers = false;
  std::string condition;
};

// Models with more rows are filtered elastically first.
inline constexpr int kElasticRows = 500;

// The conflict of a problem, found within limits.seconds. Throws ModelError where there is none,
// when a limit comes before even that is known, and when the solvers do not take the problem.
Conflict findConflict(const SolverProblem& problem, const Catalogue& catalogue,
                      const SolverLimits& limits, int elasticRows = kElasticRows);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_CONFLICT_H_
