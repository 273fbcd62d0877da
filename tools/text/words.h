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
#include <ztb/case_folding.hpp>
#include <ztb/ztb.hpp>

namespace tool {

// Names and words compare as the database compares them.
using ztb::folded;
using ztb::sameFolded;
bool startsFolded(std::string_view text, std::string_view prefix);

// "set", "parameter", "variable", "equation", "alias".
std::string_view typeWord(ztb::Type type);
std::optional<ztb::Type> typeOfWord(std::string_view word);

// "map", "vector", "trie".
std::string_view storeWord(ztb::Store store);
std::optional<ztb::Store> storeOfWord(std::string_view word);

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
