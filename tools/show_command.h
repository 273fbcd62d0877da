// ztb show FILE SYMBOL: the records of a symbol.
#ifndef ZTB_TOOLS_SHOW_COMMAND_H_
#define ZTB_TOOLS_SHOW_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addShowCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_SHOW_COMMAND_H_
