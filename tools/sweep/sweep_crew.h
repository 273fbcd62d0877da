// The worker processes of a sweep: shares the chunks out, follows the work, and starts another
// worker where one died.
//
// A worker that dies takes nothing with it: the chunks that it had solved but not published are
// solved again, and so is the scenario that it was at, once more. A scenario at which two workers
// died has failed; so has all that is left of a share whose workers die again and again without
// publishing anything.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_CREW_H_
#define ZTB_TOOLS_SWEEP_SWEEP_CREW_H_

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>
#include <ztb/sweep.hpp>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_progress.h"
#include "tools/sweep/worker_processes.h"

namespace tool {

class SweepCrew {
 public:
  struct Plan {
    const SweepOptions& options;
    std::string folder;  // of the parts
    // Whether the sweep was asked to end.
    bool (*stops)() = [] { return false; };
  };

  SweepCrew(ztb::Sweep& sweep, const Plan& plan, SweepProgress& progress)
      : sweep_(sweep), plan_(plan), progress_(progress) {}

  // Has these chunks, in ascending order, solved and published as parts in the folder. Throws
  // Failure for what keeps all scenarios from being solved. Ends early once plan.stops says so: the
  // workers publish what they have solved.
  void solve(const std::vector<int>& chunks);

  // Why scenarios have failed at which workers died, by their numbers.
  [[nodiscard]] const std::map<int, std::string>& deaths() const { return deaths_; }

 private:
  using Clock = std::chrono::steady_clock;

  // Chunks in ascending order, which one worker at a time solves.
  struct Share {
    std::vector<int> chunks;
    // Scenarios of `chunks` that the present worker has solved and published.
    int solved = 0;
    int published = 0;
    int failed = 0;  // solves of those that are not published
    // Chunk before which what was solved is published: a worker died in it.
    int careful = -1;
    // Workers that died in a row without publishing anything.
    int fruitless = 0;
    bool tellsNotes = false;
    bool stalled = false;
    Clock::time_point heard;
  };

  void startWorker(std::size_t share);
  void receive(const WorkerMessage& message);
  void afterDeath(Share& share, const std::string& how);
  void endStalledWorkers();
  [[nodiscard]] int scenarioCount(const std::vector<int>& chunks) const;

  ztb::Sweep& sweep_;
  const Plan& plan_;

  WorkerProcesses workers_;
  std::vector<Share> shares_;
  // The share of each worker process, in the order of their starts, and the worker of each share.
  std::vector<std::size_t> shareOfWorker_;
  std::vector<std::size_t> workerOfShare_;
  std::map<int, int> deathsAt_;  // by scenario
  std::map<int, std::string> deaths_;
  std::map<int, std::string> skipped_;  // what workers do not try any more
  bool isShared_ = false;               // all shares have had a worker
  bool isStopping_ = false;

  // A process may only be forked while it draws nothing.
  SweepProgress& progress_;
  SweepCounts counts_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_CREW_H_
