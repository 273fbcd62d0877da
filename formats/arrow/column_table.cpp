#include "formats/arrow/column_table.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ztb/case_folding.hpp>

namespace formats {

std::string comparedLabel(std::string_view label) {
  return ztb::folded(label.substr(0, label.find_last_not_of(' ') + 1));
}

namespace {

constexpr std::size_t mostRecent = 4096;

// Cheap, and different for labels with another number at their end.
std::size_t recentPlace(std::string_view label) {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  const std::size_t count = std::min(label.size(), sizeof first);
  std::memcpy(&first, label.data(), count);
  std::memcpy(&last, label.data() + label.size() - count, count);
  const std::uint64_t mixed = (first ^ (last << 1U) ^ label.size()) * 0x9E3779B97F4A7C15U;
  return mixed >> 32U & (mostRecent - 1);
}

}  // namespace

int LabelColumn::add(std::string_view label) {
  if (recent_.empty()) recent_.resize(mostRecent);
  Recent& recent = recent_[label.empty() ? 0 : recentPlace(label)];
  if (recent.label == nullptr || *recent.label != label) {
    const int place = addOther(label);
    recent = {.label = &asWritten_.find(label)->first, .place = place};
  }
  return recent.place;
}

int LabelColumn::addOther(std::string_view label) {
  const auto known = asWritten_.find(label);
  if (known != asWritten_.end()) return known->second;
  const auto [same, isNew] =
      compared_.try_emplace(comparedLabel(label), static_cast<int>(labels_.size()));
  if (isNew) labels_.emplace_back(label);
  asWritten_.emplace(label, same->second);
  return same->second;
}

}  // namespace formats
