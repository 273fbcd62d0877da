// Windows of the records of a symbol.

#include <ztb/column_names.hpp>

#include "tools/files/record_walk.h"
#include "view/api.h"

namespace view {

namespace {

constexpr std::size_t mostRows = 1000;
constexpr std::size_t mostRecords = std::size_t{1} << 40U;

}  // namespace

void answerRows(Question& question) {
  const OpenedFile& file = question.session.file(question.parameters);
  const tool::FileSymbol& symbol = file.symbol(question.parameters.text("s"));
  const std::size_t from = question.parameters.number("from", 0, mostRecords);
  const std::size_t count = question.parameters.number("count", 100, mostRows);
  question.job.expect(symbol.recordCount);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("total");
  answer.count(symbol.recordCount);
  answer.name("from");
  answer.count(from);
  answer.name("rows");
  answer.beginArray();
  tool::RecordWalk walk(file.exchange(), symbol);
  for (std::size_t at = 0; at < from + count && walk.next(); ++at) {
    question.job.count(1);
    if (at < from) continue;
    answer.beginArray();
    for (const int key : walk.keys()) answer.text(file.exchange().label(key));
    if (symbol.type == ztb::Type::set) {
      answer.text(walk.text());
    } else {
      for (const double value : walk.values()) answer.number(value);
    }
    answer.endArray();
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
