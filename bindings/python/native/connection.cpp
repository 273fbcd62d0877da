#include "bindings/python/native/connection.h"

#include <pybind11/pybind11.h>

#include <chrono>
#include <stdexcept>

#include "bindings/python/native/interruption.h"
#include "bindings/python/native/left_work.h"

namespace python {

namespace py = pybind11;

ztb::Database& Connection::database() {
  if (!database_) {
    throw ztb::Error("Database", "The database is closed", ztb::ErrorKind::closed);
  }
  return *database_;
}

void Connection::requireSame(const Connection& other) const {
  if (this != &other) {
    throw std::invalid_argument("a symbol belongs to another database");
  }
}

void Connection::load(const ztb::Symbol& symbol) {
  if (loaded_.contains(symbol.handle())) {
    return;
  }
  if (database().fileBacked()) {
    runOrLeave(shared_from_this(), [symbol] { static_cast<void>(symbol.recordCount()); });
  }
  loaded_.insert(symbol.handle());
}

bool Connection::isLoaded(const ztb::Symbol& symbol) {
  return loaded_.contains(symbol.handle()) || !database().fileBacked();
}

void Connection::leaveTurn() {
  use_->left_ = true;
  user_ = std::thread::id();
}

void Connection::endTurn() {
  use_ = nullptr;
  user_ = std::thread::id();
  turn_.giveBack();
}

Use::Use(Connection& connection) : connection_(connection) {
  if (connection_.user_ == std::this_thread::get_id()) {
    throw ztb::Error("Database", "The database is in the middle of another operation");
  }
  while (!connection_.turn_.tryTake()) {
    bool mine = false;
    {
      const py::gil_scoped_release released;
      mine = connection_.turn_.takeWithin(betweenSignalLooks);
    }
    if (mine) {
      break;
    }
    if (PyErr_CheckSignals() != 0) {
      throw py::error_already_set();
    }
  }
  connection_.user_ = std::this_thread::get_id();
  connection_.use_ = this;
}

Use::~Use() {
  if (!left_) {
    connection_.endTurn();
  }
}

}  // namespace python
