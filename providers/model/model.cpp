#include "providers/model/model.h"

#include <new>
#include <utility>

namespace lomu {

Model::Model(const ModelData& data, std::shared_ptr<Environment> itsEnvironment)
    : instance(data), dictionary(data), environment(std::move(itsEnvironment)), notes(data.notes) {
  for (const std::string& note : notes) environment->log(note);
  notes.insert(notes.end(), dictionary.notes().begin(), dictionary.notes().end());
}

void Model::noteFailure(const std::exception& error) noexcept {
  const char* text = failureText(error);
  try {
    message = text;
  } catch (const std::bad_alloc&) {
    message.clear();
  }
  environment->log(text);
}

const char* failureText(const std::exception& error) noexcept {
  return dynamic_cast<const std::bad_alloc*>(&error) == nullptr ? error.what() : "out of memory";
}

}  // namespace lomu
