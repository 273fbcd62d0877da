// System calls that fail, transfer little, or end the process, at the call that a test chooses.
#ifndef ZTB_TESTS_RXF_FAILING_CALLS_H_
#define ZTB_TESTS_RXF_FAILING_CALLS_H_

#include <string>

#include "providers/rxf/system_calls.h"

namespace rxftest {

class FailingCalls : public rxffile::SystemCalls {
 public:
  enum class Mode {
    count,      // only counts
    failOnce,   // call `at` fails
    failOn,     // call `at` and all behind it fail
    shortOnes,  // reads and writes transfer at most 7 bytes
    endBefore,  // the process ends instead of call `at`
    endAfter,   // the process ends behind call `at`
    endWithin,  // the process ends in the middle of call `at`, if it writes
  };
  static constexpr int kEndStatus = 77;

  FailingCalls(Mode mode, int at, int error) : mode_(mode), at_(at), error_(error) {}

  [[nodiscard]] int calls() const { return calls_; }
  // Name of the first call that failed, empty when none did.
  [[nodiscard]] const std::string& failed() const { return failed_; }

  int open(const char* path, int flags, mode_t mode) override;
  int close(int fd) override;
  int fstat(int fd, struct stat* status) override;
  int stat(const char* path, struct stat* status) override;
  ssize_t pread(int fd, void* data, std::size_t size, off_t offset) override;
  ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset) override;
  int ftruncate(int fd, off_t length) override;
  int fsync(int fd) override;
  int flock(int fd, int operation) override;
  int fchmod(int fd, mode_t mode) override;
  int access(const char* path, int mode) override;
  ssize_t readlink(const char* path, char* target, std::size_t size) override;
  int rename(const char* from, const char* to) override;
  int unlink(const char* path) override;

 private:
  template <typename Call>
  auto step(const char* name, const Call& call);

  Mode mode_;
  int at_;
  int error_;
  int calls_ = 0;
  std::string failed_;
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_FAILING_CALLS_H_
