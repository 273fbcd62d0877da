#include "tools/files/slice_filter.h"

#include <fmt/format.h>

#include "tools/files/slice_pattern.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

SliceFilter::SliceFilter(const std::string& slice, const ExchangeFile& file,
                         const FileSymbol& symbol) {
  const std::vector<PositionPattern> patterns = parseSlice(slice);
  if (patterns.size() != static_cast<std::size_t>(symbol.dimension)) {
    throw UsageError(fmt::format("--slice {}: has {}, {} has {}", slice,
                                 counted(patterns.size(), "position"), signature(symbol),
                                 symbol.dimension));
  }
  for (const PositionPattern& pattern : patterns) {
    std::vector<bool>& allowed = allowed_.emplace_back();
    if (pattern.any()) {
      continue;
    }
    allowed.resize(static_cast<std::size_t>(file.labelCount()) + 1);
    bool found = false;
    for (int number = 1; number <= file.labelCount(); ++number) {
      if (pattern.matches(file.label(number))) {
        allowed[static_cast<std::size_t>(number)] = true;
        found = true;
      }
    }
    if (!found && pattern.exact()) {
      throw Failure(fmt::format("{}: no label {} (position {} of the slice)", file.path(),
                                inQuotes(pattern.text), allowed_.size()));
    }
  }
}

bool SliceFilter::matches(std::span<const int> keys) const {
  for (std::size_t position = 0; position < allowed_.size(); ++position) {
    if (!allowed_[position].empty() &&
        !allowed_[position][static_cast<std::size_t>(keys[position])]) {
      return false;
    }
  }
  return true;
}

}  // namespace tool
