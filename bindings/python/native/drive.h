// The base class of ztb's Driven: data that drive columns, as objects of the interpreter.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_DRIVE_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_DRIVE_H_

#include <pybind11/pybind11.h>

namespace python {

namespace py = pybind11;

// Adds the class to the module.
//
//   Drive(model, columns, data, keys)  the columns that a symbol drives
//     .fix(keys, values)               replaces the records of `data` by rows of label numbers in
//                                      ascending order, and fixes the columns at them; the number
//                                      of records that met nothing. What is refused leaves the
//                                      columns and the data as the last call left them.
//     .learn(kind, ...)                as KnownLabels: data with these labels are taken at once
void bindDrive(py::module_& module);

// Sets data that are an array of doubles as long as the keys of a Drive, or have labels that it
// has learnt; false, with nothing done, for others and for what is no Drive.
bool setKnown(py::handle drive, py::handle data);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_DRIVE_H_
