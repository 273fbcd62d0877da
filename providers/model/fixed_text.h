// Texts into buffers of callers.
#ifndef ZTB_PROVIDERS_MODEL_FIXED_TEXT_H_
#define ZTB_PROVIDERS_MODEL_FIXED_TEXT_H_

#include <algorithm>
#include <cstring>
#include <string_view>

namespace lomu {

// The size of a buffer that comes without one.
inline constexpr int kTextBuffer = 256;

// As much of `text` as fits into `size` bytes with the final zero. A null buffer is left alone.
inline void copyText(std::string_view text, char* buffer, int size = kTextBuffer) {
  if (buffer == nullptr || size < 1) return;
  const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_FIXED_TEXT_H_
