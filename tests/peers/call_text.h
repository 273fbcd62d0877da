// How a call is spelled in the log of a recording peer: the operation and its arguments, each after
// a blank, pointers as addresses.

#ifndef ZTB_TESTS_PEERS_CALL_TEXT_H_
#define ZTB_TESTS_PEERS_CALL_TEXT_H_

#include <cstdio>
#include <string>

namespace peertest {

inline std::string argumentText(int value) {
  return ' ' + std::to_string(value);
}

inline std::string argumentText(double value) {
  char text[64];
  std::snprintf(text, sizeof text, " %a", value);
  return text;
}

inline std::string argumentText(const void* value) {
  char text[64];
  std::snprintf(text, sizeof text, " %p", value);
  return text;
}

template <typename... Args>
std::string callText(const char* operation, Args... args) {
  std::string text = operation;
  ((text += argumentText(args)), ...);
  return text;
}

}  // namespace peertest

#endif  // ZTB_TESTS_PEERS_CALL_TEXT_H_
