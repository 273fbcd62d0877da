#include <dlfcn.h>

#include "tools/files/shared_library.h"

namespace tool {

std::string libraryFile(const std::string& name) {
  return "lib" + name + ".so";
}

void* openLibrary(const std::string& file, std::string& reason) {
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) reason = dlerror();
  return library;
}

void* functionOf(void* library, const char* name) {
  return dlsym(library, name);
}

}  // namespace tool
