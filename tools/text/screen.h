// What the terminal behind standard output can show.
#ifndef ZTB_TOOLS_TEXT_SCREEN_H_
#define ZTB_TOOLS_TEXT_SCREEN_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// Whether standard output is a terminal.
bool outputIsTerminal();

// Whether a stream (1 or 2) takes colours: it is a terminal, its TERM is not "dumb", and the
// variable NO_COLOR is empty or not set.
bool takesColour(int stream);

// Places in a line of tables: those asked for, otherwise those of the terminal, and no bound, which
// is 0, where standard output is none.
std::size_t tableWidth(const std::optional<std::size_t>& asked);

// The text so that it stands out, where `colour` allows it.
std::string emphasised(std::string_view text, bool colour);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_SCREEN_H_
