#include <windows.h>

#include <mutex>
#include <new>

#include "peers/platform.h"

namespace ztb::peers::platform {

constinit const FileNaming fileNaming{
    .separator = '\\', .prefix = "", .bits = "64", .suffix = ".dll"};

void* openLibrary(const char* fileName) noexcept {
  return LoadLibraryA(fileName);
}

const char* openErrorText() noexcept {
  return "Windows error";
}

AnyFunction findSymbol(void* library, const char* name) noexcept {
  return reinterpret_cast<AnyFunction>(GetProcAddress(static_cast<HMODULE>(library), name));
}

// GetProcAddress has no text of its own; this is how a formatter renders a null string.
const char* missingSymbolText(void* /*library*/, const char* /*name*/) noexcept {
  return "(null)";
}

void Lock::enter() {
  static_assert(sizeof(CRITICAL_SECTION) <= sizeof storage_);
  std::call_once(made_, [this] { InitializeCriticalSection(new (storage_) CRITICAL_SECTION); });
  EnterCriticalSection(std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage_)));
}

void Lock::leave() {
  LeaveCriticalSection(std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage_)));
}

}  // namespace ztb::peers::platform
