#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "providers/model/platform.h"

namespace lomu::platform {

void* openLibrary(const std::string& path) {
  // A solver's library has thousands of functions, few of which a small problem needs; finding all
  // of them would take longer than to solve it.
  return dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
}

std::string openErrorText(const std::string& /*path*/) {
  return dlerror();
}

void* findSymbol(void* library, const char* name) {
  return dlsym(library, name);
}

std::string ownFolder() {
  static const char kHere = 0;
  Dl_info info{};
  if (dladdr(&kHere, &info) == 0 || info.dli_fname == nullptr) return "./";
  const std::string path = info.dli_fname;
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string glpkLibrary() {
  return "libglpk.so.40";
}

std::string glpkPlace() {
  return "package libglpk40";
}

bool isDeviceName(const std::string& /*path*/) {
  return false;
}

std::filesystem::path pathOf(const std::string& path) {
  return path;
}

std::FILE* openFile(const std::string& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

int openDescriptor(const std::string& path) {
  return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

void closeDescriptor(int descriptor) {
  close(descriptor);
}

long readDescriptor(int descriptor, char* bytes, unsigned size) {
  ssize_t count = -1;
  do {
    count = read(descriptor, bytes, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

int rewindDescriptor(int descriptor) {
  return lseek(descriptor, 0, SEEK_SET) == 0 ? 0 : -1;
}

int syncFile(std::FILE* file) {
  return fsync(fileno(file)) == 0 ? 0 : errno;
}

int replaceFile(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

void removeFile(const std::string& path) {
  unlink(path.c_str());
}

long processNumber() {
  return getpid();
}

}  // namespace lomu::platform
