// A symbol as the extension module hands it to the Python layer.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>
#include <ztb/store_guard.hpp>

#include "bindings/python/native/connection.h"

namespace python {

namespace py = pybind11;

// Arrays as they come from Python: made contiguous and of the element type on the way in.
using Numbers = py::array_t<int, py::array::c_style | py::array::forcecast>;
using Values = py::array_t<double, py::array::c_style | py::array::forcecast>;

// Refers to a symbol of a database and keeps the database's memory alive. No member keeps a record
// handle between two calls.
class Symbol {
 public:
  Symbol(Shared connection, void* handle);

  [[nodiscard]] int dimension() const { return place_.dimension; }
  [[nodiscard]] int type() const { return place_.type; }
  [[nodiscard]] int userInfo() const { return info(ZTB_SYMBOL_INFO_USER_INFO); }
  void setUserInfo(int userInfo);
  [[nodiscard]] int recordCount() const;
  [[nodiscard]] std::string name() const { return textInfo(ZTB_SYMBOL_INFO_NAME); }
  [[nodiscard]] std::string text() const { return textInfo(ZTB_SYMBOL_INFO_TEXT); }
  // Values of a record: five for variables and equations, one otherwise.
  [[nodiscard]] int valueCount() const { return static_cast<int>(place_.slotCount()); }

  // For each position the domain set, None when it is known by name only, and the name.
  [[nodiscard]] py::list domains() const;

  [[nodiscard]] ztbRec* database() const { return connection_->handle(); }
  [[nodiscard]] void* handle() const { return place_.handle; }
  // What decides how the records are handled. Throws when the database is closed.
  [[nodiscard]] const ztb::detail::SymbolPlace& place() const {
    static_cast<void>(database());
    return place_;
  }
  [[nodiscard]] const Shared& connection() const { return connection_; }
  // Reads the records, unless they were read before.
  void load() const { connection_->load(handle()); }
  void require(int result, const char* operation) const { connection_->require(result, operation); }

  friend bool operator==(const Symbol& left, const Symbol& right) {
    return left.handle() == right.handle();
  }

 private:
  [[nodiscard]] int info(int key) const;
  [[nodiscard]] std::string textInfo(int key) const;

  Shared connection_;
  ztb::detail::SymbolPlace place_;
};

// The operations that write the fields of a record, at the places of their values.
using FieldSetter = int (*)(ztbRec*, void*, double);
inline constexpr std::array<FieldSetter, ZTB_SCALE + 1> fieldSetters = {
    c__ztbsetlevel, c__ztbsetmarginal, c__ztbsetlower, c__ztbsetupper, c__ztbsetscale};

// Adds the class to the module, with the members of the other files.
void bindSymbol(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_
