// ztb export FILE SYMBOL... --csv DIR: writes a file out as CSV.
#ifndef ZTB_TOOLS_EXPORT_COMMAND_H_
#define ZTB_TOOLS_EXPORT_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addExportCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_EXPORT_COMMAND_H_
