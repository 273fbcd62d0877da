// Readers of MPS and MathProg files, by GLPK, which is opened at run time;
// docs/reference/model-files.md tells what they take.
#ifndef ZTB_PROVIDERS_MODEL_GLPK_READER_H_
#define ZTB_PROVIDERS_MODEL_GLPK_READER_H_

#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Reads an MPS file, fixed or free: as the one that it can be read as, fixed first. Of two refusals
// the one farther down the file is thrown as ModelError. GLPK unpacks .gz.
ModelData readMps(const std::string& file);

// Reads a MathProg model; `dataFile` may be empty. Output of the model's statements is dropped.
// Throws ModelError.
ModelData readMathProg(const std::string& file, const std::string& dataFile);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_GLPK_READER_H_
