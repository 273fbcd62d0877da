#include "tools/models/model_fills.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <ztb/case_folding.hpp>
#include <ztb/ztb.hpp>

#include "tools/files/record_walk.h"

namespace tool {

namespace {

// The value as a number: an infinity or what has none is left to the model library to refuse.
double plainValue(double value) {
  static const ztb::SpecialValues special = ztb::Database().specialValues();
  if (value == special[ZTB_EPSILON]) return 0;
  for (const double spelled : special) {
    if (value == spelled) return std::numeric_limits<double>::infinity();
  }
  return value;
}

}  // namespace

bool takesFills(const std::string& modelFile) {
  constexpr std::string_view ending = ".mod";
  return modelFile.size() > ending.size() &&
         ztb::sameFolded(std::string_view(modelFile).substr(modelFile.size() - ending.size()),
                         ending);
}

ModelFills::ModelFills(const ExchangeFile& file) {
  texts_.resize(static_cast<std::size_t>(file.labelCount()) + 1);
  for (int number = 1; number <= file.labelCount(); ++number) {
    texts_[static_cast<std::size_t>(number)] = file.label(number);
  }
  for (const FileSymbol& symbol : file.symbols()) {
    const bool isSet = symbol.type == ztb::Type::set;
    if (symbol.isAlias() || (!isSet && symbol.type != ztb::Type::parameter)) continue;
    Records records;
    for (RecordWalk walk(file, symbol); walk.next();) {
      for (const int key : walk.keys()) {
        records.labels.push_back(texts_[static_cast<std::size_t>(key)].c_str());
      }
      if (!isSet) records.values.push_back(plainValue(walk.values()[0]));
    }
    ztbModelFill fill{};
    fill.isSet = isSet ? 1 : 0;
    fill.dimension = symbol.dimension;
    fill.count = isSet
                     ? static_cast<long long>(records.labels.size()) / std::max(1, symbol.dimension)
                     : static_cast<long long>(records.values.size());
    names_.push_back(symbol.name);
    records_.push_back(std::move(records));
    fills_.push_back(fill);
  }
  for (std::size_t i = 0; i < fills_.size(); ++i) {
    fills_[i].name = names_[i].c_str();
    fills_[i].labels = records_[i].labels.data();
    fills_[i].values = fills_[i].isSet != 0 ? nullptr : records_[i].values.data();
  }
}

bool ModelFills::took(std::string_view symbol) const {
  return std::any_of(fills_.begin(), fills_.end(), [&](const ztbModelFill& fill) {
    return fill.taken != 0 && ztb::sameFolded(fill.name, symbol);
  });
}

}  // namespace tool
