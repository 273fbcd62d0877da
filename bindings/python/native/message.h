// Where a C function puts what it has to say, and what becomes of it in Python.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_MESSAGE_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_MESSAGE_H_

#include <array>
#include <ztb/error.hpp>

namespace python {

using Message = std::array<char, 512>;

// Throws what the message tells where a function answered 0.
inline void require(int result, const Message& message, const char* operation) {
  if (result == 0) {
    throw ztb::Error(operation, message.data());
  }
}

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_MESSAGE_H_
