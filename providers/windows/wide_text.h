// Names of files, which are UTF-8 in all of ours, as Windows has them.
#ifndef ZTB_PROVIDERS_WINDOWS_WIDE_TEXT_H_
#define ZTB_PROVIDERS_WINDOWS_WIDE_TEXT_H_

#include <windows.h>

#include <string>

namespace ztbwindows {

// Empty, which opens nothing, for what is no UTF-8.
inline std::wstring wideText(const char* text) {
  const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
  if (length <= 1) return {};
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide.data(), length);
  wide.pop_back();
  return wide;
}

inline std::string narrowText(const std::wstring& text) {
  const int units = static_cast<int>(text.size());
  const int length =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), units, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

}  // namespace ztbwindows

#endif  // ZTB_PROVIDERS_WINDOWS_WIDE_TEXT_H_
