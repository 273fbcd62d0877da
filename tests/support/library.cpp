#include "tests/support/library.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace ztbtest {
namespace {

template <typename Function>
void bind(void* handle, const std::string& path, const char* name, Function& slot) {
  void* const address = dlsym(handle, name);
  if (address == nullptr) {
    throw std::runtime_error(path + " does not export " + name);
  }
  slot = reinterpret_cast<Function>(address);
}

}  // namespace

Library openLibrary(const std::string& path) {
  Library library;
  library.handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle == nullptr) {
    throw std::runtime_error(std::string("cannot open the library under test: ") + dlerror());
  }
  // clang-format off
#define ZTB_TEST_BIND(name) bind(library.handle, path, #name, library.name);
  ZTB_TEST_EXPORTED_NAMES(ZTB_TEST_BIND)
#undef ZTB_TEST_BIND
  // clang-format on
  return library;
}

void* Library::address(const char* name) const {
  return dlsym(handle, name);
}

const Library& lib() {
  static const Library library = openLibrary(ZTB_CORE_LIBRARY);
  return library;
}

std::string libraryPath() {
  return ZTB_CORE_LIBRARY;
}

std::string peerFolder() {
  return std::filesystem::path(ZTB_CORE_LIBRARY).parent_path().string();
}

}  // namespace ztbtest
