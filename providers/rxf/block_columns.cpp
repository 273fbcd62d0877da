#include "providers/rxf/block_columns.h"

#include <algorithm>
#include <utility>

namespace rxffile {

void BlockColumns::shape(std::size_t dim, std::size_t slots, std::size_t records) {
  const std::size_t stride = records + kApart;
  auto keys = std::make_unique_for_overwrite<std::uint32_t[]>(stride * dim);
  auto values = std::make_unique_for_overwrite<double[]>(stride * slots);
  firstChanged_ = std::make_unique_for_overwrite<std::uint8_t[]>(records);
  keys_ = std::move(keys);
  values_ = std::move(values);
  stride_ = stride;
  dim_ = dim;
  slots_ = slots;
  count_ = 0;
}

void BlockColumns::decode(DecodedBlock& block, const SpecialTable& specials, PieceRoom& room) {
  count_ = 0;
  block.rewind();
  while (const std::size_t count = block.next(specials, room.keys, room.values)) {
    for (std::size_t j = 0; j < dim_; ++j) {
      std::copy_n(room.keys.columns[j].data(), count, keys(j) + count_);
    }
    for (std::size_t s = 0; s < slots_; ++s) {
      std::copy_n(room.values[s].data(), count, values(s) + count_);
    }
    std::copy_n(room.keys.firstChanged.data(), count, firstChanged_.get() + count_);
    count_ += count;
  }
}

}  // namespace rxffile
