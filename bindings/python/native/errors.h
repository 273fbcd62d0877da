// What a failure of the library becomes in Python.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_ERRORS_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_ERRORS_H_

#include <exception>

namespace python {

// For pybind11: raises an exception class of the package for ztb::Error, with the library's text,
// fit for a terminal and as it is, and the operation's name. Anything else goes on.
void translateError(std::exception_ptr thrown);

// Sets the interpreter's error for what was thrown, of whatever kind: in functions that pybind11
// does not call.
void setError(std::exception_ptr thrown) noexcept;

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_ERRORS_H_
