// ztb info FILE: what is in a file.
#ifndef ZTB_TOOLS_INFO_COMMAND_H_
#define ZTB_TOOLS_INFO_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line. Records are counted, not read.
void addInfoCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_INFO_COMMAND_H_
