// ztb diff A B: what changed between two files.
#ifndef ZTB_TOOLS_DIFF_COMMAND_H_
#define ZTB_TOOLS_DIFF_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line. status becomes exitFailed when the files differ.
void addDiffCommand(CLI::App& app, int& status);

}  // namespace tool

#endif  // ZTB_TOOLS_DIFF_COMMAND_H_
