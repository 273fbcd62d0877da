// Queries in SQL over databases.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_SQL_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_SQL_H_

#include <pybind11/pybind11.h>

namespace python {

// Adds the function to the module.
void bindSql(pybind11::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_SQL_H_
