// One plane: a column of single bytes, one a record, which is the unit of compression.
//
// A plane is stored as one repeated byte, as it is, or as a Zstandard frame, whichever is shortest.
// A plane of no bytes is stored as nothing.
#ifndef ZTB_PROVIDERS_RXF_PLANE_CODEC_H_
#define ZTB_PROVIDERS_RXF_PLANE_CODEC_H_

#include <cstddef>
#include <cstdint>

#include "providers/rxf/arena.h"
#include "providers/rxf/bytes.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

inline constexpr std::uint8_t kPlaneConstant = 0;
inline constexpr std::uint8_t kPlanePlain = 1;
inline constexpr std::uint8_t kPlaneZstd = 2;

void encodePlane(const std::uint8_t* plane, std::size_t size, Compressor& compressor, Bytes& out);

// Takes a plane of `size` bytes from `in`. The result points into the input or into the arena.
// Throws Malformed.
const std::uint8_t* decodePlane(ByteReader& in, std::size_t size, Decompressor& decompressor,
                                Arena& arena);

// Spreads numbers over `width` planes, lowest byte first, and encodes the planes one after another.
// `scratch` has room for `size` bytes.
void encodePlanes(const std::uint32_t* numbers, std::size_t size, unsigned width,
                  std::uint8_t* scratch, Compressor& compressor, Bytes& out);

// Puts numbers together from `width` planes (1 to 4), `count` of them from position `from` on.
void joinPlanes(const std::uint8_t* const* planes, unsigned width, std::size_t from,
                std::size_t count, std::uint32_t* numbers);

// Bytes that numbers up to `highest` need; 0 for 0.
constexpr unsigned planesFor(std::uint32_t highest) {
  unsigned width = 0;
  for (; highest != 0; highest >>= 8U) ++width;
  return width;
}

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_PLANE_CODEC_H_
