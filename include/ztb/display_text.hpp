// Foreign text as it may be shown on a terminal: names, labels and messages hold whatever bytes a
// file, a solver or a user put there, and some of them steer a terminal or deceive its reader.
#ifndef ZTB_DISPLAY_TEXT_HPP_
#define ZTB_DISPLAY_TEXT_HPP_

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <ztb/cpp20.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

namespace detail {

// The first unit of a text: a well-formed UTF-8 sequence, or else a single byte.
struct DisplayUnit {
  std::size_t size;
  char32_t code;  // of the byte where it is no UTF-8
  bool isUtf8;
};

// REQUIRES: text is not empty.
inline DisplayUnit firstDisplayUnit(std::string_view text) noexcept {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = at(0);
  const DisplayUnit alone{1, lead, lead < 0x80};
  if (lead < 0xC2 || lead > 0xF4) return alone;
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < size) return alone;
  // The second byte keeps out overlong forms, surrogates and what lies above U+10FFFF.
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (at(1) < lowest || at(1) > highest) return alone;
  char32_t code = lead & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((at(i) & 0xC0U) != 0x80U) return alone;
    code = code << 6U | (at(i) & 0x3FU);
  }
  return {size, code, true};
}

// Characters that steer instead of being seen: controls, separators of lines, direction, and marks
// without width. Joiners and combining marks belong to words of many languages.
constexpr bool steersDisplay(char32_t code) noexcept {
  const auto within = [code](char32_t first, char32_t last) {
    return code >= first && code <= last;
  };
  return code < 0x20 || within(0x7F, 0x9F) || code == 0x61C || code == 0x200B ||
         within(0x200E, 0x200F) || within(0x2028, 0x202E) || within(0x2060, 0x206F) ||
         code == 0xFEFF || within(0xFFF9, 0xFFFB) || within(0xE0000, 0xE007F);
}

// Bytes at the beginning of a text that are shown as they stand.
inline std::size_t displayableBytes(std::string_view text) noexcept {
  std::size_t done = 0;
  while (done < text.size()) {
    const auto byte = static_cast<unsigned char>(text[done]);
    if (byte >= 0x20 && byte < 0x7F) {
      ++done;
      continue;
    }
    const DisplayUnit unit = firstDisplayUnit(text.substr(done));
    if (!unit.isUtf8 || steersDisplay(unit.code)) break;
    done += unit.size;
  }
  return done;
}

}  // namespace detail

// Whether displayText gives the text itself.
inline bool isDisplayable(std::string_view text) noexcept {
  return detail::displayableBytes(text) == text.size();
}

// The text in one line of UTF-8 that steers nothing: \n and \t for these two, \x1b for other ASCII
// controls and for bytes that are not UTF-8, <U+202E> for other characters that steer. All else,
// a backslash too, stays as it is.
inline std::string displayText(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (true) {
    const std::size_t plain = detail::displayableBytes(text);
    shown += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return shown;
    const detail::DisplayUnit unit = detail::firstDisplayUnit(text);
    text.remove_prefix(unit.size);
    if (unit.code == '\n' || unit.code == '\t') {
      shown += unit.code == '\n' ? "\\n" : "\\t";
      continue;
    }
    std::array<char, 16> spelled{};
    const bool isByte = !unit.isUtf8 || unit.code < 0x80;
    std::snprintf(spelled.data(), spelled.size(), isByte ? "\\x%02x" : "<U+%04X>",
                  static_cast<unsigned>(unit.code));
    shown += spelled.data();
  }
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_DISPLAY_TEXT_HPP_
