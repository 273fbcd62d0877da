// The option that limits memory, the same for every command that opens files.
#ifndef ZTB_TOOLS_COMMANDS_MEMORY_OPTION_H_
#define ZTB_TOOLS_COMMANDS_MEMORY_OPTION_H_

#include <optional>
#include <string_view>

#include "tools/commands/command_line.h"

namespace tool {

// The bytes of "500000", "64K", "2G": a whole number with or without K, M, G or T in either case,
// powers of 1024. Nothing for 0, any other text, and what 64 bits do not hold.
std::optional<unsigned long long> sizeOfText(std::string_view text);

// Adds --max-memory, which sets the limit of the calling thread: files that it, and processes that
// it forks, open as databases from then on have it.
void addMemoryOption(Command command);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_MEMORY_OPTION_H_
