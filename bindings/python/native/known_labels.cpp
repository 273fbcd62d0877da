#include "bindings/python/native/known_labels.h"

#include <pybind11/stl.h>

#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace python {

namespace {

using py::ssize_t;

// Thrown where data are kept otherwise than was learnt.
class Otherwise {};

// The names of attributes, made once.
struct Names {
  PyObject* manager = PyUnicode_InternFromString("_mgr");
  PyObject* axes = PyUnicode_InternFromString("axes");
  PyObject* blocks = PyUnicode_InternFromString("blocks");
  PyObject* places = PyUnicode_InternFromString("_mgr_locs");
  PyObject* indexer = PyUnicode_InternFromString("indexer");
  PyObject* values = PyUnicode_InternFromString("values");
  PyObject* data = PyUnicode_InternFromString("_data");
};
const Names& names() {
  static const Names made;
  return made;
}

py::object attribute(py::handle object, PyObject* name) {
  PyObject* const found = PyObject_GenericGetAttr(object.ptr(), name);
  if (found == nullptr) {
    PyErr_Clear();
    throw Otherwise();
  }
  return py::reinterpret_steal<py::object>(found);
}

// An element of a list or tuple, borrowed.
py::handle element(py::handle sequence, ssize_t place) {
  const bool isList = PyList_CheckExact(sequence.ptr());
  if (!isList && !PyTuple_CheckExact(sequence.ptr())) throw Otherwise();
  const ssize_t size = isList ? PyList_GET_SIZE(sequence.ptr()) : PyTuple_GET_SIZE(sequence.ptr());
  if (place < 0 || place >= size) throw Otherwise();
  return isList ? PyList_GET_ITEM(sequence.ptr(), place) : PyTuple_GET_ITEM(sequence.ptr(), place);
}

const py::detail::PyArray_Proxy& plainArray(py::handle array, PyObject* type, int dimensions) {
  const auto& found = *py::detail::array_proxy(array.ptr());
  if (Py_TYPE(array.ptr()) != py::detail::npy_api::get().PyArray_Type_ || found.descr != type ||
      found.nd != dimensions) {
    throw Otherwise();
  }
  return found;
}

PyObject* doubles() {
  static PyObject* const type = py::dtype::of<double>().release().ptr();
  return type;
}
PyObject* places() {
  static PyObject* const type = py::dtype::of<ssize_t>().release().ptr();
  return type;
}
PyObject* objects() {
  static PyObject* const type = py::dtype("O").release().ptr();
  return type;
}

// Whether so many objects are those of `bytes`.
bool sameObjects(const char* first, ssize_t stride, ssize_t count, const py::bytes& bytes) {
  const auto held = static_cast<std::string_view>(bytes);
  constexpr auto kSize = static_cast<ssize_t>(sizeof(PyObject*));
  if (held.size() != static_cast<std::size_t>(count * kSize)) return false;
  if (stride == kSize) return std::memcmp(first, held.data(), held.size()) == 0;
  for (ssize_t k = 0; k < count; ++k) {
    if (std::memcmp(first + k * stride, held.data() + k * kSize, sizeof(PyObject*)) != 0) {
      return false;
    }
  }
  return true;
}

// Whether an index is the one that was seen, or has the very same objects.
bool isIndex(py::handle index, const KnownLabels::Index& seen) {
  const auto& [first, labels] = seen;
  if (index.is(first)) return true;
  if (!labels || Py_TYPE(index.ptr()) != Py_TYPE(first.ptr())) return false;
  const py::object data = attribute(index, names().data);
  const auto& array = plainArray(data, objects(), 1);
  return sameObjects(array.data, array.strides[0], array.dimensions[0], *labels);
}

// The number of the column that stands in a row of an array, whose columns are a slice or an array.
ssize_t columnAt(py::handle columns, ssize_t row) {
  if (PySlice_Check(columns.ptr()) == 0) {
    const auto& array = plainArray(columns, places(), 1);
    if (row >= array.dimensions[0]) throw Otherwise();
    ssize_t column = 0;
    std::memcpy(&column, array.data + row * array.strides[0], sizeof column);
    return column;
  }
  ssize_t start = 0;
  ssize_t stop = 0;
  ssize_t step = 0;
  if (PySlice_Unpack(columns.ptr(), &start, &stop, &step) != 0) {
    PyErr_Clear();
    throw Otherwise();
  }
  return start + row * step;
}

// The array of a frame that has a column at this place of it.
py::object arrayAt(py::handle blocks, const KnownLabels::Place& place) {
  const auto [number, row, column] = place;
  const py::handle block = element(blocks, number);
  const py::object columns = attribute(attribute(block, names().places), names().indexer);
  if (columnAt(columns, row) != column) throw Otherwise();
  return attribute(block, names().values);
}

// The first number or object of a row of an array of a frame.
const char* rowOf(const py::detail::PyArray_Proxy& array, ssize_t row) {
  if (row >= array.dimensions[0]) throw Otherwise();
  return array.data + row * array.strides[0];
}

}  // namespace

