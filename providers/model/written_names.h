// Names in files of a format that cannot hold them: others stand for them, and comments at the
// beginning of the file tell which, so that our readers have the model's own again.
#ifndef ZTB_PROVIDERS_MODEL_WRITTEN_NAMES_H_
#define ZTB_PROVIDERS_MODEL_WRITTEN_NAMES_H_

#include <optional>
#include <string>

#include "providers/model/model_data.h"

namespace lomu {

// The model with names that the format holds, distinct still.
struct WrittenNames {
  ModelData model;
  std::string comments;  // lines for the beginning of the file
  std::string note;      // how many names were changed, and the first
};

// Nothing where the format holds all names.
std::optional<WrittenNames> writtenNames(const ModelData& model, bool isLp);

// Gives a model that was read from a file the names that the comments of the file tell. Comments
// that fit no name, or would make two of one, change nothing.
void restoreNames(const std::string& file, ModelData& model);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_WRITTEN_NAMES_H_
