// What a live step passes through: the base classes of ztb's Tie and Solution, and that of Driven.
//
// They are plain classes of the interpreter, not pybind11's: a step on a small model takes ten
// microseconds, and each call through pybind11 or a method written in Python would add a fiftieth.
// What is not the ordinary case of a step is passed on to the Python layer.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_LIVE_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_LIVE_H_

#include <pybind11/pybind11.h>

namespace python {

namespace py = pybind11;

// Adds the classes to the module, with Drive.
//
//   Steps(model, driven, solution_type)  `driven` is a dict of Drives by name
//     [name] = data                      an array of doubles as long as a known Drive's keys, and
//                                        data with labels that it has learnt, go in at once; all
//                                        else is passed on to self.set(name, data)
//     ._solve(solver, ...)               Model::solve, and a new solution_type of what it left
//     ._solution                         what the last solve left, or None
//   Left                                 what a solve left: its numbers, and .levels(name) and
//                                        .marginals(name) of the latest solution; a name that the
//                                        model does not have is passed on to
//                                        tie._field_of_none(name, number)
void bindLive(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_LIVE_H_
