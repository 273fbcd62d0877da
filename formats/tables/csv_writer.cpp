#include "formats/tables/csv_writer.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <ztb/display_text.hpp>

#include "formats/tables/byte_sink.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"

namespace formats {

namespace {

constexpr std::size_t pendingLimit = std::size_t{1} << 16U;

[[noreturn]] void failWrite(const std::string& name) {
  throw tool::Failure(fmt::format("{}: cannot be written: {}", name, std::strerror(errno)));
}

}  // namespace

CsvWriter::CsvWriter(std::FILE* stream, std::string name, CsvForm form)
    : name_(std::move(name)), form_(form), file_(stream), spellsOut_(isatty(fileno(stream)) != 0) {}

bool CsvWriter::needsQuotes(std::string_view text) const {
  const auto parts = [this](char c) {
    return c == form_.separator || c == '"' || c == '\r' || c == '\n';
  };
  return std::ranges::any_of(text, parts) || text.front() == ' ' || text.back() == ' ';
}

void CsvWriter::begin(const TableHead& head) {
  for (const TableColumn& column : head.columns) {
    text(column.name);
  }
  endRow();
}

void CsvWriter::separate() {
  if (!recordEmpty_) {
    pending_ += form_.separator;
  }
  recordEmpty_ = false;
}

void CsvWriter::quoted(std::string_view text) {
  pending_ += '"';
  for (const char c : text) {
    if (c == '"') {
      pending_ += '"';
    }
    pending_ += c;
  }
  pending_ += '"';
}

void CsvWriter::text(std::string_view text) {
  std::string shown;
  if (spellsOut_ && !ztb::isDisplayable(text)) {
    shown = ztb::displayText(text);
    text = shown;
  }
  separate();
  if (!text.empty() && needsQuotes(text)) {
    quoted(text);
  } else {
    pending_ += text;
  }
}

void CsvWriter::label(std::string_view label) {
  if (label.empty()) {
    separate();
    quoted(label);
  } else {
    text(label);
  }
}

void CsvWriter::number(double value) {
  const tool::NumberText number(value);
  if (form_.decimal == '.') {
    return text(number.view());
  }
  std::string shown(number.view());
  std::ranges::replace(shown, '.', form_.decimal);
  text(shown);
}

void CsvWriter::endRow() {
  pending_ += '\n';
  recordEmpty_ = true;
  if (pending_.size() >= pendingLimit) {
    flush();
  }
}

void CsvWriter::flush() {
  if (owned_) {
    owned_->write(pending_);
  } else if (std::fwrite(pending_.data(), 1, pending_.size(), file_) != pending_.size()) {
    failWrite(name_);
  }
  pending_.clear();
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
