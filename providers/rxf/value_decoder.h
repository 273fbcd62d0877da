// One value slot of a block back from its bytes.
#ifndef ZTB_PROVIDERS_RXF_VALUE_DECODER_H_
#define ZTB_PROVIDERS_RXF_VALUE_DECODER_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "providers/rxf/arena.h"
#include "providers/rxf/byte_planes.h"
#include "providers/rxf/bytes.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/value_form.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class ValueDecoder {
 public:
  // Takes the slot of `count` (at least 1) records from `in` and verifies it. Throws Malformed.
  // `arena` and the input are to stay as long as the decoder is used.
  void parse(ByteReader& in, std::uint32_t count, Decompressor& decompressor, Arena& arena);

  // Goes through the values of `count` records of a set: afterwards each is known to be a text
  // number, 0 to textCount. Throws Malformed. REQUIRES: parse().
  void verifyTextNumbers(std::uint32_t count, std::uint32_t textCount);

  // Back to the first record.
  void rewind();

  // Decodes the next `count` values, at most kPieceRecords and at most what is left, with special
  // values as `specials` has them. REQUIRES: parse() and rewind() before.
  void next(std::size_t count, const SpecialTable& specials, double* values);

 private:
  void parseDecimal(ByteReader& in, std::uint32_t count, Decompressor& decompressor, Arena& arena);
  void parseDictionary(ByteReader& in, std::uint32_t count, Decompressor& decompressor,
                       Arena& arena);
  void nextDecimal(std::size_t count, double* values);
  void nextDictionary(std::size_t count, double* values) const;
  void readNumbers(std::size_t from, std::size_t count, std::uint32_t* numbers) const;

  const std::uint8_t* marks_ = nullptr;
  std::uint8_t form_ = kFormConstant;
  double constant_ = 0;
  double power_ = 1;
  bool byDifference_ = false;
  std::uint64_t base_ = 0;
  std::uint64_t first_ = 0;
  std::uint64_t running_ = 0;
  unsigned width_ = 0;
  const double* dictionary_ = nullptr;
  std::array<const std::uint8_t*, kDoubleBytes> planes_{};
  std::size_t at_ = 0;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_VALUE_DECODER_H_
