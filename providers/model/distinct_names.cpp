#include "providers/model/distinct_names.h"

#include <ztb/case_folding.hpp>

namespace lomu {

std::string DistinctNames::take(std::string_view wanted, std::string_view ending) {
  if (wanted.size() <= kMaxNameLength && taken_.insert(ztb::folded(wanted)).second) {
    return std::string(wanted);
  }
  std::string_view stem = wanted;
  const bool hasEnding =
      !ending.empty() && wanted.size() > ending.size() && ztb::folded(wanted).ends_with(ending);
  if (hasEnding) stem.remove_suffix(ending.size());
  // A long name that is free once cut gets a number all the same: the cut is no name of its own.
  unsigned& number = lastNumber_.try_emplace(ztb::folded(wanted), 1U).first->second;
  for (;;) {
    const std::string tail =
        "_" + std::to_string(++number) +
        std::string(hasEnding ? wanted.substr(stem.size()) : std::string_view());
    std::string name = std::string(stem.substr(0, kMaxNameLength - tail.size())) + tail;
    if (taken_.insert(ztb::folded(name)).second) return name;
  }
}

}  // namespace lomu
