#include "tools/files/record_order.h"

#include <bit>
#include <cmath>
#include <vector>

#include "formats/tables/row_sorter.h"
#include "tools/files/system_files.h"
#include "tools/text/number_text.h"

namespace tool {

namespace {

constexpr double undefinedValue = 1e300;
constexpr double missingValue = std::bit_cast<double>(std::uint64_t{0x7FF8000000000000});
constexpr std::uint64_t signBit = std::uint64_t{1} << 63U;

}  // namespace

std::uint64_t orderOfValue(double value, bool descending) {
  constexpr std::uint64_t last = ~std::uint64_t{0};
  if (sameBits(value, undefinedValue)) return last - 2;
  if (sameBits(value, missingValue)) return last - 1;
  if (std::isnan(value)) return last;
  const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
  const std::uint64_t order = (bits & signBit) != 0 ? ~bits : bits | signBit;
  return descending ? ~order : order;
}

void walkInOrder(RecordWalk& walk, const FileSymbol& symbol, const RecordOrder& order,
                 const std::function<bool(std::span<const int>)>& wanted,
                 const std::function<bool(const ShownRecord&)>& visit) {
  const auto dimension = static_cast<std::size_t>(symbol.dimension);
  const auto valueCount = static_cast<std::size_t>(symbol.valueCount);
  // A row is the order, the labels, the values.
  std::vector<std::uint64_t> row(1 + dimension + valueCount);
  formats::RowSorter::Limits limits;
  limits.rows = order.most;
  formats::RowSorter sorter(1, row.size(), temporaryFolder(), limits);
  while (walk.next()) {
    if (!wanted(walk.keys())) continue;
    row[0] = orderOfValue(walk.values()[order.slot], order.descending);
    for (std::size_t at = 0; at < dimension; ++at) {
      row[1 + at] = static_cast<std::uint64_t>(walk.keys()[at]);
    }
    for (std::size_t at = 0; at < valueCount; ++at) {
      row[1 + dimension + at] = std::bit_cast<std::uint64_t>(walk.values()[at]);
    }
    sorter.add(row.data());
  }
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  std::array<double, ztb::fieldCount> values{};
  while (sorter.next()) {
    for (std::size_t at = 0; at < dimension; ++at) {
      keys[at] = static_cast<int>(sorter.row()[1 + at]);
    }
    for (std::size_t at = 0; at < valueCount; ++at) {
      values[at] = std::bit_cast<double>(sorter.row()[1 + dimension + at]);
    }
    if (!visit({.keys = {keys.data(), dimension}, .values = {values.data(), valueCount}})) return;
  }
}

}  // namespace tool
