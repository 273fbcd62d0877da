// The keys of a block, by columns.
//
// The first record's keys stand as they are. For every further record and every column there is one
// number, never negative: in a column left of the first changed one it is 0; in the first changed
// one it is the growth against the record before; right of it, where keys start anew, it is the key
// less the column's base. So a number other than 0 opens the changed part, and ascending order is
// kept by whatever is decoded, as long as no record has zeros alone.
#ifndef ZTB_PROVIDERS_RXF_KEY_CODEC_H_
#define ZTB_PROVIDERS_RXF_KEY_CODEC_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "providers/rxf/arena.h"
#include "providers/rxf/bytes.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/record_block.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

// Records are decoded in pieces of this many, which stay in the nearest cache.
inline constexpr std::size_t kPieceRecords = 1024;

// The keys of a piece by columns, and of every record the first position, from 0, that differs from
// the record before.
struct KeyPiece {
  // Columns a power of two apart would compete for the same lines of the processor's cache.
  static constexpr std::size_t kStride = kPieceRecords + 16;

  std::array<std::array<std::uint32_t, kStride>, kMaxDimension> columns;
  std::array<std::uint8_t, kPieceRecords> firstChanged;
};

class KeyEncoder {
 public:
  // Appends the keys of a block that is not empty.
  void encode(const RecordBlock& block, Compressor& compressor, Bytes& out);

 private:
  void encodeColumn(const RecordBlock& block, int j, Compressor& compressor, Bytes& out);

  std::vector<std::uint32_t> numbers_;
  Bytes plane_;
};

class KeyDecoder {
 public:
  // Takes the keys of `count` (at least 1) records from `in`. Throws Malformed. `arena` and the
  // input are to stay as long as the decoder is used.
  void parse(ByteReader& in, std::uint32_t count, int dim, std::uint32_t labelCount,
             Decompressor& decompressor, Arena& arena);

  // Goes through all records: afterwards every key is known to be in 1..labelCount and the records
  // to ascend, and lastKeys() is that of the last record. Throws Malformed. REQUIRES: parse().
  void verify(std::uint32_t labelCount);

  // Back to the first record.
  void rewind() { at_ = 0; }

  // Decodes the next `count` records, at least 1, at most kPieceRecords and at most what is left.
  // The first record of the block counts as changed at position 0. REQUIRES: parse() and rewind()
  // before, and the same bytes verified once.
  void next(std::size_t count, KeyPiece& piece);

  // Keys of the first record. REQUIRES: parse().
  [[nodiscard]] const std::uint32_t* firstKeys() const { return first_.data(); }

  // Keys of the record that was decoded last; of the last one after verify().
  [[nodiscard]] const std::uint32_t* lastKeys() const { return previous_.data(); }

 private:
  struct Column {
    std::uint32_t base = 0;
    std::uint32_t constant = 0;
    unsigned width = 0;
    std::array<const std::uint8_t*, 4> planes{};
  };
  using Numbers = std::array<std::uint32_t, kPieceRecords>;

  void parseColumn(ByteReader& in, std::size_t j, std::uint32_t labelCount,
                   Decompressor& decompressor, Arena& arena);
  bool verifyEach(std::size_t from, std::size_t end, std::uint32_t labelCount);
  bool verifyLastOnly(std::size_t number, std::uint32_t labelCount);
  void readNumbers(std::size_t from, std::size_t count);
  [[nodiscard]] bool onlyLastMoves(std::size_t number, std::size_t count) const;
  template <typename Visit>
  void walk(std::size_t from, std::size_t end, const Visit& visit);
  template <std::size_t kDim, typename Visit>
  void walkFixed(std::size_t from, std::size_t end, const Visit& visit);
  void decodeEach(std::size_t from, std::size_t end, std::size_t at, KeyPiece& piece);
  void decodeLastOnly(std::size_t number, std::size_t at, KeyPiece& piece);

  std::size_t dim_ = 0;
  std::uint32_t count_ = 0;
  std::uint32_t at_ = 0;
  std::array<Column, kMaxDimension> columns_;
  std::array<std::uint32_t, kMaxDimension> first_{};
  std::array<std::uint32_t, kMaxDimension> previous_{};
  // Numbers of the piece under way, by columns, and all but the last column's put together.
  std::vector<Numbers> numbers_;
  Numbers upper_{};
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_KEY_CODEC_H_
