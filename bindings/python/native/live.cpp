#include "bindings/python/native/live.h"

#include <pybind11/stl.h>

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <ztb/model.hpp>

#include "bindings/python/native/drive.h"
#include "bindings/python/native/model.h"
#include "bindings/python/native/plain_class.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

// ---- Left -------------------------------------------------------------------------------------

struct Left {
  PyObject base;
  PyObject* tie;
  PyObject* solver;
  SolveResult result;
};

struct Steps {
  PyObject base;
  PyObject* model;
  // That of `model`; null until __init__ came to its end.
  Model* native;
  PyObject* driven;
  PyTypeObject* solutionType;
  // What the last solve left and its solver, null before the first.
  PyObject* solver;
  SolveResult result;
};

Steps& stepsOf(PyObject* self) {
  auto& steps = as<Steps>(self);
  if (steps.native == nullptr) throw py::value_error("Steps.__init__ was not called");
  return steps;
}

PyTypeObject leftType{};

void clearLeft(Left& left) {
  Py_CLEAR(left.tie);
  Py_CLEAR(left.solver);
}

void freeLeft(PyObject* self) {
  PyObject_GC_UnTrack(self);
  clearLeft(as<Left>(self));
  freeObject(self);
}

int visitLeft(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(as<Left>(self).tie);
  return 0;
}

int breakLeft(PyObject* self) {
  clearLeft(as<Left>(self));
  return 0;
}

// A field of a variable or equation as a new array.
PyObject* fieldOf(PyObject* self, PyObject* name, int number) {
  return objectOf([&]() -> PyObject* {
    const auto tie = py::reinterpret_borrow<py::object>(as<Left>(self).tie);
    if (!tie) throw py::value_error("the tie was let go");
    try {
      return stepsOf(tie.ptr()).native->field(name, number).release().ptr();
    } catch (const ztb::Error& error) {
      if (error.kind() != ztb::ErrorKind::notFound) throw;
    }
    return tie.attr("_field_of_none")(py::handle(name), number).release().ptr();
  });
}
PyObject* levels(PyObject* self, PyObject* name) {
  return fieldOf(self, name, ZTB_LEVEL);
}
PyObject* marginals(PyObject* self, PyObject* name) {
  return fieldOf(self, name, ZTB_MARGINAL);
}

std::array<PyMethodDef, 3> leftMethods{{
    {"levels", &levels, METH_O,
     "levels($self, name, /)\n--\n\n"
     "The levels of a variable or equation, in the order of its records."},
    {"marginals", &marginals, METH_O,
     "marginals($self, name, /)\n--\n\n"
     "The marginals of a variable or equation, in the order of its records."},
    {nullptr, nullptr, 0, nullptr},
}};

bool hasPoint(const SolveResult& result) {
  return result.status == ztbModelOptimal || result.status == ztbModelLocallyOptimal ||
         result.status == ztbModelFeasible;
}

PyObject* objectiveOf(const SolveResult& result) {
  return PyFloat_FromDouble(hasPoint(result) ? result.objective
                                             : std::numeric_limits<double>::quiet_NaN());
}

