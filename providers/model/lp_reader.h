// The reader of LP files, with quadratic terms in square brackets;
// docs/reference/model-files.md tells what it takes.
#ifndef ZTB_PROVIDERS_MODEL_LP_READER_H_
#define ZTB_PROVIDERS_MODEL_LP_READER_H_

#include <string>
#include <string_view>

#include "providers/model/model_data.h"

namespace lomu {

// Reads the text of an LP file. `file` is what errors begin with. Throws ModelError.
// REQUIRES: the text is at most as long as the largest int.
ModelData readLp(const std::string& file, std::string_view text);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_READER_H_
