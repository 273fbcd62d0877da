// A refusal with a text for the user; texts about a file begin with "file:line: ".
#ifndef ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_
#define ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_

#include <stdexcept>

namespace lomu {

class ModelError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_
