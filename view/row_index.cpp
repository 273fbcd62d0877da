#include "view/row_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <ztb/column_names.hpp>

#include "tools/files/record_order.h"
#include "tools/text/words.h"
#include "view/model_solution.h"
#include "view/record_scan.h"

namespace view {

namespace {

struct SortedRecord {
  std::uint64_t key;
  std::uint32_t number;
};

// The place of each of `count` texts, numbered from 1, in their order; 0 has the empty text.
template <class TextOf>
std::vector<std::uint64_t> placesOf(int count, const TextOf& textOf) {
  std::vector<std::pair<std::string, int>> texts;
  for (int number = 1; number <= count; ++number) {
    texts.emplace_back(tool::folded(std::string(textOf(number))), number);
  }
  std::ranges::sort(texts);
  std::vector<std::uint64_t> places(texts.size() + 1);
  std::uint64_t place = 0;
  for (std::size_t at = 0; at < texts.size(); ++at) {
    if (at == 0 || texts[at].first != texts[at - 1].first) ++place;
    places[static_cast<std::size_t>(texts[at].second)] = place;
  }
  return places;
}

// What a record of a block is sorted by.
class SortKeys {
 public:
  SortKeys(const RecordScan& scan, const RowSort& sort)
      : descending_(sort.descending), isPosition_(sort.column < scan.dimension()) {
    const ztb::RxfFile& file = scan.file().exchange().file();
    if (isPosition_) {
      slot_ = static_cast<int>(sort.column);
      places_ = placesOf(file.labelCount(), [&](int number) { return file.label(number); });
    } else if (scan.symbol().type == ztb::Type::set) {
      places_ = placesOf(file.textCount(), [&](int number) { return file.text(number); });
    } else {
      slot_ = static_cast<int>(sort.column - scan.dimension());
      isSlack_ = slot_ == scan.symbol().valueCount;
    }
  }

  [[nodiscard]] std::uint64_t of(const ztb::RxfRecords& block, std::size_t record) const {
    if (isSlack_) {
      return tool::orderOfValue(
          slackOf(block.values(0)[record], block.values(2)[record], block.values(3)[record]),
          descending_);
    }
    if (places_.empty()) return tool::orderOfValue(block.values(slot_)[record], descending_);
    const std::size_t number = isPosition_ ? static_cast<std::size_t>(block.keys(slot_)[record])
                                           : static_cast<std::size_t>(block.values(slot_)[record]);
    return descending_ ? ~places_[number] : places_[number];
  }

 private:
  bool descending_;
  bool isPosition_;
  bool isSlack_ = false;
  int slot_ = 0;
  std::vector<std::uint64_t> places_;
};

// Sorts, and asks now and then whether that is still wanted.
void sortRecords(std::vector<SortedRecord>& records, RecordScan& scan) {
  constexpr std::size_t between = std::size_t{1} << 16U;
  // About so many comparisons a record.
  const auto comparisonsEach = static_cast<std::size_t>(std::bit_width(records.size()));
  scan.expectWork(records.size());
  std::size_t comparisons = 0;
  std::ranges::sort(records, [&](const SortedRecord& left, const SortedRecord& right) {
    if (++comparisons % between == 0) scan.work(between / comparisonsEach);
    return left.key != right.key ? left.key < right.key : left.number < right.number;
  });
}

}  // namespace

RowIndex wholeIndex(std::size_t records) {
  RowIndex index;
  index.total = records;
  for (std::size_t at = 0; at < records; at += ZTB_RXF_BLOCK_RECORDS) index.before.push_back(at);
  return index;
}

RowIndex makeRowIndex(RecordScan& scan, const std::optional<RowSort>& sort) {
  RowIndex index;
  std::optional<SortKeys> keys;
  if (sort) keys.emplace(scan, *sort);
  std::vector<SortedRecord> sorted;
  std::uint32_t first = 0;
  while (scan.next()) {
    index.before.push_back(index.total);
    index.total += scan.chosenCount();
    if (keys) {
      if (index.total > mostSorted) {
        throw RequestError(
            413, fmt::format("Only {} records can be sorted: filter them first.", mostSorted));
      }
      for (std::size_t record = 0; record < scan.block().size(); ++record) {
        if (scan.chosen()[record] == 0) continue;
        sorted.push_back(
            {keys->of(scan.block(), record), first + static_cast<std::uint32_t>(record)});
      }
    }
    first += static_cast<std::uint32_t>(scan.block().size());
  }
  if (!keys) return index;
  index.before.clear();
  sortRecords(sorted, scan);
  index.order.reserve(sorted.size());
  for (const SortedRecord& record : sorted) index.order.push_back(record.number);
  return index;
}

std::optional<RowSort> rowSortOf(const Question& question, const RecordScan& scan) {
  const std::string* wanted = question.parameters.find("sort");
  if (wanted == nullptr || wanted->empty()) return std::nullopt;
  const tool::FileSymbol& symbol = scan.symbol();
  std::vector<std::string> columns =
      ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol));
  for (const std::string& column : ztb::contentColumns(symbol.type)) columns.push_back(column);
  if (scan.hasBounds()) columns.emplace_back("slack");
  const auto found = std::ranges::find_if(
      columns, [&](const std::string& column) { return tool::sameFolded(column, *wanted); });
  if (found == columns.end()) {
    throw RequestError(400,
                       fmt::format("{} has no column {}", symbol.name, tool::inQuotes(*wanted)));
  }
  return RowSort{.column = static_cast<std::size_t>(found - columns.begin()),
                 .descending = question.parameters.flag("desc")};
}

std::shared_ptr<const RowIndex> rowIndexOf(Question& question, RecordScan& scan,
                                           const std::optional<RowSort>& sort) {
  const std::string name = fmt::format("{} {} {} {}\n{}", scan.file().id(), scan.symbol().number,
                                       sort ? static_cast<long long>(sort->column) : -1,
                                       sort && sort->descending, scan.filter().words());
  return question.session.indexes.get(name, [&] {
    // Without filter and order nothing has to be read to know where rows stand.
    if (!sort && scan.filter().takesAll()) return wholeIndex(scan.symbol().recordCount);
    RowIndex index = makeRowIndex(scan, sort);
    scan.rewind();
    return index;
  });
}

}  // namespace view
