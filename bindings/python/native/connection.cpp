#include "bindings/python/native/connection.h"

#include <array>

namespace python {

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

}  // namespace python
