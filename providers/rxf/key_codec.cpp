#include "providers/rxf/key_codec.h"

#include <algorithm>
#include <limits>

#include "providers/rxf/plane_codec.h"

namespace rxffile {

namespace {

// Records that are looked at together to see whether only the last position moves.
constexpr std::size_t kGroup = 8;

// The loops over a column choose by masks and are told that nothing overlaps, so that compilers
// turn them into vector code.

// All ones where a key starts anew in column j.
constexpr std::int32_t anew(std::uint8_t firstChanged, std::int32_t j) {
  return firstChanged < j ? -1 : 0;
}

// One less than the lowest key of column j that starts anew; 0 when none does.
std::int32_t baseOf(const std::int32_t* keys, const std::uint8_t* changed, std::size_t count,
                    std::int32_t j) {
  constexpr std::int32_t none = std::numeric_limits<std::int32_t>::max();
  std::int32_t lowest = none;
  for (std::size_t i = 1; i < count; ++i) {
    const std::int32_t mask = anew(changed[i], j);
    lowest = std::min(lowest, (keys[i] & mask) | (none & ~mask));
  }
  return lowest == none ? 0 : lowest - 1;
}

void toNumbers(const std::int32_t* __restrict keys, const std::uint8_t* __restrict changed,
               std::size_t count, std::int32_t j, std::int32_t base,
               std::uint32_t* __restrict numbers) {
  for (std::size_t i = 1; i < count; ++i) {
    const std::int32_t mask = anew(changed[i], j);
    numbers[i - 1] = static_cast<std::uint32_t>(keys[i] - ((base & mask) | (keys[i - 1] & ~mask)));
  }
}

}  // namespace

void KeyEncoder::encode(const RecordBlock& block, Compressor& compressor, Bytes& out) {
  numbers_.resize(std::max<std::size_t>(numbers_.size(), block.count()));
  plane_.resize(numbers_.size());
  for (int j = 0; j < block.dim(); ++j) encodeColumn(block, j, compressor, out);
}

void KeyEncoder::encodeColumn(const RecordBlock& block, int j, Compressor& compressor, Bytes& out) {
  const std::int32_t* keys = block.keyColumn(j);
  const std::size_t count = block.count();
  const std::int32_t base = baseOf(keys, block.firstChanged(), count, j);
  std::uint32_t* numbers = numbers_.data();
  toNumbers(keys, block.firstChanged(), count, j, base, numbers);
  std::uint32_t bits = 0;
  std::uint32_t differing = 0;
  for (std::size_t i = 0; i + 1 < count; ++i) {
    bits |= numbers[i];
    differing |= numbers[i] ^ numbers[0];
  }
  appendLittle(out, static_cast<std::uint32_t>(keys[0]));
  appendLittle(out, static_cast<std::uint32_t>(base));
  if (differing == 0) {
    out.push_back(0);
    appendLittle(out, bits);
    return;
  }
  const unsigned width = planesFor(bits);
  out.push_back(static_cast<std::uint8_t>(width));
  encodePlanes(numbers, count - 1, width, plane_.data(), compressor, out);
}

void KeyDecoder::parse(ByteReader& in, std::uint32_t count, int dim, std::uint32_t labelCount,
                       Decompressor& decompressor, Arena& arena) {
  count_ = count;
  dim_ = static_cast<std::size_t>(dim);
  if (numbers_.size() < dim_) numbers_.resize(dim_);
  for (std::size_t j = 0; j < dim_; ++j) parseColumn(in, j, labelCount, decompressor, arena);
}

void KeyDecoder::parseColumn(ByteReader& in, std::size_t j, std::uint32_t labelCount,
                             Decompressor& decompressor, Arena& arena) {
  Column& column = columns_[j];
  first_[j] = in.number<std::uint32_t>();
  column.base = in.number<std::uint32_t>();
  column.width = in.number<std::uint8_t>();
  column.constant = 0;
  if (first_[j] - 1 >= labelCount || column.base > labelCount ||
      column.width > sizeof(std::uint32_t)) {
    throw Malformed(
        DetailText("key column %zu has first key %u, base %u and width %u, labels go "
                   "to %u",
                   j + 1, first_[j], column.base, column.width, labelCount));
  }
  if (column.width == 0) {
    column.constant = in.number<std::uint32_t>();
    if (column.constant > labelCount) {
      throw Malformed(DetailText("key column %zu grows by %u, labels go to %u", j + 1,
                                 column.constant, labelCount));
    }
  }
  for (unsigned byte = 0; byte < column.width; ++byte) {
    column.planes.at(byte) = decodePlane(in, count_ - 1, decompressor, arena);
  }
}

void KeyDecoder::verify(std::uint32_t labelCount) {
  previous_ = first_;
  if (dim_ == 0) {
    if (count_ != 1) throw Malformed(DetailText("scalar with %u records", count_));
    return;
  }
  const std::size_t numbers = count_ - 1;
  for (std::size_t from = 0; from < numbers; from += kPieceRecords) {
    const std::size_t count = std::min(kPieceRecords, numbers - from);
    readNumbers(from, count);
    bool holds = true;
    for (std::size_t i = 0; i < count;) {
      if (onlyLastMoves(i, count)) {
        holds &= verifyLastOnly(i, labelCount);
        i += kGroup;
      } else {
        const std::size_t end = std::min(i + kGroup, count);
        holds &= verifyEach(i, end, labelCount);
        i = end;
      }
    }
    if (!holds) {
      throw Malformed(
          DetailText("one of the records %zu to %zu stands twice or has a key outside "
                     "the labels 1 to %u",
                     from + 2, from + count + 1, labelCount));
    }
  }
}

// Numbers within the labels cannot overflow a sum, so a key in range is also an ascending one.
bool KeyDecoder::verifyEach(std::size_t from, std::size_t end, std::uint32_t labelCount) {
  bool holds = true;
  walk(from, end, [&](std::size_t number, std::size_t dim, unsigned first, const auto& keys) {
    holds &= first < dim;
    for (std::size_t j = 0; j < dim; ++j) {
      holds &= numbers_[j][number] <= labelCount && keys[j] - 1 < labelCount;
    }
  });
  return holds;
}

// Keys only grow here, so the last one tells of all.
bool KeyDecoder::verifyLastOnly(std::size_t number, std::uint32_t labelCount) {
  const std::uint32_t* numbers = numbers_[dim_ - 1].data() + number;
  std::uint64_t key = previous_[dim_ - 1];
  bool moves = true;
  for (std::size_t g = 0; g < kGroup; ++g) {
    key += numbers[g];
    moves &= numbers[g] != 0;
  }
  previous_[dim_ - 1] = static_cast<std::uint32_t>(key);
  return moves && key <= labelCount;
}

void KeyDecoder::next(std::size_t count, KeyPiece& piece) {
  std::size_t at = 0;
  if (at_ == 0) {
    previous_ = first_;
    for (std::size_t j = 0; j < dim_; ++j) piece.columns[j][0] = first_[j];
    piece.firstChanged[0] = 0;
    at = 1;
  }
  const std::size_t numbers = count - at;
  readNumbers(at_ == 0 ? 0 : at_ - 1, numbers);
  for (std::size_t i = 0; i < numbers;) {
    if (onlyLastMoves(i, numbers)) {
      decodeLastOnly(i, at + i, piece);
      i += kGroup;
    } else {
      const std::size_t end = std::min(i + kGroup, numbers);
      decodeEach(i, end, at + i, piece);
      i = end;
    }
  }
  at_ += static_cast<std::uint32_t>(count);
}

void KeyDecoder::readNumbers(std::size_t from, std::size_t count) {
  std::fill_n(upper_.begin(), count, 0U);
  for (std::size_t j = 0; j < dim_; ++j) {
    const Column& column = columns_[j];
    std::uint32_t* numbers = numbers_[j].data();
    if (column.width == 0) {
      std::fill_n(numbers, count, column.constant);
    } else {
      joinPlanes(column.planes.data(), column.width, from, count, numbers);
    }
    if (j + 1 == dim_) break;
    for (std::size_t i = 0; i < count; ++i) upper_[i] |= numbers[i];
  }
}

// Whether a whole group follows in which, as in long rows, the last position alone moves.
bool KeyDecoder::onlyLastMoves(std::size_t number, std::size_t count) const {
  if (number + kGroup > count) return false;
  std::uint32_t upper = 0;
  for (std::size_t g = 0; g < kGroup; ++g) upper |= upper_[number + g];
  return upper == 0;
}

// Goes through the records of some numbers and calls visit(number, dimension, first changed
// position, keys) for each. With the dimension known to the compiler the keys stay in registers.
template <typename Visit>
void KeyDecoder::walk(std::size_t from, std::size_t end, const Visit& visit) {
  switch (dim_) {
    case 1:
      return walkFixed<1>(from, end, visit);
    case 2:
      return walkFixed<2>(from, end, visit);
    case 3:
      return walkFixed<3>(from, end, visit);
    case 4:
      return walkFixed<4>(from, end, visit);
    default:
      return walkFixed<0>(from, end, visit);
  }
}

// With kDim 0 the dimension is dim_.
template <std::size_t kDim, typename Visit>
void KeyDecoder::walkFixed(std::size_t from, std::size_t end, const Visit& visit) {
  const std::size_t dim = kDim == 0 ? dim_ : kDim;
  std::array<std::uint32_t, kDim == 0 ? kMaxDimension : kDim> keys;
  for (std::size_t j = 0; j < dim; ++j) keys[j] = previous_[j];
  for (std::size_t number = from; number < end; ++number) {
    std::uint32_t open = 0;  // all ones right of the first changed position
    unsigned first = 0;
    for (std::size_t j = 0; j < dim; ++j) {
      const std::uint32_t add = numbers_[j][number];
      keys[j] = (keys[j] & ~open) + (columns_[j].base & open) + add;
      open |= add != 0 ? ~0U : 0U;
      first += 1 + open;
    }
    visit(number, dim, first, keys);
  }
  for (std::size_t j = 0; j < dim; ++j) previous_[j] = keys[j];
}

// Decodes records of any kind to place `at` of the piece and behind.
void KeyDecoder::decodeEach(std::size_t from, std::size_t end, std::size_t at, KeyPiece& piece) {
  walk(from, end, [&](std::size_t number, std::size_t dim, unsigned first, const auto& keys) {
    const std::size_t place = at + number - from;
    piece.firstChanged[place] = static_cast<std::uint8_t>(first);
    for (std::size_t j = 0; j < dim; ++j) piece.columns[j][place] = keys[j];
  });
}

void KeyDecoder::decodeLastOnly(std::size_t number, std::size_t at, KeyPiece& piece) {
  const std::size_t last = dim_ - 1;
  for (std::size_t j = 0; j < last; ++j) {
    std::fill_n(piece.columns[j].begin() + static_cast<std::ptrdiff_t>(at), kGroup, previous_[j]);
  }
  std::uint32_t key = previous_[last];
  const std::uint32_t* numbers = numbers_[last].data() + number;
  std::uint32_t* keys = piece.columns[last].data() + at;
  for (std::size_t g = 0; g < kGroup; ++g) {
    key += numbers[g];
    keys[g] = key;
  }
  previous_[last] = key;
  std::fill_n(piece.firstChanged.begin() + static_cast<std::ptrdiff_t>(at), kGroup,
              static_cast<std::uint8_t>(last));
}

}  // namespace rxffile
