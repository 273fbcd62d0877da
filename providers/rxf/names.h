// What a symbol name and a label may look like.
#ifndef ZTB_PROVIDERS_RXF_NAMES_H_
#define ZTB_PROVIDERS_RXF_NAMES_H_

#include <string_view>

namespace rxffile {

// The name of the universe of labels where a set's name could stand.
inline constexpr std::string_view kUniverseName = "*";

// Null when `name` is acceptable: 1 to 63 characters, a letter first, then letters, digits and
// underscores. Otherwise the reason.
const char* nameRefusal(std::string_view name);

// The label without its trailing blanks.
std::string_view trimmedLabel(std::string_view label);

// Null when `label`, trimmed, is acceptable: at most 63 bytes, none below 32, not both kinds of
// quote, not blanks alone. The empty label is acceptable. Otherwise the reason.
const char* labelRefusal(std::string_view label);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_NAMES_H_
