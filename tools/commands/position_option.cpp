#include "tools/commands/position_option.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

std::size_t positionOf(const std::string& word, const std::string& option, const FileSymbol& symbol,
                       const std::vector<std::string>& keyColumns) {
  for (std::size_t position = 0; position < keyColumns.size(); ++position) {
    if (word == std::to_string(position + 1) || sameFolded(word, keyColumns[position])) {
      return position;
    }
  }
  if (keyColumns.empty()) {
    throw UsageError(fmt::format("{}: {} has no positions", option, signature(symbol)));
  }
  throw UsageError(fmt::format("{}: '{}' is no position of {}, expected 1 to {} or one of {}",
                               option, word, signature(symbol), keyColumns.size(),
                               fmt::join(keyColumns, ", ")));
}

}  // namespace tool
