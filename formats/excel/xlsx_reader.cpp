#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <utility>

#include "formats/excel/cell_range.h"
#include "formats/excel/sheet_rows.h"
#include "formats/excel/workbook.h"
#include "formats/excel/xlsx_tables.h"
#include "formats/tables/exact_text.h"
#include "formats/tables_database.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

struct SheetPart {
  std::size_t sheet = 0;
  std::optional<CellRange> range;
};

class XlsxReader : public TableReader {
 public:
  // `passesOver` is whether nobody uses the column without a title in front of the others, in which
  // programs write the numbers of rows.
  XlsxReader(std::shared_ptr<Workbook> workbook, const SheetPart& part, bool exact,
             bool passesOver = false)
      : TableReader(workbook->file().path() + '#' + workbook->sheets()[part.sheet].name),
        workbook_(std::move(workbook)),
        rows_(*workbook_, workbook_->sheets()[part.sheet]),
        range_(part.range.value_or(CellRange{})),
        whole_(!part.range),
        exact_(exact),
        passesOver_(passesOver) {}

  bool next(ProblemList& problems) override {
    while (rows_.next()) {
      findBits();
      if (rows_.number() > range_.last.row) return false;
      if (rows_.number() < range_.first.row) continue;
      cells_.clear();
      bits_.clear();
      for (const SheetCell& cell : rows_.cells()) {
        if (cell.place.column == bitsColumn_) {
          bits_ = cell.text;
        } else if (range_.contains(cell.place)) {
          cells_.push_back(cell);
        }
      }
      if (cells_.empty()) continue;
      if (!headerRead_) {
        readHeader();
        return true;
      }
      if (takeRow(problems)) return true;
    }
    return false;
  }

  [[nodiscard]] double share() const override { return rows_.share(); }
  [[nodiscard]] TextPosition position() const override {
    return {.line = rows_.number(), .column = 0};
  }
  [[nodiscard]] std::string place(TextPosition at) const override {
    if (at.line == 0) return path_;
    if (at.column == 0) return fmt::format("{}: row {}", path_, at.line);
    return fmt::format("{}!{}{}", path_, columnLetters(at.column), at.line);
  }
  [[nodiscard]] std::string shortPlace(TextPosition at) const override {
    return fmt::format("row {}", at.line);
  }

 private:
  // The column of bits, the last one of the head, is none of the table, whatever the range.
  void findBits() {
    if (headSeen_) return;
    headSeen_ = true;
    const SheetCell& last = rows_.cells().back();
    if (!last.isNumber && last.text == exactColumn) bitsColumn_ = last.place.column;
  }

  // The header goes to its last cell, and to the end of a range that is named.
  void readHeader() {
    headerRead_ = true;
    first_ = whole_ ? cells_.front().place.column : range_.first.column;
    std::size_t last = whole_ ? cells_.back().place.column : range_.last.column;
    if (last == bitsColumn_ && last > first_) --last;
    names_.assign(last - first_ + 1, "");
    for (const SheetCell& cell : cells_) {
      names_[cell.place.column - first_] = textOf(cell);
    }
    fields_.clear();
    for (std::size_t column = 0; column < names_.size(); ++column) {
      fields_.push_back({.text = names_[column],
                         .quoted = !names_[column].empty(),
                         .at = {.line = rows_.number(), .column = first_ + column}});
    }
  }

  bool takeRow(ProblemList& problems) {
    texts_.assign(names_.size(), "");
    fields_.clear();
    for (std::size_t column = 0; column < names_.size(); ++column) {
      fields_.push_back({.text = "", .at = {.line = rows_.number(), .column = first_ + column}});
    }
    for (const SheetCell& cell : cells_) {
      const std::size_t column = cell.place.column - first_;
      if (passesOver_ && cell.place.column + 1 == first_) continue;
      if (cell.place.column < first_ || column >= names_.size()) {
        problems.add(place({.line = cell.place.row, .column = cell.place.column}),
                     fmt::format("stands beside the table, whose columns are {} to {}; give its "
                                 "range as #SHEET!A1:B2",
                                 columnLetters(first_), columnLetters(first_ + names_.size() - 1)));
        return false;
      } else {
        TableField& field = fields_[column];
        texts_[column] = textOf(cell);
        field.text = texts_[column];
        field.quoted = !cell.isNumber;
        field.isNumber = cell.isNumber;
        field.number = cell.number;
        field.fault = cell.fault;
      }
    }
    takeBits(bits_);
    return true;
  }

  [[nodiscard]] std::string textOf(const SheetCell& cell) const {
    if (!exact_ || cell.isNumber) return cell.text;
    return unspelled(cell.text).value_or(cell.text);
  }

  // "3=3fd3333333333334", parted by blanks: the bits of the value in a column of the sheet, from 1.
  // They hold where the cell shows what they were rounded to.
  void takeBits(std::string_view text) {
    while (!text.empty()) {
      const std::string_view word = text.substr(0, text.find(' '));
      text.remove_prefix(std::min(text.size(), word.size() + 1));
      const std::size_t equals = word.find('=');
      if (equals == std::string_view::npos) continue;
      std::size_t column = 0;
      std::uint64_t bits = 0;
      std::from_chars(word.data(), word.data() + equals, column);
      std::from_chars(word.data() + equals + 1, word.data() + word.size(), bits, 16);
      if (column < first_ || column - first_ >= fields_.size()) continue;
      TableField& field = fields_[column - first_];
      const auto value = std::bit_cast<double>(bits);
      if (field.isNumber && roundedAsWorkbook(value) == field.number) field.number = value;
    }
  }

