// All contests, one function for each group of operations.
#ifndef ZTB_BENCH_CONTESTS_H_
#define ZTB_BENCH_CONTESTS_H_

#include "bench/contest.h"

namespace bench {

// Records in key order, by label numbers.
Contest sortedLoad();
// Records in random order, by labels that the store has not seen before.
Contest labelLoad();
// The value of every record, asked for by its labels in random order.
Contest labelLookup();
// The values of all records in key order.
Contest walk();
// The values of the records that have one label at the first or at the second position; a record of
// the whole symbol is the unit.
Contest sliceByFirst();
Contest sliceBySecond();

}  // namespace bench

#endif  // ZTB_BENCH_CONTESTS_H_
