// The command line as data, for what is generated from it: completion of shells and the manual
// page.
#ifndef ZTB_TOOLS_COMMANDS_DESCRIPTION_H_
#define ZTB_TOOLS_COMMANDS_DESCRIPTION_H_

#include <string>
#include <vector>

namespace tool {

struct OptionDescription {
  std::string name;   // with its dashes, as in "--head"; of an argument as in "FILE"
  std::string tail;   // of an argument that is several words, as in "... OUT"
  std::string value;  // what stands behind an option, as in "N"; empty for a flag
  std::string help;
  bool required = false;

  // The words that the value is one of, where it is written as in "map|vector|trie", or is FIELD.
  [[nodiscard]] std::vector<std::string> choices() const;
  // Whether the value is the name of a file or folder.
  [[nodiscard]] bool isPath() const;
};

struct CommandDescription {
  std::string name;
  std::string help;
  std::vector<OptionDescription> arguments;
  std::vector<OptionDescription> options;
  std::string footer;
};

struct ProgramDescription {
  std::string name;
  std::string version;
  std::string help;
  std::string footer;
  std::vector<CommandDescription> commands;
};

// A script that completes the commands, options and choices of the program, and files everywhere
// else, to be read by the shell.
std::string bashCompletion(const ProgramDescription& program);
std::string zshCompletion(const ProgramDescription& program);
std::string fishCompletion(const ProgramDescription& program);

// The manual page in the man macros of roff.
std::string manualPage(const ProgramDescription& program);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_DESCRIPTION_H_
