#include "tests/rxf_door/failing_system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace rxftest {

namespace {

int remaining = 0;
int failure = 0;
const char* failedCall = "";

bool mustFail(const char* name) {
  if (remaining == 0 || --remaining > 0) return false;
  failedCall = name;
  errno = failure;
  return true;
}

template <typename Call>
Call* systems(const char* name) {
  return reinterpret_cast<Call*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FailingSystem::FailingSystem(int at, int error) {
  failedCall = "";
  failure = error;
  remaining = at;
}

FailingSystem::~FailingSystem() {
  remaining = 0;
}

std::string FailingSystem::failed() const {
  return failedCall;
}

}  // namespace rxftest

using rxftest::mustFail;
using rxftest::systems;

#pragma GCC visibility push(default)
extern "C" {

#define FAILING(result, name, parameters, arguments)          \
  result name parameters {                                    \
    static auto* const next = systems<decltype(name)>(#name); \
    return mustFail(#name) ? -1 : next arguments;             \
  }

FAILING(ssize_t, pread, (int fd, void* data, size_t size, off_t at), (fd, data, size, at))
FAILING(ssize_t, pwrite, (int fd, const void* data, size_t size, off_t at), (fd, data, size, at))
FAILING(int, fstat, (int fd, struct stat* status) noexcept, (fd, status))
FAILING(int, stat, (const char* path, struct stat* status) noexcept, (path, status))
FAILING(int, ftruncate, (int fd, off_t length) noexcept, (fd, length))
FAILING(int, fsync, (int fd), (fd))
FAILING(int, flock, (int fd, int operation) noexcept, (fd, operation))
FAILING(int, fchmod, (int fd, mode_t mode) noexcept, (fd, mode))
FAILING(int, faccessat, (int folder, const char* path, int mode, int flags) noexcept,
        (folder, path, mode, flags))
FAILING(ssize_t, readlink, (const char* path, char* target, size_t size) noexcept,
        (path, target, size))
FAILING(int, rename, (const char* from, const char* to) noexcept, (from, to))
FAILING(int, unlink, (const char* path) noexcept, (path))

int open(const char* path, int flags, ...) {
  static auto* const next = systems<int(const char*, int, mode_t)>("open");
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list more;
    va_start(more, flags);
    mode = va_arg(more, mode_t);
    va_end(more);
  }
  return mustFail("open") ? -1 : next(path, flags, mode);
}

}  // extern "C"
#pragma GCC visibility pop
