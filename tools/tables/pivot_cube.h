// The records of a symbol as a dense array over the labels that they hold, laid out for a two-way
// table.
#ifndef ZTB_TOOLS_TABLES_PIVOT_CUBE_H_
#define ZTB_TOOLS_TABLES_PIVOT_CUBE_H_

#include <cstddef>
#include <span>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/files/record_walk.h"
#include "tools/files/slice_filter.h"

namespace tool {

// The values of one field of a symbol's records, those that a slice lets through, by the places of
// their labels. At each position the labels of these records are numbered from 0, in the order of
// the file.
class PivotCube {
 public:
  // Throws Failure when the cube would have more cells than fit; the text tells how many, and to
  // take a slice.
  PivotCube(const ExchangeFile& file, const FileSymbol& symbol, ztb::Field field,
            const SliceFilter& filter);

  // The label numbers of a position.
  [[nodiscard]] const std::vector<int>& labels(std::size_t position) const {
    return labels_[position];
  }
  [[nodiscard]] std::size_t recordCount() const { return recordCount_; }

  // The cell at these places, one for each position, and whether a record stands in it.
  [[nodiscard]] std::size_t cellOf(std::span<const std::size_t> places) const;
  [[nodiscard]] bool isRecord(std::size_t cell) const { return records_[cell]; }
  [[nodiscard]] double value(std::size_t cell) const { return values_[cell]; }
  [[nodiscard]] std::size_t cellCount() const { return records_.size(); }

 private:
  void collectLabels(const ExchangeFile& file, RecordWalk& record, const SliceFilter& filter);
  void fill(RecordWalk& record, ztb::Field field, const SliceFilter& filter, int labelCount);

  std::vector<std::vector<int>> labels_;
  std::size_t recordCount_ = 0;
  std::vector<double> values_;
  // Whether a record stands in a cell, which tells a value of zero from none.
  std::vector<bool> records_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_PIVOT_CUBE_H_
