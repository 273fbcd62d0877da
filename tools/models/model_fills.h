// The sets and parameters of an exchange file, for the sets and parameters that a MathProg model
// declares itself.
#ifndef ZTB_TOOLS_MODELS_MODEL_FILLS_H_
#define ZTB_TOOLS_MODELS_MODEL_FILLS_H_

#include <ztb/model.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/files/exchange_file.h"

namespace tool {

// Whether the file is one whose own sets and parameters can be filled.
bool takesFills(const std::string& modelFile);

class ModelFills {
 public:
  // Reads the records of all sets and parameters. Throws Failure that names the file.
  explicit ModelFills(const ExchangeFile& file);

  // For ztb::Model::open, which marks those that the model takes.
  [[nodiscard]] std::span<ztbModelFill> all() { return fills_; }
  // Whether the model took the symbol.
  [[nodiscard]] bool took(std::string_view symbol) const;

 private:
  struct Records {
    std::vector<const char*> labels;
    std::vector<double> values;
  };

  std::vector<std::string> texts_;  // labels by number, with a final zero
  std::vector<std::string> names_;
  std::vector<Records> records_;
  std::vector<ztbModelFill> fills_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_MODEL_FILLS_H_
