#include "providers/rxf/memory_estimate.h"

namespace rxffile {

namespace {

// A node of a balanced tree has its colour and three links in front of key and values, and the
// allocator puts 8 bytes before it and rounds up to 16.
std::uint64_t bytesOfNode(std::uint64_t keys, std::uint64_t values) {
  constexpr std::uint64_t links = 32;
  constexpr std::uint64_t allocator = 8;
  const std::uint64_t bytes = links + (keys + 7) / 8 * 8 + values + allocator;
  return (bytes + 15) / 16 * 16;
}

}  // namespace

std::uint64_t memoryOfRecords(std::uint32_t records, int dim, int slots, int store) {
  const std::uint64_t keys = sizeof(std::int32_t) * static_cast<std::uint64_t>(dim);
  const std::uint64_t values = sizeof(double) * static_cast<std::uint64_t>(slots);
  switch (store) {
    case kStoreTreeMap:
      return records * bytesOfNode(keys, values);
    case kStoreVector:
      // The arrays grow by half, so that a fifth waits for records on average.
      return records * (keys + values) * 6 / 5;
    case kStoreTrie:
      // A leaf with its links; prefixes that records share cost next to nothing.
      return records * (24 + keys / 2 + values);
    default:
      return 0;
  }
}

}  // namespace rxffile
