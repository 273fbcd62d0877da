// The head that stands before every chunk of a table and every block of records.
//
// It says what follows, whose it is and how long it is, and carries the checksum of what follows
// and one of itself, so that a length is only trusted after it was verified.
#ifndef ZTB_PROVIDERS_RXF_FRAME_H_
#define ZTB_PROVIDERS_RXF_FRAME_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace rxffile {

inline constexpr std::size_t kFrameHeadBytes = 40;

// Four letters, read as a little-endian number.
constexpr std::uint32_t fourLetters(const char (&letters)[5]) {
  std::uint32_t value = 0;
  for (unsigned i = 0; i < 4; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(letters[i])) << (8 * i);
  }
  return value;
}

inline constexpr std::uint32_t kInfoKind = fourLetters("INFO");
inline constexpr std::uint32_t kLabelKind = fourLetters("LABL");
inline constexpr std::uint32_t kTextKind = fourLetters("TEXT");
inline constexpr std::uint32_t kSymbolKind = fourLetters("SYMB");
inline constexpr std::uint32_t kRecordKind = fourLetters("RECS");

struct FrameHead {
  std::uint32_t kind = 0;
  std::uint32_t owner = 0;  // symbol number of a block, 0 for a chunk of a table
  std::uint32_t index = 0;  // from 0 within the symbol or the table
  std::uint32_t count = 0;  // records or entries in the body
  std::uint32_t bodyLength = 0;
  std::uint64_t bodyChecksum = 0;

  using Encoded = std::array<std::uint8_t, kFrameHeadBytes>;

  [[nodiscard]] Encoded encode() const;

  // Throws Malformed when the head's own checksum is wrong, or when the head is not that of frame
  // `index` of this kind and owner.
  static FrameHead decode(const Encoded& bytes, std::uint32_t kind, std::uint32_t owner,
                          std::uint32_t index);

  // Throws Malformed when `body`, of bodyLength bytes, has another checksum.
  void verifyBody(const void* body) const;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_FRAME_H_
