// Standard streams and the terminal behind them, as the system has them.
#ifndef ZTB_TOOLS_TEXT_CONSOLE_H_
#define ZTB_TOOLS_TEXT_CONSOLE_H_

#include <cstddef>
#include <cstdio>

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

// To be called behind a text that was put into a standard stream: has it appear on a console, which
// gets whole texts so that none of its chars is parted. Elsewhere streams keep what they hold.
void showWritten(std::FILE* stream);

// Whether standard output failed because nobody reads it any more. On Linux a signal has ended the
// process then.
bool outputReaderIsGone();

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_CONSOLE_H_
