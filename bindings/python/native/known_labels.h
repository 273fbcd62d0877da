// The labels of a series or frame, by which the next one is told to have the same ones without a
// call into pandas, which takes microseconds of a new frame's first uses.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_KNOWN_LABELS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_KNOWN_LABELS_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "bindings/python/native/symbol.h"

namespace python {

namespace py = pybind11;

// What was learnt of data of one kind. Addresses stand for labels: those of objects that are held
// belong to no others. Data that pandas keeps in another way than was learnt are not known.
class KnownLabels {
 public:
  // An index that was seen: itself, and where it is one of objects these as bytes, else none.
  // Indexes of one level alone are: their names say nothing.
  using Index = std::tuple<py::object, std::optional<py::bytes>>;
  // In which array of a frame a column lies, in which row of that, and its number.
  using Place = std::tuple<py::ssize_t, py::ssize_t, py::ssize_t>;
  // A column of labels, which are objects: its place, the objects as an array, and as bytes.
  using Column = std::tuple<Place, py::object, py::bytes>;

  // `kind` is the class of the data. `index` is none where columns hold the labels; a series has no
  // heads and no place. `keys` are label numbers in ascending order, `order` the row of each where
  // that is another.
  KnownLabels(py::type kind, std::optional<Index> index, std::optional<Index> heads,
              std::vector<Column> columns, std::optional<Place> place, Numbers keys,
              const std::optional<py::array_t<py::ssize_t>>& order);

  // Numbers in the order of the keys, and what they stand in.
  struct Found {
    std::span<const double> values;
    py::object array;
    std::vector<double> copied;
  };

  // The numbers of data that have these labels; nothing for all other data. Leaves no error.
  [[nodiscard]] std::optional<Found> valuesOf(py::handle data) const;
  [[nodiscard]] const Numbers& keys() const { return keys_; }

 private:
  [[nodiscard]] Found found(py::object array, const char* first, py::ssize_t stride) const;

  py::type kind_;
  std::optional<Index> index_;
  std::optional<Index> heads_;
  std::vector<Column> columns_;
  std::optional<Place> place_;
  Numbers keys_;
  std::vector<py::ssize_t> order_;
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_KNOWN_LABELS_H_
