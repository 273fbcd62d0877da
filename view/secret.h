// Secrets that a client must know.
#ifndef ZTB_VIEW_SECRET_H_
#define ZTB_VIEW_SECRET_H_

#include <string>
#include <string_view>

namespace view {

// 128 bits of the system's random source, in hexadecimal digits. Throws Failure where the system
// gives none.
std::string makeSecret();

// Whether both are the same, in a time that does not tell where they differ.
bool isSameSecret(std::string_view given, std::string_view expected);

}  // namespace view

#endif  // ZTB_VIEW_SECRET_H_
