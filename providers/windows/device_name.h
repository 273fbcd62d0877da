// Names that Windows keeps for devices, in each folder and with any ending.
#ifndef ZTB_PROVIDERS_WINDOWS_DEVICE_NAME_H_
#define ZTB_PROVIDERS_WINDOWS_DEVICE_NAME_H_

#include <algorithm>
#include <string>
#include <string_view>

namespace ztbwindows {

// Whether a path leads to a device: con, conin$, conout$, prn, aux, nul, com1 to com9, lpt1 to
// lpt9, and these with a raised 1, 2 or 3. A file that is renamed to it, or removed by it, is not
// what anybody means.
inline bool isDeviceName(const std::wstring& path) {
  const std::size_t folder = path.find_last_of(L"/\\");
  std::wstring name = folder == std::wstring::npos ? path : path.substr(folder + 1);
  name.resize(std::min(name.size(), name.find_first_of(L".:")));
  name.resize(name.find_last_not_of(L' ') + 1);
  for (wchar_t& unit : name)
    unit = static_cast<wchar_t>(unit >= L'A' && unit <= L'Z' ? unit - L'A' + L'a' : unit);
  for (const wchar_t* device : {L"con", L"conin$", L"conout$", L"prn", L"aux", L"nul"}) {
    if (name == device) return true;
  }
  constexpr std::wstring_view numbers = L"123456789\u00b9\u00b2\u00b3";
  return name.size() == 4 && (name.starts_with(L"com") || name.starts_with(L"lpt")) &&
         numbers.find(name[3]) != std::wstring_view::npos;
}

}  // namespace ztbwindows

#endif  // ZTB_PROVIDERS_WINDOWS_DEVICE_NAME_H_
