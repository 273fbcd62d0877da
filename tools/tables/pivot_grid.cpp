#include "tools/tables/pivot_grid.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <tuple>

#include "tools/files/record_walk.h"

namespace tool {

namespace {

// Sorts by keys of 0 to `most`, in time that grows with their number and that of the items alone;
// items of one key stay in their order.
template <class Item, class KeyOf>
void sortByKey(std::vector<Item>& items, std::size_t most, const KeyOf& keyOf) {
  // Where the next item of each key goes.
  std::vector<std::size_t> place(most + 2);
  for (const Item& item : items) {
    ++place[std::invoke(keyOf, item) + 1];
  }
  std::partial_sum(place.begin(), place.end(), place.begin());
  std::vector<Item> sorted(items.size());
  for (const Item& item : items) {
    sorted[place[std::invoke(keyOf, item)]++] = item;
  }
  items = std::move(sorted);
}

}  // namespace

void PivotSide::take(std::span<const int> keys) {
  for (const std::size_t position : positions_) {
    labels_.push_back(keys[position]);
  }
}

std::vector<std::size_t> PivotSide::finish(std::size_t labelCount) {
  const std::size_t records = size();
  std::vector<std::size_t> order(records);
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto comesFirst = [&](std::size_t left, std::size_t right) {
    return std::ranges::lexicographical_compare(labels(left), labels(right));
  };
  // The first positions of a symbol come sorted.
  if (!std::ranges::is_sorted(order, comesFirst)) {
    for (std::size_t index = positions_.size(); index-- > 0;) {
      sortByKey(order, labelCount, [&](std::size_t record) {
        return static_cast<std::size_t>(labels(record)[index]);
      });
    }
  }
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
  const auto labelCount = static_cast<std::size_t>(file.labelCount());
  std::vector<std::vector<bool>> seen(static_cast<std::size_t>(symbol.dimension),
                                      std::vector<bool>(labelCount + 1));
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
  const std::vector<std::size_t> rowOf = rows_.finish(labelCount);
  const std::vector<std::size_t> columnOf = columns_.finish(labelCount);
  for (std::size_t record = 0; record < cells_.size(); ++record) {
    cells_[record].row = rowOf[record];
    cells_[record].column = columnOf[record];
  }
  const auto place = [](const Cell& cell) { return std::tuple(cell.row, cell.column); };
  if (!std::ranges::is_sorted(cells_, {}, place)) {
    sortByKey(cells_, columns_.size(), &Cell::column);
    sortByKey(cells_, rows_.size(), &Cell::row);
  }
}

}  // namespace tool
