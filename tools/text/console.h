// The terminal behind a standard stream, as the system has it.
#ifndef ZTB_TOOLS_TEXT_CONSOLE_H_
#define ZTB_TOOLS_TEXT_CONSOLE_H_

#include <cstddef>

namespace tool {

// Whether a stream (1 or 2) is a terminal that takes escape sequences. A console of Windows is told
// to take them, and UTF-8; one that cannot is no terminal.
bool isTerminal(int stream);

// Places in a line of the terminal behind standard output, 0 where that is not known.
std::size_t terminalWidth();

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_CONSOLE_H_
