// The ztb command. Exit codes: 0 fine, 1 failed (diff: the files differ), 2 wrong usage.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/check_command.h"
#include "tools/copy_command.h"
#include "tools/diff_command.h"
#include "tools/export_command.h"
#include "tools/failure.h"
#include "tools/import_command.h"
#include "tools/info_command.h"
#include "tools/memory_option.h"
#include "tools/output.h"
#include "tools/pivot_command.h"
#include "tools/show_command.h"
#include "tools/solve_command.h"
#include "tools/sweep_command.h"
#include "tools/words.h"

namespace {

// What is wrong with the command line, and where to find help.
std::string usageText(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  const std::vector<std::string> others = app.remaining();
  if (commands.empty() && !others.empty()) {
    return "no command '" + others.front() + "'; ztb --help lists the commands";
  }
  const std::string command = commands.empty() ? "" : commands.front()->get_name() + " ";
  return std::string(error.what()) + "; see ztb " + command + "--help";
}

int run(int argc, char** argv) {
  int status = tool::exitFine;
  CLI::App app(
      "Looks at, makes, copies and compares RXF files: sets, parameters, variables and equations\n"
      "over one universe of labels.");
  app.name("ztb");
  app.set_version_flag("--version", "ztb " ZTB_VERSION);
  app.require_subcommand(1);
  app.footer(
      "ztb COMMAND --help tells more about a command, with examples.\n"
      "Exit codes: 0 fine, 1 failed (or diff found differences), 2 wrong usage.");
  tool::addInfoCommand(app);
  tool::addShowCommand(app);
  tool::addImportCommand(app);
  tool::addExportCommand(app);
  tool::addDiffCommand(app, status);
  tool::addCheckCommand(app);
  tool::addCopyCommand(app);
  tool::addPivotCommand(app);
  tool::addSolveCommand(app);
  tool::addSweepCommand(app, status);
  for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    // An import reads tables; what it holds of them is not limited.
    if (command->get_name() != "import") tool::addMemoryOption(command);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      return app.exit(error);
    }
    throw tool::UsageError(usageText(app, error));
  }
  tool::flushOutput();
  return status;
}

// A message may quote an argument; one that would fill the screen is told by its beginning and its
// length.
std::string withShortArguments(std::string text, int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = ztb::displayText(argv[i]);
    constexpr std::size_t longest = 1024;
    if (argument.size() <= longest) continue;
    const std::string shorter = tool::shortened(argv[i]);
    for (std::size_t at = 0; (at = text.find(argument, at)) != std::string::npos;) {
      text.replace(at, argument.size(), shorter);
      at += shorter.size();
    }
  }
  return text;
}

int fail(const std::string& text, int status) {
  std::fflush(stdout);
  tool::printError("ztb: " + text);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
#ifdef SIGXFSZ
  // A limit on the size of files is then an error of the write.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  const auto textOf = [&](const std::exception& error) {
    return withShortArguments(ztb::displayText(error.what()), argc, argv);
  };
  try {
    return run(argc, argv);
  } catch (const tool::UsageError& error) {
    return fail(textOf(error), tool::exitUsage);
  } catch (const std::exception& error) {
    return fail(textOf(error), tool::exitFailed);
  }
}
