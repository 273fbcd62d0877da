#include "tests/support/library.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace ztbtest {

namespace {

template <typename Function>
void bind(void* handle, const char* name, Function& slot) {
  void* const address = dlsym(handle, name);
  if (address == nullptr) {
    throw std::runtime_error(libraryPath() + " does not export " + name);
  }
  slot = reinterpret_cast<Function>(address);
}

Library open() {
  Library library;
  library.handle = dlopen(ZTB_CORE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (library.handle == nullptr) {
    throw std::runtime_error(std::string("cannot open the library under test: ") + dlerror());
  }
  // clang-format off
#define ZTB_TEST_BIND(name) bind(library.handle, #name, library.name);
  ZTB_TEST_EXPORTED_NAMES(ZTB_TEST_BIND)
#undef ZTB_TEST_BIND
  // clang-format on
  return library;
}

}  // namespace

void* Library::address(const char* name) const {
  return dlsym(handle, name);
}

const Library& lib() {
  static const Library library = open();
  return library;
}

std::string libraryPath() {
  return ZTB_CORE_LIBRARY;
}

std::string peerFolder() {
  return std::filesystem::path(ZTB_CORE_LIBRARY).parent_path().string();
}

}  // namespace ztbtest
