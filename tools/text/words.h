// Words of the ZTB vocabulary, and the way in which names and labels are compared: with the case of
// ASCII letters folded, any other byte as it is.
#ifndef ZTB_TOOLS_TEXT_WORDS_H_
#define ZTB_TOOLS_TEXT_WORDS_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/ztb.hpp>

namespace tool {

// A char with a capital ASCII letter made small.
constexpr char foldChar(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// A text with the capital ASCII letters made small.
std::string folded(std::string_view text);

bool sameFolded(std::string_view left, std::string_view right);
bool startsFolded(std::string_view text, std::string_view prefix);

// "set", "parameter", "variable", "equation", "alias".
std::string_view typeWord(ztb::Type type);
std::optional<ztb::Type> typeOfWord(std::string_view word);

// "map", "vector", "trie".
std::string_view storeWord(ztb::Store store);
std::optional<ztb::Store> storeOfWord(std::string_view word);

// "level", "marginal", "lower", "upper", "scale", at the place of the field.
inline constexpr std::array<std::string_view, ztb::fieldCount> fieldWords{
    "level", "marginal", "lower", "upper", "scale"};

// The beginning of a text, fit for a terminal, with "..." and its length behind it, as in
// "aaaa... (1048576 bytes)".
std::string shortened(std::string_view text);

// A text in single quotes, fit for a terminal; a long one as in "'aaaa...' (1048576 bytes)".
std::string inQuotes(std::string_view text);

// The words of "a,b,c", without the commas; one empty word of an empty text.
std::vector<std::string> splitAtCommas(std::string_view text);

// "1 record", "2 records".
std::string counted(std::size_t count, std::string_view noun);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_WORDS_H_
