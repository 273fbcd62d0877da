#include "providers/rxf/checksum.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace rxffile {

std::uint64_t checksum(const void* data, std::size_t size) {
  return XXH3_64bits(data, size);
}

}  // namespace rxffile
