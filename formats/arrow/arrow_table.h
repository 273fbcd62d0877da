// All rows of an Arrow stream, by columns.
#ifndef ZTB_FORMATS_ARROW_ARROW_TABLE_H_
#define ZTB_FORMATS_ARROW_ARROW_TABLE_H_

#include <ztb/arrow.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/arrow/column_cells.h"
#include "formats/arrow/column_table.h"
#include "formats/arrow/column_type.h"

namespace formats {

// Which columns, by their places, are read as what.
struct ColumnPlan {
  std::vector<std::size_t> keys;
  std::vector<std::size_t> numbers;
  std::optional<std::size_t> text;
};

class ArrowTable {
 public:
  // Takes the stream over, in any case. Throws ztb::Error, as all members do.
  explicit ArrowTable(ArrowArrayStream* stream);
  ArrowTable(const ArrowTable&) = delete;
  ArrowTable& operator=(const ArrowTable&) = delete;
  ~ArrowTable();

  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }
  // Whether a column can hold labels, or numbers; the entries of its dictionary decide.
  [[nodiscard]] bool canBeLabel(std::size_t column) const;
  [[nodiscard]] bool isNumber(std::size_t column) const;

  // Reads all rows. Columns of the plan have to be of fitting types.
  void read(const ColumnPlan& plan);

  // What was read; a null text is an empty one.
  [[nodiscard]] const ColumnTable& rows() const { return rows_; }

 private:
  void checkTypes(const ColumnPlan& plan) const;
  [[nodiscard]] std::optional<ColumnType> contentType(std::size_t column) const;
  void requireSuccess(int result);
  bool nextBatch(ArrowArray& batch);
  void refuseNullRows(const ArrowArray& batch) const;
  void readBatch(const ColumnPlan& plan, const ArrowArray& batch);
  // Calls take(row, text) for each row of a column of labels or texts, where a null gives nothing.
  template <class Take>
  void eachText(std::size_t column, const ArrowArray& batch, Take&& take);
  void readLabels(std::size_t column, const ArrowArray& batch, LabelColumn& labels);
  void readNumbers(std::size_t column, const ArrowArray& batch, NumberColumn& numbers);
  void readTexts(std::size_t column, const ArrowArray& batch);
  [[nodiscard]] ColumnCells cellsOf(std::size_t column, const ArrowArray& batch,
                                    const ColumnType& type) const;

  ArrowArrayStream stream_;
  ArrowSchema schema_{};
  std::vector<std::string> names_;
  ColumnTable rows_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_ARROW_TABLE_H_
