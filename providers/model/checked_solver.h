// A solver that is believed only as far as it proves what it claims.
//
// One that goes on from its last solve can end at a wrong place. So an answer of a warm solve that
// nothing proves, and a warm solve that ended with none, are each followed by one cold solve: the
// problem is handed over and solved from the beginning, and that answer counts, whatever it is. So
// is a warm solve that takes far longer than the last cold one did, which is then ended, and the
// cold one is by an interior point method where the solver has one.
#ifndef ZTB_PROVIDERS_MODEL_CHECKED_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_CHECKED_SOLVER_H_

#include <memory>
#include <string>

#include "providers/model/solver.h"

namespace lomu {

class CheckedSolver : public Solver {
 public:
  explicit CheckedSolver(std::unique_ptr<Solver> solver) : solver_(std::move(solver)) {}

  // The problem stays at its place until the next load or update.
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;
  bool ranges(SolverRanges& ranges) override { return solver_->ranges(ranges); }

  // Why the last solve needed a cold one; empty when it did not.
  [[nodiscard]] const std::string& doubt() const { return doubt_; }

  // The time that a warm solve has: that of so many cold ones, and no less than so many seconds.
  static constexpr double kMostColdSolves = 5;
  static constexpr double kLeastWarmSeconds = 2;

 private:
  void solveBelieved(const SolverLimits& limits, SolverResult& result);

  std::unique_ptr<Solver> solver_;
  const SolverProblem* problem_ = nullptr;
  SolverProblem cold_{};    // the same without a basis to begin with
  bool isWarm_ = false;     // the solver goes on from a solve before, or begins with a basis
  double coldSeconds_ = 0;  // that the last cold solve took
  std::string doubt_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_CHECKED_SOLVER_H_
