#include "bindings/python/native/symbol.h"

#include <pybind11/stl.h>

#include <functional>
#include <optional>
#include <utility>
#include <ztb/column_names.hpp>

#include "bindings/python/native/cubes.h"
#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/records.h"
#include "bindings/python/native/rows.h"
#include "bindings/python/native/strings.h"

namespace python {

int Symbol::recordCount() const {
  load();
  return client().recordCount();
}

py::object Symbol::recordCountIfRead() const {
  return connection_->isLoaded(client()) ? py::object(py::int_(client().recordCount()))
                                         : py::none();
}

py::list Symbol::domains() const {
  py::list result;
  for (const ztb::Domain& domain : client().domains()) {
    const py::object set =
        domain.set ? py::cast(Symbol(connection_, *domain.set)) : py::object(py::none());
    result.append(py::make_tuple(set, toPython(domain.name)));
  }
  return result;
}

py::list Symbol::columns() const {
  std::vector<std::string> names;
  for (const ztb::Domain& domain : client().domains()) {
    names.push_back(domain.name.str());
  }
  py::list result;
  for (const std::string& column : ztb::keyColumns(name(), client().type(), names)) {
    result.append(toPython(column));
  }
  return result;
}

void copyFrom(const Symbol& symbol, const Symbol& source) {
  // Turns are taken in one order everywhere, so that no two threads wait for each other.
  Connection* first = symbol.connection().get();
  Connection* second = source.connection().get();
  if (std::less<>()(second, first)) {
    std::swap(first, second);
  }
  const Use useFirst(*first);
  std::optional<Use> useSecond;
  if (first != second) {
    useSecond.emplace(*second);
  }
  // What an alias stands for is read.
  source.connection()->load(source.connection()->database().symbol(source.name()));
  runWithoutInterpreter([&](Interruption&) { symbol.client().copyFrom(source.client()); });
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
      .def("record_count_if_read", inTurn(&Symbol::recordCountIfRead))
      .def("domains", inTurn(&Symbol::domains))
      .def("columns", inTurn(&Symbol::columns))
      .def("clear", inTurn(&clear))
      .def("values", inTurn(&recordValues))
      .def("element_text", inTurn(&recordText))
      .def("contains", inTurn(&hasRecord))
      .def("put", inTurn(&putRecord))
      .def("put_text", inTurn(&putText))
      .def("remove", inTurn(&removeRecord))
      .def("rows", inTurn(&rows), py::arg("most") = py::none())
      .def("texts", inTurn(&texts), py::arg("most") = py::none())
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
