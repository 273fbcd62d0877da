// By how much the objectives of best points differ at least.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_OBJECTIVE_STEP_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_OBJECTIVE_STEP_H_

#include "providers/model/solvers/linear_form.h"

namespace lomu {

// For every choice of the integers, the best objective is, but for a constant, a multiple of this;
// 0 where that is not known. That takes costs that are multiples of one number, and continuous
// columns with a cost that some best point has at whole numbers: those of a matrix that is totally
// unimodular, which is told of flows (each column in two rows, with opposite signs) and of
// differences (each row with two columns, with opposite signs), when the rows and bounds that they
// stand in have whole numbers.
double objectiveStep(const LinearForm& form);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_OBJECTIVE_STEP_H_
