#include "bindings/python/native/database.h"

#include <pybind11/stl.h>

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

void Database::open(const py::object& path) {
  ztb::Text text;
  c__ztbgetlasterror(handle(), text.buffer());
  if (text.view().starts_with("RXF create did not succeed")) {
    throw ztb::Error("ztbInitFromRXF", text.str());
  }
  connection_->require(c__ztbinitfromrxf(handle(), pathFromPython(path).c_str()), "ztbInitFromRXF");
}

void Database::write(const py::object& path, bool checkDomains) {
  connection_->require(c__ztbwriterxf(handle(), pathFromPython(path).c_str(), checkDomains ? 0 : 1),
                       "ztbWriteRXF");
}

void Database::closeFile(bool loadRemaining) {
  connection_->require(c__ztbcloserxf(handle(), loadRemaining ? 1 : 0), "ztbCloseRXF");
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

py::array_t<int> Database::mergeLabels(const py::iterable& labels) const {
  std::vector<int> numbers;
  for (const py::handle label : labels) {
    const std::string bytes = fromPython(label);
    int number = 0;
    if (c__ztbmergeuel(handle(), bytes.c_str(), &number) == 0) {
      ztb::detail::failLabel(handle(), "ztbMergeUel", bytes.c_str());
    }
    if (number == 0) {
      throw py::value_error("a label of blanks alone is none: " + std::string(py::repr(label)));
    }
    numbers.push_back(number);
  }
  return py::array_t<int>(static_cast<py::ssize_t>(numbers.size()), numbers.data());
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

void bindDatabase(py::module_& module) {
  py::class_<Database>(module, "Database")
      .def(py::init<const py::object&>())
      .def("close", &Database::close)
      .def_property_readonly("closed", &Database::closed)
      .def("select_store", &Database::selectStore)
      .def("set_special_values", &Database::setSpecialValues)
      .def("internal_special_values", &Database::internalSpecialValues)
      .def("open", &Database::open)
      .def("write", &Database::write)
      .def("close_file", &Database::closeFile)
      .def("label_count", &Database::labelCount)
      .def("labels", &Database::labels)
      .def("find_label", &Database::findLabel)
      .def("merge_labels", &Database::mergeLabels)
      .def("symbol_count", &Database::symbolCount)
      .def("symbol_at", &Database::symbolAt)
      .def("find_symbol", &Database::findSymbol)
      .def("add_symbol", &Database::addSymbol)
      .def("add_alias", &Database::addAlias);
}

}  // namespace python
