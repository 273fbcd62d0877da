// Problems whose numbers are whole, so that a preprocessor that calls small differences nothing
// loses nothing.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_WHOLE_NUMBERS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_WHOLE_NUMBERS_H_

#include "providers/model/solvers/linear_form.h"

namespace lomu {

// Whether bounds, sides and coefficients are whole and not large, coefficients of columns that need
// not be integers are 1 or -1, so that such a column can be put out of its row without a division,
// and costs are whole hundredths. Every number that substitutions, sums over rows and rounding of
// bounds make of these is whole, or of costs whole hundredths, too: two that differ do so by more
// than 0.001.
bool hasWholeNumbers(const LinearForm& form);

// Whether the bounds of each integer leave it so few numbers that they soon cross where rows move
// them by 1 again and again. Without such an end GLPK's presolve moves them for ever, and nothing
// can stop it.
bool integersHaveEnds(const LinearForm& form);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_WHOLE_NUMBERS_H_
