// How the time of a record changes with the number of records.
#ifndef ZTB_BENCH_GROWTH_H_
#define ZTB_BENCH_GROWTH_H_

#include <cstddef>

namespace bench {

// Prints the nanoseconds of a record for load, walk, slice, file written and file read, from 10^4
// records to `most` in steps of ten, in front of it what the memory of the machine gives.
void printGrowth(std::size_t most);

}  // namespace bench

#endif  // ZTB_BENCH_GROWTH_H_
