#include <windows.h>

#include "providers/windows/wide_text.h"
#include "tools/files/shared_library.h"

namespace tool {

std::string libraryFile(const std::string& name) {
  return name + ".dll";
}

void* openLibrary(const std::string& file, std::string& reason) {
  const bool hasFolder = file.find_first_of("/\\") != std::string::npos;
  std::wstring name = ztbwindows::wideText(file.c_str());
  // The folder of a library is only looked through for names with the separator of the system.
  for (wchar_t& unit : name) unit = unit == L'/' ? L'\\' : unit;
  const DWORD where = hasFolder
                          ? DWORD{LOAD_WITH_ALTERED_SEARCH_PATH}
                          : LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
  HMODULE library = LoadLibraryExW(name.c_str(), nullptr, where);
  if (library != nullptr) return library;
  switch (const DWORD error = GetLastError()) {
    case ERROR_MOD_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      reason = file + ": it, or a library that it needs, is not there";
      break;
    case ERROR_BAD_EXE_FORMAT:
      reason = file + ": this is no library for 64-bit Windows";
      break;
    default:
      reason = file + ": error " + std::to_string(error) + " of Windows";
  }
  return nullptr;
}

void* functionOf(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace tool
