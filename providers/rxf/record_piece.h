// The records that are decoded and wait for delivery, which is one call a record and must cost next
// to nothing.
#ifndef ZTB_PROVIDERS_RXF_RECORD_PIECE_H_
#define ZTB_PROVIDERS_RXF_RECORD_PIECE_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "providers/rxf/block_columns.h"
#include "providers/rxf/limits.h"

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
      keys[0] = static_cast<int>(keys_[0][at]);
      keys[1] = static_cast<int>(keys_[1][at]);
      keys[2] = static_cast<int>(keys_[2][at]);
    } else {
      for (std::size_t j = 0; j < dim_; ++j) keys[j] = static_cast<int>(keys_[j][at]);
    }
    values[0] = values_[0][at];
    for (std::size_t s = 1; s < slots_; ++s) values[s] = values_[s][at];
    *firstChanged = firstChanged_[at] + positionFrom_;
    at_ = at + 1;
    return true;
  }

  // Takes the next records, `room` at most, one behind the other, and returns how many: 0 when the
  // piece is used up.
  std::size_t takeMany(int* keys, double* values, std::size_t room) {
    const std::size_t at = at_;
    const std::size_t count = std::min(room, ready_ - at);
    for (std::size_t j = 0; j < dim_; ++j) {
      const std::uint32_t* column = keys_[j] + at;
      for (std::size_t i = 0; i < count; ++i) keys[i * dim_ + j] = static_cast<int>(column[i]);
    }
    for (std::size_t s = 0; s < slots_; ++s) {
      const double* column = values_[s] + at;
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

  // Says that `count` records stand in room() from the front on.
  void fill(std::size_t count) {
    for (std::size_t j = 0; j < dim_; ++j) keys_[j] = room_.keys.columns[j].data();
    for (std::size_t s = 0; s < slots_; ++s) values_[s] = room_.values[s].data();
    firstChanged_ = room_.keys.firstChanged.data();
    deliver(count);
  }

  // Has the records of a whole block delivered, which is to stay until they are. REQUIRES: it is of
  // this shape.
  void lend(BlockColumns& block) {
    for (std::size_t j = 0; j < dim_; ++j) keys_[j] = block.keys(j);
    for (std::size_t s = 0; s < slots_; ++s) values_[s] = block.values(s);
    firstChanged_ = block.firstChanged();
    deliver(block.count());
  }

  PieceRoom& room() { return room_; }

  // The records that are there.
  [[nodiscard]] const std::uint32_t* keys(std::size_t position) const { return keys_[position]; }
  [[nodiscard]] std::size_t count() const { return ready_; }
  void setFirstChanged(std::size_t position) {
    firstChanged_[0] = static_cast<std::uint8_t>(position);
  }

 private:
  void deliver(std::size_t count) {
    at_ = 0;
    ready_ = count;
  }

  std::size_t at_ = 0;
  std::size_t ready_ = 0;
  std::size_t dim_ = 0;
  std::size_t slots_ = 1;
  int positionFrom_ = 1;
  std::array<const std::uint32_t*, kMaxDimension> keys_{};
  std::array<const double*, kMaxSlots> values_{};
  std::uint8_t* firstChanged_ = nullptr;
  PieceRoom room_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RECORD_PIECE_H_
