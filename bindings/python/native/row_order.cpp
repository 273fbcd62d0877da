#include "bindings/python/native/row_order.h"

#include <algorithm>
#include <bit>
#include <compare>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace python {

namespace {

// A row with its whole key as one number.
struct PackedRow {
  std::uint64_t key;
  std::uint32_t row;
};

}  // namespace

RowOrder::RowOrder(const int* keys, std::size_t rows, std::size_t positions, int labels) {
  if (rows > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("more rows than a symbol can hold");
  }
  const auto compare = [=](std::size_t left, std::size_t right) {
    return std::lexicographical_compare_three_way(
        keys + left * positions, keys + (left + 1) * positions, keys + right * positions,
        keys + (right + 1) * positions);
  };
  for (std::size_t row = 1; row < rows; ++row) {
    if (std::is_gt(compare(row - 1, row))) {
      sort(keys, rows, positions, labels);
      break;
    }
  }
  for (std::size_t place = 1; place < rows && !duplicate_; ++place) {
    if (std::is_eq(compare(row(place - 1), row(place)))) {
      duplicate_ = row(place);
    }
  }
}

void RowOrder::sort(const int* keys, std::size_t rows, std::size_t positions, int labels) {
  const auto bits = static_cast<std::size_t>(std::bit_width(static_cast<unsigned>(labels)));
  order_.resize(rows);
  if (bits * positions > std::numeric_limits<std::uint64_t>::digits) {
    std::iota(order_.begin(), order_.end(), 0U);
    std::ranges::stable_sort(order_, [=](std::size_t left, std::size_t right) {
      return std::lexicographical_compare(keys + left * positions, keys + (left + 1) * positions,
                                          keys + right * positions, keys + (right + 1) * positions);
    });
    return;
  }
  std::vector<PackedRow> packed(rows);
  for (std::size_t row = 0; row < rows; ++row) {
    std::uint64_t key = 0;
    for (std::size_t position = 0; position < positions; ++position) {
      key = (key << bits) | static_cast<std::uint64_t>(keys[row * positions + position]);
    }
    packed[row] = {.key = key, .row = static_cast<std::uint32_t>(row)};
  }
  std::ranges::sort(packed, [](const PackedRow& left, const PackedRow& right) {
    return left.key != right.key ? left.key < right.key : left.row < right.row;
  });
  std::ranges::transform(packed, order_.begin(), &PackedRow::row);
}

}  // namespace python
