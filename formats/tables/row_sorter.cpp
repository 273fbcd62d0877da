#include "formats/tables/row_sorter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

// What a row takes while it is sorted, beside its words and a copy of them.
struct SortEntry {
  std::uint64_t first;
  std::uint32_t row;
};

constexpr std::size_t wordBytes = sizeof(std::uint64_t);
// What is read of a run at once, at most and at least.
constexpr std::size_t mostReadWords = (std::size_t{1} << 20U) / wordBytes;
constexpr std::size_t leastReadWords = (std::size_t{1} << 14U) / wordBytes;
// Rows are cut down to those that are asked for when there are so many at least.
constexpr std::size_t leastRowsToCut = 4096;

}  // namespace

RowSorter::RowSorter(std::size_t keyWords, std::size_t words, std::string folder)
    : RowSorter(keyWords, words, std::move(folder), Limits{}) {}

RowSorter::RowSorter(std::size_t keyWords, std::size_t words, std::string folder, Limits limits)
    : keyWords_(keyWords),
      words_(std::max<std::size_t>(words, 1)),
      folder_(std::move(folder)),
      limits_(limits),
      capacity_(std::clamp<std::size_t>(limits.bytes / (2 * words_ * wordBytes + sizeof(SortEntry)),
                                        2, std::numeric_limits<std::uint32_t>::max())) {}

RowSorter::~RowSorter() {
  if (file_ >= 0) posix::close(file_);
}

void RowSorter::fail(const char* what) const {
  throw tool::Failure(fmt::format("{}: a temporary file for sorting {}: {}", folder_, what,
                                  tool::systemText(errno)));
}

bool RowSorter::less(const std::uint64_t* left, const std::uint64_t* right) const {
  return std::lexicographical_compare(left, left + keyWords_, right, right + keyWords_);
}

void RowSorter::add(const std::uint64_t* row) {
  if (!bound_.empty() && !less(row, bound_.data())) return;
  if (count_ > 0 && ordered_) ordered_ = !less(row, rows_.data() + (count_ - 1) * words_);
  rows_.insert(rows_.end(), row, row + words_);
  ++count_;
  if (limits_.rows < capacity_ / 2) {
    if (count_ >= std::max(2 * limits_.rows, leastRowsToCut)) {
      sortRows(limits_.rows);
      if (limits_.rows > 0) {
        bound_.assign(rows_.end() - static_cast<std::ptrdiff_t>(words_), rows_.end());
      }
    }
  } else if (count_ == capacity_) {
    spill();
  }
}

void RowSorter::sortRows(std::size_t most) {
  if (!ordered_ && keyWords_ > 0) {
    std::vector<SortEntry> order(count_);
    for (std::size_t row = 0; row < count_; ++row) {
      order[row] = {.first = rows_[row * words_], .row = static_cast<std::uint32_t>(row)};
    }
    std::ranges::sort(order, [this](const SortEntry& left, const SortEntry& right) {
      if (left.first != right.first) return left.first < right.first;
      for (std::size_t word = 1; word < keyWords_; ++word) {
        const std::uint64_t a = rows_[left.row * words_ + word];
        const std::uint64_t b = rows_[right.row * words_ + word];
        if (a != b) return a < b;
      }
      return left.row < right.row;
    });
    std::vector<std::uint64_t> sorted;
    sorted.reserve(rows_.size());
    for (const SortEntry& entry : order) {
      const auto row = rows_.begin() + static_cast<std::ptrdiff_t>(entry.row * words_);
      sorted.insert(sorted.end(), row, row + static_cast<std::ptrdiff_t>(words_));
    }
    rows_ = std::move(sorted);
    ordered_ = true;
  }
  if (count_ > most) {
    count_ = most;
    rows_.resize(count_ * words_);
  }
}

void RowSorter::spill() {
  if (file_ < 0) {
    std::string name;
    file_ = tool::openTemporary(folder_, name);
    if (file_ < 0) fail("cannot be made");
  }
  sortRows(count_);
  runs_.push_back({.offset = fileSize_, .rowsLeft = count_, .buffer = {}, .at = 0, .end = 0});
  const char* bytes = reinterpret_cast<const char*>(rows_.data());
  for (std::size_t left = rows_.size() * wordBytes; left > 0;) {
    const ssize_t written = posix::write(file_, bytes, left);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) fail("cannot be written");
    bytes += written;
    left -= static_cast<std::size_t>(written);
    fileSize_ += static_cast<std::uint64_t>(written);
  }
  rows_.clear();
  count_ = 0;
  ordered_ = true;
}

void RowSorter::begin() {
  begun_ = true;
  if (runs_.empty()) {
    sortRows(std::min(count_, limits_.rows));
    return;
  }
  if (count_ > 0) spill();
  rows_ = {};
  const std::size_t most = std::max(leastReadWords, limits_.bytes / wordBytes / runs_.size());
  for (Run& run : runs_) {
    run.buffer.resize(std::max(std::min(most, mostReadWords) / words_, std::size_t{1}) * words_);
  }
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    if (advance(runs_[run])) heap_.push_back(run);
  }
  for (std::size_t at = heap_.size() / 2; at-- > 0;) sink(at);
}

bool RowSorter::advance(Run& run) {
  run.at += run.end == 0 ? 0 : words_;
  if (run.at < run.end) return true;
  const std::size_t rows = std::min(run.buffer.size() / words_, run.rowsLeft);
  run.at = 0;
  run.end = rows * words_;
  char* into = reinterpret_cast<char*>(run.buffer.data());
  for (std::size_t left = run.end * wordBytes; left > 0;) {
    const ssize_t got = posix::pread(file_, into, left, static_cast<off_t>(run.offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) fail("cannot be read");
    into += got;
    left -= static_cast<std::size_t>(got);
    run.offset += static_cast<std::uint64_t>(got);
  }
  run.rowsLeft -= rows;
  return rows > 0;
}

bool RowSorter::runLess(std::size_t left, std::size_t right) const {
  const std::uint64_t* a = runs_[left].buffer.data() + runs_[left].at;
  const std::uint64_t* b = runs_[right].buffer.data() + runs_[right].at;
  if (less(a, b)) return true;
  return !less(b, a) && left < right;
}

void RowSorter::sink(std::size_t at) {
  for (;;) {
    std::size_t least = at;
    for (const std::size_t child : {2 * at + 1, 2 * at + 2}) {
      if (child < heap_.size() && runLess(heap_[child], heap_[least])) least = child;
    }
    if (least == at) return;
    std::swap(heap_[at], heap_[least]);
    at = least;
  }
}

bool RowSorter::next() {
  if (!begun_) {
    begin();
  } else if (!heap_.empty()) {
    if (!advance(runs_[heap_.front()])) {
      heap_.front() = heap_.back();
      heap_.pop_back();
    }
    if (!heap_.empty()) sink(0);
  }
  if (given_ == limits_.rows) return false;
  if (runs_.empty()) {
    if (at_ == count_) return false;
    row_ = rows_.data() + words_ * at_++;
  } else {
    if (heap_.empty()) return false;
    const Run& run = runs_[heap_.front()];
    row_ = run.buffer.data() + run.at;
  }
  ++given_;
  return true;
}

}  // namespace formats
