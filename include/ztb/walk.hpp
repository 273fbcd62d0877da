// Walks over the records of a symbol, by handle and by numbers.
#ifndef ZTB_WALK_HPP_
#define ZTB_WALK_HPP_

#include <ztb/types.h>

#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>
#include <ztb/cpp20.hpp>
#include <ztb/record.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// One pass over records by handle, in the order of the symbol:
//   for (ztb::Record& record : symbol.records()) { ... record.key(0) ... record.level() ... }
// One handle serves the whole walk. begin() may be called once. On the way, records may be changed
// and added; one added behind the place of the walk is still met. Removing the record of the walk
// through it steps to the next one, so that the loop passes that over; removing others ends a walk
// over a vector or trie with ztb::Error. Symbol::removeIf removes while walking.
class Records {
 public:
  class Iterator {
   public:
    using value_type = Record;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Records& records) noexcept : records_(&records) {}
    Record& operator*() const noexcept { return records_->record_; }
    Record* operator->() const noexcept { return &records_->record_; }
    Iterator& operator++() {
      records_->atEnd_ = !records_->record_.moveNext();
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return records_->atEnd_; }

   private:
    Records* records_;
  };

  // A walk from first on; none at all if first holds no handle.
  explicit Records(Record first) noexcept
      : record_(std::move(first)), atEnd_(record_.handle() == nullptr) {}

  [[nodiscard]] Iterator begin() noexcept { return Iterator(*this); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  Record record_;
  bool atEnd_;
};

// What a walk by numbers shows of a record: label numbers, one for each position, and values: five
// for a variable or equation, one for a parameter, one without meaning for a set, none for the
// universe. Valid until the walk steps on.
struct Row {
  std::span<const int> keys;
  std::span<const double> values;
};

// One pass over records by numbers, the fastest way to read:
//   for (auto [keys, values] : symbol.rows()) { ... values[0] ... }
// Two calls of the library a record, no allocation. begin() may be called once.
class Rows {
 public:
  class Iterator {
   public:
    using value_type = Row;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Rows& rows) noexcept : rows_(&rows) {}
    Row operator*() const noexcept { return rows_->row(); }
    Iterator& operator++() {
      rows_->step();
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return rows_->atEnd_; }

    // The handle under the walk, for what numbers do not tell, such as texts.
    [[nodiscard]] Record& record() const noexcept { return rows_->record_; }

   private:
    Rows* rows_;
  };

  // A walk from first on, over records of keyCount positions and valueCount values.
  Rows(Record first, std::size_t keyCount, std::size_t valueCount)
      : record_(std::move(first)),
        keyCount_(keyCount),
        valueCount_(valueCount),
        atEnd_(record_.handle() == nullptr) {
    read();
  }

  [[nodiscard]] Iterator begin() noexcept { return Iterator(*this); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  [[nodiscard]] Row row() const noexcept {
    return {.keys = {keys_.data(), keyCount_}, .values = {values_.data(), valueCount_}};
  }
  void step() {
    atEnd_ = !record_.moveNext();
    read();
  }
  void read() {
    if (!atEnd_) {
      record_.raw(keys_.data(), values_.data());
    }
  }

  Record record_;
  std::array<int, ZTB_MAX_DIMENSION> keys_{};
  std::array<double, fieldCount> values_{};
  std::size_t keyCount_;
  std::size_t valueCount_;
  bool atEnd_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_WALK_HPP_
