#include "formats/arrow/column_table.h"

#include <ztb/case_folding.hpp>

namespace formats {

std::string comparedLabel(std::string_view label) {
  return ztb::folded(label.substr(0, label.find_last_not_of(' ') + 1));
}

int LabelColumn::add(std::string_view label) {
  const auto known = asWritten_.find(label);
  if (known != asWritten_.end()) return known->second;
  const auto [same, isNew] =
      compared_.try_emplace(comparedLabel(label), static_cast<int>(labels_.size()));
  if (isNew) labels_.emplace_back(label);
  asWritten_.emplace(label, same->second);
  return same->second;
}

}  // namespace formats
