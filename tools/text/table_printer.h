// Prints aligned tables for people.
#ifndef ZTB_TOOLS_TEXT_TABLE_PRINTER_H_
#define ZTB_TOOLS_TEXT_TABLE_PRINTER_H_

#include <cstddef>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/display_text.hpp>

namespace tool {

// Places that text takes on a terminal, each UTF-8 sequence counted as one.
std::size_t displayWidth(std::string_view text);

// text with whatever could steer the terminal spelled as escapes.
inline std::string printable(std::string_view text) {
  return ztb::displayText(text);
}

// A table whose rows are shown twice, first to measure and then to print, so that it takes no
// memory for rows. Control characters of cells are spelled out. Cells are separated by two blanks;
// a line does not end in blanks.
class TablePrinter {
 public:
  enum class Align { left, right };

  void addColumn(std::string_view header, Align align);
  void dropLastColumn() { columns_.pop_back(); }

  // Widens the columns for a row, which has a cell for each column.
  void measure(std::span<const std::string_view> cells);

  void printHeader(std::FILE* out);
  void printRow(std::FILE* out, std::span<const std::string_view> cells);

 private:
  struct Column {
    std::string header;
    Align align;
    std::size_t width;
  };

  void appendCell(const Column& column, std::string_view text, bool last);

  std::vector<Column> columns_;
  std::string line_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_TABLE_PRINTER_H_
