#include "formats/tables/csv_writer.h"

#include <cerrno>
#include <utility>

#include "formats/tables/byte_sink.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

constexpr std::size_t pendingLimit = std::size_t{1} << 16U;

[[noreturn]] void failWrite(const std::string& name) {
  throw tool::systemFailure(name, "cannot be written", errno);
}

}  // namespace

CsvWriter::CsvWriter(std::FILE* stream, std::string name, CsvForm form)
    : name_(std::move(name)), file_(stream), rows_(form, tool::isTerminal(fileno(stream))) {}

void CsvWriter::begin(const TableHead& head) {
  for (const TableColumn& column : head.columns) {
    text(column.name);
  }
  endRow();
}

void CsvWriter::endRow() {
  rows_.endRow();
  if (rows_.chars().size() >= pendingLimit) {
    flush();
  }
}

void CsvWriter::addRows(std::string_view rows) {
  flush();
  write(rows);
}

void CsvWriter::flush() {
  write(rows_.chars());
  rows_.clear();
}

void CsvWriter::write(std::string_view chars) {
  if (owned_) {
    owned_->write(chars);
  } else if (std::fwrite(chars.data(), 1, chars.size(), file_) != chars.size()) {
    failWrite(name_);
  }
}

void CsvWriter::finish() {
  flush();
  if (owned_) {
    owned_->finish();
  } else if (std::fflush(file_) != 0) {
    failWrite(name_);
  }
}

}  // namespace formats
