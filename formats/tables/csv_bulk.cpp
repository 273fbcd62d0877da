#include "formats/tables/csv_bulk.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "tools/files/system_files.h"
#include "tools/text/number_text.h"

namespace formats {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The end of the last record that ends in a piece which begins with one, 0 where none does. A line
// end within quotes is no end.
std::size_t lastRecordEnd(std::string_view bytes) {
  const bool quotes = bytes.find('"') != std::string_view::npos;
  bool inside = quotes && std::ranges::count(bytes, '"') % 2 != 0;
  for (std::size_t at = bytes.size(); at-- > 0;) {
    if (bytes[at] == '"') inside = !inside;
    if (bytes[at] == '\n' && !inside) return at + 1;
  }
  return 0;
}

}  // namespace

// A file that closes itself.
class CsvBulk::File {
 public:
  explicit File(const std::string& path) : file_(posix::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (file_ >= 0) posix::close(file_);
  }

  // The length of a regular file, 0 for anything else.
  [[nodiscard]] std::size_t size() const {
    posix::FileStatus status{};
    const bool regular = file_ >= 0 && posix::fstat(file_, &status) == 0 && S_ISREG(status.st_mode);
    return regular ? static_cast<std::size_t>(status.st_size) : 0;
  }
  // Whether all of it could be read.
  bool read(char* into, std::size_t size, std::size_t offset) const {
    while (size > 0) {
      const ssize_t count = posix::pread(file_, into, size, static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      into += count;
      offset += static_cast<std::size_t>(count);
      size -= static_cast<std::size_t>(count);
    }
    return true;
  }

 private:
  int file_;
};

struct CsvBulk::Chunk {
  Piece piece;
  std::size_t dictionary = 0;
  // Labels that the chunk has, in the order in which it has them first.
  std::vector<int> fresh;
};

// Chunks of a file on their way to their places.
class CsvBulk::Reading {
 public:
  Reading(CsvBulk& bulk, const File& file, const CsvBulkForm& form, tool::Progress& progress)
      : bulk_(bulk), file_(file), form_(form), progress_(progress), size_(file.size()) {}

  // What each thread does, with a dictionary of its own.
  void run(std::size_t dictionary) {
    std::vector<char> bytes;
    while (!failed_) {
      std::size_t number = 0;
      Chunk* chunk = nullptr;
      std::string_view text;
      {
        const std::lock_guard lock(mutex_);
        if (failed_ || !take(bytes, text)) return;
        number = bulk_.chunks_.size() + 1;
        chunk = bulk_.chunks_.emplace_back(std::make_unique<Chunk>()).get();
      }
      chunk->dictionary = dictionary;
      if (!parse(text, number, *bulk_.dictionaries_[dictionary], *chunk)) failed_ = true;
      rows_ += chunk->piece.rows;
      progress_.count(rows_);
    }
  }

  [[nodiscard]] bool good() const { return !failed_; }
  void fail() { failed_ = true; }

 private:
  // Reads the next chunk, which ends with a record; false behind the last, or where it gives up.
  bool take(std::vector<char>& bytes, std::string_view& text) {
    for (std::size_t length = form_.chunkBytes;; length *= 2) {
      const std::size_t count = std::min(length, size_ - offset_);
      if (count == 0) return false;
      bytes.resize(count);
      if (!file_.read(bytes.data(), count, offset_)) {
        failed_ = true;
        return false;
      }
      text = {bytes.data(), count};
      if (offset_ + count < size_) text = text.substr(0, lastRecordEnd(text));
      if (text.empty()) continue;
      const bool first = offset_ == 0;
      offset_ += text.size();
      progress_.share(static_cast<double>(offset_) / static_cast<double>(size_));
      if (!first) return true;
      if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
      if (skipHeader(text)) return true;
      failed_ = true;
      return false;
    }
  }

  bool skipHeader(std::string_view& text) const {
    Row row(form_.columnCount);
    const char* at = text.data();
    const char* const end = at + text.size();
    skipLineEnds(at, end);
    if (at == end || !readRow(at, end, row)) return false;
    text = {at, static_cast<std::size_t>(end - at)};
    return true;
  }

  // The fields of a record.
  struct Row {
    explicit Row(std::size_t columns) : fields(columns), unquoted(columns) {}
    std::vector<std::string_view> fields;
    // What fields with a doubled quote are without their quotes.
    std::vector<std::string> unquoted;
  };

  static void skipLineEnds(const char*& at, const char* end) {
    for (;;) {
      if (at != end && *at == '\n') {
        ++at;
      } else if (end - at >= 2 && *at == '\r' && at[1] == '\n') {
        at += 2;
      } else {
        return;
      }
    }
  }

  // Takes a record from the front; false for one that is unlike the header, or unusual.
  bool readRow(const char*& at, const char* end, Row& row) const {
    for (std::size_t column = 0; column < row.fields.size(); ++column) {
      if (column > 0) {
        if (at == end || *at != form_.separator) return false;
        ++at;
      }
      const bool quoted = at != end && *at == '"';
      if (!(quoted ? readQuoted(at, end, row, column) : readPlain(at, end, row, column))) {
        return false;
      }
    }
    if (at == end) return true;
    if (*at == '\r') ++at;
    if (at == end || *at != '\n') return false;
    ++at;
    return true;
  }

