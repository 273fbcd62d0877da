#include "providers/rxf/value_decoder.h"

#include <algorithm>
#include <bit>

#include "providers/rxf/key_codec.h"
#include "providers/rxf/plane_codec.h"

namespace rxffile {

void ValueDecoder::parse(ByteReader& in, std::uint32_t count, Decompressor& decompressor,
                         Arena& arena) {
  const auto marked = in.number<std::uint8_t>();
  if (marked > 1)
    throw Malformed(DetailText("marker %u of special values, expected 0 or 1", marked));
  marks_ = marked != 0 ? decodePlane(in, count, decompressor, arena) : nullptr;
  if (marks_ != nullptr && *std::max_element(marks_, marks_ + count) > kSpecialCount) {
    throw Malformed(DetailText("a special value has a code above 4"));
  }
  form_ = in.number<std::uint8_t>();
  switch (form_) {
    case kFormConstant:
      constant_ = std::bit_cast<double>(in.number<std::uint64_t>());
      break;
    case kFormDecimal:
      parseDecimal(in, count, decompressor, arena);
      break;
    case kFormDictionary:
      parseDictionary(in, count, decompressor, arena);
      break;
    case kFormPlain:
      for (const std::uint8_t*& plane : planes_) {
        plane = decodePlane(in, count, decompressor, arena);
      }
      break;
    default:
      throw Malformed(
          DetailText("values of form %u, expected 0 to 3", static_cast<unsigned>(form_)));
  }
}

void ValueDecoder::parseDecimal(ByteReader& in, std::uint32_t count, Decompressor& decompressor,
                                Arena& arena) {
  const auto exponent = in.number<std::uint8_t>();
  const auto byDifference = in.number<std::uint8_t>();
  width_ = in.number<std::uint8_t>();
  if (exponent >= kPowersOfTen.size() || byDifference > 1 || width_ > sizeof(std::uint32_t)) {
    throw Malformed(DetailText("decimal values with exponent %u, order %u and width %u",
                               static_cast<unsigned>(exponent), static_cast<unsigned>(byDifference),
                               width_));
  }
  power_ = kPowersOfTen.at(exponent);
  byDifference_ = byDifference != 0;
  base_ = in.number<std::uint64_t>();
  if (byDifference_) first_ = in.number<std::uint64_t>();
  const std::size_t numbers = byDifference_ ? count - 1 : count;
  for (unsigned byte = 0; byte < width_; ++byte) {
    planes_.at(byte) = decodePlane(in, numbers, decompressor, arena);
  }
}

void ValueDecoder::parseDictionary(ByteReader& in, std::uint32_t count, Decompressor& decompressor,
                                   Arena& arena) {
  const auto size = in.number<std::uint32_t>();
  if (size == 0 || size > kMaxDictionary) {
    throw Malformed(DetailText("dictionary of %u values, expected 1 to %u", size, kMaxDictionary));
  }
  const std::uint8_t* stored = in.bytes(kDoubleBytes * size);
  auto* values = reinterpret_cast<double*>(arena.take(kDoubleBytes * size));
  for (std::uint32_t i = 0; i < size; ++i) {
    values[i] = std::bit_cast<double>(loadLittle<std::uint64_t>(stored + kDoubleBytes * i));
  }
  dictionary_ = values;
  width_ = planesFor(size - 1);
  for (unsigned byte = 0; byte < width_; ++byte) {
    planes_.at(byte) = decodePlane(in, count, decompressor, arena);
  }
  std::array<std::uint32_t, kPieceRecords> numbers;
  for (std::size_t from = 0; from < count; from += kPieceRecords) {
    const std::size_t piece = std::min<std::size_t>(kPieceRecords, count - from);
    readNumbers(from, piece, numbers.data());
    const std::uint32_t highest = *std::max_element(numbers.begin(), numbers.begin() + piece);
    if (highest >= size) {
      throw Malformed(DetailText("entry %u of a dictionary of %u values", highest + 1, size));
    }
  }
}

void ValueDecoder::readNumbers(std::size_t from, std::size_t count, std::uint32_t* numbers) const {
  if (width_ == 0) {
    std::fill_n(numbers, count, 0U);
  } else {
    joinPlanes(planes_.data(), width_, from, count, numbers);
  }
}

void ValueDecoder::verifyTextNumbers(std::uint32_t count, std::uint32_t textCount) {
  if (marks_ != nullptr) throw Malformed(DetailText("a set has special values"));
  const SpecialTable unused;
  std::array<double, kPieceRecords> values;
  rewind();
  for (std::size_t from = 0; from < count; from += kPieceRecords) {
    const std::size_t piece = std::min<std::size_t>(kPieceRecords, count - from);
    next(piece, unused, values.data());
    for (std::size_t i = 0; i < piece; ++i) {
      const bool inTable = values[i] >= 0 && values[i] <= textCount;
      if (inTable && static_cast<double>(static_cast<std::uint32_t>(values[i])) == values[i]) {
        continue;
      }
      throw Malformed(
          DetailText("record %zu names text %g, there are %u", from + i + 1, values[i], textCount));
    }
  }
}

void ValueDecoder::rewind() {
  at_ = 0;
}

void ValueDecoder::next(std::size_t count, const SpecialTable& specials, double* values) {
  switch (form_) {
    case kFormConstant:
      std::fill_n(values, count, constant_);
      break;
    case kFormDecimal:
      nextDecimal(count, values);
      break;
    case kFormDictionary:
      nextDictionary(count, values);
      break;
    default: {
      std::array<const std::uint8_t*, kDoubleBytes> planes = planes_;
      for (const std::uint8_t*& plane : planes) plane += at_;
      joinDoubles(planes, count, values);
    }
  }
  if (marks_ != nullptr) {
    const std::uint8_t* marks = marks_ + at_;
    for (std::size_t i = 0; i < count; ++i) {
      if (marks[i] != 0) values[i] = specials.valueOf(marks[i] - 1U);
    }
  }
  at_ += count;
}

void ValueDecoder::nextDecimal(std::size_t count, double* values) {
  std::array<std::uint32_t, kPieceRecords> numbers;
  if (!byDifference_) {
    readNumbers(at_, count, numbers.data());
    for (std::size_t i = 0; i < count; ++i) {
      values[i] = static_cast<double>(static_cast<std::int64_t>(base_ + numbers[i])) / power_;
    }
    return;
  }
  if (at_ == 0) {
    running_ = first_;
    *values++ = static_cast<double>(static_cast<std::int64_t>(running_)) / power_;
    if (--count == 0) return;
    readNumbers(0, count, numbers.data());
  } else {
    readNumbers(at_ - 1, count, numbers.data());
  }
  for (std::size_t i = 0; i < count; ++i) {
    running_ += base_ + numbers[i];
    values[i] = static_cast<double>(static_cast<std::int64_t>(running_)) / power_;
  }
}

void ValueDecoder::nextDictionary(std::size_t count, double* values) const {
  std::array<std::uint32_t, kPieceRecords> numbers;
  readNumbers(at_, count, numbers.data());
  for (std::size_t i = 0; i < count; ++i) values[i] = dictionary_[numbers[i]];
}

}  // namespace rxffile
