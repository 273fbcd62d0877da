// The cells of one column of a batch, without its dictionary.
#ifndef ZTB_FORMATS_ARROW_COLUMN_CELLS_H_
#define ZTB_FORMATS_ARROW_COLUMN_CELLS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "formats/arrow/column_type.h"

namespace formats {

// Looks into an array that lives longer. What the array says of itself is checked as far as it can
// be: lengths and offsets, not the memory that its pointers lead to.
class ColumnCells {
 public:
  // Where they are in messages: the column, and the row of the first cell.
  struct Place {
    std::string_view column;
    std::size_t row = 0;
  };

  // Cells from `first` on. Throws ztb::Error, as all members do, with the column in its text, for
  // an array that is not of the type.
  ColumnCells(const ColumnType& type, const ArrowArray& array, std::int64_t first,
              std::size_t count, const Place& place);

  [[nodiscard]] bool isNull(std::size_t cell) const {
    return type_.kind == ColumnClass::null || (marks_ != nullptr && !bitOf(marks_, at(cell)));
  }
  [[nodiscard]] std::size_t count() const { return count_; }

  // A text, or the label that a whole number or date stands for; it may lie in `room`.
  std::string_view label(std::size_t cell, std::string& room) const;
  // A number, or the 1 and 0 of truth values. A whole number that no double is is refused.
  [[nodiscard]] double number(std::size_t cell) const;
  // A whole number, as an index into a dictionary of so many entries.
  [[nodiscard]] std::size_t index(std::size_t cell, std::size_t entries) const;
  // All numbers as they lie, where they are doubles; null otherwise.
  [[nodiscard]] const double* doubles() const;

 private:
  static bool bitOf(const std::uint8_t* bits, std::size_t place) {
    return (bits[place / 8] >> (place % 8) & 1U) != 0;
  }
  template <class T>
  [[nodiscard]] T read(std::size_t cell) const {
    return static_cast<const T*>(data_)[at(cell)];
  }
  [[nodiscard]] std::size_t at(std::size_t cell) const { return first_ + cell; }
  [[nodiscard]] std::int64_t whole(std::size_t cell) const;
  [[nodiscard]] std::uint64_t unsignedWhole(std::size_t cell) const;
  [[nodiscard]] std::string_view text(std::size_t cell) const;
  [[nodiscard]] std::string_view view(std::size_t cell) const;
  [[noreturn]] void fail(const std::string& reason) const;
  [[noreturn]] void failCell(std::size_t cell, const std::string& reason) const;

  const ColumnType& type_;
  Place place_;
  std::size_t first_;
  std::size_t count_;
  const ArrowArray* array_;
  const std::uint8_t* marks_ = nullptr;
  const void* data_ = nullptr;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_COLUMN_CELLS_H_
