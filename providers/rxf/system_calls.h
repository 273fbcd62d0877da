// The calls of the operating system that files are read and written with, and those by which a
// thread helps with reading, behind an interface, so that tests can make each of them fail or end
// the process there.
//
// On Windows they are made of its own calls, as far as these go.
//
// Every call of a file has the meaning, the result and the errno of the POSIX call of its name.
// Writing beyond the process's file-size limit is the error EFBIG and never the signal SIGXFSZ,
// whatever the process has arranged for that.
#ifndef ZTB_PROVIDERS_RXF_SYSTEM_CALLS_H_
#define ZTB_PROVIDERS_RXF_SYSTEM_CALLS_H_

#include <cstddef>
#include <thread>

#include "providers/rxf/system_types.h"

namespace rxffile {

class SystemCalls {
 public:
  SystemCalls() = default;
  SystemCalls(const SystemCalls&) = delete;
  SystemCalls& operator=(const SystemCalls&) = delete;
  virtual ~SystemCalls() = default;

  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int fd);
  virtual int fstat(int fd, FileStatus* status);
  virtual int stat(const char* path, FileStatus* status);
  virtual ssize_t pread(int fd, void* data, std::size_t size, off_t offset);
  virtual ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset);
  virtual int ftruncate(int fd, off_t length);
  virtual int fsync(int fd);
  virtual int flock(int fd, int operation);
  virtual int fchmod(int fd, mode_t mode);
  virtual int access(const char* path, int mode);
  virtual ssize_t readlink(const char* path, char* target, std::size_t size);
  virtual int rename(const char* from, const char* to);
  virtual int unlink(const char* path);

  // Tells the system that these bytes are read soon, so that it may bring them from the disk
  // meanwhile. Nothing but time depends on it.
  virtual void willRead(int fd, off_t offset, off_t length);

  // Processors that the process may use; what ZTB_RXF_THREADS says where that is a number from 1
  // on.
  virtual unsigned processors();
  // Starts `run(what)` as `thread`, where no signal that is sent to the process is handled. Throws
  // std::system_error and std::bad_alloc.
  virtual void startThread(std::thread& thread, void (*run)(void* what), void* what);
  // The process's number, another one behind a fork.
  virtual long process();
};

// The real calls.
SystemCalls& operatingSystem();

// The number in ZTB_RXF_THREADS, 0 where there is none.
unsigned threadsAsked();

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_SYSTEM_CALLS_H_
