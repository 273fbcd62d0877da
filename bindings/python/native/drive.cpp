#include "bindings/python/native/drive.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <array>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "bindings/python/native/driving.h"
#include "bindings/python/native/known_labels.h"
#include "bindings/python/native/model.h"
#include "bindings/python/native/plain_class.h"

namespace python {

namespace {

struct DriveState {
  Driving driving;
  // Null until something was learnt.
  std::shared_ptr<const KnownLabels> known;
};

struct Drive {
  PyObject base;
  PyObject* model;
  // Null until __init__ came to its end.
  DriveState* state;
};

int initDrive(PyObject* self, PyObject* arguments, PyObject*) {
  return statusOf([&] {
    const auto [model, columns, data, keys] =
        py::cast<std::tuple<py::object, Symbol*, Symbol*, Numbers>>(py::handle(arguments));
    auto& drive = as<Drive>(self);
    if (drive.state != nullptr) throw py::value_error("Drive.__init__ was called before");
    drive.state = new DriveState{Driving(py::cast<Model*>(model), *columns, *data, keys), nullptr};
    drive.model = py::object(model).release().ptr();
    return 0;
  });
}

void freeDrive(PyObject* self) {
  auto& drive = as<Drive>(self);
  PyObject_GC_UnTrack(self);
  delete std::exchange(drive.state, nullptr);
  Py_CLEAR(drive.model);
  freeObject(self);
}

int visitDrive(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(as<Drive>(self).model);
  return 0;
}

DriveState& stateOf(PyObject* self) {
  DriveState* const state = as<Drive>(self).state;
  if (state == nullptr) throw py::value_error("Drive.__init__ was not called");
  return *state;
}

PyObject* fix(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return objectOf([&]() -> PyObject* {
    if (count != 2) throw py::type_error("keys and values are expected");
    Driving& driving = stateOf(self).driving;
    const auto keys = py::cast<Numbers>(py::handle(arguments[0]));
    const auto values = py::cast<Values>(py::handle(arguments[1]));
    return PyLong_FromLong(
        driving.fix(keys, {values.data(), static_cast<std::size_t>(values.size())}));
  });
}

PyObject* learn(PyObject* self, PyObject* arguments) {
  return objectOf([&]() -> PyObject* {
    using Learnt =
        std::tuple<py::type, std::optional<KnownLabels::Index>, std::optional<KnownLabels::Index>,
                   std::vector<KnownLabels::Column>, std::optional<KnownLabels::Place>, Numbers,
                   std::optional<py::array_t<py::ssize_t>>>;
    stateOf(self).known = std::make_shared<const KnownLabels>(
        std::make_from_tuple<KnownLabels>(py::cast<Learnt>(py::handle(arguments))));
    Py_RETURN_NONE;
  });
}

std::array<PyMethodDef, 3> driveMethods{
    {{"fix", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(&fix)), METH_FASTCALL,
      nullptr},
     {"learn", &learn, METH_VARARGS, nullptr},
     {nullptr, nullptr, 0, nullptr}}};

PyTypeObject driveType{};

// Whether the array is an ordinary one of so many doubles in order.
bool isPlain(const py::array& array, std::size_t count) {
  static PyObject* const doubles = py::dtype::of<double>().release().ptr();
  constexpr int asked = int{py::array::c_style} | int{py::detail::npy_api::NPY_ARRAY_ALIGNED_};
  return py::detail::array_proxy(array.ptr())->descr == doubles &&
         (array.flags() & asked) == asked && static_cast<std::size_t>(array.size()) == count;
}

}  // namespace

bool setKnown(py::handle drive, py::handle data) {
  if (PyObject_TypeCheck(drive.ptr(), &driveType) == 0) return false;
  DriveState& state = stateOf(drive.ptr());
  Driving& driving = state.driving;
  if (Py_TYPE(data.ptr()) == py::detail::npy_api::get().PyArray_Type_) {
    const auto array = py::reinterpret_borrow<py::array>(data);
    if (!isPlain(array, driving.count())) return false;
    driving.fix(driving.keys(), {static_cast<const double*>(array.data()), driving.count()});
    return true;
  }
  // Held, because pandas may let another thread run.
  const std::shared_ptr<const KnownLabels> known = state.known;
  if (!known) return false;
  const auto found = known->valuesOf(data);
  if (!found) return false;
  driving.fix(known->keys(), found->values);
  return true;
}

void bindDrive(py::module_& module) {
  driveType.tp_methods = driveMethods.data();
  addPlainClass(module, {driveType, "ztb._native.Drive", sizeof(Drive), &initDrive, &freeDrive,
                         &visitDrive, nullptr});
}

}  // namespace python
