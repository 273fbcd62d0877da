#include "tools/tables/csv_writer.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <ztb/display_text.hpp>

#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr std::size_t pendingLimit = std::size_t{1} << 16U;

bool needsQuotes(std::string_view text) {
  const auto parts = [](char c) { return c == ',' || c == '"' || c == '\r' || c == '\n'; };
  return std::ranges::any_of(text, parts) || text.front() == ' ' || text.back() == ' ';
}

[[noreturn]] void failWrite(const std::string& name) {
  throw Failure(fmt::format("{}: cannot be written: {}", name, std::strerror(errno)));
}

}  // namespace

CsvWriter::CsvWriter(const std::string& path)
    : name_(path), owned_(std::in_place, path), file_(owned_->stream()) {}

CsvWriter::CsvWriter(std::FILE* stream, std::string name)
    : name_(std::move(name)), file_(stream), spellsOut_(isatty(fileno(stream)) != 0) {}

void CsvWriter::separate() {
  if (!recordEmpty_) {
    pending_ += ',';
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

void CsvWriter::field(std::string_view text) {
  if (spellsOut_ && !ztb::isDisplayable(text)) {
    const std::string shown = ztb::displayText(text);
    return field(shown);
  }
  separate();
  if (!text.empty() && needsQuotes(text)) {
    quoted(text);
  } else {
    pending_ += text;
  }
}

void CsvWriter::label(std::string_view text) {
  if (text.empty()) {
    separate();
    quoted(text);
  } else {
    field(text);
  }
}

void CsvWriter::endRecord() {
  pending_ += '\n';
  recordEmpty_ = true;
  if (pending_.size() >= pendingLimit) {
    flush();
  }
}

void CsvWriter::flush() {
  if (std::fwrite(pending_.data(), 1, pending_.size(), file_) != pending_.size()) {
    failWrite(name_);
  }
  pending_.clear();
}

void CsvWriter::close() {
  flush();
  if (std::fflush(file_) != 0) {
    failWrite(name_);
  }
  if (owned_) {
    owned_->publish();
  }
}

}  // namespace tool
