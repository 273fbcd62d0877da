#include "bindings/python/native/symbol.h"

#include <pybind11/stl.h>

#include <array>

#include "bindings/python/native/bulk.h"
#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/strings.h"

namespace python {

Symbol::Symbol(Shared connection, void* handle)
    : connection_(std::move(connection)), place_(connection_->handle(), handle) {}

void Symbol::setUserInfo(int userInfo) {
  require(c__ztbsetuserinfo(database(), handle(), userInfo), "ztbSetUserInfo");
}

py::list Symbol::domains() const {
  std::array<void*, ZTB_MAX_DIMENSION> sets{};
  std::array<char*, ZTB_MAX_DIMENSION> names{};
  std::array<ztb::Text, ZTB_MAX_DIMENSION> texts;
  for (std::size_t position = 0; position < names.size(); ++position) {
    names[position] = texts[position].buffer();
  }
  require(c__ztbgetdomain(database(), handle(), dimension(), sets.data(), names.data()),
          "ztbGetDomain");
  py::list result;
  for (std::size_t position = 0; position < static_cast<std::size_t>(dimension()); ++position) {
    py::object set = py::none();
    if (sets[position] != nullptr) {
      set = py::cast(Symbol(connection_, sets[position]));
    }
    result.append(py::make_tuple(set, toPython(texts[position].view())));
  }
  return result;
}

int Symbol::recordCount() const {
  load();
  return info(ZTB_SYMBOL_INFO_RECORD_COUNT);
}

int Symbol::info(int key) const {
  int value = 0;
  require(c__ztbsymbolinfo(database(), handle(), key, &value, nullptr, nullptr), "ztbSymbolInfo");
  return value;
}

std::string Symbol::textInfo(int key) const {
  ztb::Text text;
  int value = 0;
  require(c__ztbsymbolinfo(database(), handle(), key, &value, nullptr, text.buffer()),
          "ztbSymbolInfo");
  return text.str();
}

void bindSymbol(py::module_& module) {
  py::class_<Symbol> type(module, "Symbol", py::is_final());
  refuseHandMade(type);
  type.def_property_readonly("name",
                             inTurn(+[](const Symbol& symbol) { return toPython(symbol.name()); }))
      .def_property_readonly("text",
                             inTurn(+[](const Symbol& symbol) { return toPython(symbol.text()); }))
      .def_property_readonly("dimension", &Symbol::dimension)
      .def_property_readonly("type", &Symbol::type)
      .def_property("user_info", inTurn(&Symbol::userInfo), inTurn(&Symbol::setUserInfo))
      .def("record_count", inTurn(&Symbol::recordCount))
      .def("domains", inTurn(&Symbol::domains))
      .def("clear", inTurn(&clear))
      .def("values", inTurn(&recordValues))
      .def("element_text", inTurn(&recordText))
      .def("contains", inTurn(&hasRecord))
      .def("put", inTurn(&putRecord))
      .def("put_text", inTurn(&putText))
      .def("remove", inTurn(&removeRecord))
      .def("rows", inTurn(&rows))
      .def("texts", inTurn(&texts))
      .def("put_rows", inTurn(&putRows))
      .def("put_elements", &putElements)
      .def("to_dense", inTurn(&toDense))
      .def("from_dense", inTurn(&fromDense))
      .def("elements_from_dense", inTurn(&elementsFromDense))
      .def("copy_from", &copyFrom)
      .def("violations", inTurn(&violations))
      .def(
          "__eq__", [](const Symbol& left, const Symbol& right) { return left == right; },
          py::is_operator())
      .def("__hash__", [](const Symbol& symbol) { return std::hash<void*>()(symbol.handle()); });
}

}  // namespace python
