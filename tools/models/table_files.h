// The files that a MathProg model reads its tables from.
#ifndef ZTB_TOOLS_MODELS_TABLE_FILES_H_
#define ZTB_TOOLS_MODELS_TABLE_FILES_H_

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The texts in quotes in the statements `table ... IN ...` of a model, in order, as they may name
// files. A name that the model puts together from parts is not found.
std::vector<std::string> tableInputs(std::string_view model);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_TABLE_FILES_H_
