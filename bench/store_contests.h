// The contests of the record stores for one shape of records.
#ifndef ZTB_BENCH_STORE_CONTESTS_H_
#define ZTB_BENCH_STORE_CONTESTS_H_

#include "bench/store_data.h"

namespace bench {

inline constexpr const char* bareMap = "std::map";

// Sorted load with memory, walk and lookup, beside std::map, absl::btree_map and a sorted
// std::vector; std::map is the reference, and the plain arrays are for the walk.
void registerStoreContests(const StoreShape& shape);

// The first touch of a symbol of a file, for each store; the tree map is the reference.
void registerLazyLoad(const StoreShape& shape);

}  // namespace bench

#endif  // ZTB_BENCH_STORE_CONTESTS_H_
