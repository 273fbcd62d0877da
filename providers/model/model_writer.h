// Writing a model as a file that reads back as the same model; the ending of its name tells the
// format. docs/reference/model-files.md tells the form.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_WRITER_H_
#define ZTB_PROVIDERS_MODEL_MODEL_WRITER_H_

#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// Writes .lp and .mps files. A file that was there is replaced once the new one is whole. Throws
// ModelError when the format cannot hold the model, or the file cannot be written. Gives a note on
// the names that had to be changed; empty where none had.
std::string writeModelFile(const ModelData& model, const std::string& file);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_WRITER_H_
