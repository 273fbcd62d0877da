// Reading a model file: the ending of its name tells which reader.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_FILE_H_
#define ZTB_PROVIDERS_MODEL_MODEL_FILE_H_

#include <ztb/model.h>

#include <span>
#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Reads .lp, .mps, both also with .gz, and .mod files; `dataFile` goes with .mod and may be empty.
// Marks the fills that the model takes, a .mod alone. Throws ModelError.
ModelData readModelFile(const std::string& file, const std::string& dataFile,
                        std::span<ztbModelFill> fills = {});

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_FILE_H_
