#include "bindings/python/native/database.h"

#include <dlfcn.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <ztb/rxf.hpp>

#include "bindings/python/native/hand_made.h"
#include "bindings/python/native/interruption.h"
#include "bindings/python/native/strings.h"

namespace python {

Database::Database(const py::object& systemDirectory)
    : connection_(std::make_shared<Connection>(
          systemDirectory.is_none() ? ztb::Database()
                                    : ztb::Database(pathFromPython(systemDirectory)))) {}

void Database::close() {
  const py::gil_scoped_release released;
  connection_->close();
}

void Database::selectStore(int store) {
  client().selectStore(static_cast<ztb::Store>(store));
}

void Database::open(const py::object& path, unsigned long long maxMemory) {
  const std::string name = pathFromPython(path);
  runWithoutInterpreter([&](Interruption&) { client().openFile(name, {.maxMemory = maxMemory}); });
}

void Database::write(const py::object& path, bool checkDomains) {
  const std::string name = pathFromPython(path);
  runWithoutInterpreter([&](Interruption&) { client().write(name, checkDomains); });
}

void Database::closeFile(bool loadRemaining) {
  runWithoutInterpreter([&](Interruption&) { client().closeFile(loadRemaining); });
}

py::list Database::labels(int first) const {
  const int count = labelCount();
  py::list result;
  for (int number = first; number <= count; ++number) {
    result.append(toPython(client().label(number)));
  }
  return result;
}

int Database::findLabel(const py::object& label) const {
  return client().findLabel(labelFromPython(label)).value_or(ztb::detail::newLabel);
}

Symbol Database::symbolAt(int position) const {
  return {connection_, client().symbolAt(position)};
}

Symbol Database::findSymbol(const py::str& name, bool wantAlias) const {
  const std::string bytes = fromPython(name);
  const std::optional<ztb::Symbol> found =
      wantAlias ? client().findSymbolOrAlias(bytes) : client().findSymbol(bytes);
  if (!found) {
    ztb::detail::fail(connection_->handle(), "ztbFindSymbol");
  }
  return {connection_, *found};
}

Symbol Database::addSymbol(const py::str& name, int type,
                           const std::vector<DomainArgument>& domains, const py::str& text,
                           int userInfo) {
  if (type < ZTB_SET || type > ZTB_EQUATION) {
    throw py::value_error("no symbol type " + std::to_string(type));
  }
  std::vector<std::string> names;
  for (const DomainArgument& domain : domains) {
    names.push_back(fromPython(domain.second));
  }
  std::vector<ztb::DomainArgument> arguments;
  for (std::size_t position = 0; position < domains.size(); ++position) {
    if (const std::optional<Symbol>& set = domains[position].first) {
      connection_->requireSame(*set->connection());
      arguments.emplace_back(set->client());
    } else {
      arguments.push_back(ztb::DomainArgument::nameAlone(names[position]));
    }
  }
  return {connection_, client().addSymbol(fromPython(name), static_cast<ztb::Type>(type), arguments,
                                          fromPython(text), userInfo)};
}

Symbol Database::addAlias(const py::str& name, const Symbol& target, const py::str& text) {
  connection_->requireSame(*target.connection());
  return {connection_, client().addAlias(fromPython(name), target.client(), fromPython(text))};
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

// The folder of the library of the database.
py::str libraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&ztbcreate), &info) == 0) {
    throw ztb::Error("dladdr", "the library of the database cannot be found");
  }
  const std::string path = std::filesystem::absolute(info.dli_fname).parent_path().string();
  return toPython(path);
}

}  // namespace

void Database::withHandle(const py::function& take) const {
  take(reinterpret_cast<std::uintptr_t>(connection_->handle()));
}

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
      .def("add_alias", inTurn(&Database::addAlias))
      .def("with_handle", inTurn(&Database::withHandle));
  module.def("create", [](const py::object& systemDirectory) { return Database(systemDirectory); });
  module.def("library_folder", &libraryFolder);
  module.def("memory_needed", &memoryNeeded);
}

}  // namespace python
