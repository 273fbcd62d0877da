// The sets and parameters of an exchange file, for the sets and parameters that a MathProg model
// declares itself.
#ifndef ZTB_TOOLS_MODELS_MODEL_FILLS_H_
#define ZTB_TOOLS_MODELS_MODEL_FILLS_H_

#include <optional>
#include <string>
#include <vector>
#include <ztb/model_fills.hpp>

#include "tools/files/exchange_file.h"

namespace tool {

// Whether the file is one whose own sets and parameters can be filled.
bool takesFills(const std::string& modelFile);

class ModelFills : public ztb::ModelFillList {
 public:
  // Reads the records of all sets and parameters. Throws Failure that names the file.
  explicit ModelFills(const ExchangeFile& file);

  // A note of each parameter that the model did not take.
  [[nodiscard]] std::vector<std::string> notes() const;

 private:
  std::string file_;
  std::vector<std::string> texts_;  // labels by number, with a final zero
};

// For a --data, which may be empty, that does nothing but fill: throws UsageError for a model that
// takes none.
void requireTakesFills(const std::string& data, const std::string& modelFile);
// What it fills the model with; throws the same.
std::optional<ModelFills> fillsOf(const std::string& data, const std::string& modelFile);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_MODEL_FILLS_H_
