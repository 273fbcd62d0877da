#include <dlfcn.h>

#include <mutex>
#include <new>

#include "peers/platform.h"

namespace ztb::peers::platform {
namespace {

using NativeLock = std::recursive_mutex;

}  // namespace

constinit const FileNaming fileNaming{
    .separator = '/', .prefix = "lib", .bits = "64", .suffix = ".so"};

// All symbols are resolved here and now, so that a peer which lacks something of its own is
// reported by name and doesn't end the process in the middle of a call.
void* openLibrary(const char* fileName) noexcept {
  return dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
}

const char* openErrorText() noexcept {
  const char* text = dlerror();
  return text != nullptr ? text : "unknown reason";
}

AnyFunction findSymbol(void* library, const char* name) noexcept {
  return reinterpret_cast<AnyFunction>(dlsym(library, name));
}

const char* missingSymbolText(void* library, const char* name) noexcept {
  dlerror();
  static_cast<void>(dlsym(library, name));
  const char* text = dlerror();
  return text != nullptr ? text : "the symbol has no address";
}

void Lock::enter() {
  static_assert(sizeof(NativeLock) <= sizeof storage_);
  std::call_once(made_, [this] { new (storage_) NativeLock; });
  std::launder(reinterpret_cast<NativeLock*>(storage_))->lock();
}

void Lock::leave() {
  std::launder(reinterpret_cast<NativeLock*>(storage_))->unlock();
}

}  // namespace ztb::peers::platform
