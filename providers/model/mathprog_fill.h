// Filling a MathProg model's own sets and parameters with records from outside.
#ifndef ZTB_PROVIDERS_MODEL_MATHPROG_FILL_H_
#define ZTB_PROVIDERS_MODEL_MATHPROG_FILL_H_

#include <ztb/model.h>

#include <span>
#include <string>

#include "providers/model/mathprog_text.h"

namespace lomu {

// The data file with which the model is to be read: its own data, or those of `dataFile` unless
// that is empty, with the statements of the symbols that `fills` has in their place. Marks the
// fills that the model takes; empty when it takes none. Throws ModelError.
MathProgData filledData(const std::string& file, const std::string& dataFile,
                        std::span<ztbModelFill> fills);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MATHPROG_FILL_H_
