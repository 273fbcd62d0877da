// The records of a symbol as a dense array over the labels that they hold, laid out for a two-way
// table.
#ifndef ZTB_TOOLS_PIVOT_CUBE_H_
#define ZTB_TOOLS_PIVOT_CUBE_H_

#include <cstddef>
#include <span>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/data_file.h"
#include "tools/slice_filter.h"

namespace tool {

// The values of one field of a symbol's records, those that a slice lets through, by the places of
// their labels. At each position the labels of these records are numbered from 0, in the order of
// the file. Fetched through the array transfer.
class PivotCube {
 public:
  // Throws Failure when the cube would have more cells than fit; the text tells how many, and to
  // take a slice.
  PivotCube(DataFile& file, const ztb::Symbol& symbol, ztb::Field field, const SliceFilter& filter);

  // The label numbers of a position.
  [[nodiscard]] const std::vector<int>& labels(std::size_t position) const {
    return labels_[position];
  }
  [[nodiscard]] std::size_t recordCount() const { return recordCount_; }

  // The cell at these places, one for each position, and whether a record stands in it.
  [[nodiscard]] std::size_t cellOf(std::span<const std::size_t> places) const;
  [[nodiscard]] bool isRecord(std::size_t cell) const { return records_[cell] != 0; }
  [[nodiscard]] double value(std::size_t cell) const { return values_[cell]; }
  [[nodiscard]] std::size_t cellCount() const { return records_.size(); }

 private:
  void collectLabels(const DataFile& file, const ztb::Symbol& symbol, const SliceFilter& filter);
  void transfer(ztb::Database& database, const ztb::Symbol& symbol, ztb::Field field);

  std::vector<std::vector<int>> labels_;
  std::size_t recordCount_ = 0;
  std::vector<double> values_;
  // The number of the record in a cell, from 1; 0 where there is none.
  std::vector<int> records_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_PIVOT_CUBE_H_