  bool readPlain(const char*& at, const char* end, Row& row, std::size_t column) const {
    const char* const begin = at;
    while (at != end && *at != form_.separator && *at != '\n' && *at != '\r') {
      if (*at == '"') return false;
      ++at;
    }
    row.fields[column] = {begin, static_cast<std::size_t>(at - begin)};
    return true;
  }

  static bool readQuoted(const char*& at, const char* end, Row& row, std::size_t column) {
    const char* begin = ++at;
    std::string& unquoted = row.unquoted[column];
    unquoted.clear();
    for (;;) {
      const auto* quote =
          static_cast<const char*>(std::memchr(at, '"', static_cast<std::size_t>(end - at)));
      if (quote == nullptr) return false;
      at = quote + 1;
      if (at == end || *at != '"') {
        row.fields[column] = {begin, static_cast<std::size_t>(quote - begin)};
        if (!unquoted.empty()) row.fields[column] = unquoted.append(begin, quote);
        return true;
      }
      unquoted.append(begin, at);
      begin = ++at;
    }
  }

  bool parse(std::string_view text, std::size_t number, LabelDictionary& dictionary,
             Chunk& chunk) const {
    Piece& piece = chunk.piece;
    piece.labels.resize(form_.columns.labels.size());
    piece.numbers.resize(form_.columns.numbers.size());
    Row row(form_.columnCount);
    // The label that each column had last, which often comes again.
    std::vector<int> latest(form_.columns.labels.size(), LabelDictionary::none);
    const char* at = text.data();
    const char* const end = at + text.size();
    for (skipLineEnds(at, end); at != end; skipLineEnds(at, end)) {
      if (!readRow(at, end, row)) return false;
      for (std::size_t index = 0; index < latest.size(); ++index) {
        const std::string_view field = row.fields[form_.columns.labels[index]];
        if (latest[index] == LabelDictionary::none || dictionary.label(latest[index]) != field) {
          latest[index] = dictionary.find(field);
          if (latest[index] == LabelDictionary::none) return false;
          if (dictionary.isFresh(latest[index], number)) chunk.fresh.push_back(latest[index]);
        }
        piece.labels[index].push_back(latest[index]);
      }
      for (std::size_t index = 0; index < piece.numbers.size(); ++index) {
        const std::optional<double> value = numberOf(row.fields[form_.columns.numbers[index]]);
        if (!value) return false;
        piece.numbers[index].push_back(*value);
      }
      ++piece.rows;
    }
    return true;
  }

  [[nodiscard]] std::optional<double> numberOf(std::string_view text) const {
    if (form_.decimal == '.' && !text.empty() && text.front() >= '0' && text.front() <= '9') {
      double value = 0;
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
      if (error == std::errc{} && end == text.data() + text.size()) return value;
    }
    std::string problem;
    const double value = tool::parseNumber(text, problem, form_.decimal);
    return problem.empty() ? std::optional(value) : std::nullopt;
  }

  CsvBulk& bulk_;
  const File& file_;
  const CsvBulkForm& form_;
  tool::Progress& progress_;
  std::size_t size_;
  std::mutex mutex_;
  std::size_t offset_ = 0;
  std::atomic<bool> failed_{false};
  std::atomic<std::size_t> rows_{0};
};

CsvBulk::CsvBulk() = default;
CsvBulk::~CsvBulk() = default;

bool CsvBulk::read(const std::string& path, const CsvBulkForm& form, tool::Progress& progress) {
  const File file(path);
  if (file.size() == 0) return false;
  threads_ = std::max(1U, form.threads);
  for (unsigned thread = 0; thread < threads_; ++thread) {
    dictionaries_.push_back(std::make_unique<LabelDictionary>());
  }
  Reading reading(*this, file, form, progress);
  const auto work = [&reading](std::size_t dictionary) {
    try {
      reading.run(dictionary);
    } catch (...) {
      // Without the memory for it the rows are read one by one.
      reading.fail();
    }
  };
  {
    std::vector<std::jthread> helpers;
    for (unsigned thread = 1; thread < threads_; ++thread) helpers.emplace_back(work, thread);
    work(0);
  }
  return reading.good();
}

void CsvBulk::numberLabels(const std::function<int(const std::string& label)>& number) {
  for (const auto& dictionary : dictionaries_) dictionary->numbers.assign(dictionary->size(), 0);
  for (const auto& chunk : chunks_) {
    LabelDictionary& dictionary = *dictionaries_[chunk->dictionary];
    for (const int label : chunk->fresh) {
      int& known = dictionary.numbers[static_cast<std::size_t>(label)];
      if (known == 0) known = number(dictionary.label(label));
    }
  }
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t at = next++; at < chunks_.size(); at = next++) {
      const std::vector<int>& numbers = dictionaries_[chunks_[at]->dictionary]->numbers;
      for (std::vector<int>& column : chunks_[at]->piece.labels) {
        for (int& label : column) label = numbers[static_cast<std::size_t>(label)];
      }
    }
  };
  std::vector<std::jthread> helpers;
  for (unsigned thread = 1; thread < threads_; ++thread) helpers.emplace_back(work);
  work();
}

std::size_t CsvBulk::pieceCount() const {
  return chunks_.size();
}

const CsvBulk::Piece& CsvBulk::piece(std::size_t number) const {
  return chunks_[number]->piece;
}

}  // namespace formats
