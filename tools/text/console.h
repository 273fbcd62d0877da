// Standard streams and the terminal behind them, as the system has them.
#ifndef ZTB_TOOLS_TEXT_CONSOLE_H_
#define ZTB_TOOLS_TEXT_CONSOLE_H_

#include <cstddef>

namespace tool {

// Whether a stream (1 or 2) is a terminal that takes escape sequences. A console of Windows is told
// to take them, and UTF-8; one that cannot is no terminal.
bool isTerminal(int stream);

// Places in a line of the terminal behind standard output, 0 where that is not known.
std::size_t terminalWidth();

// Whether the locale has UTF-8; Windows' consoles are told to have it.
bool localeTakesUtf8();

// To be called before any file is opened: standard streams that the caller has closed get a place
// at which each read and write fails. Otherwise files would stand there, and messages go into them.
// Bytes go through all three as they are.
void occupyStandardStreams();

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_CONSOLE_H_