  std::shared_ptr<Workbook> workbook_;
  SheetRows rows_;
  CellRange range_;
  bool whole_;
  bool exact_;
  bool passesOver_;
  bool headerRead_ = false;
  bool headSeen_ = false;
  std::size_t bitsColumn_ = 0;  // 0 for none
  std::string bits_;
  std::size_t first_ = 1;
  std::vector<std::string> names_;
  std::vector<SheetCell> cells_;
  std::vector<std::string> texts_;
};

// In quotes, as formulas have it, quotes within the name stand twice.
std::optional<std::size_t> sheetNamed(const Workbook& workbook, std::string_view given) {
  std::string name(given);
  if (name.size() > 2 && name.front() == '\'' && name.back() == '\'') {
    name = name.substr(1, name.size() - 2);
    for (std::size_t at = name.find("''"); at != std::string::npos; at = name.find("''", at + 1)) {
      name.erase(at, 1);
    }
  }
  const auto found = std::ranges::find_if(workbook.sheets(), [&](const SheetEntry& sheet) {
    return tool::sameFolded(sheet.name, name);
  });
  if (found == workbook.sheets().end()) return std::nullopt;
  return static_cast<std::size_t>(found - workbook.sheets().begin());
}

// What the sheet of symbols, where there is one, tells of the others.
OwnTables ownSheets(const std::shared_ptr<Workbook>& workbook) {
  const auto& sheets = workbook->sheets();
  const auto found = std::ranges::find(sheets, std::string_view(symbolsTable), &SheetEntry::name);
  if (found == sheets.end()) return {};
  OwnTables own;
  ProblemList ignored(0);
  ignored.attempt([&] {
    XlsxReader catalogue(
        workbook, {.sheet = static_cast<std::size_t>(found - sheets.begin()), .range = {}}, true);
    own = OwnTables(catalogue);
  });
  return own;
}

SheetPart parsePart(const Workbook& workbook, const TableSource& source, const OwnTables& own) {
  const std::string& part = source.part;
  std::vector<std::string> names;
  for (const SheetEntry& sheet : workbook.sheets()) names.push_back(sheet.name);
  const std::string shown = tool::shortened(fmt::format("{}", fmt::join(names, ", ")));
  if (part.empty()) {
    if (const auto sheet = sheetNamed(workbook, own.only().value_or(""))) {
      return {.sheet = *sheet, .range = {}};
    }
    if (!sheetNamed(workbook, symbolsTable)) return {};
    throw tool::Failure(
        fmt::format("{}: which sheet is meant? give --from {}#SHEET; its sheets are {}",
                    source.path, source.path, shown),
        ZTB_ERROR_REFUSED);
  }
  if (const auto sheet = sheetNamed(workbook, part)) return {.sheet = *sheet, .range = {}};
  if (const auto range = parseRange(part)) return {.sheet = 0, .range = range};
  const std::size_t mark = part.rfind('!');
  if (mark != std::string::npos) {
    const auto sheet = sheetNamed(workbook, std::string_view(part).substr(0, mark));
    const auto range = parseRange(std::string_view(part).substr(mark + 1));
    if (sheet && range) return {.sheet = *sheet, .range = range};
    if (sheet) {
      throw tool::Failure(fmt::format("{}: {} is no range of cells such as B3:F90", source.name(),
                                      tool::inQuotes(part.substr(mark + 1))),
                          ZTB_ERROR_REFUSED);
    }
  }
  throw tool::Failure(fmt::format("{}: no sheet {}; its sheets are {}", source.path,
                                  tool::inQuotes(part.substr(0, mark)), shown),
                      ZTB_ERROR_NOT_FOUND);
}

TablesFile sheetsOf(const std::string& path, const Workbook& workbook) {
  TablesFile file{.path = path, .tables = {}, .open = openXlsx};
  for (const SheetEntry& sheet : workbook.sheets()) file.tables.push_back(sheet.name);
  return file;
}

}  // namespace

std::unique_ptr<TableReader> openXlsx(const TableSource& source) {
  const auto workbook = std::make_shared<Workbook>(source.path);
  const OwnTables own = source.exact ? OwnTables() : ownSheets(workbook);
  const SheetPart part = parsePart(*workbook, source, own);
  const std::string& sheet = workbook->sheets()[part.sheet].name;
  const bool isOurs = own.has(sheet);
  const std::vector<std::string> parts = own.partsOf(sheet);
  if (isOurs && !part.range && parts.size() > 1) {
    return openParts(sheetsOf(source.path, *workbook), parts);
  }
  return std::make_unique<XlsxReader>(workbook, part, source.exact || isOurs,
                                      !part.range && !source.used.all);
}

std::unique_ptr<DatabaseReader> openXlsxDatabase(const std::string& path) {
  return openTablesDatabase(sheetsOf(path, Workbook(path)));
}

}  // namespace formats
