// The rows of a sheet, cell by cell.
#ifndef ZTB_FORMATS_EXCEL_SHEET_ROWS_H_
#define ZTB_FORMATS_EXCEL_SHEET_ROWS_H_

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/excel/cell_range.h"
#include "formats/excel/workbook.h"

namespace formats {

struct SheetCell {
  CellPlace place{};
  // What the cell shows: of a date its ISO form, of a truth value TRUE or FALSE, of a number its
  // digits.
  std::string text{};
  bool isNumber = false;
  double number = 0;
  const char* fault = nullptr;
};

class SheetRows {
 public:
  SheetRows(Workbook& workbook, const SheetEntry& sheet);
  SheetRows(const SheetRows&) = delete;
  SheetRows& operator=(const SheetRows&) = delete;

  // Goes to the next row that has a cell with something in it; false behind the last.
  bool next();
  // Its cells that have something in them, by their columns; those that were merged have all what
  // the first of them has.
  [[nodiscard]] const std::vector<SheetCell>& cells() const { return row_; }
  [[nodiscard]] std::size_t number() const { return number_; }
  // What part of the sheet was read, from 0 to 1.
  [[nodiscard]] double share() const { return part_ == nullptr ? 1 : part_->share(); }

 private:
  struct Merge {
    CellRange range;
    SheetCell value;
  };

  void readMerges();
  void beginElement(std::string_view name, const XmlAttributes& attributes);
  void endElement(std::string_view name);
  void finishCell();
  void finishRow();
  void fillMerged(std::vector<SheetCell>& row, std::size_t number);

  Workbook& workbook_;
  const SheetEntry& sheet_;
  std::unique_ptr<XlsxPart> part_;
  // By their first rows; those that the row to be filled has come to are in open_.
  std::vector<Merge> merges_;
  std::size_t nextMerge_ = 0;
  std::vector<Merge> open_;
  std::deque<std::vector<SheetCell>> ready_;
  std::vector<SheetCell> row_;
  std::size_t number_ = 0;
  std::size_t nextMerged_ = 0;

  // The row and cell that are being read.
  std::vector<SheetCell> reading_;
  std::size_t readingNumber_ = 0;
  CellPlace place_;
  std::string type_;
  std::string style_;
  std::string value_;
  bool inCell_ = false;
  bool inValue_ = false;
  bool hasValue_ = false;
  bool hasFormula_ = false;
  bool phonetic_ = false;
};

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_SHEET_ROWS_H_
