// Lines that are broken where the screen ends.
#ifndef ZTB_TOOLS_TEXT_WRAPPED_TEXT_H_
#define ZTB_TOOLS_TEXT_WRAPPED_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

// One line of text, broken at blanks so that no part takes more than `width` places; 0 is no bound.
// Parts behind the first are indented. A word that has no room in a line stands alone in one that
// is too long.
std::string wrapped(std::string_view line, std::size_t width, std::size_t indent = 0);

// The help of a command. Descriptions keep to their column, lines of one paragraph are filled
// anew, and examples stay as they are, so that they can be copied.
std::string wrappedHelp(std::string_view text, std::size_t width);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_WRAPPED_TEXT_H_
