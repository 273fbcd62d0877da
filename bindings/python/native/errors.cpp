#include "bindings/python/native/errors.h"

#include <pybind11/pybind11.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>
#include <ztb/ztb.hpp>

#include "bindings/python/native/strings.h"

namespace python {

namespace {

// The class of the package that a kind of failure becomes.
const char* classOf(ztb::ErrorKind kind) {
  switch (kind) {
    case ztb::ErrorKind::notFound:
      return "NotFoundError";
    case ztb::ErrorKind::noFile:
      return "MissingFileError";
    case ztb::ErrorKind::damagedFile:
      return "DamagedFileError";
    default:
      return "Error";
  }
}

void raise(const char* className, const ztb::Error& error) {
  const py::object type = py::module_::import("ztb.errors").attr(className);
  const py::object exception =
      type(toPython(error.what()), error.operation(), toPython(error.text()));
  PyErr_SetObject(type.ptr(), exception.ptr());
}

}  // namespace

void translateError(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const ztb::Error& error) {
    raise(classOf(error.kind()), error);
  }
}

void setError(std::exception_ptr thrown) noexcept {
  try {
    try {
      translateError(thrown);
    } catch (py::error_already_set& error) {
      error.restore();
    } catch (const py::builtin_exception& error) {
      error.set_error();
    } catch (const std::bad_alloc&) {
      PyErr_NoMemory();
    } catch (const std::invalid_argument& error) {
      PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const std::exception& error) {
      PyErr_SetString(PyExc_RuntimeError, error.what());
    }
  } catch (...) {
    PyErr_SetString(PyExc_RuntimeError, "the error has no text");
  }
}

}  // namespace python
