#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <ztb/column_names.hpp>

#include "tools/commands/description.h"

namespace tool {

namespace {

// A text in single quotes of a shell; `escape` is how it writes such a quote within them.
std::string quoted(std::string_view text, std::string_view escape) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'') {
      result += escape;
    } else {
      result += c;
    }
  }
  return result + "'";
}

std::string namesOf(const std::vector<OptionDescription>& options) {
  std::vector<std::string> names;
  for (const OptionDescription& option : options) {
    names.push_back(option.name);
  }
  return fmt::format("{}", fmt::join(names, " "));
}

std::string namesOf(const ProgramDescription& program) {
  std::vector<std::string> names;
  for (const CommandDescription& command : program.commands) {
    names.push_back(command.name);
  }
  return fmt::format("{}", fmt::join(names, " "));
}

// A help text for zsh, which takes brackets and colons for ends of it.
std::string zshText(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (std::string_view("[]:\\").find(c) != std::string_view::npos) {
      result += '\\';
    }
    result += c;
  }
  return result;
}

std::string zshAction(const OptionDescription& option) {
  const std::vector<std::string> choices = option.choices();
  if (!choices.empty()) {
    return fmt::format("({})", fmt::join(choices, " "));
  }
  return option.isPath() ? "_files" : "";
}

}  // namespace

bool OptionDescription::isPath() const {
  constexpr std::array paths = {"FILE", "DIR", "FOLDER", "OUT", "SOURCE", "TARGET"};
  return std::ranges::find(paths, value) != paths.end();
}

std::vector<std::string> OptionDescription::choices() const {
  constexpr std::string_view field = "FIELD";
  std::vector<std::string> words;
  if (value.find('|') == std::string::npos && value != field) {
    return words;
  }
  for (std::size_t begin = 0;;) {
    const std::size_t end = value.find('|', begin);
    const std::string word = value.substr(begin, end - begin);
    if (word == field) {
      words.insert(words.end(), ztb::fieldNames.begin(), ztb::fieldNames.end());
    } else {
      words.push_back(word);
    }
    if (end == std::string::npos) {
      return words;
    }
    begin = end + 1;
  }
}

std::string bashCompletion(const ProgramDescription& program) {
  std::string values;
  std::string options;
  for (const CommandDescription& command : program.commands) {
    options += fmt::format("    {}) words={} ;;\n", command.name,
                           quoted(namesOf(command.options), "'\\''"));
    for (const OptionDescription& option : command.options) {
      if (!option.value.empty() && !option.isPath()) {
        values += fmt::format("    {}:{}) words={}; only=1 ;;\n", command.name, option.name,
                              quoted(fmt::format("{}", fmt::join(option.choices(), " ")), "'\\''"));
      } else if (option.isPath()) {
        values += fmt::format("    {}:{}) return ;;\n", command.name, option.name);
      }
    }
    for (const OptionDescription& argument : command.arguments) {
      if (!argument.choices().empty()) {
        values +=
            fmt::format("    {0}:{0}) words={1}; only=1 ;;\n", command.name,
                        quoted(fmt::format("{}", fmt::join(argument.choices(), " ")), "'\\''"));
      }
    }
  }
  return fmt::format(
      R"(# Completion of {0} for bash.
_{0}() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}} command='' words='' only=''
  COMPREPLY=()
  # "--store=map" comes as three words.
  if [ "$current" = = ]; then current=''; fi
  if [ "$previous" = = ] && [ "$COMP_CWORD" -gt 1 ]; then previous=${{COMP_WORDS[COMP_CWORD-2]}}; fi
  if [ "$COMP_CWORD" -gt 1 ]; then command=${{COMP_WORDS[1]}}; fi
  if [ -z "$command" ]; then
    COMPREPLY=($(compgen -W {1} -- "$current"))
    return
  fi
  case $command:$previous in
{2}  esac
  if [ -n "$only" ]; then
    compopt +o default 2>/dev/null
    COMPREPLY=($(compgen -W "$words" -- "$current"))
    return
  fi
  case $current in
  -*) ;;
  *) return ;;
  esac
  case $command in
{3}  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
}}
complete -o default -F _{0} {0}
)",
      program.name, quoted(namesOf(program) + " --help --version", "'\\''"), values, options);
}

std::string zshCompletion(const ProgramDescription& program) {
  std::string commands;
  std::string cases;
  for (const CommandDescription& command : program.commands) {
    commands +=
        fmt::format("    {}\n", quoted(command.name + ":" + zshText(command.help), "'\\''"));
    std::string specs;
    for (const OptionDescription& option : command.options) {
      std::string spec = fmt::format("*{}{}[{}]", option.name, option.value.empty() ? "" : "=",
                                     zshText(option.help));
      if (!option.value.empty()) {
        spec += fmt::format(":{}:{}", zshText(option.value), zshAction(option));
      }
      specs += fmt::format(" \\\n      {}", quoted(spec, "'\\''"));
    }
    for (const OptionDescription& argument : command.arguments) {
      const std::string action = argument.choices().empty() ? "_files" : zshAction(argument);
      specs += fmt::format(" \\\n      {}",
                           quoted(fmt::format(":{}:{}", zshText(argument.name), action), "'\\''"));
    }
    cases += fmt::format("  {})\n    _arguments{} \\\n      '*:file:_files'\n    ;;\n",
                         command.name, specs);
  }
  return fmt::format(
      R"(#compdef {0}
# Completion of {0} for zsh.
_{0}() {{
  local -a commands
  commands=(
{1}  )
  if (( CURRENT == 2 )); then
    _describe command commands
    return
  fi
  shift words
  (( CURRENT-- ))
  case $words[1] in
{2}  esac
}}
_{0} "$@"
)",
      program.name, commands, cases);
}

std::string fishCompletion(const ProgramDescription& program) {
  std::string result = fmt::format("# Completion of {} for fish.\n", program.name);
  for (const CommandDescription& command : program.commands) {
    result += fmt::format("complete -c {} -f -n __fish_use_subcommand -a {} -d {}\n", program.name,
                          command.name, quoted(command.help, "\\'"));
    for (const OptionDescription& option : command.options) {
      const std::vector<std::string> choices = option.choices();
      std::string value;
      if (!choices.empty()) {
        value = fmt::format(" -x -a '{}'", fmt::join(choices, " "));
      } else if (!option.value.empty()) {
        value = option.isPath() ? " -r -F" : " -x";
      }
      result += fmt::format("complete -c {} -n '__fish_seen_subcommand_from {}' -l {}{} -d {}\n",
                            program.name, command.name, option.name.substr(2), value,
                            quoted(option.help, "\\'"));
    }
    for (const OptionDescription& argument : command.arguments) {
      if (!argument.choices().empty()) {
        result += fmt::format("complete -c {} -f -n '__fish_seen_subcommand_from {}' -a '{}'\n",
                              program.name, command.name, fmt::join(argument.choices(), " "));
      }
    }
  }
  return result;
}

}  // namespace tool
