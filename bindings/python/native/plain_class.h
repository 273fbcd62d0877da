// Classes of the interpreter's own kind, for what a few of pybind11's calls would slow down.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_PLAIN_CLASS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_PLAIN_CLASS_H_

#include <pybind11/pybind11.h>

#include <cstddef>
#include <exception>

#include "bindings/python/native/errors.h"

namespace python {

namespace py = pybind11;

// What `body` gives, an object or 0; nothing and -1 where it throws, with the error set.
template <class Body>
PyObject* objectOf(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    setError(std::current_exception());
    return nullptr;
  }
}
template <class Body>
int statusOf(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    setError(std::current_exception());
    return -1;
  }
}

template <class Object>
Object& as(PyObject* object) {
  return *reinterpret_cast<Object*>(object);
}

// A reference to an object, or to None in place of one that was let go.
PyObject* referenceTo(PyObject* object);

// Frees an object whose fields were let go.
void freeObject(PyObject* self);

// What a class is made of beside its methods, fields and mapping, which its type has already.
// Without `init` its objects are made by the package alone. `clear` may be null.
struct PlainClass {
  PyTypeObject& type;
  const char* name;
  std::size_t size;
  initproc init;
  destructor free;
  traverseproc visit;
  inquiry clear;
};

// Adds a class, of which others can be made, to the module.
void addPlainClass(py::module_& module, const PlainClass& made);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_PLAIN_CLASS_H_
