// The checksum of every header, table and block: XXH3, 64 bits, seed 0.
#ifndef ZTB_PROVIDERS_RXF_CHECKSUM_H_
#define ZTB_PROVIDERS_RXF_CHECKSUM_H_

#include <cstddef>
#include <cstdint>

namespace rxffile {

std::uint64_t checksum(const void* data, std::size_t size);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_CHECKSUM_H_
