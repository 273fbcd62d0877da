// The reader of MathProg files, by GLPK, which is opened at run time;
// docs/reference/model-files.md tells what it takes.
#ifndef ZTB_PROVIDERS_MODEL_GLPK_READER_H_
#define ZTB_PROVIDERS_MODEL_GLPK_READER_H_

#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Reads a MathProg model. `dataFile`, unless empty, takes the place of the model's own data. Output
// of the model's statements is dropped. Throws ModelError.
ModelData readMathProg(const std::string& file, const std::string& dataFile);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_GLPK_READER_H_
