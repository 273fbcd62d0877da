// What the records of a symbol come to for each combination of labels at some positions.
#ifndef ZTB_VIEW_CELL_GROUPS_H_
#define ZTB_VIEW_CELL_GROUPS_H_

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "view/record_scan.h"

namespace view {

// Combinations that one request may have.
inline constexpr std::size_t mostCells = 250000;

// Visits the combinations in the order of the labels in the file, the first position slowest, each
// with its amount. How values come together, and of which field, tell the parameters "how", a sum
// without it, and "field". Throws RequestError beyond mostCells.
void visitCells(RecordScan& scan, const Parameters& parameters,
                const std::vector<std::size_t>& positions,
                const std::function<void(std::span<const int> labels, double value)>& visit);

}  // namespace view

#endif  // ZTB_VIEW_CELL_GROUPS_H_
