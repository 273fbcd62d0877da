// Records one at a time, by their labels.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_RECORDS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_RECORDS_H_

#include "bindings/python/native/symbol.h"

namespace python {

// All take the labels of a record as a tuple with one for each position, and throw NotFound where
// there is no such record, unless they make it.

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
