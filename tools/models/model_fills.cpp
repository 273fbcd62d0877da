#include "tools/models/model_fills.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>
#include <ztb/case_folding.hpp>

#include "tools/files/record_walk.h"
#include "tools/text/failure.h"

namespace tool {

bool takesFills(const std::string& modelFile) {
  constexpr std::string_view ending = ".mod";
  return modelFile.size() > ending.size() &&
         ztb::sameFolded(std::string_view(modelFile).substr(modelFile.size() - ending.size()),
                         ending);
}

ModelFills::ModelFills(const ExchangeFile& file) : file_(file.path()) {
  texts_.resize(static_cast<std::size_t>(file.labelCount()) + 1);
  for (int number = 1; number <= file.labelCount(); ++number) {
    texts_[static_cast<std::size_t>(number)] = file.label(number);
  }
  for (const FileSymbol& symbol : file.symbols()) {
    const bool isSet = symbol.type == ztb::Type::set;
    if (symbol.isAlias() || (!isSet && symbol.type != ztb::Type::parameter)) continue;
    begin(symbol.name, isSet, symbol.dimension);
    std::vector<const char*> labels;
    for (RecordWalk walk(file, symbol); walk.next();) {
      labels.clear();
      for (const int key : walk.keys()) {
        labels.push_back(texts_[static_cast<std::size_t>(key)].c_str());
      }
      add(labels, isSet ? 0 : walk.values()[0]);
    }
  }
}

std::vector<std::string> ModelFills::notes() const {
  std::vector<std::string> notes;
  for (const std::string& name : parametersLeft()) {
    notes.push_back(fmt::format("{}: the model declares no parameter {}", file_, name));
  }
  return notes;
}

void requireTakesFills(const std::string& data, const std::string& modelFile) {
  if (data.empty() || takesFills(modelFile)) return;
  throw UsageError(fmt::format(
      "--data {}: fills the sets and parameters of a .mod model, and {} is none", data, modelFile));
}

std::optional<ModelFills> fillsOf(const std::string& data, const std::string& modelFile) {
  requireTakesFills(data, modelFile);
  if (data.empty()) return std::nullopt;
  return ModelFills(ExchangeFile(data));
}

}  // namespace tool
