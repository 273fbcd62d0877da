// Reading a model file: the ending of its name tells which reader.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_FILE_H_
#define ZTB_PROVIDERS_MODEL_MODEL_FILE_H_

#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Reads .lp, .mps, .mps.gz and .mod files; `dataFile` goes with .mod and may be empty. Throws
// ModelError.
ModelData readModelFile(const std::string& file, const std::string& dataFile);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_FILE_H_
