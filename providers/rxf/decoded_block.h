// A block of records that was read and verified, ready to be delivered.
//
// Verifying decides over every byte, also of a block whose checksum is right: once verify()
// has returned, delivering the records cannot fail.
#ifndef ZTB_PROVIDERS_RXF_DECODED_BLOCK_H_
#define ZTB_PROVIDERS_RXF_DECODED_BLOCK_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/arena.h"
#include "providers/rxf/bytes.h"
#include "providers/rxf/key_codec.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/value_decoder.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

using ValuePiece = std::array<double, kPieceRecords>;

class DecodedBlock {
 public:
  // Room for a body of `length` bytes, to be filled before it is verified or parsed.
  std::uint8_t* body(std::size_t length) {
    if (length > room_) {
      body_ = std::make_unique_for_overwrite<std::uint8_t[]>(length);
      room_ = length;
    }
    length_ = length;
    return body_.get();
  }

  // Takes the body as a block of `count` records of this shape and verifies it. Throws Malformed.
  void verify(std::uint32_t count, int dim, int slots, std::uint32_t labelCount,
              Decompressor& decompressor) {
    parse(count, dim, slots, labelCount, decompressor);
    keys_.verify(labelCount);
  }

  // Holds the values of a set against the number of texts. Throws Malformed. REQUIRES: verify() or
  // parse() before; the block then stands at its first record.
  void verifyTextNumbers(std::uint32_t textCount);

  // The same as verify() for a body that was verified before, byte for byte.
  void parse(std::uint32_t count, int dim, int slots, std::uint32_t labelCount,
             Decompressor& decompressor);

  // Back to the first record.
  void rewind();

  // Decodes the next records, as many as are left but at most kPieceRecords, and returns how many;
  // values[s] gets the values of slot s. REQUIRES: parse() and rewind() before.
  std::size_t next(const SpecialTable& specials, KeyPiece& keys,
                   std::array<ValuePiece, kMaxSlots>& values);

  [[nodiscard]] std::uint32_t count() const { return count_; }
  [[nodiscard]] const KeyDecoder& keys() const { return keys_; }

  // Bytes of memory held.
  [[nodiscard]] std::size_t held() const { return room_ + arena_.held(); }

 private:
  std::unique_ptr<std::uint8_t[]> body_;
  std::size_t room_ = 0;
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
