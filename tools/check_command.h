// ztb check FILE: whether a file is intact.
#ifndef ZTB_TOOLS_CHECK_COMMAND_H_
#define ZTB_TOOLS_CHECK_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addCheckCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_CHECK_COMMAND_H_
