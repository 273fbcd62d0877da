// The jobs of stores on records of other dimensions and with five value slots, beside a bare map.
#ifndef ZTB_BENCH_SHAPES_H_
#define ZTB_BENCH_SHAPES_H_

#include <cstddef>

namespace bench {

// For dimensions 1, 3, 6 and 12 with one slot, and 3 with five; an operation is named with its
// dimension and slots, as 6d1v.
void registerShapeContests(std::size_t records);

}  // namespace bench

#endif  // ZTB_BENCH_SHAPES_H_
