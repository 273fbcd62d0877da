#include "formats/tables/csv_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "formats/tables/packing.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

constexpr std::size_t csvBufferSize = std::size_t{1} << 18U;

// No table has such a record; a packed file may seem to.
constexpr std::size_t longestRecord = std::size_t{1} << 26U;

// How files of other kinds begin.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> otherFiles{{
    {"\x1F\x8B", "a file packed by gzip, which ends in .gz"},
    {"\x28\xB5\x2F\xFD", "a file packed by Zstandard, which ends in .zst"},
    {"PK\x03\x04", "a zip file, as workbooks are, which --format xlsx reads"},
    {"\xD0\xCF\x11\xE0", "a workbook of an old format, to be saved as .xlsx"},
    {"SQLite format 3", "a SQLite file, which --format sqlite reads"},
    {"PAR1\x15", "a Parquet file, which --format parquet reads"},
}};

}  // namespace

CsvReader::CsvReader(const std::string& path, char separator)
    : TableReader(path == "-" ? "standard input" : path),
      separator_(separator),
      bytes_(openBytes(path)),
      buffer_(std::make_unique<char[]>(csvBufferSize)) {
  skipByteOrderMark();
}

std::optional<PartedFile> CsvReader::partedFile() const {
  if (packingOf(path_) != Packing::none || path_ == "standard input") return std::nullopt;
  return PartedFile{.path = path_, .separator = separator_};
}

bool CsvReader::fill() {
  checkLength();
  bufferBegin_ = 0;
  bufferEnd_ = bytes_->read(buffer_.get(), csvBufferSize);
  return bufferEnd_ > 0;
}

void CsvReader::checkLength() const {
  if (chars_.size() > longestRecord) {
    throw tool::Failure(fmt::format("{}:{}: the record has more than {} MiB", path_, recordLine_,
                                    longestRecord >> 20U),
                        ZTB_ERROR_LIMIT);
  }
}

int CsvReader::peek() {
  if (bufferBegin_ == bufferEnd_ && !fill()) {
    return endOfFile;
  }
  return static_cast<unsigned char>(buffer_[bufferBegin_]);
}

int CsvReader::take() {
  const int c = peek();
  ++bufferBegin_;
  if (c == '\n') {
    ++line_;
    column_ = 1;
  } else {
    ++column_;
  }
  return c;
}

// What is no text at all is told as what it is, and not by its bytes.
void CsvReader::skipByteOrderMark() {
  peek();
  const std::string_view start(buffer_.get() + bufferBegin_, bufferEnd_ - bufferBegin_);
  if (start.starts_with("\xEF\xBB\xBF")) {
    bufferBegin_ += 3;
  } else if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
    throw tool::Failure(
        fmt::format("{}: is encoded in UTF-16, expected UTF-8 or plain bytes", path_));
  }
  const auto known = std::ranges::find_if(
      otherFiles, [&](const auto& other) { return start.starts_with(other.first); });
  if (known != otherFiles.end()) {
    throw tool::Failure(
        fmt::format("{}: begins as {}, expected a table of text", path_, known->second),
        ZTB_ERROR_REFUSED);
  }
}

// Whether a line end or the end of the file is next. A carriage return counts only in front of one.
bool CsvReader::atLineEnd() {
  const int c = peek();
  if (c != '\r') {
    return c == '\n' || c == endOfFile;
  }
  if (bufferBegin_ + 1 == bufferEnd_) {
    // The char behind lies in the next block: keep the carriage return in front of it.
    buffer_[0] = '\r';
    bufferEnd_ = 1 + bytes_->read(buffer_.get() + 1, csvBufferSize - 1);
    bufferBegin_ = 0;
    if (bufferEnd_ == 1) {
      return true;
    }
  }
  return buffer_[bufferBegin_ + 1] == '\n';
}

