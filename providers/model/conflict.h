// Rows and bounds that cannot hold together, none of which can be left out: why a linear model,
// with integers or without, has no solution.
//
// Of a linear model, a proof that it has none comes first: that of an elastic problem, which rests
// on few rows, or the solver's own. What the proof does not rest on is left out. Then a deletion
// filter leaves out one member after the other, and goes on with the proof of what is left. Where
// there are no proofs, as of columns that have to be integers, it leaves out halves first.
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

// The conflict of a problem, found within limits.seconds. Throws ModelError where there is none,
// when a limit comes before even that is known, and when the solvers do not take the problem.
Conflict findConflict(const SolverProblem& problem, const Catalogue& catalogue,
                      const SolverLimits& limits);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_CONFLICT_H_
