// How records are printed, for the commands that make some to show them.
#ifndef ZTB_TOOLS_COMMANDS_SHOWN_SYMBOL_H_
#define ZTB_TOOLS_COMMANDS_SHOWN_SYMBOL_H_

#include <string>

#include "tools/commands/table_options.h"

namespace tool {

struct ShownForm {
  bool csv = false;
  bool json = false;
  TableOptions table;
};

// Prints the last symbol of a file as ztb show does.
void showLastSymbol(const std::string& file, const ShownForm& form);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_SHOWN_SYMBOL_H_
