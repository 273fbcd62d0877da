// A refusal with a text for the user; texts about a file begin with "file:line: ".
#ifndef ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_
#define ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_

#include <ztb/errors.h>

#include <stdexcept>
#include <string>

namespace lomu {

class ModelError : public std::runtime_error {
 public:
  // `kind` is a ZTB_ERROR_ code.
  explicit ModelError(const std::string& text, int kind = ZTB_ERROR_REFUSED)
      : std::runtime_error(text), kind_(kind) {}

  [[nodiscard]] int kind() const noexcept { return kind_; }

 private:
  int kind_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_ERROR_H_
