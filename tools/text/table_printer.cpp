#include "tools/text/table_printer.h"

#include <algorithm>

#include "tools/text/display_width.h"
#include "tools/text/screen.h"

namespace tool {

namespace {

// Places between two columns.
constexpr std::size_t gap = 2;

// Columns are not made narrower than this.
constexpr std::size_t narrowest = 8;

// Whether text is printable ASCII, as most is: it then stands as it is, each char in one place.
bool isPlain(std::string_view text) {
  bool plain = true;
  for (const char c : text) {
    plain &= c >= ' ' && c <= '~';
  }
  return plain;
}

}  // namespace

TableStyle outputStyle(const std::optional<std::size_t>& width) {
  return {.width = tableWidth(width), .colour = takesColour(1)};
}

void TablePrinter::addColumn(std::string_view header, Align align) {
  columns_.push_back({.header = printable(header), .align = align, .cells = 0, .width = 0});
  columns_.back().width = displayWidth(columns_.back().header);
}

void TablePrinter::measure(std::span<const std::string_view> cells) {
  for (std::size_t index = 0; index < cells.size(); ++index) {
    measure(index, cells[index]);
  }
}

void TablePrinter::measure(std::size_t column, std::string_view cell) {
  const std::size_t width = isPlain(cell) ? cell.size() : displayWidth(printable(cell));
  columns_[column].cells = std::max(columns_[column].cells, width);
  columns_[column].width = std::max(columns_[column].width, width);
}

void TablePrinter::printHeader(std::FILE* out) {
  fit();
  printHeader(out, {.begin = 0, .end = columns_.size()});
}

void TablePrinter::printRow(std::FILE* out, std::span<const std::string_view> cells) {
  fit();
  printRow(out, {.begin = 0, .end = columns_.size()}, cells);
}

void TablePrinter::printHeader(std::FILE* out, const Part& part) {
  line_.clear();
  std::string rule;
  const std::size_t cells = leading_ + part.end - part.begin;
  for (std::size_t cell = 0; cell < cells; ++cell) {
    const Column& column = columnOf(cell, part);
    const bool last = cell + 1 == cells;
    appendCell(column, column.header, displayWidth(column.header), last);
    rule += std::string(column.width, '-');
    rule += last ? "" : std::string(gap, ' ');
  }
  line_.erase(line_.find_last_not_of(' ') + 1);
  line_ = emphasised(line_, style_.colour) + '\n' + rule + '\n';
  std::fwrite(line_.data(), 1, line_.size(), out);
}

void TablePrinter::printRow(std::FILE* out, const Part& part,
                            std::span<const std::string_view> cells) {
  line_.clear();
  for (std::size_t cell = 0; cell < cells.size(); ++cell) {
    const bool last = cell + 1 == cells.size();
    if (isPlain(cells[cell])) {
      appendCell(columnOf(cell, part), cells[cell], cells[cell].size(), last);
    } else {
      const std::string text = printable(cells[cell]);
      appendCell(columnOf(cell, part), text, displayWidth(text), last);
    }
  }
  line_.erase(line_.find_last_not_of(' ') + 1);
  line_ += '\n';
  std::fwrite(line_.data(), 1, line_.size(), out);
}

std::size_t TablePrinter::lineWidth() const {
  std::size_t width = columns_.empty() ? 0 : gap * (columns_.size() - 1);
  for (const Column& column : columns_) {
    width += column.width;
  }
  return width;
}

// Takes from the widest column of text, one place after the other, what the line has too much.
void TablePrinter::fit() {
  if (fitted_) {
    return;
  }
  fitted_ = true;
  const auto textWidth = [](const Column& column) {
    return column.align == Align::left ? column.width : 0;
  };
  for (std::size_t width = lineWidth(); style_.width != 0 && width > style_.width; --width) {
    const auto widest = std::ranges::max_element(columns_, {}, textWidth);
    if (textWidth(*widest) <= narrowest) {
      return;
    }
    --widest->width;
  }
}

// Leaves the leading columns half of the line at most, and the others what is left of it.
void TablePrinter::narrowLeading() {
  const std::size_t most =
      std::max(narrowest, style_.width / 2 / std::max<std::size_t>(leading_, 1));
  std::size_t taken = 0;
  for (std::size_t index = 0; index < leading_; ++index) {
    columns_[index].width = std::min(columns_[index].width, most);
    taken += columns_[index].width + gap;
  }
  for (std::size_t index = leading_; index < columns_.size(); ++index) {
    const std::size_t room = std::max(narrowest, style_.width - std::min(style_.width, taken));
    columns_[index].width = std::max(columns_[index].cells, std::min(columns_[index].width, room));
  }
}

std::vector<TablePrinter::Part> TablePrinter::parts(std::size_t leading) {
  fitted_ = true;
  leading_ = leading;
  if (style_.width == 0 || lineWidth() <= style_.width || leading == columns_.size()) {
    return {{.begin = leading, .end = columns_.size()}};
  }
  narrowLeading();
  std::size_t ahead = 0;
  for (std::size_t index = 0; index < leading; ++index) {
    ahead += columns_[index].width + gap;
  }
  std::vector<Part> result;
  std::size_t taken = 0;
  for (std::size_t index = leading; index < columns_.size(); ++index) {
    const std::size_t width = columns_[index].width;
    if (result.empty() || taken + gap + width > style_.width) {
      result.push_back({.begin = index, .end = index});
      taken = ahead + width;
    } else {
      taken += gap + width;
    }
    result.back().end = index + 1;
  }
  return result;
}

void TablePrinter::appendCell(const Column& column, std::string_view text, std::size_t width,
                              bool last) {
  if (width > column.width) {
    const std::string beginning = cutToWidth(text, column.width);
    return appendCell(column, beginning, displayWidth(beginning), last);
  }
  if (text.empty()) {
    line_.append(last ? 0 : column.width + gap, ' ');
    return;
  }
  const std::size_t padding = column.width - width;
  if (column.align == Align::right) {
    line_.append(padding, ' ');
  }
  line_ += text;
  if (!last) {
    line_.append(column.align == Align::left ? padding + gap : gap, ' ');
  }
}

}  // namespace tool
