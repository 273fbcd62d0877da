// What the records of a symbol take in the memory of a database, about.
#ifndef ZTB_PROVIDERS_RXF_MEMORY_ESTIMATE_H_
#define ZTB_PROVIDERS_RXF_MEMORY_ESTIMATE_H_

#include <cstdint>

namespace rxffile {

// Record stores of a database, by their codes.
inline constexpr int kStoreTreeMap = 0;
inline constexpr int kStoreVector = 1;
inline constexpr int kStoreTrie = 2;

// Bytes of `records` records of this shape in a store; 0 for a store that there is not.
std::uint64_t memoryOfRecords(std::uint32_t records, int dim, int slots, int store);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_MEMORY_ESTIMATE_H_
