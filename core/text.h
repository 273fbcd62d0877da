// Texts at the boundary.
#ifndef ZTB_CORE_TEXT_H_
#define ZTB_CORE_TEXT_H_

#include <ztb/types.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace ztb {

// Copies a text into a caller's buffer of ZTB_TEXT_BUFFER_SIZE chars, cut if it is longer.
inline void copyText(char* out, const char* text) {
  const std::size_t length = std::min<std::size_t>(std::strlen(text), ZTB_MAX_TEXT_LENGTH);
  std::memcpy(out, text, length);
  out[length] = '\0';
}

}  // namespace ztb

#endif  // ZTB_CORE_TEXT_H_
