#include "providers/rxf/key_codec.h"

#include <algorithm>
#include <limits>

#include "providers/rxf/plane_codec.h"

namespace rxffile {

void KeyEncoder::encode(const RecordBlock& block, Compressor& compressor, Bytes& out) {
  numbers_.resize(std::max<std::size_t>(numbers_.size(), block.count()));
  plane_.resize(numbers_.size());
  for (int j = 0; j < block.dim(); ++j) encodeColumn(block, j, compressor, out);
}

void KeyEncoder::encodeColumn(const RecordBlock& block, int j, Compressor& compressor, Bytes& out) {
  const std::int32_t* keys = block.keyColumn(j);
  const std::uint8_t* changed = block.firstChanged();
  const std::size_t count = block.count();
  std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 1; i < count; ++i) {
    lowest = std::min(lowest, changed[i] < j ? keys[i] : lowest);
  }
  const std::int32_t base = lowest == std::numeric_limits<std::int32_t>::max() ? 0 : lowest - 1;
  std::uint32_t highest = 0;
  std::uint32_t least = std::numeric_limits<std::uint32_t>::max();
  for (std::size_t i = 1; i < count; ++i) {
    const std::int32_t from = changed[i] < j ? base : keys[i - 1];
    const auto number = static_cast<std::uint32_t>(keys[i] - from);
    numbers_[i - 1] = number;
    highest = std::max(highest, number);
    least = std::min(least, number);
  }
  appendLittle(out, static_cast<std::uint32_t>(keys[0]));
  appendLittle(out, static_cast<std::uint32_t>(base));
  if (count == 1 || least == highest) {
    out.push_back(0);
    appendLittle(out, highest);
    return;
  }
  const unsigned width = planesFor(highest);
  out.push_back(static_cast<std::uint8_t>(width));
  encodePlanes(numbers_.data(), count - 1, width, plane_.data(), compressor, out);
}

void KeyDecoder::parse(ByteReader& in, std::uint32_t count, int dim, std::uint32_t labelCount,
                       Decompressor& decompressor, Arena& arena) {
  count_ = count;
  dim_ = dim;
  if (numbers_.size() < static_cast<std::size_t>(dim)) {
    numbers_.resize(static_cast<std::size_t>(dim));
  }
  for (int j = 0; j < dim; ++j) parseColumn(in, j, labelCount, decompressor, arena);
  verify(labelCount);
}

void KeyDecoder::parseColumn(ByteReader& in, int j, std::uint32_t labelCount,
                             Decompressor& decompressor, Arena& arena) {
  Column& column = columns_[static_cast<unsigned>(j)];
  const auto first = in.number<std::uint32_t>();
  first_[static_cast<unsigned>(j)] = first;
  column.base = in.number<std::uint32_t>();
  column.width = in.number<std::uint8_t>();
  column.constant = 0;
  if (first == 0 || first > labelCount || column.base > labelCount || column.width > 4) {
    throw Malformed(
        DetailText("key column %d begins at %u with base %u and width %u, labels go "
                   "to %u",
                   j + 1, first, column.base, column.width, labelCount));
  }
  if (column.width == 0) {
    column.constant = in.number<std::uint32_t>();
    if (column.constant > labelCount) {
      throw Malformed(DetailText("key column %d grows by %u, labels go to %u", j + 1,
                                 column.constant, labelCount));
    }
  }
  for (unsigned byte = 0; byte < column.width; ++byte) {
    column.planes[byte] = decodePlane(in, count_ - 1, decompressor, arena);
  }
}

