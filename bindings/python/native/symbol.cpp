#include "bindings/python/native/symbol.h"

#include <pybind11/stl.h>

#include <array>

#include "bindings/python/native/bulk.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/strings.h"

namespace python {

Symbol::Symbol(Shared connection, void* handle)
    : connection_(std::move(connection)), handle_(handle) {
  require(c__ztbsymboldim(database(), handle_, &dimension_), "ztbSymbolDim");
  require(c__ztbsymboltype(database(), handle_, &type_), "ztbSymbolType");
}

void Symbol::setUserInfo(int userInfo) {
  require(c__ztbsetuserinfo(database(), handle_, userInfo), "ztbSetUserInfo");
}

py::list Symbol::domains() const {
  std::array<void*, ZTB_MAX_DIMENSION> sets{};
  std::array<char*, ZTB_MAX_DIMENSION> names{};
  std::array<ztb::Text, ZTB_MAX_DIMENSION> texts;
  for (std::size_t position = 0; position < names.size(); ++position) {
    names[position] = texts[position].buffer();
  }
  require(c__ztbgetdomain(database(), handle_, dimension_, sets.data(), names.data()),
          "ztbGetDomain");
  py::list result;
  for (std::size_t position = 0; position < static_cast<std::size_t>(dimension_); ++position) {
    py::object set = py::none();
    if (sets[position] != nullptr) {
      set = py::cast(Symbol(connection_, sets[position]));
    }
    result.append(py::make_tuple(set, toPython(texts[position].view())));
  }
  return result;
}

int Symbol::info(int key) const {
  int value = 0;
  require(c__ztbsymbolinfo(database(), handle_, key, &value, nullptr, nullptr), "ztbSymbolInfo");
  return value;
}

std::string Symbol::textInfo(int key) const {
  ztb::Text text;
  int value = 0;
  require(c__ztbsymbolinfo(database(), handle_, key, &value, nullptr, text.buffer()),
          "ztbSymbolInfo");
  return text.str();
}

void bindSymbol(py::module_& module) {
  py::class_<Symbol>(module, "Symbol")
      .def_property_readonly("name", [](const Symbol& symbol) { return toPython(symbol.name()); })
      .def_property_readonly("text", [](const Symbol& symbol) { return toPython(symbol.text()); })
      .def_property_readonly("dimension", &Symbol::dimension)
      .def_property_readonly("type", &Symbol::type)
      .def_property("user_info", &Symbol::userInfo, &Symbol::setUserInfo)
      .def("record_count", &Symbol::recordCount)
      .def("domains", &Symbol::domains)
      .def("clear",
           [](const Symbol& symbol) {
             symbol.require(c__ztbclearsymbol(symbol.database(), symbol.handle()),
                            "ztbClearSymbol");
           })
      .def("values", &recordValues)
      .def("element_text", &recordText)
      .def("contains", &hasRecord)
      .def("put", &putRecord)
      .def("put_text", &putText)
      .def("remove", &removeRecord)
      .def("rows", &rows)
      .def("texts", &texts)
      .def("put_rows", &putRows)
      .def("put_elements", &putElements)
      .def("to_dense", &toDense)
      .def("from_dense", &fromDense)
      .def("elements_from_dense", &elementsFromDense)
      .def("copy_from", &copyFrom)
      .def("violations", &violations)
      .def(
          "__eq__", [](const Symbol& left, const Symbol& right) { return left == right; },
          py::is_operator())
      .def("__hash__", [](const Symbol& symbol) { return std::hash<void*>()(symbol.handle()); });
}

}  // namespace python
