#include "bindings/python/native/driving.h"

#include <string>
#include <utility>

#include "bindings/python/native/filling.h"
#include "bindings/python/native/records.h"

namespace python {

Driving::Driving(Model* model, const Symbol& columns, const Symbol& data, Numbers keys)
    : model_(model), columns_(columns), data_(data), keys_(std::move(keys)) {
  model_->requireTie();
  model_->connection_->requireSame(*columns_.connection());
  model_->connection_->requireSame(*data_.connection());
  if (keys_.ndim() != 2 || keys_.shape(1) != data_.dimension()) {
    throw py::value_error("rows of " + std::to_string(data_.dimension()) +
                          " label numbers are expected");
  }
}

int Driving::fix(const Numbers& keys, std::span<const double> values) {
  if (keys.ndim() != 2 || keys.shape(1) != data_.dimension() ||
      static_cast<py::ssize_t>(values.size()) != keys.shape(0)) {
    throw py::value_error("rows of " + std::to_string(data_.dimension()) +
                          " label numbers and as many values are expected");
  }
  model_->requireTie();
  const Use use(*model_->connection_);
  int left = 0;
  try {
    left = write(keys, values);
  } catch (const ztb::Error&) {
    write(fixedKeys_, fixed_);
    throw;
  }
  fixedKeys_ = keys;
  fixed_.assign(values.begin(), values.end());
  return left;
}

int Driving::write(const Numbers& keys, std::span<const double> values) {
  ztb::ModelTie& tie = model_->requireTie();
  const int* const key = keys.data();
  const std::size_t positions = static_cast<std::size_t>(data_.dimension());
  clear(data_);
  Filling filling(data_);
  for (std::size_t row = 0; row < values.size(); ++row) {
    filling.add(key + row * positions, {.values = &values[row]});
  }
  if (!filling.takesContent()) {
    filling.writeContents(
        [&](std::size_t place) { return ztb::detail::Content{.values = &values[place]}; });
  }
  return tie.update(columns_.client(), ztb::Action::fix, data_.client(), ztb::Missing::base);
}

}  // namespace python
