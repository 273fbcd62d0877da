#include "providers/model/distinct_names.h"

#include <ztb/case_folding.hpp>

namespace lomu {

std::string DistinctNames::numbered(std::string_view wanted, std::string_view ending,
                                    unsigned number) {
  std::string_view stem = wanted;
  const bool hasEnding =
      !ending.empty() && wanted.size() > ending.size() && ztb::folded(wanted).ends_with(ending);
  if (hasEnding) stem.remove_suffix(ending.size());
  const std::string tail = "_" + std::to_string(number) +
                           std::string(hasEnding ? wanted.substr(stem.size()) : std::string_view());
  return std::string(stem.substr(0, kMaxNameLength - tail.size())) + tail;
}

}  // namespace lomu
