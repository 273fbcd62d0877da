// How names and labels are compared: ASCII letters in one case, every other byte as it is.
#ifndef ZTB_CASE_FOLDING_HPP_
#define ZTB_CASE_FOLDING_HPP_

#include <algorithm>
#include <string>
#include <string_view>
#include <ztb/cpp20.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// A char with a capital ASCII letter made small.
constexpr char foldedChar(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The other way round, for what is sorted or hashed by capitals.
constexpr char upperChar(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Whether a char is one of the letters that have two cases here.
constexpr bool isAsciiLetter(char c) noexcept {
  return foldedChar(c) >= 'a' && foldedChar(c) <= 'z';
}

// A text with its capital ASCII letters made small.
inline std::string folded(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), foldedChar);
  return result;
}

// Whether two names or labels are the same to a database.
inline bool sameFolded(std::string_view left, std::string_view right) noexcept {
  return std::ranges::equal(left, right, {}, foldedChar, foldedChar);
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_CASE_FOLDING_HPP_
