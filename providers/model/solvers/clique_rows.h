// Rows that say that at most one of some literals is true, with further literals that single rows
// tell to be in conflict with all of those; rows that such a row says as well are left out.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CLIQUE_ROWS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CLIQUE_ROWS_H_

#include "providers/model/solvers/cut_problem.h"
#include "providers/model/solvers/linear_form.h"

namespace lomu {

// The same points of integers by rows that leave the linear problem no more points than before.
// False where nothing changes; `merged` stays as it is then. REQUIRES that the problem is that of
// the form.
bool mergeCliques(const CutProblem& problem, const LinearForm& form, LinearForm& merged);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CLIQUE_ROWS_H_
