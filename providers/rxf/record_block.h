// The records of one block while a symbol is written, by columns.
//
// Invariants while a symbol is written: records stand in ascending key order, every key is a label
// number, and firstChanged holds the first position in which a record differs from the one before
// it in the symbol.
#ifndef ZTB_PROVIDERS_RXF_RECORD_BLOCK_H_
#define ZTB_PROVIDERS_RXF_RECORD_BLOCK_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/limits.h"

namespace rxffile {

class RecordBlock {
 public:
  // Empties the block and makes room for records of this shape.
  void shape(int dim, int slots) {
    dim_ = dim;
    slots_ = slots;
    count_ = 0;
    if (dim > keyRoom_) {
      keys_ =
          std::make_unique_for_overwrite<std::int32_t[]>(kStride * static_cast<std::size_t>(dim));
      keyRoom_ = dim;
    }
    if (slots > slotRoom_) {
      values_ = std::make_unique_for_overwrite<double[]>(kStride * static_cast<std::size_t>(slots));
      slotRoom_ = slots;
    }
    if (!changed_) changed_ = std::make_unique_for_overwrite<std::uint8_t[]>(kStride);
  }

  [[nodiscard]] int dim() const { return dim_; }
  [[nodiscard]] int slots() const { return slots_; }
  [[nodiscard]] std::uint32_t count() const { return count_; }
  [[nodiscard]] bool full() const { return count_ == kBlockRecords; }
  void clear() { count_ = 0; }

  // Adds a record. REQUIRES: not full.
  void add(const int* keys, const double* values, int firstChanged) {
    std::int32_t* key = keys_.get() + count_;
    for (int j = 0; j < dim_; ++j, key += kStride) *key = keys[j];
    double* value = values_.get() + count_;
    *value = values[0];
    for (int s = 1; s < slots_; ++s) value[kStride * static_cast<std::size_t>(s)] = values[s];
    changed_[count_] = static_cast<std::uint8_t>(firstChanged);
    ++count_;
  }

  [[nodiscard]] const std::int32_t* keyColumn(int j) const {
    return keys_.get() + kStride * static_cast<std::size_t>(j);
  }
  [[nodiscard]] const double* valueColumn(int s) const {
    return values_.get() + kStride * static_cast<std::size_t>(s);
  }
  [[nodiscard]] const std::uint8_t* firstChanged() const { return changed_.get(); }

 private:
  // Columns a power of two apart would compete for the same lines of the processor's cache.
  static constexpr std::size_t kStride = kBlockRecords + 24;

  int dim_ = 0;
  int slots_ = 1;
  std::uint32_t count_ = 0;
  int keyRoom_ = 0;
  int slotRoom_ = 0;
  std::unique_ptr<std::int32_t[]> keys_;
  std::unique_ptr<double[]> values_;
  std::unique_ptr<std::uint8_t[]> changed_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_BLOCK_H_