KnownLabels::KnownLabels(py::type kind, std::optional<Index> index, std::optional<Index> heads,
                         std::vector<Column> columns, std::optional<Place> place, Numbers keys,
                         const std::optional<py::array_t<ssize_t>>& order)
    : kind_(std::move(kind)),
      index_(std::move(index)),
      heads_(std::move(heads)),
      columns_(std::move(columns)),
      place_(place),
      keys_(std::move(keys)) {
  if (heads_.has_value() != place_.has_value() || (!index_ && columns_.empty())) {
    throw py::value_error("an index or columns of labels are expected, and of a frame its heads");
  }
  if (order) order_.assign(order->data(), order->data() + order->size());
  if (order && order->size() != keys_.shape(0)) throw py::value_error("an order of all keys");
  for (const ssize_t row : order_) {
    if (row < 0 || row >= keys_.shape(0)) throw py::value_error("an order of the keys");
  }
}

std::optional<KnownLabels::Found> KnownLabels::valuesOf(py::handle data) const {
  if (Py_TYPE(data.ptr()) != reinterpret_cast<PyTypeObject*>(kind_.ptr())) return std::nullopt;
  try {
    const py::object manager = attribute(data, names().manager);
    const py::object axes = attribute(manager, names().axes);
    // A frame's columns come first.
    const ssize_t at = heads_ ? 1 : 0;
    if (index_ && !isIndex(element(axes, at), *index_)) return std::nullopt;
    if (heads_ && !isIndex(element(axes, 0), *heads_)) return std::nullopt;
    const py::object blocks = attribute(manager, names().blocks);
    for (const auto& [place, held, bytes] : columns_) {
      const py::object labels = arrayAt(blocks, place);
      const auto& array = plainArray(labels, objects(), 2);
      const char* const first = rowOf(array, std::get<1>(place));
      if (!sameObjects(first, array.strides[1], array.dimensions[1], bytes)) return std::nullopt;
    }
    const int dimensions = place_ ? 2 : 1;
    py::object holder =
        place_ ? arrayAt(blocks, *place_) : attribute(element(blocks, 0), names().values);
    const auto& array = plainArray(holder, doubles(), dimensions);
    if (array.dimensions[dimensions - 1] != keys_.shape(0)) return std::nullopt;
    const char* const first = place_ ? rowOf(array, std::get<1>(*place_)) : array.data;
    return found(std::move(holder), first, array.strides[dimensions - 1]);
  } catch (const Otherwise&) {
    return std::nullopt;
  }
}

KnownLabels::Found KnownLabels::found(py::object array, const char* first, ssize_t stride) const {
  Found found{.values = {}, .array = std::move(array), .copied = {}};
  const auto count = static_cast<std::size_t>(keys_.shape(0));
  const bool isAligned = reinterpret_cast<std::uintptr_t>(first) % alignof(double) == 0;
  if (order_.empty() && stride == static_cast<ssize_t>(sizeof(double)) && isAligned) {
    found.values = {static_cast<const double*>(static_cast<const void*>(first)), count};
    return found;
  }
  found.copied.resize(count);
  for (std::size_t k = 0; k < count; ++k) {
    const ssize_t row = order_.empty() ? static_cast<ssize_t>(k) : order_[k];
    std::memcpy(&found.copied[k], first + row * stride, sizeof(double));
  }
  found.values = found.copied;
  return found;
}

}  // namespace python
