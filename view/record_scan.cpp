#include "view/record_scan.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <ztb/column_names.hpp>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace view {

RecordScan::RecordScan(Question& question, std::size_t times)
    : RecordScan(question, times, question.session.file(question.parameters),
                 question.parameters.text("s")) {}

RecordScan::RecordScan(Question& question, SecondSide /*side*/)
    : RecordScan(question, 1,
                 question.session.file(question.parameters,
                                       question.parameters.find("f2") != nullptr ? "f2" : "f"),
                 question.parameters.text(question.parameters.find("s2") != nullptr ? "s2" : "s")) {
}

RecordScan::RecordScan(Question& question, std::size_t times,
                       std::shared_ptr<const OpenedFile> file, const std::string& symbol)
    : file_(std::move(file)),
      symbol_(file_->symbol(symbol)),
      filter_(*file_, symbol_, question.parameters),
      job_(question.job),
      records_(file_->exchange().file(), file_->exchange().file().symbol(symbol_.number)) {
  job_.expect(times * symbol_.recordCount);
}

bool RecordScan::next() {
  job_.count(records_.size());
  try {
    if (!records_.next()) return false;
  } catch (const ztb::Error& error) {
    throw tool::Failure(tool::withFile(file_->exchange().path(), error.what()));
  }
  chosenCount_ = filter_.evaluate(records_, chosen_);
  return true;
}

void RecordScan::skip(std::size_t blocks) {
  try {
    records_.skip(static_cast<int>(blocks));
  } catch (const ztb::Error& error) {
    throw tool::Failure(tool::withFile(file_->exchange().path(), error.what()));
  }
}

int RecordScan::slot(const Parameters& parameters) const {
  if (symbol_.type == ztb::Type::set) {
    throw RequestError(400, fmt::format("{} is a set, which has no values", symbol_.name));
  }
  const std::string* field = parameters.find("field");
  if (field == nullptr || field->empty() || tool::sameFolded(*field, "value")) return 0;
  const std::vector<std::string> columns = ztb::contentColumns(symbol_.type);
  const auto found = std::ranges::find_if(
      columns, [&](const std::string& column) { return tool::sameFolded(column, *field); });
  if (found == columns.end()) {
    throw RequestError(400,
                       fmt::format("{} has no field {}", symbol_.name, tool::inQuotes(*field)));
  }
  return static_cast<int>(found - columns.begin());
}

std::size_t RecordScan::position(const Parameters& parameters, const char* name) const {
  if (symbol_.dimension == 0) {
    throw RequestError(400, fmt::format("{} has no positions", symbol_.name));
  }
  if (parameters.find(name) == nullptr) {
    throw RequestError(400, fmt::format("{}: is missing", name));
  }
  return parameters.number(name, 0, dimension() - 1);
}

}  // namespace view
