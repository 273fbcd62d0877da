// The options of commands that print tables for people.
#ifndef ZTB_TOOLS_COMMANDS_TABLE_OPTIONS_H_
#define ZTB_TOOLS_COMMANDS_TABLE_OPTIONS_H_

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "tools/commands/command_line.h"
#include "tools/text/screen.h"
#include "tools/text/table_printer.h"
#include "tools/text/wrapped_text.h"

namespace tool {

struct TableOptions {
  std::optional<std::size_t> width;
  int digits = 0;  // of numbers; 0 for as many as it takes

  [[nodiscard]] TableStyle style() const { return outputStyle(width); }
  // A line above or below a table, broken where the screen ends.
  [[nodiscard]] std::string line(std::string_view text) const {
    return wrapped(text, tableWidth(width)) + '\n';
  }
};

// A table of more rows than one reads on a screen ends early there, and tells so.
inline constexpr std::size_t rowsOnTerminal = 1000;

struct RowLimit {
  std::optional<std::size_t> head;
  bool all = false;

  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
  // Rows that are shown at most; of what is no table, for programs, all unless asked otherwise.
  [[nodiscard]] std::size_t rows(bool isTable) const {
    return head.value_or(isTable && !all && outputIsTerminal() ? rowsOnTerminal : none);
  }
};

// Adds --head and --all; `rows` is what the rows are called.
inline void addRowLimit(Command command, RowLimit& limit, const std::string& rows) {
  const Option head = command.number("--head", limit.head, "Show the first N " + rows + " only");
  command
      .flag("--all", limit.all,
            "Show all " + rows + "; without it a table on a terminal ends after " +
                std::to_string(rowsOnTerminal))
      .excludes(head);
}

// Adds --width; `options` must live as long as the command.
inline void addWidthOption(Command command, TableOptions& options) {
  command.number("--width", options.width,
                 "Places in a line of a table, 0 for no bound; without it those of the terminal");
}

// Adds --digits.
inline void addDigitsOption(Command command, TableOptions& options) {
  command.number("--digits", options.digits,
                 "Round numbers to N digits, but for whole ones; 0, the default, for all that tell "
                 "them apart");
}

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_TABLE_OPTIONS_H_
