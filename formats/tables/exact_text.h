// Labels and texts in formats whose texts cannot be any bytes: what is no UTF-8, or no char of
// theirs, is spelled out, and comes back byte for byte.
//
// A text that stands as it is has no backslash in front. One that does not is a backslash, then the
// text with each backslash doubled and bytes that cannot stand as \xHH.
#ifndef ZTB_FORMATS_TABLES_EXACT_TEXT_H_
#define ZTB_FORMATS_TABLES_EXACT_TEXT_H_

#include <optional>
#include <string>
#include <string_view>

namespace formats {

// What a format can hold.
enum class TextForm {
  json,  // UTF-8
  xml    // UTF-8 without control characters; not empty, and without what looks like _x000D_
};

// Whether the text can stand as it is in a format of UTF-8.
bool isUtf8(std::string_view text);

// The text as it is written: itself, or spelled out into `room`.
std::string_view spelled(std::string_view text, TextForm form, std::string& room);

// The text as it was; nothing for one that begins with a backslash and was never written so.
std::optional<std::string> unspelled(std::string_view text);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_EXACT_TEXT_H_
