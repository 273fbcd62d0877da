// Strings between Python and the library. Names, labels and texts are bytes to the library; Python
// sees them as UTF-8, and any other byte as a surrogate escape, so that each comes back as it was.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_STRINGS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_STRINGS_H_

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>

namespace python {

namespace py = pybind11;

py::str toPython(std::string_view bytes);

// Throws TypeError for anything but a str, and ValueError for one with a null char in it.
std::string fromPython(py::handle text);

// A file name, as a str or path object.
std::string pathFromPython(py::handle path);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_STRINGS_H_
