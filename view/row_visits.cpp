#include "view/row_visits.h"

#include <algorithm>
#include <numeric>

namespace view {

void visitRowsInOrder(RecordScan& scan, const RowIndex& index, std::size_t from, std::size_t count,
                      const std::function<void(std::size_t record)>& visit) {
  // The last block with no more than `from` rows before it.
  const auto behind = std::ranges::upper_bound(index.before, from);
  auto block = static_cast<std::size_t>(behind - index.before.begin());
  if (block == 0 || from >= index.total) return;
  std::size_t row = index.before[--block];
  scan.skip(block);
  for (std::size_t left = count; left > 0 && scan.next();) {
    for (std::size_t record = 0; left > 0 && record < scan.block().size(); ++record) {
      if (scan.chosen()[record] == 0 || row++ < from) continue;
      visit(record);
      --left;
    }
  }
}

void visitRecords(RecordScan& scan, std::span<const std::uint32_t> records,
                  const std::function<void(std::size_t place, std::size_t record)>& visit) {
  std::vector<std::size_t> places(records.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  std::ranges::sort(places, {}, [&](std::size_t place) { return records[place]; });
  // The block that would be read next.
  std::size_t block = 0;
  for (const std::size_t place : places) {
    const std::size_t wanted = records[place] / ZTB_RXF_BLOCK_RECORDS;
    if (wanted >= block) {
      scan.skip(wanted - block);
      if (!scan.next()) return;
      block = wanted + 1;
    }
    visit(place, records[place] % ZTB_RXF_BLOCK_RECORDS);
  }
}

}  // namespace view
