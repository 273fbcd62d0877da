#include <memory>
#include <string>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/description.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"

namespace tool {

void addHelpCommand(CommandLine& line) {
  auto name = std::make_shared<std::string>();
  Command command = line.add("help", "Tell more about a command, as its --help does");
  command.text("COMMAND", *name, "Name of a command");
  command.footer("Examples:\n  ztb help\n  ztb help show");
  command.action([&line, name] {
    line.printHelp(*name);
    return exitFine;
  });
}

void addCompletionCommand(CommandLine& line) {
  auto shell = std::make_shared<std::string>();
  Command command = line.add("completion", "Print what completes the command line in a shell");
  command.text("SHELL", *shell, "The shell").typeName("bash|zsh|fish").required();
  command.footer(
      "An installed ztb has these files in their places.\n\n"
      "Examples:\n"
      "  source <(ztb completion bash)\n"
      "  ztb completion zsh > ~/.zfunc/_ztb\n"
      "  ztb completion fish > ~/.config/fish/completions/ztb.fish");
  command.action([&line, shell] {
    const ProgramDescription program = line.description();
    if (*shell == "bash") {
      print(bashCompletion(program));
    } else if (*shell == "zsh") {
      print(zshCompletion(program));
    } else if (*shell == "fish") {
      print(fishCompletion(program));
    } else {
      throw UsageError("'" + *shell + "' is no shell, expected bash, zsh or fish");
    }
    return exitFine;
  });
}

void addManualCommand(CommandLine& line) {
  Command command = line.add("manual", "Print the manual page, for man -l -");
  command.footer("Example:\n  ztb manual | man -l -");
  command.action([&line] {
    print(manualPage(line.description()));
    return exitFine;
  });
}

}  // namespace tool
