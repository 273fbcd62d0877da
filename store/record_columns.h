// Arrays that records are copied to by columns: one for each key position and value slot that is
// asked for. Stores hand over a run of records at a time and the columns copy one after the other,
// so that what is not asked for costs nothing.
#ifndef ZTB_STORE_RECORD_COLUMNS_H_
#define ZTB_STORE_RECORD_COLUMNS_H_

#include <array>
#include <cstddef>
#include <span>

#include "store/idmap.h"

namespace ztb::dmap {

template <class Value>
struct RecordColumn {
  std::size_t place;  // the key position or value slot
  Value* into;
};

class RecordColumns {
 public:
  // Arrays that are null are left out.
  RecordColumns(int dim, int slots, int* const* keys, double* const* values)
      : keyCount_(take(keys, dim, keys_)), valueCount_(take(values, slots, values_)) {}

  [[nodiscard]] std::span<const RecordColumn<int>> keys() const {
    return std::span(keys_).first(keyCount_);
  }
  [[nodiscard]] std::span<const RecordColumn<double>> values() const {
    return std::span(values_).first(valueCount_);
  }
  void copyOne(const RecordView& record) const {
    for (const RecordColumn<int>& column : keys()) *column.into = record.keys[column.place];
    for (const RecordColumn<double>& column : values()) *column.into = record.values[column.place];
  }
  // Where the columns go on behind that many records.
  void advance(std::size_t records) {
    for (RecordColumn<int>& column : std::span(keys_).first(keyCount_)) column.into += records;
    for (RecordColumn<double>& column : std::span(values_).first(valueCount_)) {
      column.into += records;
    }
  }

 private:
  template <class Value, std::size_t most>
  static std::size_t take(Value* const* arrays, int count,
                          std::array<RecordColumn<Value>, most>& columns) {
    std::size_t found = 0;
    for (std::size_t place = 0; place < static_cast<std::size_t>(count); ++place) {
      if (arrays[place] != nullptr) columns[found++] = {place, arrays[place]};
    }
    return found;
  }

  std::array<RecordColumn<int>, maxDimension> keys_;
  std::array<RecordColumn<double>, maxSlots> values_;
  std::size_t keyCount_;
  std::size_t valueCount_;
};

// Records of one run, at most that many: enough for the loops over a column to be long, few enough
// for what they look at to be at hand.
inline constexpr int recordsOfRun = 64;
// Records that were put in order lie side by side: how far ahead of one the memory is asked for, a
// page, since no processor looks beyond one by itself.
inline constexpr std::size_t bytesAhead = 4096;

}  // namespace ztb::dmap

#endif  // ZTB_STORE_RECORD_COLUMNS_H_