// Numbers within the labels cannot overflow a sum, so a key in range is also an ascending one.
void KeyDecoder::verify(std::uint32_t labelCount) {
  if (dim_ == 0) {
    if (count_ != 1) throw Malformed(DetailText("scalar with %u records", count_));
    return;
  }
  std::vector<std::int32_t> rows(kPieceRecords * static_cast<std::size_t>(dim_));
  std::array<std::uint8_t, kPieceRecords> changed;
  rewind();
  while (at_ < count_) {
    const std::uint32_t from = at_;
    const std::size_t count = std::min<std::size_t>(kPieceRecords, count_ - at_);
    next(count, rows.data(), changed.data());
    bool tooLarge = false;
    for (std::size_t j = 0; j < static_cast<std::size_t>(dim_); ++j) {
      if (columns_[j].width < 4) continue;
      for (const std::uint32_t number : numbers_[j]) tooLarge |= number > labelCount;
    }
    const std::size_t keys = count * static_cast<std::size_t>(dim_);
    for (std::size_t i = 0; i < keys; ++i) {
      tooLarge |= static_cast<std::uint32_t>(rows[i]) - 1 >= labelCount;
    }
    if (tooLarge) {
      throw Malformed(
          DetailText("a key behind record %u is outside the labels 1 to %u", from, labelCount));
    }
    bool standing = false;
    for (std::size_t i = 0; i < count; ++i) standing |= changed[i] == dim_;
    if (standing) throw Malformed(DetailText("a record behind record %u stands twice", from));
  }
}

void KeyDecoder::rewind() {
  at_ = 0;
}

void KeyDecoder::next(std::size_t count, std::int32_t* rows, std::uint8_t* changed) {
  if (at_ == 0) {
    previous_ = first_;
    std::copy_n(first_.begin(), dim_, rows);
    changed[0] = 0;
    rows += dim_;
    ++changed;
    --count;
    ++at_;
  }
  for (std::size_t j = 0; j < static_cast<std::size_t>(dim_); ++j) {
    const Column& column = columns_[j];
    if (column.width == 0) {
      std::fill_n(numbers_[j].begin(), count, column.constant);
    } else {
      joinPlanes(column.planes.data(), column.width, at_ - 1, count, numbers_[j].data());
    }
    std::fill(numbers_[j].begin() + static_cast<std::ptrdiff_t>(count), numbers_[j].end(), 0U);
  }
  decode(count, rows, changed);
  at_ += static_cast<std::uint32_t>(count);
}

void KeyDecoder::decode(std::size_t count, std::int32_t* rows, std::uint8_t* changed) {
  switch (dim_) {
    case 1:
      return decodeFixed<1>(count, rows, changed);
    case 2:
      return decodeFixed<2>(count, rows, changed);
    case 3:
      return decodeFixed<3>(count, rows, changed);
    case 4:
      return decodeFixed<4>(count, rows, changed);
    default:
      return decodeFixed<0>(count, rows, changed);
  }
}

// With kDim 0 the dimension is only known at run time.
template <int kDim>
void KeyDecoder::decodeFixed(std::size_t count, std::int32_t* rows, std::uint8_t* changed) {
  constexpr std::size_t room = kDim == 0 ? kMaxDimension : kDim;
  const std::size_t dim = kDim == 0 ? static_cast<std::size_t>(dim_) : kDim;
  std::array<std::uint32_t, room> previous;
  std::array<std::uint32_t, room> base;
  std::array<const std::uint32_t*, room> numbers;
  for (std::size_t j = 0; j < dim; ++j) {
    previous[j] = previous_[j];
    base[j] = columns_[j].base;
    numbers[j] = numbers_[j].data();
  }
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t open = 0;  // all ones right of the first changed position
    unsigned first = 0;
    for (std::size_t j = 0; j < dim; ++j) {
      const std::uint32_t number = numbers[j][i];
      previous[j] = (previous[j] & ~open) + (base[j] & open) + number;
      rows[j] = static_cast<std::int32_t>(previous[j]);
      open |= number != 0 ? ~0U : 0U;
      first += 1 + open;
    }
    changed[i] = static_cast<std::uint8_t>(first);
    rows += dim;
  }
  std::copy_n(previous.begin(), dim, previous_.begin());
}

}  // namespace rxffile
