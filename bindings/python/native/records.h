// Records one at a time, by their labels.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_RECORDS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_RECORDS_H_

#include <array>

#include "bindings/python/native/symbol.h"

namespace python {

// Level, marginal, lower, upper, scale.
using FieldValues = std::array<double, ztb::fieldCount>;

// Throws ValueError unless the symbol can have records: an alias has none, and a new record of a
// variable or equation takes its values from the subtype.
void requireRecords(const Symbol& symbol);
// Throws ValueError unless the symbol is a set.
void requireSet(const Symbol& symbol);

// Removes all records; those of a file that were not read yet never will be.
void clear(const Symbol& symbol);

// All that follow take the labels of a record as a tuple with one for each position, and throw
// an Error of kind notFound where there is no such record, unless they make it. On every store they
// do what they do on the tree map, or throw before anything has changed, labels included.

// The values of a record: one for a set or parameter, five for a variable or equation.
py::tuple recordValues(const Symbol& symbol, const py::tuple& labels);
// The explanatory text of a set record.
py::str recordText(const Symbol& symbol, const py::tuple& labels);
bool hasRecord(const Symbol& symbol, const py::tuple& labels);

// Makes the record if it is not there, and writes the first of its values, as many as are given.
void putRecord(const Symbol& symbol, const py::tuple& labels, const py::tuple& values);
void putText(const Symbol& symbol, const py::tuple& labels, const py::str& text);
void removeRecord(const Symbol& symbol, const py::tuple& labels);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_RECORDS_H_
