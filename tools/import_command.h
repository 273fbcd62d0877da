// ztb import OUT.rxf: makes a file from CSV.
#ifndef ZTB_TOOLS_IMPORT_COMMAND_H_
#define ZTB_TOOLS_IMPORT_COMMAND_H_

#include <CLI/CLI.hpp>

namespace tool {

// Adds the subcommand to the command line.
void addImportCommand(CLI::App& app);

}  // namespace tool

#endif  // ZTB_TOOLS_IMPORT_COMMAND_H_
