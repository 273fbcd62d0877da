// The ztb command. Exit codes: 0 fine, 1 failed (diff: the files differ), 2 wrong usage.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "tools/check_command.h"
#include "tools/diff_command.h"
#include "tools/export_command.h"
#include "tools/failure.h"
#include "tools/import_command.h"
#include "tools/info_command.h"
#include "tools/output.h"
#include "tools/show_command.h"

namespace {

int run(int argc, char** argv) {
  int status = tool::exitFine;
  CLI::App app(
      "Looks at, makes and compares RXF files: sets, parameters, variables and equations\n"
      "over one universe of labels.");
  app.name("ztb");
  app.set_version_flag("--version", "ztb " ZTB_VERSION);
  app.require_subcommand(1);
  app.failure_message(CLI::FailureMessage::simple);
  app.footer(
      "ztb COMMAND --help tells more about a command, with examples.\n"
      "Exit codes: 0 fine, 1 failed (or diff found differences), 2 wrong usage.");
  tool::addInfoCommand(app);
  tool::addShowCommand(app);
  tool::addImportCommand(app);
  tool::addExportCommand(app);
  tool::addDiffCommand(app, status);
  tool::addCheckCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? tool::exitFine : tool::exitUsage;
  }
  tool::flushOutput();
  return status;
}

int fail(const char* text, int status) {
  std::fflush(stdout);
  std::fprintf(stderr, "ztb: %s\n", text);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const tool::UsageError& error) {
    return fail(error.what(), tool::exitUsage);
  } catch (const std::exception& error) {
    return fail(error.what(), tool::exitFailed);
  }
}
