// The records of one block while a symbol is written, by columns.
//
// Invariants while a symbol is written: records stand in ascending key order, every key is a label
// number, and firstChanged holds the first position in which a record differs from the one before
// it in the symbol.
#ifndef ZTB_PROVIDERS_RXF_RECORD_BLOCK_H_
#define ZTB_PROVIDERS_RXF_RECORD_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/limits.h"

namespace rxffile {

class RecordBlock {
 public:
  // What comes of holding a record against the one before it and the labels.
  struct Comparison {
    int firstChanged;  // the dimension when the keys are equal
    bool inLabels;     // every key is in 1..labelCount
    bool ascends;
  };

  // Empties the block and makes room for records of this shape. No record comes before the next.
  void shape(int dim, int slots) {
    dim_ = dim;
    slots_ = slots;
    count_ = 0;
    if (dim > keyRoom_) {
      keys_ = std::make_unique_for_overwrite<std::int32_t[]>(kStride * asSize(dim));
      keyRoom_ = dim;
    }
    if (slots > slotRoom_) {
      values_ = std::make_unique_for_overwrite<double[]>(kStride * asSize(slots));
      slotRoom_ = slots;
    }
    if (!changed_) changed_ = std::make_unique_for_overwrite<std::uint8_t[]>(kStride);
    for (int j = 0; j < dim; ++j) keys_[kStride * asSize(j)] = 0;
  }

  [[nodiscard]] int dim() const { return dim_; }
  [[nodiscard]] int slots() const { return slots_; }
  [[nodiscard]] std::uint32_t count() const { return count_; }
  [[nodiscard]] bool full() const { return count_ == kBlockRecords; }

  // Puts the keys of a record behind the last one, where they stay if add() follows. REQUIRES: not
  // full.
  Comparison stage(const int* keys, std::uint32_t labelCount) {
    Comparison result{dim_, true, false};
    for (int j = dim_ - 1; j >= 0; --j) {
      std::int32_t* key = keys_.get() + kStride * asSize(j) + count_;
      const std::int32_t now = keys[j];
      result.inLabels &= static_cast<std::uint32_t>(now) - 1U < labelCount;
      if (now != *key) {
        result.firstChanged = j;
        result.ascends = now > *key;
      }
      key[1] = now;
    }
    return result;
  }

  // Adds the record whose keys were staged last.
  void add(const double* values, int firstChanged) {
    double* value = values_.get() + count_;
    *value = values[0];
    for (int s = 1; s < slots_; ++s) value[kStride * asSize(s)] = values[s];
    changed_[count_] = static_cast<std::uint8_t>(firstChanged);
    ++count_;
  }

  // Empties the block; its last record is the one before the next.
  void clear() {
    for (int j = 0; j < dim_; ++j) {
      std::int32_t* column = keys_.get() + kStride * asSize(j);
      column[0] = column[count_];
    }
    count_ = 0;
  }

  // Key at a position of the record before the next.
  [[nodiscard]] std::int32_t keyBefore(int j) const {
    return keyColumn(j)[std::ptrdiff_t{count_} - 1];
  }

  [[nodiscard]] const std::int32_t* keyColumn(int j) const {
    return keys_.get() + kStride * asSize(j) + 1;
  }
  [[nodiscard]] const double* valueColumn(int s) const {
    return values_.get() + kStride * asSize(s);
  }
  [[nodiscard]] const std::uint8_t* firstChanged() const { return changed_.get(); }

 private:
  static std::size_t asSize(int number) { return static_cast<std::size_t>(number); }

  // Columns a power of two apart would compete for the same lines of the processor's cache. In a
  // key column the record before the block stands first.
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
