// Standard output, written so that a full disk or closed pipe does not go unnoticed.
#ifndef ZTB_TOOLS_OUTPUT_H_
#define ZTB_TOOLS_OUTPUT_H_

#include <string_view>

namespace tool {

// Writes to standard output.
void print(std::string_view text);

// Writes what is still held back. Throws Failure if standard output did not take everything.
void flushOutput();

}  // namespace tool

#endif  // ZTB_TOOLS_OUTPUT_H_
