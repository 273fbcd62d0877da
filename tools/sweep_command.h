// ztb sweep MODEL --scenarios FILE --over SET --out FILE: solves a model for each scenario of a
// file.
#ifndef ZTB_TOOLS_SWEEP_COMMAND_H_
#define ZTB_TOOLS_SWEEP_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line. It sets `status` to 1 when some scenario has no
// solution.
void addSweepCommand(CLI::App& app, int& status);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_COMMAND_H_
