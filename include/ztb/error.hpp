// How the C++ wrapper reports a failed operation: as an exception that carries the library's text.
#ifndef ZTB_ERROR_HPP_
#define ZTB_ERROR_HPP_

#include <ztb/ztb.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <ztb/display_text.hpp>
#include <ztb/text.hpp>

namespace ztb::inline client {

// A failed operation: what() is the text that the library left, made fit for a terminal, text() the
// same byte for byte, operation() the operation's name, such as "ztbFindSymbol".
class Error : public std::runtime_error {
 public:
  // operation must be a string that lives as long as the program.
  Error(const char* operation, const std::string& text)
      : Error(operation,
              std::runtime_error(text.empty() ? std::string(operation) + " failed without a reason"
                                              : text)) {}

  [[nodiscard]] const char* text() const noexcept { return text_.what(); }
  [[nodiscard]] const char* operation() const noexcept { return operation_; }

 private:
  Error(const char* operation, const std::runtime_error& text)
      : std::runtime_error(displayText(text.what())), text_(text), operation_(operation) {}

  std::runtime_error text_;  // a string whose copies do not throw
  const char* operation_;
};

namespace detail {

// Throws the database's latest failure as that of operation.
[[noreturn]] inline void fail(ztbRec* database, const char* operation) {
  Text text;
  c__ztbgetlasterror(database, text.buffer());
  throw Error(operation, text.str());
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
inline bool nothingFound(ztbRec* database) {
  Text text;
  c__ztbgetlasterror(database, text.buffer());
  return text.view().starts_with("Cannot find ");
}

}  // namespace detail

}  // namespace ztb::inline client

#endif  // ZTB_ERROR_HPP_
