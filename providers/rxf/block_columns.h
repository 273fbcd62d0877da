// All records of one block, decoded, by columns.
#ifndef ZTB_PROVIDERS_RXF_BLOCK_COLUMNS_H_
#define ZTB_PROVIDERS_RXF_BLOCK_COLUMNS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/decoded_block.h"
#include "providers/rxf/key_codec.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/special_table.h"

namespace rxffile {

// Where a block is decoded piece by piece.
struct PieceRoom {
  KeyPiece keys;
  std::array<ValuePiece, kMaxSlots> values;
};

class BlockColumns {
 public:
  // Makes room for `records` records of this shape; none is there. Throws std::bad_alloc, with
  // nothing changed.
  void shape(std::size_t dim, std::size_t slots, std::size_t records);
  // Whether they have that shape, and that room.
  [[nodiscard]] bool hasRoom(std::size_t dim, std::size_t slots, std::size_t records) const {
    return dim_ == dim && slots_ == slots && stride_ >= records + kApart;
  }

  // Takes the records of a block in place of those that are here. REQUIRES: it was verified, is of
  // this shape, and there is room.
  void decode(DecodedBlock& block, const SpecialTable& specials, PieceRoom& room);

  [[nodiscard]] std::size_t dim() const { return dim_; }
  [[nodiscard]] std::size_t slots() const { return slots_; }
  [[nodiscard]] std::size_t count() const { return count_; }
  void setCount(std::size_t count) { count_ = count; }

  [[nodiscard]] std::uint32_t* keys(std::size_t position) const {
    return keys_.get() + stride_ * position;
  }
  [[nodiscard]] double* values(std::size_t slot) const { return values_.get() + stride_ * slot; }
  // Of every record the first position, from 0, that differs from the record before; of the first
  // one 0.
  [[nodiscard]] std::uint8_t* firstChanged() const { return firstChanged_.get(); }

 private:
  // Columns a power of two apart would compete for the same lines of the processor's cache.
  static constexpr std::size_t kApart = 24;

  std::size_t stride_ = 0;
  std::size_t dim_ = 0;
  std::size_t slots_ = 0;
  std::size_t count_ = 0;
  std::unique_ptr<std::uint32_t[]> keys_;
  std::unique_ptr<double[]> values_;
  std::unique_ptr<std::uint8_t[]> firstChanged_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BLOCK_COLUMNS_H_
