// The calls of files are those of providers/windows.

#include "providers/rxf/system_calls.h"
#include "providers/windows/posix_calls.h"

namespace rxffile {

int SystemCalls::open(const char* path, int flags, mode_t mode) {
  return ztbwindows::open(path, flags, mode);
}

int SystemCalls::close(int fd) {
  return ztbwindows::close(fd);
}

int SystemCalls::fstat(int fd, FileStatus* status) {
  return ztbwindows::fstat(fd, status);
}

int SystemCalls::stat(const char* path, FileStatus* status) {
  return ztbwindows::stat(path, status);
}

ssize_t SystemCalls::pread(int fd, void* data, std::size_t size, off_t offset) {
  return ztbwindows::pread(fd, data, size, offset);
}

ssize_t SystemCalls::pwrite(int fd, const void* data, std::size_t size, off_t offset) {
  return ztbwindows::pwrite(fd, data, size, offset);
}

int SystemCalls::ftruncate(int fd, off_t length) {
  return ztbwindows::ftruncate(fd, length);
}

int SystemCalls::fsync(int fd) {
  return ztbwindows::fsync(fd);
}

int SystemCalls::flock(int fd, int operation) {
  return ztbwindows::flock(fd, operation);
}

int SystemCalls::fchmod(int fd, mode_t mode) {
  return ztbwindows::fchmod(fd, mode);
}

int SystemCalls::access(const char* path, int mode) {
  return ztbwindows::access(path, mode);
}

ssize_t SystemCalls::readlink(const char* path, char* target, std::size_t size) {
  return ztbwindows::readlink(path, target, size);
}

int SystemCalls::rename(const char* from, const char* to) {
  return ztbwindows::rename(from, to);
}

int SystemCalls::unlink(const char* path) {
  return ztbwindows::unlink(path);
}

// The system reads ahead by what it sees.
void SystemCalls::willRead(int /*fd*/, off_t /*offset*/, off_t /*length*/) {}

unsigned SystemCalls::processors() {
  if (const unsigned asked = threadsAsked(); asked > 0) return asked;
  return std::thread::hardware_concurrency();
}

void SystemCalls::startThread(std::thread& thread, void (*run)(void* what), void* what) {
  thread = std::thread(run, what);
}

// No process is a copy of another.
long SystemCalls::process() {
  return 0;
}

SystemCalls& operatingSystem() {
  static SystemCalls calls;
  return calls;
}

}  // namespace rxffile
