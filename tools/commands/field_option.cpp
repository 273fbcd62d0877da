#include "tools/commands/field_option.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <ztb/column_names.hpp>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

std::vector<std::size_t> fieldsOf(const std::string& list, const FileSymbol& symbol) {
  if (symbol.valueCount != static_cast<int>(ztb::fieldCount)) {
    throw UsageError(fmt::format("--field {}: {} is a {}; only variables and equations have fields",
                                 list, signature(symbol), typeWord(symbol.type)));
  }
  std::vector<std::size_t> fields;
  for (const std::string& word : splitAtCommas(list)) {
    const auto* found = std::ranges::find_if(
        ztb::fieldNames, [&](std::string_view field) { return sameFolded(field, word); });
    if (found == ztb::fieldNames.end()) {
      throw UsageError(fmt::format(
          "--field {}: '{}' is no field, expected level, marginal, lower, upper or scale", list,
          word));
    }
    fields.push_back(static_cast<std::size_t>(found - ztb::fieldNames.begin()));
  }
  return fields;
}

ztb::Field oneFieldOf(const std::optional<std::string>& word, const FileSymbol& symbol) {
  if (!word) {
    return ztb::Field::level;
  }
  const std::vector<std::size_t> fields = fieldsOf(*word, symbol);
  if (fields.size() != 1) {
    throw UsageError(fmt::format("--field {}: one field is expected", *word));
  }
  return static_cast<ztb::Field>(fields.front());
}

}  // namespace tool
