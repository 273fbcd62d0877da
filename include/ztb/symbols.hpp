// All symbols of a database as a range.
#ifndef ZTB_SYMBOLS_HPP_
#define ZTB_SYMBOLS_HPP_

#include <ztb/ztb.h>

#include <cstddef>
#include <iterator>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/symbol.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// The symbols of a database, aliases included, in the order in which they were made; valid as long
// as the database.
class Symbols {
 public:
  class Iterator {
   public:
    using value_type = Symbol;
    using difference_type = std::ptrdiff_t;

    Iterator() noexcept = default;
    Iterator(ztbRec* database, int position) noexcept : database_(database), position_(position) {}
    Symbol operator*() const {
      void* handle = nullptr;
      detail::require(c__ztbgetsymbolbynumber(database_, position_, &handle), database_,
                      "ztbGetSymbolByNumber");
      return {database_, handle};
    }
    Iterator& operator++() noexcept {
      ++position_;
      return *this;
    }
    Iterator operator++(int) noexcept {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator&) const noexcept = default;
    bool operator==(std::default_sentinel_t) const { return position_ >= countOf(database_); }

   private:
    ztbRec* database_ = nullptr;
    int position_ = 0;
  };

  explicit Symbols(ztbRec* database) noexcept : database_(database) {}

  [[nodiscard]] Iterator begin() const noexcept { return {database_, 0}; }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(countOf(database_)); }

 private:
  static int countOf(ztbRec* database) {
    int count = 0;
    detail::require(
        c__ztbinfo(database, ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS, &count, nullptr, nullptr), database,
        "ztbInfo");
    return count;
  }

  ztbRec* database_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_SYMBOLS_HPP_
