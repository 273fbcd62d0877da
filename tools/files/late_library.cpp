#include "tools/files/late_library.h"

#include <fmt/format.h>

#include "tools/files/shared_library.h"
#include "tools/text/failure.h"

namespace tool {

void* LateLibrary::find(const char* name) const {
  // Opened once more for each function, which only counts it: it stays as long as the program.
  const std::string file = libraryFile(name_);
  std::string reason;
  void* const library = openLibrary(file, reason);
  if (library == nullptr) {
    throw Failure(fmt::format("a library of ztb cannot be opened: {}", reason));
  }
  void* const function = functionOf(library, name);
  if (function == nullptr) {
    throw Failure(fmt::format("{} has no function {}: it is of another version", file, name));
  }
  return function;
}

}  // namespace tool
