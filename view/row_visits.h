// Walks over the rows of a table in the order in which they are shown.
#ifndef ZTB_VIEW_ROW_VISITS_H_
#define ZTB_VIEW_ROW_VISITS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "view/record_scan.h"

namespace view {

// Visits rows in the order of the file, the row `from` first, each as its record within the block
// that is present then.
void visitRowsInOrder(RecordScan& scan, const RowIndex& index, std::size_t from, std::size_t count,
                      const std::function<void(std::size_t record)>& visit);

// Visits records by their numbers in the order of the file, each with its place among `records` and
// its record within the block that is present then.
void visitRecords(RecordScan& scan, std::span<const std::uint32_t> records,
                  const std::function<void(std::size_t place, std::size_t record)>& visit);

}  // namespace view

#endif  // ZTB_VIEW_ROW_VISITS_H_
