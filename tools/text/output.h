// Standard output, written so that a full disk or closed pipe does not go unnoticed, and standard
// error. What a file holds never steers the terminal behind them.
#ifndef ZTB_TOOLS_TEXT_OUTPUT_H_
#define ZTB_TOOLS_TEXT_OUTPUT_H_

#include <string>
#include <string_view>

namespace tool {

// Writes lines to standard output, with any control character but the ends of lines spelled out.
void print(std::string_view text);

// Writes one line to standard error; an end of line within it is spelled out too.
void printError(std::string_view line);

// Writes lines to standard error that are fit for it.
void printErrors(const std::string& lines);

// Writes what is still held back. Throws Failure if standard output did not take everything.
void flushOutput();

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_OUTPUT_H_
