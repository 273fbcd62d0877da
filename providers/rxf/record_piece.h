// The records that are decoded and wait for delivery, which is one call a record and must cost next
// to nothing.
#ifndef ZTB_PROVIDERS_RXF_RECORD_PIECE_H_
#define ZTB_PROVIDERS_RXF_RECORD_PIECE_H_

#include <algorithm>
#include <array>
#include <cstddef>

#include "providers/rxf/decoded_block.h"
#include "providers/rxf/key_codec.h"

namespace rxffile {

class RecordPiece {
 public:
  // Takes the next record: dim keys, 1 or 5 values and the first position, from 1, that differs
  // from the record before (0 for a scalar). False, with nothing written, when the piece is used
  // up.
  bool take(int* keys, double* values, int* firstChanged) {
    const std::size_t at = at_;
    if (at == ready_) [[unlikely]]
      return false;
    if (dim_ == 3) {
      keys[0] = static_cast<int>(keys_.columns[0][at]);
      keys[1] = static_cast<int>(keys_.columns[1][at]);
      keys[2] = static_cast<int>(keys_.columns[2][at]);
    } else {
      for (std::size_t j = 0; j < dim_; ++j) keys[j] = static_cast<int>(keys_.columns[j][at]);
    }
    values[0] = values_[0][at];
    for (std::size_t s = 1; s < slots_; ++s) values[s] = values_[s][at];
    *firstChanged = keys_.firstChanged[at] + positionFrom_;
    at_ = at + 1;
    return true;
  }

  // Takes the next records, `room` at most, one behind the other, and returns how many: 0 when the
  // piece is used up.
  std::size_t takeMany(int* keys, double* values, std::size_t room) {
    const std::size_t at = at_;
    const std::size_t count = std::min(room, ready_ - at);
    for (std::size_t j = 0; j < dim_; ++j) {
      const auto* column = keys_.columns[j].data() + at;
      for (std::size_t i = 0; i < count; ++i) keys[i * dim_ + j] = static_cast<int>(column[i]);
    }
    for (std::size_t s = 0; s < slots_; ++s) {
      const double* column = values_[s].data() + at;
      for (std::size_t i = 0; i < count; ++i) values[i * slots_ + s] = column[i];
    }
    at_ = at + count;
    return count;
  }

  // Empties the piece for records of another shape.
  void shape(std::size_t dim, std::size_t slots) {
    dim_ = dim;
    slots_ = slots;
    positionFrom_ = dim == 0 ? 0 : 1;
    fill(0);
  }

  // Says that `count` records stand in keys() and values() from the front on.
  void fill(std::size_t count) {
    at_ = 0;
    ready_ = count;
  }

  KeyPiece& keys() { return keys_; }
  std::array<ValuePiece, kMaxSlots>& values() { return values_; }

 private:
  std::size_t at_ = 0;
  std::size_t ready_ = 0;
  std::size_t dim_ = 0;
  std::size_t slots_ = 1;
  int positionFrom_ = 1;
  KeyPiece keys_;
  std::array<ValuePiece, kMaxSlots> values_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_PIECE_H_
