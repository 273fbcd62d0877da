// The reader of MPS files, fixed and free, plain and packed; docs/reference/model-files.md tells
// what it takes.
#ifndef ZTB_PROVIDERS_MODEL_MPS_READER_H_
#define ZTB_PROVIDERS_MODEL_MPS_READER_H_

#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Throws ModelError, "file:line:column: text" where there is a place.
ModelData readMps(const std::string& file);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_READER_H_
