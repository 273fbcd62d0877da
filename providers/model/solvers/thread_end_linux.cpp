#include <unistd.h>

#include "providers/model/solvers/thread_end.h"

namespace lomu {

namespace {

struct ThreadEnd {
  void (*function)() = nullptr;

  ~ThreadEnd() {
    if (function != nullptr) function();
  }
};
thread_local ThreadEnd threadEnd;

}  // namespace

void atThreadEnd(void (*function)()) {
  if (::gettid() != ::getpid()) threadEnd.function = function;
}

}  // namespace lomu
