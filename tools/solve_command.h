// ztb solve MODEL: solves a model, with data from a file and from the command line.
#ifndef ZTB_TOOLS_SOLVE_COMMAND_H_
#define ZTB_TOOLS_SOLVE_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addSolveCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_SOLVE_COMMAND_H_
