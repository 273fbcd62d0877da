// Many records at once, as rows of label numbers and values.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_ROWS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_ROWS_H_

#include <optional>
#include <vector>

#include "bindings/python/native/new_labels.h"
#include "bindings/python/native/symbol.h"

namespace python {

// The records in their order, `most` of them at most: label numbers, n rows of one for each
// position, and values, n rows of valueCount().
py::tuple rows(const Symbol& symbol, const std::optional<py::ssize_t>& most);
// The texts of the records of a set, in the order of its records.
py::list texts(const Symbol& symbol, const std::optional<py::ssize_t>& most);

// Replaces the records of a parameter, variable or equation by these, in any order. Values has a
// column for each of `fields`; the others take the defaults of the symbol's kind. Throws
// ValueError, with the symbol and the labels as they were, for shapes that do not fit, numbers that
// no label has, and two rows with one key. The new labels are added when all else is right.
void putRows(const Symbol& symbol, const Numbers& keys, const Values& values,
             const std::vector<int>& fields, NewLabels& newLabels);
// The same for a set, with a text for each record, or without any.
void putElements(const Symbol& symbol, const Numbers& keys, const py::object& texts,
                 NewLabels& newLabels);

// The records with a label outside its domain: label numbers, n rows, and n rows of whether the
// label at a position is outside.
py::tuple violations(const Symbol& symbol);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_ROWS_H_
