// The limits that every exchange file keeps, and the constants that shape a block of records.
#ifndef ZTB_PROVIDERS_RXF_LIMITS_H_
#define ZTB_PROVIDERS_RXF_LIMITS_H_

#include <cstddef>
#include <cstdint>

namespace rxffile {

inline constexpr int kMaxDimension = 20;
inline constexpr int kMaxSlots = 5;
inline constexpr std::size_t kMaxNameLength = 63;
inline constexpr std::size_t kMaxLabelLength = 63;
inline constexpr std::size_t kMaxTextLength = 255;

// Labels, texts, symbols and the records of one symbol are counted in 31 bits.
inline constexpr std::uint32_t kMaxCount = 2147483647U;

// Every block of a symbol but the last holds exactly this many records.
inline constexpr std::uint32_t kBlockRecords = 65536U;

// A chunk of a table holds at most this many bytes before compression.
inline constexpr std::uint32_t kMaxChunkBytes = 1U << 20U;

// No chunk of a table expands more than this many times, so that a small file cannot ask for much
// memory.
inline constexpr std::uint32_t kMaxExpansion = 64U;

// No block body is longer than this; 20 key columns and 5 value slots stay well below.
inline constexpr std::uint32_t kMaxBlockBytes = 1U << 24U;

// Codes of special values: undefined, not available, plus and minus infinity, epsilon.
inline constexpr int kSpecialCount = 5;

// Symbol types as they stand in the file.
inline constexpr int kTypeSet = 0;
inline constexpr int kTypeParameter = 1;
inline constexpr int kTypeVariable = 2;
inline constexpr int kTypeEquation = 3;
inline constexpr int kTypeAlias = 4;

// Value slots of a record: one for sets and parameters, five for variables and equations.
constexpr int slotsOfType(int type) {
  return type < kTypeVariable ? 1 : kMaxSlots;
}

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_LIMITS_H_
