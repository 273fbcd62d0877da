// The order in which rows of label numbers go into a store.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_ROW_ORDER_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_ROW_ORDER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace python {

// Ascending order of keys, the first position most significant: the cheapest for every store, and
// the one in which two equal keys stand side by side.
class RowOrder {
 public:
  // `keys` has `rows` times `positions` numbers from 1 to `labels`.
  RowOrder(const int* keys, std::size_t rows, std::size_t positions, int labels);

  // The row that stands at a place of the order.
  [[nodiscard]] std::size_t row(std::size_t place) const {
    return order_.empty() ? place : order_[place];
  }
  // A row whose key another row has, too.
  [[nodiscard]] std::optional<std::size_t> duplicate() const { return duplicate_; }

 private:
  void sort(const int* keys, std::size_t rows, std::size_t positions, int labels);

  // Empty when the rows stand in order already.
  std::vector<std::uint32_t> order_;
  std::optional<std::size_t> duplicate_;
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_ROW_ORDER_H_
