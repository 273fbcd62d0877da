// The rows of a table by columns, read at once: what a reader gives where nothing is to be told of
// any of them.
#ifndef ZTB_FORMATS_TABLES_BULK_ROWS_H_
#define ZTB_FORMATS_TABLES_BULK_ROWS_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace formats {

// Which columns are read, by their places.
struct BulkColumnPlaces {
  // Columns whose fields are labels, in the order in which a row's labels are numbered, and those
  // whose fields are numbers.
  std::vector<std::size_t> labels;
  std::vector<std::size_t> numbers;
};

class BulkRows {
 public:
  BulkRows() = default;
  BulkRows(const BulkRows&) = delete;
  BulkRows& operator=(const BulkRows&) = delete;
  virtual ~BulkRows() = default;

  // Asks for the number of each label, in the order in which the rows have them; for some more than
  // once.
  virtual void numberLabels(const std::function<int(const std::string& label)>& number) = 0;

  // A piece of the rows, in their order: by the order of the columns asked for, numbers of labels
  // once they were numbered, and numbers.
  struct Piece {
    std::size_t rows = 0;
    std::vector<std::vector<int>> labels;
    std::vector<std::vector<double>> numbers;
  };
  [[nodiscard]] virtual std::size_t pieceCount() const = 0;
  [[nodiscard]] virtual const Piece& piece(std::size_t number) const = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_BULK_ROWS_H_
