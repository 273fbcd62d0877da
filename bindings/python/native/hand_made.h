// Objects of the extension module come out of the module. One made by hand would have no C++ object
// behind it, and a use of it would reach into nothing.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_HAND_MADE_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_HAND_MADE_H_

#include <pybind11/pybind11.h>

namespace python {

// Lets the class be called and its __new__ be used by nobody: TypeError.
template <class Class>
void refuseHandMade(pybind11::class_<Class>& type) {
  reinterpret_cast<PyTypeObject*>(type.ptr())->tp_new = [](PyTypeObject* made, PyObject*,
                                                           PyObject*) -> PyObject* {
    PyErr_Format(PyExc_TypeError, "%s objects are made by the package ztb alone", made->tp_name);
    return nullptr;
  };
}

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_HAND_MADE_H_
