#include "providers/rxf/decoded_block.h"

#include <algorithm>

namespace rxffile {

void DecodedBlock::parse(std::uint32_t count, int dim, int slots, std::uint32_t labelCount,
                         Decompressor& decompressor) {
  count_ = count;
  slots_ = slots;
  arena_.reset();
  ByteReader in(body_.get(), length_);
  keys_.parse(in, count, dim, labelCount, decompressor, arena_);
  for (int s = 0; s < slots; ++s) {
    values_[static_cast<unsigned>(s)].parse(in, count, decompressor, arena_);
  }
  if (in.left() != 0) {
    throw Malformed(DetailText("content goes on for %zu bytes behind its end", in.left()));
  }
}

void DecodedBlock::verifyTextNumbers(std::uint32_t textCount) {
  values_[0].verifyTextNumbers(count_, textCount);
}

void DecodedBlock::rewind() {
  at_ = 0;
  keys_.rewind();
  for (ValueDecoder& slot : values_) slot.rewind();
}

std::size_t DecodedBlock::next(const SpecialTable& specials, KeyPiece& keys,
                               std::array<ValuePiece, kMaxSlots>& values) {
  const std::size_t count = std::min<std::size_t>(kPieceRecords, count_ - at_);
  if (count == 0) return 0;
  keys_.next(count, keys);
  for (std::size_t s = 0; s < static_cast<std::size_t>(slots_); ++s) {
    values_[s].next(count, specials, values[s].data());
  }
  at_ += static_cast<std::uint32_t>(count);
  return count;
}

}  // namespace rxffile
