// A lock that one thread may take and another give back, which costs no call of the system while
// nobody waits: std::binary_semaphore wakes waiters at each release, whether there are any or not.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_TURN_LOCK_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_TURN_LOCK_H_

#include <semaphore.h>

#include <chrono>
#include <ctime>

namespace python {

class TurnLock {
 public:
  TurnLock() { sem_init(&free_, 0, 1); }
  TurnLock(const TurnLock&) = delete;
  TurnLock& operator=(const TurnLock&) = delete;
  ~TurnLock() { sem_destroy(&free_); }

  // Whether it was free, and is taken now.
  [[nodiscard]] bool tryTake() { return sem_trywait(&free_) == 0; }

  // Waits for about that long; a signal ends the waiting before. True when it is taken.
  [[nodiscard]] bool takeWithin(std::chrono::nanoseconds wait) {
    const auto end = std::chrono::system_clock::now().time_since_epoch() + wait;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(end);
    const timespec until{.tv_sec = seconds.count(),
                         .tv_nsec = std::chrono::nanoseconds(end - seconds).count()};
    return sem_timedwait(&free_, &until) == 0;
  }

  void giveBack() { sem_post(&free_); }

 private:
  sem_t free_{};
};

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_TURN_LOCK_H_
