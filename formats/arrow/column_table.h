// Rows by columns: distinct labels and which of them stands where, numbers and texts.
#ifndef ZTB_FORMATS_ARROW_COLUMN_TABLE_H_
#define ZTB_FORMATS_ARROW_COLUMN_TABLE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace formats {

// Labels in the order in which rows first name them; those that a database takes for the same count
// once, in their first spelling.
class LabelColumn {
 public:
  LabelColumn() = default;
  LabelColumn(LabelColumn&&) noexcept = default;
  LabelColumn& operator=(LabelColumn&&) noexcept = default;
  LabelColumn(const LabelColumn&) = delete;
  LabelColumn& operator=(const LabelColumn&) = delete;
  ~LabelColumn() = default;

  // The place of a label.
  int add(std::string_view label);

  [[nodiscard]] const std::vector<std::string>& labels() const { return labels_; }
  // By row, the place of its label.
  std::vector<int> rows;

 private:
  int addOther(std::string_view label);

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
  // Some of asWritten_ by few of their bits, since most rows have one of few labels.
  struct Recent {
    const std::string* label = nullptr;
    int place = 0;
  };
  std::vector<Recent> recent_;
};

// A label as a database compares it.
std::string comparedLabel(std::string_view label);

struct NumberColumn {
  std::vector<double> rows;
  // By row, whether it is null; empty where no row is.
  std::vector<bool> nulls;
};

struct ColumnTable {
  std::size_t rowCount = 0;
  std::vector<LabelColumn> keys;
  std::vector<NumberColumn> numbers;
  // One for each row, or none at all.
  std::vector<std::string> texts;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_COLUMN_TABLE_H_
