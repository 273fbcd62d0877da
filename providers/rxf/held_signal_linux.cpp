#include <cerrno>
#include <ctime>

#include "providers/rxf/held_signal.h"

namespace rxffile {

HeldSignal::HeldSignal(int signal) {
  sigset_t waiting;
  sigemptyset(&waiting);
  sigpending(&waiting);
  waitedBefore_ = sigismember(&waiting, signal) == 1;
  sigemptyset(&signal_);
  sigaddset(&signal_, signal);
  sigemptyset(&before_);
  pthread_sigmask(SIG_BLOCK, &signal_, &before_);
}

// The error of the call that was made meanwhile stays in errno.
HeldSignal::~HeldSignal() {
  const int error = errno;
  const timespec noTime = {};
  if (!waitedBefore_) {
    while (sigtimedwait(&signal_, nullptr, &noTime) < 0 && errno == EINTR) {
    }
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  errno = error;
}

}  // namespace rxffile
