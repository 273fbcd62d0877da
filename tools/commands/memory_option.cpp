#include "tools/commands/memory_option.h"

#include <ztb/rxf.h>

#include <charconv>
#include <limits>
#include <string>

namespace tool {

std::optional<unsigned long long> sizeOfText(std::string_view text) {
  constexpr std::string_view units = "KMGT";
  constexpr std::string_view smallUnits = "kmgt";
  unsigned shift = 0;
  if (!text.empty()) {
    std::size_t unit = units.find(text.back());
    if (unit == std::string_view::npos) unit = smallUnits.find(text.back());
    if (unit != std::string_view::npos) {
      shift = 10 * (static_cast<unsigned>(unit) + 1);
      text.remove_suffix(1);
    }
  }
  unsigned long long count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || stop != end || count == 0) return std::nullopt;
  if (count > std::numeric_limits<unsigned long long>::max() >> shift) return std::nullopt;
  return count << shift;
}

void addMemoryOption(Command command) {
  command
      .checked(
          "--max-memory",
          [](const std::string& text) {
            return sizeOfText(text)
                       ? std::string()
                       : "'" + text +
                             "' is no size, expected a whole number from 1 on, with or without "
                             "K, M, G or T";
          },
          [](const std::string& text) { ztbRxfMemoryLimit(*sizeOfText(text)); },
          "What the records that are held of a file may take: bytes, or as in 512M or 2G")
      .typeName("SIZE");
}

}  // namespace tool
