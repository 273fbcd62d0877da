// All rows of an Arrow stream, by columns: distinct labels and which of them stands where, numbers
// and texts.
#ifndef ZTB_FORMATS_ARROW_ARROW_TABLE_H_
#define ZTB_FORMATS_ARROW_ARROW_TABLE_H_

#include <ztb/arrow.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "formats/arrow/column_cells.h"
#include "formats/arrow/column_type.h"

namespace formats {

// Labels in the order in which rows first name them; those that a database takes for the same count
// once, in their first spelling.
class LabelColumn {
 public:
  // The place of a label.
  int add(std::string_view label);

  [[nodiscard]] const std::vector<std::string>& labels() const { return labels_; }
  // By row, the place of its label.
  std::vector<int> rows;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>()(text);
    }
  };
  using Places = std::unordered_map<std::string, int, Hash, std::equal_to<>>;

  std::vector<std::string> labels_;
  Places asWritten_;
  Places compared_;
};

// A label as a database compares it.
std::string comparedLabel(std::string_view label);

struct NumberColumn {
  std::vector<double> rows;
  // By row, whether it is null; empty where no row is.
  std::vector<bool> nulls;
};

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

  [[nodiscard]] std::size_t rowCount() const { return rowCount_; }
  [[nodiscard]] const std::vector<LabelColumn>& keys() const { return keys_; }
  [[nodiscard]] const std::vector<NumberColumn>& numbers() const { return numbers_; }
  // Of the column of texts; null is an empty one.
  [[nodiscard]] const std::vector<std::string>& texts() const { return texts_; }

 private:
  void checkTypes(const ColumnPlan& plan) const;
  [[nodiscard]] std::optional<ColumnType> contentType(std::size_t column) const;
  void requireSuccess(int result);
  bool nextBatch(ArrowArray& batch);
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
  std::size_t rowCount_ = 0;
  std::vector<LabelColumn> keys_;
  std::vector<NumberColumn> numbers_;
  std::vector<std::string> texts_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_ARROW_TABLE_H_
