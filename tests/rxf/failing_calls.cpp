#include "tests/rxf/failing_calls.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace rxftest {

namespace {

constexpr std::size_t kLittle = 7;

}  // namespace

template <typename Call>
auto FailingCalls::step(const char* name, const Call& call) {
  using Result = decltype(call());
  ++calls_;
  const bool here = calls_ == at_;
  if ((here && mode_ == Mode::failOnce) || (calls_ >= at_ && mode_ == Mode::failOn)) {
    if (failed_.empty()) failed_ = name;
    errno = error_;
    return static_cast<Result>(-1);
  }
  if (here && mode_ == Mode::endBefore) _exit(kEndStatus);
  const Result result = call();
  if (here && (mode_ == Mode::endAfter || mode_ == Mode::endWithin)) _exit(kEndStatus);
  return result;
}

int FailingCalls::open(const char* path, int flags, mode_t mode) {
  return step("open", [&] { return SystemCalls::open(path, flags, mode); });
}

// A close that fails has closed nevertheless.
int FailingCalls::close(int fd) {
  const int result = SystemCalls::close(fd);
  return step("close", [&] { return result; });
}

int FailingCalls::fstat(int fd, struct stat* status) {
  return step("fstat", [&] { return SystemCalls::fstat(fd, status); });
}

int FailingCalls::stat(const char* path, struct stat* status) {
  return step("stat", [&] { return SystemCalls::stat(path, status); });
}

ssize_t FailingCalls::pread(int fd, void* data, std::size_t size, off_t offset) {
  if (mode_ == Mode::shortOnes) size = std::min(size, kLittle);
  return step("pread", [&] { return SystemCalls::pread(fd, data, size, offset); });
}

ssize_t FailingCalls::pwrite(int fd, const void* data, std::size_t size, off_t offset) {
  if (mode_ == Mode::shortOnes) size = std::min(size, kLittle);
  if (mode_ == Mode::endWithin) size = std::max<std::size_t>(1, size / 2);
  return step("pwrite", [&] { return SystemCalls::pwrite(fd, data, size, offset); });
}

int FailingCalls::ftruncate(int fd, off_t length) {
  return step("ftruncate", [&] { return SystemCalls::ftruncate(fd, length); });
}

int FailingCalls::fsync(int fd) {
  return step("fsync", [&] { return SystemCalls::fsync(fd); });
}

int FailingCalls::flock(int fd, int operation) {
  return step("flock", [&] { return SystemCalls::flock(fd, operation); });
}

int FailingCalls::fchmod(int fd, mode_t mode) {
  return step("fchmod", [&] { return SystemCalls::fchmod(fd, mode); });
}

int FailingCalls::access(const char* path, int mode) {
  return step("access", [&] { return SystemCalls::access(path, mode); });
}

ssize_t FailingCalls::readlink(const char* path, char* target, std::size_t size) {
  return step("readlink", [&] { return SystemCalls::readlink(path, target, size); });
}

int FailingCalls::rename(const char* from, const char* to) {
  return step("rename", [&] { return SystemCalls::rename(from, to); });
}

int FailingCalls::unlink(const char* path) {
  return step("unlink", [&] { return SystemCalls::unlink(path); });
}

}  // namespace rxftest
