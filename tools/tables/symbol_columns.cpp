#include "tools/tables/symbol_columns.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/text/words.h"

namespace tool {

std::vector<std::string> contentColumns(ztb::Type type) {
  switch (type) {
    case ztb::Type::set:
    case ztb::Type::alias:
      return {"text"};
    case ztb::Type::parameter:
      return {"value"};
    default:
      return {fieldWords.begin(), fieldWords.end()};
  }
}

std::vector<std::string> keyColumns(const std::string& symbol, ztb::Type type,
                                    const std::vector<std::string>& domains) {
  const bool plainSet = type == ztb::Type::set && domains.size() == 1;
  std::vector<std::string> taken = contentColumns(type);
  std::vector<std::string> result;
  for (std::size_t position = 0; position < domains.size(); ++position) {
    std::string base = domains[position];
    if (symbol == "*") {
      base = "label";
    } else if (base == "*") {
      base = plainSet ? symbol : fmt::format("key{}", position + 1);
    }
    std::string name = base;
    for (int suffix = 2; std::ranges::any_of(
             taken, [&](const std::string& other) { return sameFolded(other, name); });
         ++suffix) {
      name = fmt::format("{}_{}", base, suffix);
    }
    taken.push_back(name);
    result.push_back(name);
  }
  return result;
}

}  // namespace tool
