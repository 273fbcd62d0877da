#include "tools/text/table_printer.h"

#include <algorithm>

namespace tool {

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

void TablePrinter::addColumn(std::string_view header, Align align) {
  columns_.push_back({.header = printable(header), .align = align, .width = 0});
  columns_.back().width = displayWidth(columns_.back().header);
}

void TablePrinter::measure(std::span<const std::string_view> cells) {
  for (std::size_t index = 0; index < cells.size(); ++index) {
    const std::string_view text = cells[index];
    const std::size_t width =
        ztb::isDisplayable(text) ? displayWidth(text) : displayWidth(printable(text));
    columns_[index].width = std::max(columns_[index].width, width);
  }
}

void TablePrinter::printHeader(std::FILE* out) {
  line_.clear();
  std::string rule;
  for (const Column& column : columns_) {
    const bool last = &column == &columns_.back();
    appendCell(column, column.header, last);
    rule += std::string(column.width, '-');
    rule += last ? "" : "  ";
  }
  line_ += '\n' + rule + '\n';
  std::fwrite(line_.data(), 1, line_.size(), out);
}

void TablePrinter::printRow(std::FILE* out, std::span<const std::string_view> cells) {
  line_.clear();
  for (std::size_t index = 0; index < cells.size(); ++index) {
    const bool last = index + 1 == cells.size();
    if (ztb::isDisplayable(cells[index])) {
      appendCell(columns_[index], cells[index], last);
    } else {
      appendCell(columns_[index], printable(cells[index]), last);
    }
  }
  line_.erase(line_.find_last_not_of(' ') + 1);
  line_ += '\n';
  std::fwrite(line_.data(), 1, line_.size(), out);
}

void TablePrinter::appendCell(const Column& column, std::string_view text, bool last) {
  const std::size_t padding = column.width - displayWidth(text);
  if (column.align == Align::right) {
    line_.append(padding, ' ');
  }
  line_ += text;
  if (!last) {
    line_.append(column.align == Align::left ? padding + 2 : 2, ' ');
  }
}

}  // namespace tool
