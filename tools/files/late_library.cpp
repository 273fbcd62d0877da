#include "tools/files/late_library.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "tools/text/failure.h"

namespace tool {

void* LateLibrary::find(const char* name) const {
  // Opened once more for each function, which only counts it: it stays as long as the program.
  void* const library = dlopen(file_, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw Failure(fmt::format("a library of ztb cannot be opened: {}", dlerror()));
  }
  void* const function = dlsym(library, name);
  if (function == nullptr) {
    throw Failure(fmt::format("{} has no function {}: it is of another version", file_, name));
  }
  return function;
}

}  // namespace tool
