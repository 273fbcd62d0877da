// The worker processes of a sweep: shares the scenarios out, follows the work, and starts another
// worker where one died.
//
// A worker that dies takes nothing with it: what it had solved but not published is solved again,
// and so is the scenario that it was at, once more. A scenario at which two workers died has
// failed; so has all that is left of a share whose workers die again and again without publishing
// anything.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_CREW_H_
#define ZTB_TOOLS_SWEEP_SWEEP_CREW_H_

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_scenarios.h"
#include "tools/sweep/sweep_worker.h"
#include "tools/sweep/worker_processes.h"
#include "tools/text/progress.h"

namespace tool {

class SweepCrew {
 public:
  SweepCrew(const SweepOptions& options, const SweepScenarios& scenarios, const std::string& inputs)
      : options_(options), scenarios_(scenarios), inputs_(inputs) {}

  // Has the scenarios at these places solved and published in parts, the numbers of which begin
  // with firstPart. Throws Failure for what keeps all scenarios from being solved.
  void solve(const std::vector<std::size_t>& pending, int firstPart);

  // Why solves failed, by the place of the scenario.
  [[nodiscard]] const std::map<std::size_t, std::string>& reasons() const { return reasons_; }
  // Parameters of the scenario file with records that meet no column of the model.
  [[nodiscard]] const std::set<std::string>& unmatched() const { return unmatched_; }

 private:
  using Clock = std::chrono::steady_clock;

  // A run of neighbouring scenarios, which one worker at a time solves in their order.
  struct Share {
    SweepWork work;
    // Of the scenarios of `work`, those that the present worker has solved and published.
    std::size_t solved = 0;
    std::size_t published = 0;
    // Workers that died in a row without publishing anything.
    int fruitless = 0;
    bool stalled = false;
    Clock::time_point heard;
  };

  void startWorker(std::size_t share);
  void receive(const WorkerMessage& message);
  void afterDeath(Share& share, const std::string& how);
  void endStalledWorkers();
  void showProgress();
  [[nodiscard]] bool mayBeStalled(const Share& share) const {
    return !share.stalled && share.solved < share.work.chosen.size();
  }

  const SweepOptions& options_;
  const SweepScenarios& scenarios_;
  const std::string& inputs_;

  WorkerProcesses workers_;
  std::vector<Share> shares_;
  // The share of each worker process, in the order of their starts, and the worker of each share.
  std::vector<std::size_t> shareOfWorker_;
  std::vector<std::size_t> workerOfShare_;
  std::map<std::size_t, int> deathsAt_;  // by the place of the scenario

  std::map<std::size_t, std::string> reasons_;
  std::set<std::string> unmatched_;

  // A process may only be forked while nothing draws.
  std::optional<Progress> progress_;
  Clock::time_point start_;
  std::size_t count_ = 0;
  std::size_t done_ = 0;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_CREW_H_
