// The fields that an option names, the same for every command that has it.
#ifndef ZTB_TOOLS_COMMANDS_FIELD_OPTION_H_
#define ZTB_TOOLS_COMMANDS_FIELD_OPTION_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"

namespace tool {

// The fields of the --field `list`, such as "level,marginal", by their numbers; case does not
// count. Throws UsageError for a symbol without fields and for a word that is none.
std::vector<std::size_t> fieldsOf(const std::string& list, const FileSymbol& symbol);

// The one field of --field, the level without it. Throws UsageError for several too.
ztb::Field oneFieldOf(const std::optional<std::string>& word, const FileSymbol& symbol);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_FIELD_OPTION_H_
