// Doubles to eight planes of bytes, lowest byte first, and back. Bit patterns pass unchanged.
#ifndef ZTB_PROVIDERS_RXF_BYTE_PLANES_H_
#define ZTB_PROVIDERS_RXF_BYTE_PLANES_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace rxffile {

inline constexpr std::size_t kDoubleBytes = 8;

// Writes byte b of values[i] to planes[b * size + i].
void splitDoubles(const double* values, std::size_t size, std::uint8_t* planes);

// Sets values[i] from planes[b][i], b = 0..7.
void joinDoubles(const std::array<const std::uint8_t*, kDoubleBytes>& planes, std::size_t size,
                 double* values);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BYTE_PLANES_H_
