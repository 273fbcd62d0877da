#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "providers/rxf/held_signal.h"
#include "providers/rxf/system_calls.h"

namespace rxffile {

namespace {

// While it lives, no signal is handled in this thread but those that its own instructions raise.
class SignalsElsewhere {
 public:
  SignalsElsewhere() {
    sigset_t others;
    sigfillset(&others);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
      sigdelset(&others, own);
    }
    pthread_sigmask(SIG_BLOCK, &others, &before_);
  }
  SignalsElsewhere(const SignalsElsewhere&) = delete;
  SignalsElsewhere& operator=(const SignalsElsewhere&) = delete;
  ~SignalsElsewhere() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace

int SystemCalls::open(const char* path, int flags, mode_t mode) {
  return ::open(path, flags, mode);
}

int SystemCalls::close(int fd) {
  return ::close(fd);
}

int SystemCalls::fstat(int fd, FileStatus* status) {
  return ::fstat(fd, status);
}

int SystemCalls::stat(const char* path, FileStatus* status) {
  return ::stat(path, status);
}

ssize_t SystemCalls::pread(int fd, void* data, std::size_t size, off_t offset) {
  return ::pread(fd, data, size, offset);
}

ssize_t SystemCalls::pwrite(int fd, const void* data, std::size_t size, off_t offset) {
  const HeldSignal held(SIGXFSZ);
  return ::pwrite(fd, data, size, offset);
}

int SystemCalls::ftruncate(int fd, off_t length) {
  return ::ftruncate(fd, length);
}

int SystemCalls::fsync(int fd) {
  return ::fsync(fd);
}

int SystemCalls::flock(int fd, int operation) {
  return ::flock(fd, operation);
}

int SystemCalls::fchmod(int fd, mode_t mode) {
  return ::fchmod(fd, mode);
}

int SystemCalls::access(const char* path, int mode) {
  return ::faccessat(AT_FDCWD, path, mode, AT_EACCESS);
}

ssize_t SystemCalls::readlink(const char* path, char* target, std::size_t size) {
  return ::readlink(path, target, size);
}

int SystemCalls::rename(const char* from, const char* to) {
  return ::rename(from, to);
}

void SystemCalls::willRead(int fd, off_t offset, off_t length) {
  posix_fadvise(fd, offset, length, POSIX_FADV_WILLNEED);
}

int SystemCalls::unlink(const char* path) {
  return ::unlink(path);
}

unsigned SystemCalls::processors() {
  if (const unsigned asked = threadsAsked(); asked > 0) return asked;
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
    return std::max(std::thread::hardware_concurrency(), 1U);
  }
  return static_cast<unsigned>(CPU_COUNT(&allowed));
}

// The thread begins with the signals of the one that starts it.
void SystemCalls::startThread(std::thread& thread, void (*run)(void* what), void* what) {
  const SignalsElsewhere elsewhere;
  thread = std::thread(run, what);
}

long SystemCalls::process() {
  return getpid();
}

SystemCalls& operatingSystem() {
  static SystemCalls calls;
  return calls;
}

}  // namespace rxffile
