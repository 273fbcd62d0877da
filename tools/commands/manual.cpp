#include <fmt/format.h>

#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include "tools/commands/description.h"

namespace tool {

namespace {

// What the program asks of its surroundings.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> environment{
    {{"NO_COLOR", "Where it is set to anything, nothing stands out by colour or weight."},
     {"TERM", "Where it is dumb, neither."},
     {"TMPDIR",
      "The folder for what stands in a temporary file: RXF files from or to a pipe. /tmp without "
      "it."},
     {"LD_LIBRARY_PATH",
      "Folders where another file library is looked for before the installed "
      "one."},
     {"ZTB_DUCKDB", "DuckDB's library, or its folder, which Parquet files need."},
     {"ZTB_PYTHON",
      "The program that starts a sweep on a Dask cluster; /usr/bin/python3 without it."},
     {"ZTB_RSVG", "The library librsvg, which pictures in PNG need, where it is elsewhere."}}};

// A text with what roff would take for its own escaped, and no line that it would take for a
// request.
std::string roff(std::string_view text) {
  std::string result;
  bool atStart = true;
  for (const char c : text) {
    if (atStart && (c == '.' || c == '\'')) {
      result += "\\&";
    }
    switch (c) {
      case '\\':
        result += "\\e";
        break;
      case '-':
        result += "\\-";
        break;
      case '\'':
        result += "\\(aq";
        break;
      case '`':
        result += "\\(ga";
        break;
      case '^':
        result += "\\(ha";
        break;
      case '~':
        result += "\\(ti";
        break;
      default:
        result += c;
    }
    atStart = c == '\n';
  }
  return result;
}

// Lines that stay as they are.
std::string asWritten(std::string_view text) {
  return fmt::format(".nf\n{}\n.fi\n", roff(text));
}

std::string synopsisOf(const ProgramDescription& program, const CommandDescription& command) {
  std::string line = fmt::format("\\fB{} {}\\fR", program.name, command.name);
  for (const OptionDescription& argument : command.arguments) {
    const std::string words = argument.name + (argument.tail.empty() ? "" : " " + argument.tail);
    const std::string name = fmt::format("\\fI{}\\fR", roff(words));
    line += argument.required ? " " + name : " [" + name + "]";
  }
  return line + " [\\fIoptions\\fR]\n";
}

std::string entryOf(const OptionDescription& option) {
  const std::string name = option.name.front() == '-'
                               ? fmt::format("\\fB{}\\fR", roff(option.name))
                               : fmt::format("\\fI{}\\fR", roff(option.name));
  const std::string value = option.value.empty() || option.name.front() != '-'
                                ? ""
                                : fmt::format(" \\fI{}\\fR", roff(option.value));
  return fmt::format(".TP\n{}{}\n{}.\n", name, value, roff(option.help));
}

std::string sectionOf(const ProgramDescription& program, const CommandDescription& command) {
  std::string text = fmt::format(".SS {} {}\n{}{}.\n", program.name, command.name,
                                 synopsisOf(program, command) + ".PP\n", roff(command.help));
  for (const OptionDescription& argument : command.arguments) {
    text += entryOf(argument);
  }
  for (const OptionDescription& option : command.options) {
    text += entryOf(option);
  }
  if (!command.footer.empty()) {
    text += ".PP\n" + asWritten(command.footer);
  }
  return text;
}

}  // namespace

std::string manualPage(const ProgramDescription& program) {
  std::string title;
  for (const char c : program.name) {
    title += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  std::string text =
      fmt::format(".TH {} 1 \"\" \"{}\" \"User commands\"\n", title, program.version);
  text += fmt::format(".SH NAME\n{} \\- look at, make, compare and solve with RXF files\n",
                      program.name);
  text += ".SH SYNOPSIS\n";
  for (const CommandDescription& command : program.commands) {
    text += synopsisOf(program, command) + ".br\n";
  }
  text += ".SH DESCRIPTION\n" + roff(program.help) + "\n.PP\n" + asWritten(program.footer);
  text += ".SH COMMANDS\n";
  for (const CommandDescription& command : program.commands) {
    text += sectionOf(program, command);
  }
  text += ".SH ENVIRONMENT\n";
  for (const auto& [name, meaning] : environment) {
    text += fmt::format(".TP\n\\fB{}\\fR\n{}\n", name, roff(meaning));
  }
  return text;
}

}  // namespace tool
