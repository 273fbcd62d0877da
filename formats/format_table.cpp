#include "formats/format_table.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace formats {

namespace {

bool sameFolded(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, [](unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
  });
}

// The longest ending of a format that the name of a file has, as its length; 0 for none.
std::size_t endingOf(const Format& format, std::string_view path) {
  std::size_t longest = 0;
  for (std::string_view rest = format.endings; !rest.empty();) {
    const std::size_t blank = std::min(rest.find(' '), rest.size());
    const std::string_view ending = rest.substr(0, blank);
    if (path.size() > ending.size() &&
        sameFolded(path.substr(path.size() - ending.size()), ending)) {
      longest = std::max(longest, ending.size());
    }
    rest.remove_prefix(std::min(blank + 1, rest.size()));
  }
  return longest;
}

}  // namespace

std::span<const Format> formatTable() {
  static constexpr std::array<Format, 0> formats{};
  return formats;
}

const Format* formatNamed(std::string_view name) {
  for (const Format& format : formatTable()) {
    if (sameFolded(format.name, name)) return &format;
  }
  return nullptr;
}

const Format* formatOfFile(std::string_view path) {
  const Format* found = nullptr;
  std::size_t longest = 0;
  for (const Format& format : formatTable()) {
    if (const std::size_t length = endingOf(format, path); length > longest) {
      longest = length;
      found = &format;
    }
  }
  return found;
}

}  // namespace formats
