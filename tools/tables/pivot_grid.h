// The records of a symbol laid out for a two-way table, in memory that grows with the records
// alone.
#ifndef ZTB_TOOLS_TABLES_PIVOT_GRID_H_
#define ZTB_TOOLS_TABLES_PIVOT_GRID_H_

#include <cstddef>
#include <span>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/files/slice_filter.h"

namespace tool {

// One side of the table: the combinations of labels that some record has at the positions of that
// side, in the order of the file, the first position slowest.
class PivotSide {
 public:
  explicit PivotSide(std::vector<std::size_t> positions) : positions_(std::move(positions)) {}

  [[nodiscard]] const std::vector<std::size_t>& positions() const { return positions_; }
  [[nodiscard]] std::size_t size() const { return labels_.size() / positions_.size(); }
  // The label numbers of an entry, one for each of positions().
  [[nodiscard]] std::span<const int> labels(std::size_t entry) const {
    return {labels_.data() + entry * positions_.size(), positions_.size()};
  }

  // Takes the labels of a record. finish() makes the entries out of all that were taken, and gives
  // the entry of each record; labels are numbered up to labelCount.
  void take(std::span<const int> keys);
  std::vector<std::size_t> finish(std::size_t labelCount);

 private:
  std::vector<std::size_t> positions_;
  std::vector<int> labels_;
};

class PivotGrid {
 public:
  struct Cell {
    std::size_t row;
    std::size_t column;
    double value;
  };

  // Reads the records that the filter lets through, once.
  PivotGrid(const ExchangeFile& file, const FileSymbol& symbol, ztb::Field field,
            const SliceFilter& filter, std::vector<std::size_t> rows,
            std::vector<std::size_t> columns);

  [[nodiscard]] const PivotSide& rows() const { return rows_; }
  [[nodiscard]] const PivotSide& columns() const { return columns_; }
  // A cell for each record, by rows and in them by columns. Two cells fall together only where a
  // position on neither side has several labels.
  [[nodiscard]] const std::vector<Cell>& cells() const { return cells_; }
  // How many labels the records have at a position.
  [[nodiscard]] std::size_t labelCount(std::size_t position) const {
    return labelCounts_[position];
  }

 private:
  PivotSide rows_;
  PivotSide columns_;
  std::vector<Cell> cells_;
  std::vector<std::size_t> labelCounts_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_PIVOT_GRID_H_
