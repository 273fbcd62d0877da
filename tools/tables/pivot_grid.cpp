#include "tools/tables/pivot_grid.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "tools/files/record_walk.h"

namespace tool {

void PivotSide::take(std::span<const int> keys) {
  for (const std::size_t position : positions_) {
    labels_.push_back(keys[position]);
  }
}

std::vector<std::size_t> PivotSide::finish() {
  const std::size_t records = size();
  std::vector<std::size_t> order(records);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, [&](std::size_t left, std::size_t right) {
    return std::ranges::lexicographical_compare(labels(left), labels(right));
  });
  std::vector<std::size_t> entryOf(records);
  std::vector<int> entries;
  for (std::size_t index = 0; index < records; ++index) {
    const std::span<const int> own = labels(order[index]);
    if (index == 0 || !std::ranges::equal(labels(order[index - 1]), own)) {
      entries.insert(entries.end(), own.begin(), own.end());
    }
    entryOf[order[index]] = entries.size() / positions_.size() - 1;
  }
  labels_ = std::move(entries);
  return entryOf;
}

PivotGrid::PivotGrid(const ExchangeFile& file, const FileSymbol& symbol, ztb::Field field,
                     const SliceFilter& filter, std::vector<std::size_t> rows,
                     std::vector<std::size_t> columns)
    : rows_(std::move(rows)), columns_(std::move(columns)) {
  std::vector<std::vector<bool>> seen(
      static_cast<std::size_t>(symbol.dimension),
      std::vector<bool>(static_cast<std::size_t>(file.labelCount()) + 1));
  labelCounts_.resize(seen.size());
  for (RecordWalk record(file, symbol); record.next();) {
    if (!filter.matches(record.keys())) {
      continue;
    }
    for (std::size_t position = 0; position < seen.size(); ++position) {
      const auto label = static_cast<std::size_t>(record.keys()[position]);
      labelCounts_[position] += seen[position][label] ? 0 : 1;
      seen[position][label] = true;
    }
    rows_.take(record.keys());
    columns_.take(record.keys());
    cells_.push_back(
        {.row = 0, .column = 0, .value = record.values()[static_cast<std::size_t>(field)]});
  }
  const std::vector<std::size_t> rowOf = rows_.finish();
  const std::vector<std::size_t> columnOf = columns_.finish();
  for (std::size_t record = 0; record < cells_.size(); ++record) {
    cells_[record].row = rowOf[record];
    cells_[record].column = columnOf[record];
  }
  std::ranges::sort(cells_, {}, [](const Cell& cell) { return std::tuple(cell.row, cell.column); });
}

}  // namespace tool
