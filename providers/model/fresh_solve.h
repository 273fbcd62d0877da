// A solve without a database: by a solver that is made for it and freed behind it.
#ifndef ZTB_PROVIDERS_MODEL_FRESH_SOLVE_H_
#define ZTB_PROVIDERS_MODEL_FRESH_SOLVE_H_

#include "providers/model/model.h"

namespace lomu {

// Solves the model with a solver of the catalogue and leaves the solution in it, exactly as a
// database's first solve of it does: with the columns' own bounds, and with products that have a
// factor that stands still taken as linear. A request to terminate is cleared before. Throws
// ModelError, of the kind ZTB_ERROR_NOT_FOUND for a name that is none; the text is then that which
// ModelTie::solve of ztb/model.hpp gives. REQUIRES: `solver` is not null.
void solveFresh(Model& model, const char* solver);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FRESH_SOLVE_H_
