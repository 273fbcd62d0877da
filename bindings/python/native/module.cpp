// The extension module ztb._native: thin classes over the exported names, from which the Python
// package makes its mappings, arrays and frames.

#include <pybind11/pybind11.h>

#include <exception>
#include <utility>

#include "bindings/python/native/database.h"
#include "bindings/python/native/left_work.h"
#include "bindings/python/native/strings.h"
#include "bindings/python/native/symbol.h"

namespace python {
namespace {

// Raises an exception class of the package, with the library's text, fit for a terminal and as it
// is, and the operation's name.
void raise(const char* className, const ztb::Error& error) {
  const py::object type = py::module_::import("ztb.errors").attr(className);
  const py::object exception =
      type(toPython(error.what()), error.operation(), toPython(error.text()));
  PyErr_SetObject(type.ptr(), exception.ptr());
}

void translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const NotFound& error) {
    raise("NotFoundError", error);
  } catch (const ztb::Error& error) {
    raise("Error", error);
  }
}

}  // namespace
}  // namespace python

PYBIND11_MODULE(_native, module) {
  module.doc() = "Thin classes over the exported names of the database library.";
  pybind11::register_exception_translator(&python::translate);
  python::bindSymbol(module);
  python::bindNewLabels(module);
  python::bindDatabase(module);
  pybind11::module_::import("atexit").attr("register")(
      pybind11::cpp_function(&python::awaitLeftWork));
}
