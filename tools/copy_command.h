// ztb copy SRC SYMBOL... DST: some symbols of a file, with what they need, as a file of their own.
#ifndef ZTB_TOOLS_COPY_COMMAND_H_
#define ZTB_TOOLS_COPY_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addCopyCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_COPY_COMMAND_H_
