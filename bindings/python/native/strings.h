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

// Throws TypeError for anything but a str.
std::string bytesOfText(py::handle text);

// Throws TypeError for anything but a str, and ValueError for one with a null char in it.
std::string fromPython(py::handle text);

// A label: a str as it is, anything else by the rule of ztb.labels, which throws TypeError for what
// no label is made from. Throws ValueError for one with a null char in it.
std::string labelFromPython(py::handle label);

// A file name, as a str or path object.
std::string pathFromPython(py::handle path);

// An explanatory text. Throws as fromPython does, and ValueError, with `place` in front, for one
// that is too long.
std::string textFromPython(py::handle text, const std::string& place);

// Throws ValueError for a label of blanks alone, which is none: a store may take it for any label.
void requireNotBlank(const std::string& label);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_STRINGS_H_
