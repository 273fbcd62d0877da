// A database handle shared by the Python objects that refer to it.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_

#include <memory>
#include <string>
#include <ztb/ztb.hpp>

namespace python {

// A lookup that found nothing; a KeyError in Python.
class NotFound : public ztb::Error {
 public:
  using ztb::Error::Error;
};

// Owns a database. Symbols keep it alive; after close() every use fails with ztb::Error instead of
// reaching into freed memory.
class Connection {
 public:
  // With a folder, peer libraries are looked for there.
  explicit Connection(const std::string* systemDirectory);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { close(); }

  void close() noexcept;
  [[nodiscard]] bool closed() const noexcept { return handle_ == nullptr; }

  // The handle of the C interface. Throws when the database is closed.
  [[nodiscard]] ztbRec* handle() const;

  // Throws unless `result`, the status of an operation, is a success.
  void require(int result, const char* operation) const {
    if (result == 0) [[unlikely]] {
      ztb::detail::fail(handle_, operation);
    }
  }

  // Throws NotFound if the latest failure says that there is no such thing, and ztb::Error
  // otherwise.
  [[noreturn]] void failLookup(const char* operation) const;

 private:
  ztbRec* handle_ = nullptr;
};

using Shared = std::shared_ptr<Connection>;

// Owns a record handle for the length of a call.
class RecordHandle {
 public:
  RecordHandle(const Connection& connection, void* record)
      : database_(connection.handle()), record_(record) {}
  RecordHandle(const RecordHandle&) = delete;
  RecordHandle& operator=(const RecordHandle&) = delete;
  ~RecordHandle() {
    if (record_ != nullptr) {
      c__ztbfreesymboliterator(database_, record_);
    }
  }
  [[nodiscard]] void* get() const { return record_; }

 private:
  ztbRec* database_;
  void* record_;
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_CONNECTION_H_
