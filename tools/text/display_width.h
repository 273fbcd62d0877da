// How much room text takes on a terminal.
#ifndef ZTB_TOOLS_TEXT_DISPLAY_WIDTH_H_
#define ZTB_TOOLS_TEXT_DISPLAY_WIDTH_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

// Places that text takes on a terminal: two for each wide character, none for one that combines
// with the character before it, one for a byte that is not UTF-8.
std::size_t displayWidth(std::string_view text);

// The text if it takes at most `width` places; otherwise as much of its beginning as fits with an
// ellipsis behind it. Characters stay whole, with what combines with them.
std::string cutToWidth(std::string_view text, std::size_t width);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_DISPLAY_WIDTH_H_
