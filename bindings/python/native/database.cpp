#include "bindings/python/native/database.h"

#include <pybind11/stl.h>

#include <ztb/rxf.hpp>

#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/strings.h"

namespace python {

Database::Database(const py::object& systemDirectory) {
  if (systemDirectory.is_none()) {
    connection_ = std::make_shared<Connection>(nullptr);
  } else {
    const std::string folder = pathFromPython(systemDirectory);
    connection_ = std::make_shared<Connection>(&folder);
  }
}

void Database::close() {
  const py::gil_scoped_release released;
  connection_->close();
}

void Database::selectStore(int store) {
  connection_->require(c__ztbselectrecordstorage(handle(), nullptr, store),
                       "ztbSelectRecordStorage");
}

void Database::setSpecialValues(const std::array<double, ZTB_SPECIAL_VALUE_COUNT>& values) {
  c__ztbsetspecialvalues(handle(), values.data());
}

std::array<double, ZTB_SPECIAL_VALUE_COUNT> Database::internalSpecialValues() const {
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> values{};
  c__ztbgetspecialvalues(handle(), values.data());
  return values;
}

void Database::open(const py::object& path, unsigned long long maxMemory) {
  ztb::Text text;
  c__ztbgetlasterror(handle(), text.buffer());
  if (text.view().starts_with("RXF create did not succeed")) {
    throw ztb::Error("ztbInitFromRXF", text.str());
  }
  const std::string name = pathFromPython(path);
  runWithoutInterpreter([&](Interruption&) {
    const ztb::detail::MemoryLimitScope limit(maxMemory);
    connection_->require(c__ztbinitfromrxf(handle(), name.c_str()), "ztbInitFromRXF");
    if (maxMemory != 0) limit.requireTaken();
  });
}

void Database::write(const py::object& path, bool checkDomains) {
  const std::string name = pathFromPython(path);
  runWithoutInterpreter([&](Interruption&) {
    connection_->require(c__ztbwriterxf(handle(), name.c_str(), checkDomains ? 0 : 1),
                         "ztbWriteRXF");
  });
}

void Database::closeFile(bool loadRemaining) {
  runWithoutInterpreter([&](Interruption&) {
    connection_->require(c__ztbcloserxf(handle(), loadRemaining ? 1 : 0), "ztbCloseRXF");
  });
}

py::list Database::labels(int first) const {
  const int count = labelCount();
  py::list result;
  ztb::Text text;
  for (int number = first; number <= count; ++number) {
    connection_->require(c__ztbgetuelbyindex(handle(), number, text.buffer()), "ztbGetUelByIndex");
    result.append(toPython(text.view()));
  }
  return result;
}

int Database::findLabel(const py::str& label) const {
  const std::string bytes = fromPython(label);
  int number = 0;
  if (c__ztbfinduel(handle(), bytes.c_str(), &number) == 0) {
    ztb::detail::failLabel(handle(), "ztbFindUel", bytes.c_str());
  }
  return number;
}

Symbol Database::symbolAt(int position) const {
  int status = 0;
  void* symbol = c__ztbgetsymbolbynumberpy(handle(), position, &status);
  connection_->require(status, "ztbGetSymbolByNumber");
  return {connection_, symbol};
}

Symbol Database::findSymbol(const py::str& name, bool wantAlias) const {
  const std::string bytes = fromPython(name);
  int status = 0;
  void* symbol = wantAlias ? c__ztbfindsymbolwithaliaspy(handle(), bytes.c_str(), &status)
                           : c__ztbfindsymbolpy(handle(), bytes.c_str(), &status);
  if (status == 0) {
    connection_->failLookup("ztbFindSymbol");
  }
  return {connection_, symbol};
}

Symbol Database::addSymbol(const py::str& name, int type,
                           const std::vector<DomainArgument>& domains, const py::str& text,
                           int userInfo) {
  if (type < ZTB_SET || type > ZTB_EQUATION) {
    throw py::value_error("no symbol type " + std::to_string(type));
  }
  const std::string nameBytes = fromPython(name);
  const std::string textBytes = fromPython(text);
  const int dimension = static_cast<int>(domains.size());
  int status = 0;
  void* symbol = nullptr;
  if (dimension == 0 || dimension > ZTB_MAX_DIMENSION) {
    symbol = c__ztbaddsymbolpy(handle(), nameBytes.c_str(), dimension, type, userInfo,
                               textBytes.c_str(), &status);
    connection_->require(status, "ztbAddSymbol");
    return {connection_, symbol};
  }
  std::array<void*, ZTB_MAX_DIMENSION> sets{};
  std::array<std::string, ZTB_MAX_DIMENSION> names;
  std::array<const char*, ZTB_MAX_DIMENSION> pointers{};
  for (std::size_t position = 0; position < domains.size(); ++position) {
    if (domains[position].first) {
      connection_->requireSame(*domains[position].first->connection());
      sets[position] = domains[position].first->handle();
    }
    names[position] = fromPython(domains[position].second);
    pointers[position] = names[position].c_str();
  }
  symbol = c__ztbaddsymbolxpy(handle(), nameBytes.c_str(), dimension, type, userInfo,
                              textBytes.c_str(), sets.data(), pointers.data(), &status);
  // The operation succeeds, too, when no symbol could be made.
  connection_->require(symbol != nullptr ? status : 0, "ztbAddSymbolX");
  return {connection_, symbol};
}

Symbol Database::addAlias(const py::str& name, int position, int dimension, const py::str& text) {
  int status = 0;
  void* alias = c__ztbaddsymbolpy(handle(), fromPython(name).c_str(), dimension, ZTB_ALIAS,
                                  position, fromPython(text).c_str(), &status);
  connection_->require(status, "ztbAddSymbol");
  return {connection_, alias};
}

int Database::info(int key) const {
  int value = 0;
  connection_->require(c__ztbinfo(handle(), key, &value, nullptr, nullptr), "ztbInfo");
  return value;
}

namespace {

// For each symbol of a file but the aliases its name and the bytes that its records take in a
// database.
std::vector<std::pair<py::str, unsigned long long>> memoryNeeded(const py::object& path,
                                                                 int store) {
  const std::string name = pathFromPython(path);
  std::optional<ztb::RxfFile> file;
  runWithoutInterpreter([&](Interruption&) { file.emplace(name); });
  std::vector<std::pair<py::str, unsigned long long>> result;
  for (const ztb::RxfSymbol& symbol : file->symbols()) {
    if (symbol.isAlias()) continue;
    result.emplace_back(toPython(symbol.name),
                        file->memory(symbol, static_cast<ztb::Store>(store)));
  }
  return result;
}

}  // namespace

void bindDatabase(py::module_& module) {
  py::class_<Database> type(module, "Database", py::is_final());
  refuseHandMade(type);
  type.def("close", inTurn(&Database::close))
      .def_property_readonly("closed", &Database::closed)
      .def("select_store", inTurn(&Database::selectStore))
      .def("set_special_values", inTurn(&Database::setSpecialValues))
      .def("internal_special_values", inTurn(&Database::internalSpecialValues))
      .def("open", inTurn(&Database::open))
      .def("write", inTurn(&Database::write))
      .def("close_file", inTurn(&Database::closeFile))
      .def("label_count", inTurn(&Database::labelCount))
      .def("labels", inTurn(&Database::labels))
      .def("find_label", inTurn(&Database::findLabel))
      .def("add_labels", &Database::addLabels)
      .def("new_labels", inTurn(&Database::newLabels))
      .def("symbol_count", inTurn(&Database::symbolCount))
      .def("symbol_at", inTurn(&Database::symbolAt))
      .def("find_symbol", inTurn(&Database::findSymbol))
      .def("add_symbol", inTurn(&Database::addSymbol))
      .def("add_alias", inTurn(&Database::addAlias));
  module.def("create", [](const py::object& systemDirectory) { return Database(systemDirectory); });
  module.def("memory_needed", &memoryNeeded);
}

}  // namespace python
