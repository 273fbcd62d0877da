// A block of records that was read and verified, ready to be delivered.
//
// Verifying decides over every byte, also of a block whose checksum is right: once parse() has
// returned, delivering the records cannot fail.
#ifndef ZTB_PROVIDERS_RXF_DECODED_BLOCK_H_
#define ZTB_PROVIDERS_RXF_DECODED_BLOCK_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "providers/rxf/arena.h"
#include "providers/rxf/bytes.h"
#include "providers/rxf/key_codec.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/value_decoder.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class DecodedBlock {
 public:
  // Room for a body of `length` bytes, to be filled before parse().
  std::uint8_t* body(std::size_t length) {
    body_.resize(std::max(body_.size(), length));
    length_ = length;
    return body_.data();
  }

  // Verifies the body of a block of `count` records of this shape. Throws Malformed.
  void parse(std::uint32_t count, int dim, int slots, std::uint32_t labelCount,
             Decompressor& decompressor);

  // Back to the first record.
  void rewind();

  // Decodes the next records, as many as are left but at most kPieceRecords, and returns how many.
  // `rows` gets dim keys a record, `changed` the first changed position (see KeyDecoder), values[s]
  // the values of slot s. REQUIRES: parse() and rewind() before.
  std::size_t next(const SpecialTable& specials, std::int32_t* rows, std::uint8_t* changed,
                   const std::array<double*, kMaxSlots>& values);

  [[nodiscard]] std::uint32_t count() const { return count_; }
  [[nodiscard]] const KeyDecoder& keys() const { return keys_; }

  // Bytes of memory held.
  [[nodiscard]] std::size_t held() const { return body_.capacity() + arena_.held(); }

 private:
  Bytes body_;
  std::size_t length_ = 0;
  Arena arena_;
  std::uint32_t count_ = 0;
  std::uint32_t at_ = 0;
  int slots_ = 1;
  KeyDecoder keys_;
  std::array<ValueDecoder, kMaxSlots> values_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_DECODED_BLOCK_H_
