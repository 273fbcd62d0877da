// The positions that an option names, the same for every command that has one.
#ifndef ZTB_TOOLS_COMMANDS_POSITION_OPTION_H_
#define ZTB_TOOLS_COMMANDS_POSITION_OPTION_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"

namespace tool {

// The position that a word of `option` means: its number from 1, or the name of its column. Throws
// UsageError for a word that is neither.
std::size_t positionOf(const std::string& word, const std::string& option, const FileSymbol& symbol,
                       const std::vector<std::string>& keyColumns);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_POSITION_OPTION_H_
