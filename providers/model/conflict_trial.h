// A problem of one's own, whose bounds can be changed, and a solver that begins afresh each time it
// is asked whether there is a point.
#ifndef ZTB_PROVIDERS_MODEL_CONFLICT_TRIAL_H_
#define ZTB_PROVIDERS_MODEL_CONFLICT_TRIAL_H_

#include <chrono>
#include <memory>
#include <vector>

#include "providers/model/catalogue.h"
#include "providers/model/solver.h"

namespace lomu {

class Trial {
 public:
  using Clock = std::chrono::steady_clock;

  // The arrays of `problem` other than its bounds stay the caller's. No solve goes on after `end`.
  Trial(const SolverProblem& problem, const CatalogueRow& solver, const SolverLimits& limits,
        Clock::time_point end);
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

  // Throws ModelError when the solver does not take the problem at all.
  void solve();
  [[nodiscard]] const SolverResult& result() const { return result_; }

  // With the bounds as they are now.
  [[nodiscard]] const SolverProblem& problem();

  // Whether there is no point; false where that is not known, which `unknown` then tells.
  bool infeasible(bool& unknown);

 private:
  SolverProblem problem_;

 public:
  std::vector<double> lower, upper, rowLower, rowUpper;

 private:
  std::unique_ptr<Solver> solver_;
  SolverLimits limits_;
  Clock::time_point end_;
  SolverResult result_;
  bool wasTaken_ = false;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_CONFLICT_TRIAL_H_
