// The ztb command. Exit codes: 0 fine, 1 failed (diff: the files differ), 2 wrong usage.

#include "tools/commands/main.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/sweep/worker_request.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace {

struct Adder {
  std::string_view command;
  void (*add)(tool::CommandLine& line);
};

constexpr Adder kAdders[] = {
    {"info", tool::addInfoCommand},     {"show", tool::addShowCommand},
    {"import", tool::addImportCommand}, {"export", tool::addExportCommand},
    {"diff", tool::addDiffCommand},     {"check", tool::addCheckCommand},
    {"copy", tool::addCopyCommand},     {"merge", tool::addMergeCommand},
    {"concat", tool::addConcatCommand}, {"rename", tool::addRenameCommand},
    {"where", tool::addWhereCommand},   {"aggregate", tool::addAggregateCommand},
    {"pivot", tool::addPivotCommand},   {"plot", tool::addPlotCommand},
    {"sql", tool::addSqlCommand},       {"model", tool::addModelCommand},
    {"solve", tool::addSolveCommand},   {"sweep", tool::addSweepCommand},
    {"view", tool::addViewCommand},
};

// A command that the first word names stands alone, so that the options of the others cost its
// start nothing. All are there for any other word, which is told what there is.
void addCommands(tool::CommandLine& line, std::string_view first) {
  const auto* const named = std::ranges::find(kAdders, first, &Adder::command);
  if (named != std::end(kAdders)) {
    named->add(line);
    return;
  }
  for (const Adder& adder : kAdders) adder.add(line);
  tool::addHelpCommand(line);
  tool::addCompletionCommand(line);
  tool::addManualCommand(line);
}

int run(int argc, char** argv) {
  tool::CommandLine line(
      "ztb", "ztb " ZTB_VERSION,
      "Looks at, makes, copies and compares RXF files: sets, parameters, variables and equations\n"
      "over one universe of labels.",
      "ztb COMMAND --help tells more about a command, with examples.\n"
      "Exit codes: 0 fine, 1 failed (or diff found differences), 2 wrong usage.");
  addCommands(line, argc > 1 ? argv[1] : "");
  const int status = line.run(argc, argv);
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

int ztbMain(int argc, char** argv) {
  tool::occupyStandardStreams();
  if (argc == 2 && std::string_view(argv[1]) == tool::kWorkerCommand) tool::runRequestedWorker();
  const auto textOf = [&](const std::exception& error) {
    return withShortArguments(ztb::displayText(error.what()), argc, argv);
  };
  try {
    return run(argc, argv);
  } catch (const tool::UsageError& error) {
    return fail(textOf(error), tool::exitUsage);
  } catch (const std::bad_alloc&) {
    return fail("out of memory", tool::exitFailed);
  } catch (const std::exception& error) {
    if (tool::outputReaderIsGone()) return tool::exitFailed;
    return fail(textOf(error), tool::exitFailed);
  }
}
