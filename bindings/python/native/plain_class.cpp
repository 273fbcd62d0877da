#include "bindings/python/native/plain_class.h"

#include <string>

namespace python {

namespace {

PyObject* refuseNew(PyTypeObject* made, PyObject*, PyObject*) {
  PyErr_Format(PyExc_TypeError, "%s objects are made by the package ztb alone", made->tp_name);
  return nullptr;
}

}  // namespace

PyObject* referenceTo(PyObject* object) {
  PyObject* const there = object == nullptr ? Py_None : object;
  Py_INCREF(there);
  return there;
}

void freeObject(PyObject* self) {
  Py_TYPE(self)->tp_free(self);
}

void addPlainClass(py::module_& module, const PlainClass& made) {
  PyTypeObject& type = made.type;
  Py_SET_REFCNT(reinterpret_cast<PyObject*>(&type), 1);
  type.tp_name = made.name;
  type.tp_basicsize = static_cast<Py_ssize_t>(made.size);
  type.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC;
  type.tp_init = made.init;
  type.tp_new = made.init == nullptr ? &refuseNew : &PyType_GenericNew;
  type.tp_dealloc = made.free;
  type.tp_traverse = made.visit;
  type.tp_clear = made.clear;
  if (PyType_Ready(&type) != 0) throw py::error_already_set();
  const std::string name(made.name);
  module.add_object(name.substr(name.rfind('.') + 1).c_str(), reinterpret_cast<PyObject*>(&type));
}

}  // namespace python
