// Linear problems whose matrix is empty, or zero throughout: each column stands for itself. The
// solvers do not treat them all alike, so this is done before them.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BY_COLUMN_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BY_COLUMN_H_

#include "providers/model/solvers/linear_form.h"

namespace lomu {

// True with the result when the bounds of a column or a row cross, or when no column is in a row;
// false when it takes a solver.
bool settleColumnByColumn(const LinearForm& form, SolverResult& result);
// The same for a caller who knows whether bounds cross.
bool settleColumnByColumn(const LinearForm& form, bool boundsCross, SolverResult& result);

// Whether a row without any term, products included, has sides that 0 is not between.
bool missesAnEmptyRow(const SolverProblem& problem);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BY_COLUMN_H_
