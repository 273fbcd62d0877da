#include <dlfcn.h>

#include <cstdlib>
#include <system_error>

#include "formats/parquet/shared_library.h"

namespace formats {

const char* const duckdbFile = "libduckdb.so";
const char* const duckdbPackage = "@duckdb/node-bindings-linux-x64";
const char* const duckdbModules = "duckdb/node_modules";

std::filesystem::path environmentPath(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::filesystem::path ownFile() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&ownFile), &info) == 0) return {};
  std::error_code error;
  return std::filesystem::weakly_canonical(info.dli_fname, error);
}

void* openSharedLibrary(const std::filesystem::path& file, std::string& reason) {
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) reason = dlerror();
  return library;
}

void* functionOf(void* library, const char* name) {
  return dlsym(library, name);
}

}  // namespace formats
