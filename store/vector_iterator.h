// Iterator of `DMapVector`: a row number over the store's two array objects. It survives the growth
// of the arrays, but names a place, not a record: rows that shift pass under it.
#ifndef ZTB_STORE_VECTOR_ITERATOR_H_
#define ZTB_STORE_VECTOR_ITERATOR_H_

#include <algorithm>
#include <cstddef>

#include "store/flat_array.h"
#include "store/idmap.h"
#include "store/record_columns.h"
#include "store/slice_mask.h"

namespace ztb::dmap {

class VectorIterator final : public BaseDMapIterator {
 public:
  // Whether get() is a look at memory and no walk.
  static constexpr bool keysAtHand = true;

  // The null iterator.
  VectorIterator() : BaseDMapIterator(0, 0, StorageKind::dMap) {}
  VectorIterator(int dim, int type, int row, FlatArray<int>* keys, FlatArray<double>* values)
      : BaseDMapIterator(dim, type, StorageKind::dMapVector),
        row_(row),
        keys_(keys),
        values_(values) {}

  void next() override { ++row_; }
  void prev() override { --row_; }
  // On a scalar null `keys`; both null on a row that the arrays do not have. The pointers are good
  // until the arrays next grow.
  [[nodiscard]] RecordView get() const override {
    if (isNull()) {
      return {};
    }
    double* values = values_->empty() ? nullptr : values_->data();
    if (dim() == 0) {
      return {nullptr, values};
    }
    const auto width = static_cast<std::size_t>(dim());
    const auto row = static_cast<std::size_t>(row_);
    if (row_ < 0 || (row + 1) * width > keys_->size()) {
      return {};
    }
    const auto slots = static_cast<std::size_t>(slotCount(type()));
    return {keys_->data() + row * width, values == nullptr ? nullptr : values + row * slots};
  }
  [[nodiscard]] bool equals(const IDMapIterator& other) const override {
    const auto& right = static_cast<const VectorIterator&>(other);
    return dim() == right.dim() && type() == right.type() && row_ == right.row_;
  }
  [[nodiscard]] bool isNull() const override { return keys_ == nullptr || values_ == nullptr; }

  // Makes the values of all records free to be written to; whether they lie elsewhere now.
  // REQUIRES: not the null iterator.
  bool ownValues() { return values_->own(); }

  // What stands for the address of a record's values where there is no record, at the end.
  [[nodiscard]] const void* endAddress() const { return get().values; }

  [[nodiscard]] int row() const { return row_; }
  // Copies this record and those behind it, `most` at most, up to the end of the arrays or, with a
  // mask, before one that it does not take; then stands on the last of them. Their number.
  // REQUIRES: stands on a record, which the mask takes.
  int copyRun(int most, const int* mask, const RecordColumns& columns) {
    const RecordView first = get();
    const auto width = static_cast<std::size_t>(dim());
    const auto slots = static_cast<std::size_t>(slotCount(type()));
    const int run = dim() == 0 ? 1 : runOnward(first.keys, most, mask);
    for (const RecordColumn<int>& column : columns.keys()) {
      copyColumn(first.keys + column.place, width, run, column.into);
    }
    for (const RecordColumn<double>& column : columns.values()) {
      copyColumn(first.values + column.place, slots, run, column.into);
    }
    row_ += run - 1;
    return run;
  }
  // REQUIRES: not the null iterator.
  void moveTo(int row) { row_ = row; }

 private:
  [[nodiscard]] int runOnward(const int* keys, int most, const int* mask) const {
    const int rows = std::min(most, static_cast<int>(keys_->size() / dim()) - row_);
    if (mask == nullptr) {
      return rows;
    }
    int run = 1;
    for (const int* key = keys + dim(); run < rows && matchesMask(mask, key, dim()); key += dim()) {
      ++run;
    }
    return run;
  }

  template <class Value>
  static void copyColumn(const Value* from, std::size_t width, int rows, Value* into) {
    for (int row = 0; row < rows; ++row) {
      into[row] = from[static_cast<std::size_t>(row) * width];
    }
  }

  int row_ = -1;
  FlatArray<int>* keys_ = nullptr;
  FlatArray<double>* values_ = nullptr;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_VECTOR_ITERATOR_H_
