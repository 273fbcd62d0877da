// The extension module ztb._native: thin classes over the C++ wrapper, from which the Python
// package makes its mappings, arrays and frames.

#include <pybind11/pybind11.h>

#include <string>
#include <ztb/case_folding.hpp>
#include <ztb/display_text.hpp>
#include <ztb/model_names.hpp>

#include "bindings/python/native/arrow.h"
#include "bindings/python/native/database.h"
#include "bindings/python/native/errors.h"
#include "bindings/python/native/left_work.h"
#include "bindings/python/native/live.h"
#include "bindings/python/native/model.h"
#include "bindings/python/native/sql.h"
#include "bindings/python/native/strings.h"
#include "bindings/python/native/symbol.h"

PYBIND11_MODULE(_native, module) {
  module.doc() = "Thin classes over the C++ wrapper of the database library.";
  module.attr("version") = ZTB_VERSION;
  module.def("display_text", [](const pybind11::str& text) {
    return python::toPython(ztb::displayText(python::fromPython(text)));
  });
  module.attr("parameter_suffix") = ztb::parameterSuffix;
  // Throws for what can be no text of an element.
  module.def("require_text", [](const pybind11::str& text) { python::textFromPython(text, ""); });
  module.def("folded", [](const pybind11::str& text) {
    return python::toPython(ztb::folded(python::fromPython(text)));
  });
  pybind11::register_exception_translator(&python::translateError);
  python::bindSymbol(module);
  python::bindNewLabels(module);
  python::bindDatabase(module);
  python::bindModel(module);
  python::bindLive(module);
  python::bindSql(module);
  python::bindArrow(module);
  pybind11::module_::import("atexit").attr("register")(
      pybind11::cpp_function(&python::awaitLeftWork));
}