std::array<PyGetSetDef, 11> leftFields{{
    {"tie", [](PyObject* self, void*) { return referenceTo(as<Left>(self).tie); }, nullptr,
     "The tie that solved.", nullptr},
    {"solver", [](PyObject* self, void*) { return referenceTo(as<Left>(self).solver); }, nullptr,
     "The solver that was asked.", nullptr},
    {"_status", [](PyObject* self, void*) { return PyLong_FromLong(as<Left>(self).result.status); },
     nullptr, nullptr, nullptr},
    {"_solve_status",
     [](PyObject* self, void*) { return PyLong_FromLong(as<Left>(self).result.solveStatus); },
     nullptr, nullptr, nullptr},
    {"has_point",
     [](PyObject* self, void*) { return PyBool_FromLong(hasPoint(as<Left>(self).result) ? 1 : 0); },
     nullptr, "Whether there is a point: a best one, or one that a limit left.", nullptr},
    {"objective", [](PyObject* self, void*) { return objectiveOf(as<Left>(self).result); }, nullptr,
     "The objective of the point; NaN where there is none.", nullptr},
    {"bound", [](PyObject* self, void*) { return PyFloat_FromDouble(as<Left>(self).result.bound); },
     nullptr, "What no objective can be better than, as far as the solve knows.", nullptr},
    {"seconds",
     [](PyObject* self, void*) { return PyFloat_FromDouble(as<Left>(self).result.seconds); },
     nullptr, "The time of the solve by the clock.", nullptr},
    {"processor_seconds",
     [](PyObject* self, void*) {
       return PyFloat_FromDouble(as<Left>(self).result.processorSeconds);
     },
     nullptr, "The time that the processor took for it.", nullptr},
    {"iterations",
     [](PyObject* self, void*) { return PyFloat_FromDouble(as<Left>(self).result.iterations); },
     nullptr, "The solver's iterations.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
}};

// ---- Steps ------------------------------------------------------------------------------------

int initSteps(PyObject* self, PyObject* arguments, PyObject*) {
  return statusOf([&] {
    const auto [model, driven, solutionType] =
        py::cast<std::tuple<py::object, py::dict, py::type>>(py::handle(arguments));
    auto* const type = reinterpret_cast<PyTypeObject*>(solutionType.ptr());
    if (PyType_IsSubtype(type, &leftType) == 0) throw py::type_error("a Left is expected");
    auto& steps = as<Steps>(self);
    steps.native = py::cast<Model*>(model);
    Py_XSETREF(steps.model, model.inc_ref().ptr());
    Py_XSETREF(steps.driven, driven.inc_ref().ptr());
    Py_INCREF(type);
    Py_XSETREF(steps.solutionType, type);
    return 0;
  });
}

void clearSteps(Steps& steps) {
  steps.native = nullptr;
  Py_CLEAR(steps.model);
  Py_CLEAR(steps.driven);
  Py_CLEAR(steps.solutionType);
  Py_CLEAR(steps.solver);
}

void freeSteps(PyObject* self) {
  PyObject_GC_UnTrack(self);
  clearSteps(as<Steps>(self));
  freeObject(self);
}

int visitSteps(PyObject* self, visitproc visit, void* arg) {
  auto& steps = as<Steps>(self);
  Py_VISIT(steps.model);
  Py_VISIT(steps.driven);
  Py_VISIT(steps.solutionType);
  return 0;
}

int breakSteps(PyObject* self) {
  clearSteps(as<Steps>(self));
  return 0;
}

// What the last solve left as a new object, or None.
PyObject* solutionOf(PyObject* self) {
  const auto& steps = as<Steps>(self);
  if (steps.solver == nullptr) Py_RETURN_NONE;
  PyObject* const made = steps.solutionType->tp_alloc(steps.solutionType, 0);
  if (made == nullptr) return nullptr;
  auto& left = as<Left>(made);
  left.tie = referenceTo(self);
  left.solver = referenceTo(steps.solver);
  left.result = steps.result;
  return made;
}

// self._solve(solver, progress=None, every=..., options=(), time_limit=None), all by place.
PyObject* solve(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return objectOf([&]() -> PyObject* {
    auto& steps = stepsOf(self);
    if (count != 1 && count != 5) throw py::type_error("one or five arguments are expected");
    Model& model = *steps.native;
    PyObject* const solver = arguments[0];
    const auto leave = [&](const SolveResult& result) {
      steps.result = result;
      Py_XSETREF(steps.solver, referenceTo(solver));
    };
    try {
      if (count == 1) {
        leave(model.solve(solver, {}));
      } else {
        const py::handle progress(arguments[1]);
        leave(model.solve(
            solver, {.progress = progress.is_none() ? py::handle() : progress,
                     .every = py::cast<double>(py::handle(arguments[2])),
                     .options = py::cast<SolveSettings::Options>(py::handle(arguments[3])),
                     .timeLimit = py::cast<std::optional<std::string>>(py::handle(arguments[4]))}));
      }
    } catch (const ztb::Error&) {
      throw;  // there was no solve that left something
    } catch (...) {
      leave(model.result());
      throw;
    }
    return solutionOf(self);
  });
}

// self[name] = data
int setData(PyObject* self, PyObject* name, PyObject* data) {
  return statusOf([&] {
    if (data == nullptr) throw py::type_error("the data of a model cannot be deleted");
    const auto& steps = stepsOf(self);
    // Held, because another thread may run while this one waits for its turn.
    const auto drive = py::reinterpret_borrow<py::object>(
        PyUnicode_CheckExact(name) != 0 ? PyDict_GetItemWithError(steps.driven, name) : nullptr);
    if (drive && setKnown(drive, data)) return 0;
    if (PyErr_Occurred() != nullptr) throw py::error_already_set();
    py::handle(self).attr("set")(py::handle(name), py::handle(data));
    return 0;
  });
}

std::array<PyMethodDef, 2> stepsMethods{
    {{"_solve", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(&solve)), METH_FASTCALL,
      nullptr},
     {nullptr, nullptr, 0, nullptr}}};

std::array<PyGetSetDef, 2> stepsFields{{
    {"_solution", [](PyObject* self, void*) { return solutionOf(self); }, nullptr, nullptr,
     nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
}};

PyMappingMethods stepsMapping = {nullptr, nullptr, &setData};

PyTypeObject stepsType{};

}  // namespace

void bindLive(py::module_& module) {
  bindDrive(module);
  leftType.tp_methods = leftMethods.data();
  leftType.tp_getset = leftFields.data();
  addPlainClass(module, {leftType, "ztb._native.Left", sizeof(Left), nullptr, &freeLeft, &visitLeft,
                         &breakLeft});
  stepsType.tp_methods = stepsMethods.data();
  stepsType.tp_getset = stepsFields.data();
  stepsType.tp_as_mapping = &stepsMapping;
  addPlainClass(module, {stepsType, "ztb._native.Steps", sizeof(Steps), &initSteps, &freeSteps,
                         &visitSteps, &breakSteps});
}

}  // namespace python
