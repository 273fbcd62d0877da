// A symbol as the extension module hands it to the Python layer.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

#include "bindings/python/native/connection.h"

namespace python {

namespace py = pybind11;

// Arrays as they come from Python: made contiguous, aligned and of the element type on the way in.
inline constexpr int kPlainArray =
    py::array::c_style | py::array::forcecast | py::detail::npy_api::NPY_ARRAY_ALIGNED_;
using Numbers = py::array_t<int, kPlainArray>;
using Values = py::array_t<double, kPlainArray>;

// A symbol of the C++ wrapper that keeps its database's memory alive. No member keeps a record
// handle between two calls.
class Symbol {
 public:
  Symbol(Shared connection, const ztb::Symbol& symbol)
      : connection_(std::move(connection)), symbol_(symbol) {}

  // The symbol of the wrapper. Throws when the database is closed.
  [[nodiscard]] ztb::Symbol& client() const {
    static_cast<void>(connection_->database());
    return symbol_;
  }

  [[nodiscard]] int dimension() const { return symbol_.dimension(); }
  [[nodiscard]] int type() const { return static_cast<int>(symbol_.type()); }
  [[nodiscard]] int userInfo() const { return client().userInfo(); }
  void setUserInfo(int userInfo) { client().setUserInfo(userInfo); }
  [[nodiscard]] std::string name() const { return client().name().str(); }
  [[nodiscard]] std::string text() const { return client().text().str(); }
  // Values of a record: five for variables and equations, one otherwise.
  [[nodiscard]] int valueCount() const { return static_cast<int>(symbol_.valueCount()); }

  [[nodiscard]] int recordCount() const;
  // The same, but None where that would read a file.
  [[nodiscard]] py::object recordCountIfRead() const;

  // For each position the domain set, None when it is known by name only, and the name.
  [[nodiscard]] py::list domains() const;
  // For each position the name of its column in tables.
  [[nodiscard]] py::list columns() const;

  [[nodiscard]] ztbRec* database() const { return connection_->handle(); }
  [[nodiscard]] void* handle() const { return symbol_.handle(); }
  [[nodiscard]] const Shared& connection() const { return connection_; }
  // Reads the records, unless they were read before.
  void load() const { connection_->load(client()); }
  void require(int result, const char* operation) const { connection_->require(result, operation); }

  friend bool operator==(const Symbol& left, const Symbol& right) {
    return left.symbol_ == right.symbol_;
  }

 private:
  Shared connection_;
  // A plain value whose own constness says nothing about the records.
  mutable ztb::Symbol symbol_;
};

// Replaces the records by those of another symbol, of any database.
void copyFrom(const Symbol& symbol, const Symbol& source);

// Adds the class to the module, with the members of the other files.
void bindSymbol(py::module_& module);

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_SYMBOL_H_
