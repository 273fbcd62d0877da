// ztb pivot FILE SYMBOL: a symbol as a two-way table.
#ifndef ZTB_TOOLS_PIVOT_COMMAND_H_
#define ZTB_TOOLS_PIVOT_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addPivotCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_PIVOT_COMMAND_H_
