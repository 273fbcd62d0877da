#include "providers/model/solvers/watch.h"

#include <algorithm>
#include <thread>

namespace lomu {

Watch::Watch(const SolverLimits& limits)
    : limits_(limits), begin_(std::chrono::steady_clock::now()) {}

double Watch::secondsUsed() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

bool Watch::mustStop() {
  if (stopped_) return true;
  if (limits_.terminated != nullptr && limits_.terminated(limits_.context) != 0) {
    stopped_ = true;
    reason_ = Outcome::terminated;
  } else if (secondsUsed() >= limits_.seconds) {
    stopped_ = true;
    reason_ = Outcome::timeLimit;
  }
  return stopped_;
}

bool Watch::mustStopWithin(double seconds) {
  if (mustStop()) return true;
  if (seconds > secondsLeft()) {
    stopped_ = true;
    reason_ = Outcome::timeLimit;
  }
  return stopped_;
}

bool Watch::waitFor(std::unique_lock<std::mutex>& lock) {
  while (!lock.try_lock()) {
    if (mustStop()) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

double Watch::secondsLeft() const {
  return std::max(0.0, limits_.seconds - secondsUsed());
}

int Watch::iterationsLeft(double used) const {
  return static_cast<int>(std::max(0.0, limits_.iterations - used));
}

bool Watch::limitsIterations() const {
  return limits_.iterations < SolverLimits{}.iterations;
}

}  // namespace lomu
