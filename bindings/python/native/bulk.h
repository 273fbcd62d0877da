// Many records at once: as rows of numbers, as cubes, from another symbol.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_BULK_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_BULK_H_

#include <vector>

#include "bindings/python/native/new_labels.h"
#include "bindings/python/native/symbol.h"

namespace python {

// All records in their order: label numbers, n rows of one for each position, and values, n rows of
// valueCount().
py::tuple rows(const Symbol& symbol);
// The texts of all records of a set, in the order of its records.
py::list texts(const Symbol& symbol);

// Replaces the records of a parameter, variable or equation by these, in any order. Values has a
// column for each of `fields`; the others take the defaults of the symbol's kind. Throws
// ValueError, with the symbol and the labels as they were, for shapes that do not fit, numbers that
// no label has, and two rows with one key. The new labels are added when all else is right.
void putRows(const Symbol& symbol, const Numbers& keys, const Values& values,
             const std::vector<int>& fields, NewLabels& newLabels);
// The same for a set, with a text for each record, or without any.
void putElements(const Symbol& symbol, const Numbers& keys, const py::object& texts,
                 NewLabels& newLabels);

// No cube here has more cells than an int counts: ValueError. The sizes multiply in 64 bits.

// The records at the places of their labels in a cube over one set for each position, and how many
// records were left out. The cube holds doubles, for a set the numbers of its records from 1.
py::tuple toDense(const Symbol& symbol, const std::vector<Symbol>& domains, int field);
// Replaces the records of a parameter by the cells of a cube: all, or all but zeros.
void fromDense(const Symbol& symbol, const std::vector<Symbol>& domains, const Values& cube,
               bool keepZeros);
// The same for a set, which gets a record without text for each cell that is not zero.
void elementsFromDense(const Symbol& symbol, const std::vector<Symbol>& domains,
                       const py::array_t<bool, py::array::c_style | py::array::forcecast>& cube);

// Replaces the records by those of another symbol, of any database.
void copyFrom(const Symbol& symbol, const Symbol& source);

// The records with a label outside its domain: label numbers, n rows, and n rows of whether the
// label at a position is outside.
py::tuple violations(const Symbol& symbol);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_BULK_H_
