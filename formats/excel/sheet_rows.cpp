#include "formats/excel/sheet_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "tools/text/number_text.h"

namespace formats {

namespace {

// Each is held as a cell of its own: whole columns are, a sheet is not.
constexpr std::size_t mostMergedCells = std::size_t{1} << 22U;

}  // namespace

SheetRows::SheetRows(Workbook& workbook, const SheetEntry& sheet)
    : workbook_(workbook), sheet_(sheet) {
  if (sheet.part.empty()) {
    workbook_.file().fail(fmt::format("has no part for the sheet {}", sheet.name));
  }
  if (workbook_.file().contains(sheet.part, "mergeCell ")) readMerges();
  part_ = workbook_.file().open(
      sheet.part,
      {.begin = [this](std::string_view name,
                       const XmlAttributes& attributes) { beginElement(name, attributes); },
       .end = [this](std::string_view name) { endElement(name); },
       .text =
           [this](std::string_view chars) {
             if (inValue_) value_ += chars;
           }});
}

void SheetRows::readMerges() {
  std::size_t mergedCells = 0;
  workbook_.file().read(
      sheet_.part, {.begin =
                        [&](std::string_view name, const XmlAttributes& attributes) {
                          if (name != "mergeCell") return;
                          const auto range = parseRange(attributes["ref"]);
                          if (!range) {
                            workbook_.file().fail(fmt::format("{}: {} are no merged cells",
                                                              sheet_.name, attributes["ref"]));
                          }
                          mergedCells += range->cells();
                          if (mergedCells > mostMergedCells) {
                            workbook_.file().fail(fmt::format("{}: more than {} cells are merged",
                                                              sheet_.name, mostMergedCells));
                          }
                          merges_.push_back({.range = *range, .value = {}});
                        },
                    .end = {},
                    .text = {}});
  std::ranges::stable_sort(merges_, {}, [](const Merge& merge) { return merge.range.first.row; });
}

void SheetRows::beginElement(std::string_view name, const XmlAttributes& attributes) {
  if (name == "row") {
    const std::string_view number = attributes["r"];
    std::size_t row = readingNumber_ + 1;
    if (!number.empty()) {
      const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), row);
      (void)end;
      if (error != std::errc{} || row <= readingNumber_ || row > mostSheetRows) {
        workbook_.file().fail(fmt::format("{}: a row has the number {} behind row {}", sheet_.name,
                                          number, readingNumber_));
      }
    }
    readingNumber_ = row;
    place_ = {row, 0};
  } else if (name == "c") {
    const std::string_view reference = attributes["r"];
    CellPlace place{readingNumber_, place_.column + 1};
    if (!reference.empty()) {
      const std::optional<CellPlace> told = parsePlace(reference);
      if (!told || told->row != readingNumber_ || told->column <= place_.column) {
        workbook_.file().fail(fmt::format("{}: a cell of row {} is called {}", sheet_.name,
                                          readingNumber_, reference));
      }
      place = *told;
    }
    place_ = place;
    type_ = attributes["t"];
    style_ = attributes["s"];
    value_.clear();
    inCell_ = true;
    hasValue_ = hasFormula_ = false;
  } else if (inCell_ && name == "f") {
    hasFormula_ = true;
  } else if (inCell_ && name == "rPh") {
    phonetic_ = true;
  } else if (inCell_ && (name == "v" || (name == "t" && !phonetic_))) {
    inValue_ = hasValue_ = true;
  }
}

void SheetRows::endElement(std::string_view name) {
  if (name == "v" || name == "t") {
    inValue_ = false;
  } else if (name == "rPh") {
    phonetic_ = false;
  } else if (name == "c" && inCell_) {
    inCell_ = false;
    finishCell();
  } else if (name == "row") {
    finishRow();
  }
}

