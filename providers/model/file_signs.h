// The signs that LP and MPS files have in common.

#pragma once

#include <cstddef>
#include <string_view>

namespace lomu {

// Bytes of the longest name of a row or column that a file may have.
inline constexpr std::size_t kMaxFileName = 255;
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

constexpr bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

}  // namespace lomu
