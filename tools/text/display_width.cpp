#include "tools/text/display_width.h"

#include <utf8proc.h>

#include <algorithm>
#include <ztb/display_text.hpp>

namespace tool {

namespace {

constexpr std::string_view ellipsis = "\xE2\x80\xA6";

struct Character {
  std::size_t bytes;
  std::size_t width;
};

Character firstCharacter(std::string_view text) {
  const ztb::detail::DisplayUnit unit = ztb::detail::firstDisplayUnit(text);
  const int width = unit.isUtf8 ? utf8proc_charwidth(static_cast<utf8proc_int32_t>(unit.code)) : 1;
  return {.bytes = unit.size, .width = static_cast<std::size_t>(std::max(width, 0))};
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  const bool isAscii =
      std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80U; });
  if (isAscii) {
    return text.size();
  }
  std::size_t width = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    width += character.width;
    text.remove_prefix(character.bytes);
  }
  return width;
}

std::string cutToWidth(std::string_view text, std::size_t width) {
  if (displayWidth(text) <= width) {
    return std::string(text);
  }
  if (width == 0) {
    return "";
  }
  std::size_t bytes = 0;
  for (std::size_t taken = 0; bytes < text.size();) {
    const Character character = firstCharacter(text.substr(bytes));
    taken += character.width;
    if (taken > width - 1) {
      break;
    }
    bytes += character.bytes;
  }
  return std::string(text.substr(0, bytes)) + std::string(ellipsis);
}

}  // namespace tool
