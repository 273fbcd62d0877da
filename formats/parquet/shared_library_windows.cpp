#include <windows.h>

#include "formats/parquet/shared_library.h"
#include "providers/windows/wide_text.h"

namespace formats {

namespace {

// Longer than any path of Windows.
constexpr DWORD longestPath = 32768;

// What an error code says, in the words of the system.
std::string errorText(DWORD code) {
  std::wstring text(512, L'\0');
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                     text.data(), static_cast<DWORD>(text.size()), nullptr);
  text.resize(length);
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.pop_back();
  return text.empty() ? "error " + std::to_string(code) : ztbwindows::narrowText(text);
}

}  // namespace

const char* const duckdbFile = "duckdb.dll";
const char* const duckdbPackage = "@duckdb/node-bindings-win32-x64";
const char* const duckdbModules = "duckdb/windows/node_modules";

std::filesystem::path environmentPath(const char* name) {
  std::wstring value(longestPath, L'\0');
  value.resize(
      GetEnvironmentVariableW(ztbwindows::wideText(name).c_str(), value.data(), longestPath));
  return value;
}

std::filesystem::path ownFile() {
  HMODULE library = nullptr;
  if (GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<const wchar_t*>(&ownFile), &library) == 0) {
    return {};
  }
  std::wstring file(longestPath, L'\0');
  file.resize(GetModuleFileNameW(library, file.data(), longestPath));
  return file;
}

// What the library needs itself is looked for beside it.
void* openSharedLibrary(const std::filesystem::path& file, std::string& reason) {
  const DWORD beside = file.is_absolute() ? DWORD{LOAD_WITH_ALTERED_SEARCH_PATH} : 0;
  HMODULE library = LoadLibraryExW(file.c_str(), nullptr, beside);
  if (library == nullptr) {
    const DWORD code = GetLastError();
    reason = ztbwindows::narrowText(file.generic_wstring()) + ": " + errorText(code);
  }
  return library;
}

void* functionOf(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}  // namespace formats
