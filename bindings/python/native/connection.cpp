#include "bindings/python/native/connection.h"

#include <pybind11/pybind11.h>

#include <array>
#include <chrono>
#include <stdexcept>

#include "bindings/python/native/left_work.h"

namespace python {

namespace {

namespace py = pybind11;

// How long a thread waits for its turn between two looks for signals.
constexpr std::chrono::milliseconds betweenLooks{50};

}  // namespace

Connection::Connection(const std::string* systemDirectory) {
  std::array<char, ZTB_TEXT_BUFFER_SIZE> message{};
  const int size = static_cast<int>(message.size());
  if (systemDirectory != nullptr) {
    ztbcreated(&handle_, systemDirectory->c_str(), message.data(), size);
  } else {
    ztbcreate(&handle_, message.data(), size);
  }
  if (handle_ == nullptr) {
    throw ztb::Error("ztbCreate", message.data());
  }
}

void Connection::close() noexcept {
  if (handle_ != nullptr) {
    ztbfree(&handle_);
  }
}

ztbRec* Connection::handle() const {
  if (handle_ == nullptr) {
    throw ztb::Error("Database", "The database is closed");
  }
  return handle_;
}

void Connection::failLookup(const char* operation) const {
  ztb::Text text;
  c__ztbgetlasterror(handle_, text.buffer());
  if (text.view().starts_with("Cannot find ")) {
    throw NotFound(operation, text.str());
  }
  throw ztb::Error(operation, text.str());
}

void Connection::requireSame(const Connection& other) const {
  if (this != &other) {
    throw std::invalid_argument("a symbol belongs to another database");
  }
}

void Connection::load(void* symbol) {
  ztbRec* const database = handle();
  if (loaded_.contains(symbol)) {
    return;
  }
  int fileBacked = 0;
  require(c__ztbinfo(database, ZTB_INFO_FILE_BACKED, &fileBacked, nullptr, nullptr), "ztbInfo");
  if (fileBacked != 0) {
    runOrLeave(shared_from_this(), [this, database, symbol] {
      int count = 0;
      require(c__ztbsymbolinfo(database, symbol, ZTB_SYMBOL_INFO_RECORD_COUNT, &count, nullptr,
                               nullptr),
              "ztbSymbolInfo");
    });
  }
  loaded_.insert(symbol);
}

void Connection::leaveTurn() {
  use_->left_ = true;
  user_ = std::thread::id();
}

void Connection::endTurn() {
  use_ = nullptr;
  user_ = std::thread::id();
  free_.release();
}

Use::Use(Connection& connection) : connection_(connection) {
  if (connection_.user_ == std::this_thread::get_id()) {
    throw ztb::Error("Database", "The database is in the middle of another operation");
  }
  while (!connection_.free_.try_acquire()) {
    bool mine = false;
    {
      const py::gil_scoped_release released;
      mine = connection_.free_.try_acquire_for(betweenLooks);
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
