// Windows of the records of a symbol.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "view/model_solution.h"
#include "view/row_visits.h"

namespace view {

namespace {

// As many as are printed.
constexpr std::size_t mostPageRows = 20000;
constexpr std::size_t mostRecords = std::size_t{1} << 40U;

// With what is between the level of a variable or equation and its bounds, where that is asked for.
void writeRow(const RecordScan& scan, std::size_t record, bool withSlack,
              formats::JsonText& answer) {
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
  if (withSlack) {
    const double slack =
        slackOf(block.values(0)[record], block.values(2)[record], block.values(3)[record]);
    if (std::isnan(slack)) {
      answer.null();
    } else {
      answer.number(slack);
    }
  }
  answer.endArray();
}

}  // namespace

void answerRows(Question& question) {
  const Parameters& parameters = question.parameters;
  RecordScan scan(question);
  const std::size_t from = parameters.number("from", 0, mostRecords);
  const std::size_t count = parameters.number("count", 100, mostPageRows);
  const bool withSlack = parameters.flag("slack");
  if (withSlack && !scan.hasBounds()) {
    throw RequestError(400, fmt::format("{} has no bounds", scan.symbol().name));
  }
  const std::optional<RowSort> sort = rowSortOf(question, scan);
  const std::shared_ptr<const RowIndex> index = rowIndexOf(question, scan, sort);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("total");
  answer.count(index->total);
  answer.name("from");
  answer.count(from);
  answer.name("rows");
  answer.beginArray();
  if (!sort) {
    visitRowsInOrder(scan, *index, from, count,
                     [&](std::size_t record) { writeRow(scan, record, withSlack, answer); });
  } else if (from < index->total) {
    // Read in the order of the file, written in theirs.
    const std::span<const std::uint32_t> order(index->order);
    const auto window = order.subspan(from, std::min(count, index->total - from));
    std::vector<std::string> rows(window.size());
    formats::JsonText row;
    visitRecords(scan, window, [&](std::size_t place, std::size_t record) {
      row.clear();
      writeRow(scan, record, withSlack, row);
      rows[place] = row.chars();
    });
    for (const std::string& text : rows) answer.json(text);
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
