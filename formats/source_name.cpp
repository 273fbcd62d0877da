#include "formats/source_name.h"

#include <fmt/format.h>

#include "formats/file_name.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

TableSource parseSource(const std::string& argument) {
  if (argument.find('#') == std::string::npos || isThere(argument)) {
    return {.path = argument, .part = {}};
  }
  if (argument.starts_with("-#")) return {.path = "-", .part = argument.substr(2)};
  std::size_t byEnding = std::string::npos;
  for (std::size_t at = argument.find('#'); at != std::string::npos;
       at = argument.find('#', at + 1)) {
    const std::string path = argument.substr(0, at);
    if (!path.empty() && isThere(path)) {
      return {.path = path, .part = argument.substr(at + 1)};
    }
    const Format* format = formatOfFile(path);
    if (byEnding == std::string::npos && format != nullptr && format->hasParts) {
      byEnding = at;
    }
  }
  if (byEnding == std::string::npos) {
    return {.path = argument, .part = {}};
  }
  return {.path = argument.substr(0, byEnding), .part = argument.substr(byEnding + 1)};
}

const Format& formatFor(const std::string& path, const std::string& named) {
  if (!named.empty()) {
    if (const Format* format = formatNamed(named)) return *format;
    std::string names;
    for (const Format& format : formatTable()) {
      names += fmt::format("{}{}", names.empty() ? "" : ", ", format.name);
    }
    throw tool::UsageError(
        fmt::format("--format {}: no such format, expected {}", tool::inQuotes(named), names));
  }
  if (const Format* format = formatOfFile(path)) return *format;
  for (const Format& format : formatTable()) {
    if (format.ownsFolder != nullptr && format.ownsFolder(path)) return format;
  }
  return *formatNamed("csv");
}

}  // namespace formats
