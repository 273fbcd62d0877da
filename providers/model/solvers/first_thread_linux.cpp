#include <unistd.h>

#include "providers/model/solvers/first_thread.h"

namespace lomu {

bool isFirstThread() {
  return ::gettid() == ::getpid();
}

}  // namespace lomu
