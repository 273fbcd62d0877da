#include "formats/wide_export.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "formats/database_export.h"
#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

std::size_t positionOf(const tool::FileSymbol& symbol, const TableHead& head,
                       const std::string& position) {
  std::vector<std::string> names;
  for (std::size_t at = 0; at < head.keys; ++at) {
    names.push_back(head.columns[at].name);
    if (tool::sameFolded(names.back(), position) || std::to_string(at + 1) == position) return at;
  }
  throw tool::UsageError(fmt::format("--wide {}: {} has no such position; its positions are {}",
                                     position, symbol.name, fmt::join(names, ", ")));
}

// Labels differ among each other, but one may be called as a column of keys is, and no column can
// be without a name.
void requireFree(const TableHead& wide, std::string_view label, const std::string& position) {
  const bool taken = std::ranges::any_of(
      std::span(wide.columns).first(wide.keys),
      [&](const TableColumn& column) { return tool::sameFolded(column.name, label); });
  if (taken || label.empty()) {
    throw tool::Failure(
        fmt::format("--wide {}: the label {} of {} cannot be a column: {}", position,
                    tool::inQuotes(label), wide.name,
                    taken ? "the keys have one of this name" : "a column needs a name"),
        ZTB_ERROR_REFUSED);
  }
}

}  // namespace

std::size_t writeWide(TableWriter& writer, const tool::ExchangeFile& file,
                      const tool::FileSymbol& symbol, const std::string& position,
                      tool::Progress& progress) {
  if (symbol.type == ztb::Type::set) {
    throw tool::UsageError(
        fmt::format("--wide {}: {} is a set, which has no values", position, symbol.name));
  }
  const TableHead head = headOf(symbol);
  const std::size_t spread = positionOf(symbol, head, position);
  std::set<int> labels;
  std::map<std::vector<int>, std::map<int, double>> rows;
  std::size_t records = 0;
  progress.expect(symbol.recordCount);
  for (tool::RecordWalk record(file, symbol); record.next();) {
    std::vector<int> keys(record.keys().begin(), record.keys().end());
    const int label = keys[spread];
    keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(spread));
    labels.insert(label);
    rows[std::move(keys)][label] = record.values().front();
    progress.count(++records);
  }
  TableHead wide{.name = symbol.name,
                 .columns = {},
                 .rows = rows.size(),
                 .keys = head.keys - 1,
                 .hasGaps = true};
  for (std::size_t at = 0; at < head.keys; ++at) {
    if (at != spread) wide.columns.push_back(head.columns[at]);
  }
  for (const int label : labels) {
    const std::string_view name = file.label(label);
    requireFree(wide, name, position);
    wide.columns.push_back({.name = std::string(name), .kind = ColumnKind::number});
  }
  writer.begin(wide);
  for (const auto& [keys, cells] : rows) {
    for (const int key : keys) writer.label(file.label(key));
    for (const int label : labels) {
      const auto cell = cells.find(label);
      if (cell == cells.end()) {
        writer.missing();
      } else {
        writer.number(cell->second);
      }
    }
    writer.endRow();
  }
  writer.end();
  return records;
}

}  // namespace formats
