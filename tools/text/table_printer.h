// Prints aligned tables for people.
#ifndef ZTB_TOOLS_TEXT_TABLE_PRINTER_H_
#define ZTB_TOOLS_TEXT_TABLE_PRINTER_H_

#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/display_text.hpp>

namespace tool {

// text with whatever could steer the terminal spelled as escapes.
inline std::string printable(std::string_view text) {
  return ztb::displayText(text);
}

// What the reader of a table has room for, and how it is shown to him.
struct TableStyle {
  std::size_t width = 0;  // places in a line; 0 for no bound
  bool colour = false;    // whether headers stand out
};

// The style for standard output, with the width that was asked for.
TableStyle outputStyle(const std::optional<std::size_t>& width);

// A table whose rows are shown twice, first to measure and then to print, so that it takes no
// memory for rows. Control characters of cells are spelled out. Cells are separated by two blanks;
// a line does not end in blanks. A table that has no room in a line is made to fit: text on the
// left of its column is cut, with an ellipsis, and numbers never are.
class TablePrinter {
 public:
  enum class Align { left, right };

  // Columns from begin on, up to end.
  struct Part {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  TablePrinter() = default;
  explicit TablePrinter(TableStyle style) : style_(style) {}

  void addColumn(std::string_view header, Align align);
  void dropLastColumn() { columns_.pop_back(); }

  // Widens the columns for a row, which has a cell for each column, or one column for a cell.
  void measure(std::span<const std::string_view> cells);
  void measure(std::size_t column, std::string_view cell);

  // Both fit the table to the line when they are called first; then nothing is measured any more.
  void printHeader(std::FILE* out);
  void printRow(std::FILE* out, std::span<const std::string_view> cells);

  // Parts the columns behind the first `leading` ones so that each part has room in a line, with
  // the leading ones in front of it. A table that has room as it is makes one part. Called once all
  // is measured, in place of what fits a table as a whole.
  std::vector<Part> parts(std::size_t leading);
  // Print one of these; a row has cells for the leading columns and those of the part.
  void printHeader(std::FILE* out, const Part& part);
  void printRow(std::FILE* out, const Part& part, std::span<const std::string_view> cells);

 private:
  struct Column {
    std::string header;
    Align align;
    std::size_t cells;  // the widest cell
    std::size_t width;  // what is printed: header and cells, as far as there is room
  };

  [[nodiscard]] std::size_t lineWidth() const;
  void fit();
  void narrowLeading();
  // Appends displayable text that takes `width` places.
  void appendCell(const Column& column, std::string_view text, std::size_t width, bool last);
  // The column of a cell: leading ones, then those from `begin` on.
  [[nodiscard]] const Column& columnOf(std::size_t cell, const Part& part) const {
    return columns_[cell < leading_ ? cell : part.begin + cell - leading_];
  }

  TableStyle style_;
  std::vector<Column> columns_;
  std::size_t leading_ = 0;
  bool fitted_ = false;
  std::string line_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_TABLE_PRINTER_H_