void CsvReader::takeLineEnd() {
  if (peek() == '\r') {
    take();
  }
  if (peek() != endOfFile) {
    take();
  }
}

bool CsvReader::next(ProblemList& problems) {
  while (!finished_) {
    if (peek() == endOfFile) {
      finished_ = true;
      break;
    }
    if (atLineEnd()) {
      takeLineEnd();
      continue;
    }
    const RecordState state = readRecord(problems);
    if (state == RecordState::unterminated) {
      finished_ = true;
    } else if (state == RecordState::good) {
      fields_.clear();
      for (const FieldBounds& field : bounds_) {
        fields_.push_back(
            {.text = std::string_view(chars_).substr(field.begin, field.end - field.begin),
             .quoted = field.quoted,
             .at = field.at});
      }
      return true;
    }
  }
  return false;
}

CsvReader::RecordState CsvReader::readRecord(ProblemList& problems) {
  chars_.clear();
  bounds_.clear();
  recordLine_ = line_;
  RecordState state = RecordState::good;
  while (true) {
    bounds_.push_back({.begin = chars_.size(),
                       .end = 0,
                       .quoted = peek() == '"',
                       .at = {.line = line_, .column = column_}});
    if (!bounds_.back().quoted) {
      readPlain();
    } else {
      const RecordState fieldState = readQuoted(problems);
      if (fieldState == RecordState::unterminated) {
        return fieldState;
      }
      state = fieldState == RecordState::damaged ? fieldState : state;
    }
    bounds_.back().end = chars_.size();
    chars_.push_back('\0');
    if (atLineEnd()) {
      takeLineEnd();
      return state;
    }
    take();
  }
}

// Reads up to the separator or line end, which stays in front.
void CsvReader::readPlain() {
  while (true) {
    const char* begin = buffer_.get() + bufferBegin_;
    const char* end = buffer_.get() + bufferEnd_;
    const char* stop = std::find_if(
        begin, end, [this](char c) { return c == separator_ || c == '\n' || c == '\r'; });
    chars_.append(begin, stop);
    bufferBegin_ += static_cast<std::size_t>(stop - begin);
    column_ += static_cast<std::size_t>(stop - begin);
    const int c = peek();
    if (c == static_cast<unsigned char>(separator_)) {
      return;
    }
    if (c == '\n' || c == '\r' || c == endOfFile) {
      if (atLineEnd()) {
        return;
      }
      chars_.push_back(static_cast<char>(take()));
    }
  }
}

CsvReader::RecordState CsvReader::readQuoted(ProblemList& problems) {
  const TextPosition opening = bounds_.back().at;
  take();
  while (true) {
    const char* begin = buffer_.get() + bufferBegin_;
    const char* end = buffer_.get() + bufferEnd_;
    const char* stop = std::find_if(begin, end, [](char c) { return c == '"' || c == '\n'; });
    chars_.append(begin, stop);
    bufferBegin_ += static_cast<std::size_t>(stop - begin);
    column_ += static_cast<std::size_t>(stop - begin);
    // Nothing is left of the block, or a quote or line end is in front.
    if (stop == end) {
      if (peek() != endOfFile) continue;
      problems.add(path_, opening, "the quote that opens here is never closed");
      return RecordState::unterminated;
    }
    if (take() == '\n') {
      chars_.push_back('\n');
      continue;
    }
    if (peek() == '"') {
      take();
      chars_.push_back('"');
      continue;
    }
    if (peek() == static_cast<unsigned char>(separator_) || atLineEnd()) {
      return RecordState::good;
    }
    problems.add(path_, {.line = line_, .column = column_},
                 "a char stands behind a closing quote; a quote inside a quoted field is written "
                 "twice");
    skipRestOfField();
    return RecordState::damaged;
  }
}

void CsvReader::skipRestOfField() {
  while (peek() != static_cast<unsigned char>(separator_) && !atLineEnd()) {
    take();
  }
}

}  // namespace formats
