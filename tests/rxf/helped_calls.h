// System calls for reading with a thread's help: how many processors there are, whether a thread
// can be had, and which call on the file fails are the test's to say.
#ifndef ZTB_TESTS_RXF_HELPED_CALLS_H_
#define ZTB_TESTS_RXF_HELPED_CALLS_H_

#include <atomic>
#include <system_error>

#include "providers/rxf/system_calls.h"

namespace rxftest {

class HelpedCalls : public rxffile::SystemCalls {
 public:
  explicit HelpedCalls(unsigned processors) : processors_(processors) {}

  // Refuses threads.
  void refuseThreads() { refusesThreads_ = true; }
  // Has read, or question for the file's status, number `at` from 1 fail.
  void failRead(int at) { failingRead_ = at; }
  void failStatus(int at) { failingStatus_ = at; }

  // Threads that were asked for, and reads and questions that were made by others than the one
  // that made this object.
  [[nodiscard]] int threads() const { return threads_; }
  [[nodiscard]] int helped() const { return helped_; }
  // Whether the call that was to fail was made.
  [[nodiscard]] bool failed() const { return failed_; }

  // What was told of being read soon: how often, and the last place.
  [[nodiscard]] int advices() const { return advices_; }
  [[nodiscard]] off_t advisedOffset() const { return advisedOffset_; }
  [[nodiscard]] off_t advisedLength() const { return advisedLength_; }

  void willRead(int fd, off_t offset, off_t length) override {
    ++advices_;
    advisedOffset_ = offset;
    advisedLength_ = length;
    SystemCalls::willRead(fd, offset, length);
  }
  unsigned processors() override { return processors_; }
  void startThread(std::thread& thread, void (*run)(void* what), void* what) override {
    ++threads_;
    if (refusesThreads_) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    SystemCalls::startThread(thread, run, what);
  }
  ssize_t pread(int fd, void* data, std::size_t size, off_t offset) override {
    return failsNow(reads_, failingRead_) ? -1 : SystemCalls::pread(fd, data, size, offset);
  }
  int fstat(int fd, rxffile::FileStatus* status) override {
    return failsNow(questions_, failingStatus_) ? -1 : SystemCalls::fstat(fd, status);
  }

 private:
  bool failsNow(std::atomic<int>& count, int failing) {
    if (std::this_thread::get_id() != owner_) ++helped_;
    if (++count != failing) return false;
    failed_ = true;
    errno = EIO;
    return true;
  }

  const std::thread::id owner_ = std::this_thread::get_id();
  const unsigned processors_;
  bool refusesThreads_ = false;
  int failingRead_ = 0;
  int failingStatus_ = 0;
  int threads_ = 0;
  int advices_ = 0;
  off_t advisedOffset_ = 0;
  off_t advisedLength_ = 0;
  std::atomic<int> reads_ = 0;
  std::atomic<int> questions_ = 0;
  std::atomic<int> helped_ = 0;
  std::atomic<bool> failed_ = false;
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_HELPED_CALLS_H_
