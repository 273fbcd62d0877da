// Data that drive columns of a model, again and again.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_DRIVING_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_DRIVING_H_

#include <cstddef>
#include <span>
#include <vector>

#include "bindings/python/native/model.h"
#include "bindings/python/native/symbol.h"

namespace python {

// The columns of a model that a symbol drives, and the parameter that holds its data.
class Driving {
 public:
  // `keys` are the label numbers of the columns, a row for each, in ascending order. `model` has to
  // be tied, and to stay where it is.
  Driving(Model* model, const Symbol& columns, const Symbol& data, Numbers keys);

  [[nodiscard]] const Numbers& keys() const { return keys_; }
  [[nodiscard]] std::size_t count() const { return static_cast<std::size_t>(keys_.shape(0)); }

  // Replaces the records of the data, by rows of label numbers in ascending order, and fixes the
  // columns at them, those without a record at what the model has. The number of the records that
  // met nothing. Where a value is refused, columns and data are as the last call left them.
  int fix(const Numbers& keys, std::span<const double> values);

 private:
  int write(const Numbers& keys, std::span<const double> values);

  Model* model_;
  Symbol columns_;
  Symbol data_;
  Numbers keys_;
  // What stands in the model.
  Numbers fixedKeys_;
  std::vector<double> fixed_;
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_DRIVING_H_
