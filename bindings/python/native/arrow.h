// Symbols as Arrow streams, out and in, through the library for tables.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_ARROW_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_ARROW_H_

#include <pybind11/pybind11.h>

namespace python {

// Adds the functions to the module.
void bindArrow(pybind11::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_ARROW_H_