void SheetRows::finishCell() {
  if (place_.column > mostSheetColumns) {
    workbook_.file().fail(fmt::format("{}: row {} has more than {} cells", sheet_.name, place_.row,
                                      mostSheetColumns));
  }
  SheetCell cell{.place = place_, .text = {}};
  if (!hasValue_ || (hasFormula_ && value_.empty() && type_ != "str")) {
    if (!hasFormula_) return;
    cell.fault = "is a formula without a value: let a spreadsheet program compute and save it";
  } else if (type_ == "s") {
    cell.text = workbook_.sharedText(value_);
  } else if (type_ == "inlineStr" || type_ == "str") {
    cell.text = withoutEscapes(value_);
  } else if (type_ == "d") {
    cell.text = value_;
    constexpr std::string_view midnight = "T00:00:00";
    if (cell.text.ends_with(midnight)) cell.text.resize(cell.text.size() - midnight.size());
  } else if (type_ == "e") {
    cell.text = value_;
    cell.fault = "holds an error";
  } else if (type_ == "b") {
    const bool isTrue = value_ == "1" || value_ == "true";
    cell.isNumber = isTrue || value_ == "0" || value_ == "false";
    cell.number = isTrue ? 1 : 0;
    cell.text = !cell.isNumber ? value_ : isTrue ? "TRUE" : "FALSE";
    if (!cell.isNumber) cell.fault = "is no truth value, which is 0 or 1";
  } else {
    std::string reason;
    const bool isNumber = value_.find_first_not_of("+-.0123456789eE") == std::string::npos;
    if (isNumber) cell.number = tool::parseNumber(value_, reason);
    if (!isNumber || !reason.empty()) {
      cell.text = value_;
      cell.fault = "is a number that cannot be read";
    } else {
      cell.isNumber = true;
      const NumberKind kind = workbook_.kindOf(style_);
      if (kind == NumberKind::date) cell.text = dateText(cell.number, workbook_.from1904());
      if (kind == NumberKind::duration) cell.text = durationText(cell.number);
      if (kind == NumberKind::truth) cell.text = cell.number != 0 ? "TRUE" : "FALSE";
      if (cell.text.empty()) cell.text = tool::NumberText(cell.number).view();
    }
  }
  if (cell.text.empty() && cell.fault == nullptr) return;
  reading_.push_back(std::move(cell));
}

void SheetRows::finishRow() {
  if (merges_.empty()) {
    if (!reading_.empty()) ready_.push_back(std::move(reading_));
  } else {
    // Rows that the sheet leaves out may be within merged cells.
    for (; nextMerged_ < readingNumber_ - 1; ++nextMerged_) {
      std::vector<SheetCell> row;
      fillMerged(row, nextMerged_ + 1);
      if (!row.empty()) ready_.push_back(std::move(row));
    }
    fillMerged(reading_, readingNumber_);
    nextMerged_ = readingNumber_;
    if (!reading_.empty()) ready_.push_back(std::move(reading_));
  }
  reading_.clear();
}

void SheetRows::fillMerged(std::vector<SheetCell>& row, std::size_t number) {
  std::erase_if(open_, [&](const Merge& merge) { return merge.range.last.row < number; });
  for (; nextMerge_ < merges_.size() && merges_[nextMerge_].range.first.row <= number;
       ++nextMerge_) {
    open_.push_back(std::move(merges_[nextMerge_]));
  }
  for (Merge& merge : open_) {
    const CellRange& range = merge.range;
    if (number == range.first.row) {
      const auto found = std::ranges::find_if(
          row, [&](const SheetCell& cell) { return cell.place.column == range.first.column; });
      if (found != row.end()) merge.value = *found;
    }
    if (merge.value.text.empty() && merge.value.fault == nullptr) continue;
    std::erase_if(row, [&](const SheetCell& cell) { return range.contains(cell.place); });
    for (std::size_t column = range.first.column; column <= range.last.column; ++column) {
      row.push_back(merge.value);
      row.back().place = {number, column};
    }
    std::ranges::sort(row, {}, [](const SheetCell& cell) { return cell.place.column; });
  }
}

bool SheetRows::next() {
  while (ready_.empty()) {
    if (part_ == nullptr) return false;
    if (!part_->advance()) part_.reset();
  }
  row_ = std::move(ready_.front());
  ready_.pop_front();
  number_ = row_.front().place.row;
  return true;
}

}  // namespace formats
