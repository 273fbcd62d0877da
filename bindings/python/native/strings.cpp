#include "bindings/python/native/strings.h"

#include <ztb/types.h>

#include <ztb/label_check.hpp>

namespace python {

namespace {

constexpr const char* encoding = "utf-8";
constexpr const char* escape = "surrogateescape";

std::string contentOf(std::string content, py::handle source) {
  if (content.find('\0') != std::string::npos) {
    throw py::value_error("a null character in " + std::string(py::repr(source)));
  }
  return content;
}

}  // namespace

py::str toPython(std::string_view bytes) {
  PyObject* text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), escape);
  if (text == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::str>(text);
}

std::string bytesOfText(py::handle text) {
  if (PyUnicode_Check(text.ptr()) == 0) {
    throw py::type_error("a str is expected, not " + std::string(py::repr(text)) + " (" +
                         Py_TYPE(text.ptr())->tp_name + ")");
  }
  if (PyUnicode_IS_ASCII(text.ptr()) != 0) {
    // Its chars are the bytes already.
    const auto* chars = static_cast<const char*>(PyUnicode_DATA(text.ptr()));
    return {chars, static_cast<std::size_t>(PyUnicode_GET_LENGTH(text.ptr()))};
  }
  PyObject* bytes = PyUnicode_AsEncodedString(text.ptr(), encoding, escape);
  if (bytes == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::bytes>(bytes);
}

std::string fromPython(py::handle text) {
  return contentOf(bytesOfText(text), text);
}

std::string labelFromPython(py::handle label) {
  if (PyUnicode_Check(label.ptr()) != 0) {
    return fromPython(label);
  }
  return fromPython(py::module_::import("ztb.labels").attr("label_text")(label));
}

std::string pathFromPython(py::handle path) {
  PyObject* bytes = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) {
    throw py::error_already_set();
  }
  return contentOf(py::reinterpret_steal<py::bytes>(bytes), path);
}

std::string textFromPython(py::handle text, const std::string& place) {
  std::string bytes = fromPython(text);
  if (bytes.size() > ZTB_MAX_TEXT_LENGTH) {
    throw py::value_error(place + "a text of " + std::to_string(bytes.size()) + " bytes, at most " +
                          std::to_string(ZTB_MAX_TEXT_LENGTH) + " are allowed");
  }
  return bytes;
}

void requireNotBlank(const std::string& label) {
  if (ztb::detail::isBlank(label.c_str())) {
    throw py::value_error("a label of blanks alone is none: " +
                          std::string(py::repr(toPython(label))));
  }
}

}  // namespace python
