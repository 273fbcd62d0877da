// The command line: commands with their options, and what is said of a wrong one. It stands alone
// on the library that parses, so that no command has to be compiled with that.
#ifndef ZTB_TOOLS_COMMANDS_COMMAND_LINE_H_
#define ZTB_TOOLS_COMMANDS_COMMAND_LINE_H_

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/commands/description.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// One option or argument of a command; lives as long as the command line.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  Option& required();
  // What stands behind the name in the help, as in --head N.
  Option& typeName(const std::string& name);
  // The value that the help shows as the one without the option.
  Option& defaultText(const std::string& text);
  // Refuses an empty word, as a shell makes it of a variable that is not set: taken for an option
  // left out, it would leave data out or a result unwritten without a word.
  Option& notEmpty();
  // Both on one command line are wrong usage.
  Option& excludes(const Option& other);

 private:
  CLI::Option* option_;
};

// A command, as `show` in `ztb show`. What its options fill must live until the command has run.
class Command {
 public:
  Command(CLI::App* command, std::function<int()>& chosen, std::exception_ptr& fault)
      : command_(command), chosen_(&chosen), fault_(&fault) {}

  // A name that begins with -- is an option; any other is an argument, in the order of adding.
  Option text(const std::string& name, std::string& into, const std::string& help);
  Option text(const std::string& name, std::optional<std::string>& into, const std::string& help);
  // May be repeated; each takes one word.
  Option texts(const std::string& name, std::vector<std::string>& into, const std::string& help);
  // An argument that takes all words from its place on, at least `least`.
  Option words(const std::string& name, std::vector<std::string>& into, std::size_t least,
               const std::string& help);
  Option flag(const std::string& name, bool& into, const std::string& help);
  // Digits; a sign, a fraction or a word is wrong usage, and so is more than the type holds.
  Option number(const std::string& name, std::size_t& into, const std::string& help);
  Option number(const std::string& name, std::optional<std::size_t>& into, const std::string& help);
  Option number(const std::string& name, int& into, const std::string& help);
  Option number(const std::string& name, std::optional<int>& into, const std::string& help);
  Option real(const std::string& name, std::optional<double>& into, const std::string& help);
  // Hands each word over as it is met, so that the order of options counts. What `take` says of
  // wrong usage is told unless the words make no command line at all: a misspelt option comes
  // first.
  Option each(const std::string& name, std::function<void(const std::string&)> take,
              const std::string& help);
  // Hands a word over that `fault` finds nothing wrong with; it gives what is wrong, or no text.
  Option checked(const std::string& name, std::function<std::string(const std::string&)> fault,
                 std::function<void(const std::string&)> take, const std::string& help);

  // What the help says below the options.
  void footer(const std::string& text);
  // What the command does; its result is the exit code.
  void action(std::function<int()> run);

 private:
  CLI::App* command_;
  std::function<int()>* chosen_;  // of the command line
  std::exception_ptr* fault_;     // of the command line
};

class CommandLine {
 public:
  CommandLine(const std::string& name, const std::string& version, const std::string& description,
              const std::string& footer);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Command add(const std::string& name, const std::string& help);

  // Prints the help of a command, or of the program for an empty name. Throws UsageError where no
  // command has the name.
  void printHelp(const std::string& command);
  // All that was added.
  [[nodiscard]] ProgramDescription description() const;

  // Runs the command that the words name and gives its exit code. Throws UsageError for words that
  // make no command line.
  int run(int argc, char** argv);

 private:
  std::string version_;
  std::unique_ptr<CLI::App> app_;
  std::function<int()> chosen_;  // the action of the command that was named
  std::exception_ptr fault_;     // the first UsageError of an option that was met
};

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_COMMAND_LINE_H_
