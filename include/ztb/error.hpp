// How the C++ wrapper reports a failed operation: as an exception that carries the library's text.
#ifndef ZTB_ERROR_HPP_
#define ZTB_ERROR_HPP_

#include <ztb/ztb.h>

#include <stdexcept>
#include <string>
#include <ztb/cpp20.hpp>
#include <ztb/display_text.hpp>
#include <ztb/text.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// What kind of failure it was; programs go by this, texts are for people.
enum class ErrorKind {
  none = ZTB_ERROR_NONE,           // nothing failed yet
  refused = ZTB_ERROR_REFUSED,     // an argument, or an operation that does not fit what there is
  notFound = ZTB_ERROR_NOT_FOUND,  // no such symbol, label, record or solver
  exists = ZTB_ERROR_EXISTS,       // a symbol of that name, or a record of that key
  domain = ZTB_ERROR_DOMAIN,       // no domain, or a record outside of its domains
  noFile = ZTB_ERROR_NO_FILE,      // no such file, or no folder for it
  damagedFile = ZTB_ERROR_DAMAGED_FILE,  // a file that does not hold what it should
  io = ZTB_ERROR_IO,                     // a file that cannot be opened, read or written
  limit = ZTB_ERROR_LIMIT,               // beyond a limit on memory, or what the format can hold
  outOfMemory = ZTB_ERROR_OUT_OF_MEMORY,
  noLibrary = ZTB_ERROR_NO_LIBRARY,  // a library that is needed cannot be used
  solver = ZTB_ERROR_SOLVER,         // the solver, or the library that calls it, failed
  closed = ZTB_ERROR_CLOSED,         // what was closed is used
  internal = ZTB_ERROR_INTERNAL      // an exception that the operation does not expect
};

// A failed operation: kind() tells programs what failed, what() is the text that the library left,
// made fit for a terminal, text() the same byte for byte, operation() the operation's name, such as
// "ztbFindSymbol".
class Error : public std::runtime_error {
 public:
  // operation must be a string that lives as long as the program.
  Error(const char* operation, const std::string& text, ErrorKind kind = ErrorKind::refused)
      : Error(operation,
              std::runtime_error(text.empty() ? std::string(operation) + " failed without a reason"
                                              : text),
              kind) {}

  [[nodiscard]] ErrorKind kind() const noexcept { return kind_; }

  [[nodiscard]] const char* text() const noexcept { return text_.what(); }
  [[nodiscard]] const char* operation() const noexcept { return operation_; }

 private:
  Error(const char* operation, const std::runtime_error& text, ErrorKind kind)
      : std::runtime_error(displayText(text.what())),
        text_(text),
        operation_(operation),
        kind_(kind) {}

  std::runtime_error text_;  // a string whose copies do not throw
  const char* operation_;
  ErrorKind kind_;
};

namespace detail {

// The handle of an object that has not been moved to another one; `type` and `what` are its type
// and what a person calls it.
template <class Handle>
Handle* notMoved(Handle* handle, const char* type, const char* what) {
  if (handle == nullptr) [[unlikely]] {
    throw Error(type, std::string(what) + " moved to another object", ErrorKind::closed);
  }
  return handle;
}

}  // namespace detail

namespace detail {

// The kind of the database's latest failure.
inline ErrorKind kindOf(const ztbRec* database) noexcept {
  return static_cast<ErrorKind>(ztbErrorKind(database));
}

// Throws the database's latest failure as that of operation.
[[noreturn]] inline void fail(ztbRec* database, const char* operation) {
  Text text;
  c__ztbgetlasterror(database, text.buffer());
  throw Error(operation, text.str(), kindOf(database));
}

// Throws unless result, the status of operation, is a success.
inline void require(int result, ztbRec* database, const char* operation) {
  if (result == 0) [[unlikely]] {
    fail(database, operation);
  }
}

// Throws for a label that operation refused. The library leaves no text for a null label and for
// control characters, and the text that it then holds would be that of an older failure.
[[noreturn]] inline void failLabel(ztbRec* database, const char* operation, const char* label) {
  if (label == nullptr) {
    throw Error(operation, "Label is null");
  }
  for (const char* at = label; *at != '\0'; ++at) {
    if (static_cast<unsigned char>(*at) < ' ') {
      throw Error(operation, "Label holds a control character >" + std::string(label) + "<");
    }
  }
  fail(database, operation);
}

// Whether the latest failure says that there is no such thing, and not that something broke.
inline bool nothingFound(const ztbRec* database) noexcept {
  return kindOf(database) == ErrorKind::notFound;
}

}  // namespace detail

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_ERROR_HPP_
