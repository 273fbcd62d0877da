#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

#include "providers/model/platform.h"
#include "providers/windows/device_name.h"
#include "providers/windows/held_file.h"
#include "providers/windows/wide_text.h"

namespace lomu::platform {

using ztbwindows::narrowText;
using ztbwindows::wideText;

namespace {

std::wstring modulePath(HMODULE module) {
  std::vector<wchar_t> name(MAX_PATH);
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
    if (length < name.size()) return {name.data(), length};
    name.resize(2 * name.size());
  }
}

int errnoOf(DWORD error) {
  return std::error_code(static_cast<int>(error), std::system_category())
      .default_error_condition()
      .value();
}

}  // namespace

// With the folder of the library before the others where its own libraries are looked for.
void* openLibrary(const std::string& path) {
  const bool hasFolder = path.find_first_of("/\\") != std::string::npos;
  std::wstring name = wideText(path.c_str());
  // That order is only kept for names with the separator of the system.
  for (wchar_t& unit : name) unit = unit == L'/' ? L'\\' : unit;
  return LoadLibraryExW(name.c_str(), nullptr, hasFolder ? LOAD_WITH_ALTERED_SEARCH_PATH : 0);
}

std::string openErrorText(const std::string& path) {
  switch (const DWORD error = GetLastError()) {
    case ERROR_MOD_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return path + ": it, or a library that it needs, is not there";
    case ERROR_BAD_EXE_FORMAT:
      return path + ": this is no library for 64-bit Windows";
    default:
      return path + ": error " + std::to_string(error) + " of Windows";
  }
}

void* findSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string ownFolder() {
  static const char kHere = 0;
  HMODULE module = nullptr;
  if (GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<LPCWSTR>(&kHere), &module) == 0) {
    return "./";
  }
  const std::wstring path = modulePath(module);
  const std::size_t slash = path.find_last_of(L"/\\");
  return slash == std::wstring::npos ? "./" : narrowText(path.substr(0, slash + 1));
}

std::string glpkLibrary() {
  return ownFolder() + "glpk_5_0.dll";
}

std::string glpkPlace() {
  return "glpk_5_0.dll beside this library";
}

bool isDeviceName(const std::string& path) {
  return ztbwindows::isDeviceName(wideText(path.c_str()));
}

std::filesystem::path pathOf(const std::string& path) {
  return wideText(path.c_str());
}

std::FILE* openFile(const std::string& path, const char* mode) {
  return _wfopen(wideText(path.c_str()).c_str(), wideText(mode).c_str());
}

int openDescriptor(const std::string& path) {
  return _wopen(wideText(path.c_str()).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

void closeDescriptor(int descriptor) {
  _close(descriptor);
}

long readDescriptor(int descriptor, char* bytes, unsigned size) {
  return _read(descriptor, bytes, size);
}

int rewindDescriptor(int descriptor) {
  return _lseeki64(descriptor, 0, SEEK_SET) == 0 ? 0 : -1;
}

int syncFile(std::FILE* file) {
  return _commit(_fileno(file)) == 0 ? 0 : errno;
}

int replaceFile(const std::string& from, const std::string& to) {
  const std::wstring source = wideText(from.c_str());
  const std::wstring target = wideText(to.c_str());
  const bool done = ztbwindows::tryWhileHeld(
      [&] {
        return MoveFileExW(source.c_str(), target.c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
      },
      [](DWORD milliseconds) { Sleep(milliseconds); });
  return done ? 0 : errnoOf(GetLastError());
}

void removeFile(const std::string& path) {
  DeleteFileW(wideText(path.c_str()).c_str());
}

long processNumber() {
  return static_cast<long>(GetCurrentProcessId());
}

}  // namespace lomu::platform
