// Windows of the records of a symbol.

#include <fmt/format.h>

#include <algorithm>
#include <ztb/column_names.hpp>

#include "tools/text/words.h"
#include "view/record_scan.h"

namespace view {

namespace {

constexpr std::size_t mostRows = 1000;
constexpr std::size_t mostRecords = std::size_t{1} << 40U;

std::optional<RowSort> sortOf(const RecordScan& scan, const Parameters& parameters) {
  const std::string* wanted = parameters.find("sort");
  if (wanted == nullptr || wanted->empty()) return std::nullopt;
  const tool::FileSymbol& symbol = scan.symbol();
  std::vector<std::string> columns =
      ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol));
  for (const std::string& column : ztb::contentColumns(symbol.type)) columns.push_back(column);
  const auto found = std::ranges::find_if(
      columns, [&](const std::string& column) { return tool::sameFolded(column, *wanted); });
  if (found == columns.end()) {
    throw RequestError(400,
                       fmt::format("{} has no column {}", symbol.name, tool::inQuotes(*wanted)));
  }
  return RowSort{.column = static_cast<std::size_t>(found - columns.begin()),
                 .descending = parameters.flag("desc")};
}

void writeRow(const RecordScan& scan, std::size_t record, formats::JsonText& answer) {
  const ztb::RxfRecords& block = scan.block();
  answer.beginArray();
  for (int position = 0; position < block.dimension(); ++position) {
    answer.text(scan.label(block.keys(position)[record]));
  }
  for (int slot = 0; slot < block.valueCount(); ++slot) {
    const double value = block.values(slot)[record];
    if (scan.symbol().type == ztb::Type::set) {
      answer.text(scan.file().exchange().file().text(static_cast<int>(value)));
    } else {
      answer.number(value);
    }
  }
  answer.endArray();
}

// Rows in the order of the file from the row `from` on.
void writeRowsInOrder(RecordScan& scan, const RowIndex& index, std::size_t from, std::size_t count,
                      formats::JsonText& answer) {
  // The last block with no more than `from` rows before it.
  const auto behind = std::ranges::upper_bound(index.before, from);
  std::size_t block = static_cast<std::size_t>(behind - index.before.begin());
  if (block == 0 || from >= index.total) return;
  std::size_t row = index.before[--block];
  scan.skip(block);
  for (std::size_t left = count; left > 0 && scan.next();) {
    for (std::size_t record = 0; left > 0 && record < scan.block().size(); ++record) {
      if (scan.chosen()[record] == 0 || row++ < from) continue;
      writeRow(scan, record, answer);
      --left;
    }
  }
}

// Rows from anywhere in the file: read in its order, written in theirs.
void writeSortedRows(RecordScan& scan, std::span<const std::uint32_t> records,
                     formats::JsonText& answer) {
  std::vector<std::size_t> places(records.size());
  for (std::size_t at = 0; at < places.size(); ++at) places[at] = at;
  std::ranges::sort(places, {}, [&](std::size_t at) { return records[at]; });
  std::vector<std::string> rows(records.size());
  formats::JsonText row;
  std::size_t block = 0;
  bool present = false;
  for (const std::size_t place : places) {
    const std::size_t wanted = records[place] / ZTB_RXF_BLOCK_RECORDS;
    if (!present || wanted != block) {
      scan.skip(wanted - (present ? block + 1 : 0));
      if (!scan.next()) break;
      block = wanted;
      present = true;
    }
    row.clear();
    writeRow(scan, records[place] % ZTB_RXF_BLOCK_RECORDS, row);
    rows[place] = row.chars();
  }
  for (const std::string& text : rows) answer.json(text);
}

}  // namespace

void answerRows(Question& question) {
  const Parameters& parameters = question.parameters;
  RecordScan scan(question);
  const std::size_t from = parameters.number("from", 0, mostRecords);
  const std::size_t count = parameters.number("count", 100, mostRows);
  const std::optional<RowSort> sort = sortOf(scan, parameters);
  const std::string name =
      fmt::format("{} {} {} {}\n{}", parameters.text("f", "0"), scan.symbol().number,
                  sort ? static_cast<long long>(sort->column) : -1, sort && sort->descending,
                  scan.filter().words());
  // Without filter and order nothing has to be read to know where rows stand.
  const auto make = [&] {
    if (!sort && scan.filter().takesAll()) return wholeIndex(scan.symbol().recordCount);
    RowIndex index = makeRowIndex(scan, sort);
    scan.rewind();
    return index;
  };
  const std::shared_ptr<const RowIndex> index = question.session.indexes.get(name, make);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("total");
  answer.count(index->total);
  answer.name("from");
  answer.count(from);
  answer.name("rows");
  answer.beginArray();
  if (!sort) {
    writeRowsInOrder(scan, *index, from, count, answer);
  } else if (from < index->total) {
    const std::span<const std::uint32_t> order(index->order);
    writeSortedRows(scan, order.subspan(from, std::min(count, index->total - from)), answer);
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
