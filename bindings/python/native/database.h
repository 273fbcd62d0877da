// A database as the extension module hands it to the Python layer.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_DATABASE_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_DATABASE_H_

#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <vector>

#include "bindings/python/native/new_labels.h"
#include "bindings/python/native/symbol.h"

namespace python {

// Makes a database and owns it together with its symbols. Its members are the operations that the
// Python layer needs, with labels, names and texts as str.
class Database {
 public:
  // A domain of a new symbol: a set or alias, or none and a name.
  using DomainArgument = std::pair<std::optional<Symbol>, py::str>;

  // Peer libraries are looked for in the folder, unless it is None.
  explicit Database(const py::object& systemDirectory);

  void close();
  [[nodiscard]] bool closed() const { return connection_->closed(); }

  void selectStore(int store);
  void setSpecialValues(const ztb::SpecialValues& values) { client().setSpecialValues(values); }
  [[nodiscard]] ztb::SpecialValues internalSpecialValues() const {
    return client().specialValues();
  }

  // Its records may take so many bytes; 0 is no limit.
  void open(const py::object& path, unsigned long long maxMemory);
  void write(const py::object& path, bool checkDomains);
  void closeFile(bool loadRemaining);

  [[nodiscard]] int labelCount() const { return client().labelCount(); }
  // Labels from a number on.
  [[nodiscard]] py::list labels(int first) const;
  // The number of a label; -1 if there is none.
  [[nodiscard]] int findLabel(const py::object& label) const;
  // Adds labels, those that are new; none if one is refused.
  void addLabels(const py::iterable& labels) const { python::addLabels(connection_, labels); }
  // Numbers labels that come with records.
  [[nodiscard]] NewLabels newLabels() const { return NewLabels(connection_); }

  [[nodiscard]] int symbolCount() const { return client().symbolCount(); }
  [[nodiscard]] Symbol symbolAt(int position) const;
  // Throws where there is none. An alias is resolved to its set, unless it is wanted itself.
  [[nodiscard]] Symbol findSymbol(const py::str& name, bool wantAlias) const;
  Symbol addSymbol(const py::str& name, int type, const std::vector<DomainArgument>& domains,
                   const py::str& text, int userInfo);
  // A second name for a set of this database or for its universe.
  Symbol addAlias(const py::str& name, const Symbol& target, const py::str& text);

  // Calls `take` with the handle of the C interface as a number.
  void withHandle(const py::function& take) const;

  [[nodiscard]] const Shared& connection() const { return connection_; }

 private:
  // Throws when the database is closed.
  [[nodiscard]] ztb::Database& client() const { return connection_->database(); }

  Shared connection_;
};

// Adds the class to the module.
void bindDatabase(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_DATABASE_H_
