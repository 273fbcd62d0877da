// Whether a solve may go on: its time, and its caller's wish to end it.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_WATCH_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_WATCH_H_

#include <algorithm>
#include <chrono>
#include <mutex>

#include "providers/model/solver.h"

namespace lomu {

class Watch {
 public:
  // The time of `limits` begins to run.
  explicit Watch(const SolverLimits& limits);

  // True once the time is over or the caller wants an end; stays true from then on.
  bool mustStop();
  // The same for a solver that cannot be asked again before so many seconds: also true when they
  // are more than are left.
  bool mustStopWithin(double seconds);
  // Waits for a lock; false, without it, when mustStop() comes first.
  bool waitFor(std::unique_lock<std::mutex>& lock);
  // Tells the caller how far a search is; the values are those of the minimized problem.
  void tell(double objective, double bound) const {
    if (limits_.progress == nullptr) return;
    limits_.progress(limits_.context, isPart_ ? partObjective_ : objective,
                     isPart_ ? std::min(bound, partBound_) : bound);
  }
  // From now on a part of the search is told of: the best objective is that of all of it, and the
  // rest may hold anything down to `bound`.
  void tellOfPart(double objective, double bound) {
    isPart_ = true;
    partObjective_ = objective;
    partBound_ = bound;
  }
  // Why mustStop() is true: timeLimit or terminated.
  [[nodiscard]] Outcome reason() const { return reason_; }
  [[nodiscard]] bool stopped() const { return stopped_; }

  // The time that is left, never below 0.
  [[nodiscard]] double secondsLeft() const;
  // How many iterations are left after `used`, never below 0.
  [[nodiscard]] int iterationsLeft(double used) const;
  [[nodiscard]] bool limitsIterations() const;
  [[nodiscard]] bool wantsBarrier() const { return limits_.barrier != 0; }
  [[nodiscard]] double relativeGap() const { return limits_.relativeGap; }

 private:
  [[nodiscard]] double secondsUsed() const;

  SolverLimits limits_;
  std::chrono::steady_clock::time_point begin_;
  bool stopped_ = false;
  bool isPart_ = false;
  double partObjective_ = 0;
  double partBound_ = 0;
  Outcome reason_ = Outcome::timeLimit;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_WATCH_H_
