// One run of `ztb sweep`: what is there already, what is left to solve and by whom, and the result.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_RUN_H_
#define ZTB_TOOLS_SWEEP_SWEEP_RUN_H_

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>
#include <ztb/sweep.hpp>

#include "tools/sweep/slurm_array.h"
#include "tools/sweep/sweep_options.h"

namespace tool {

class SweepRun {
 public:
  // Opens the sweep. `options` are looked at as long as this object lives. These throw Failure and
  // ztb::Error.
  explicit SweepRun(const SweepOptions& options);

  // Solves all scenarios, by processes of this machine or a cluster of Dask, and makes the result;
  // whether all have a solution.
  bool solveAll();
  // The same by an array job of Slurm; where that is not to be waited for, whether it is submitted.
  bool solveBySlurm();
  // Prints the script that solveBySlurm() would submit.
  void printScript();
  // Solves a share and leaves its parts; whether all of its scenarios have a solution.
  bool solveShare(int number, int count);
  // Puts the parts together that are there; whether all scenarios have a solution.
  bool collect();

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] ztb::Sweep::Range all() const { return {0, sweep_.scenarioCount()}; }
  [[nodiscard]] int scenarioCount(const std::vector<int>& chunks) const;
  [[nodiscard]] int missingCount() const;

  // Finds the results of an interrupted run, or removes them; whether the result file is one.
  bool findKept();
  // The chunks, of those from `first` to before `end`, that are not there as a whole; with those in
  // which solves have failed, which may go well the next time.
  [[nodiscard]] std::vector<int> pendingChunks(int first, int end, bool withFailed) const;
  // Has the chunks solved; of what scenarios died at which processes were ended.
  std::map<int, std::string> solve(const std::vector<int>& pending);

  // The chunks from `first` to before `end` of the share K of M.
  [[nodiscard]] ztb::Sweep::Range chunksOf(int number, int count) const;
  [[nodiscard]] SlurmArray slurmArray() const;
  [[nodiscard]] int taskCount() const;
  // The shares with chunks of these.
  [[nodiscard]] std::vector<int> sharesOf(const std::vector<int>& chunks) const;
  // Waits for the job's end, or until this process is asked to end.
  void await(const SlurmArray& array, const std::vector<int>& pending);
  [[nodiscard]] std::string collectingText() const;

  // Makes the result of what was solved, and tells of it.
  bool finish(bool hasResult, const std::map<int, std::string>& deaths,
              const std::vector<int>& solved);
  bool tellOfEnd(const std::string& how);
  // Each process opens the model by itself, and others may read the files once the sweep is done.
  void requireSameInputs();
  void leaveNoEmptyFolder();
  void makeResult();
  bool report(ztb::Sweep::Range range, const std::string& missing,
              const std::map<int, std::string>& deaths, const std::vector<int>& solved);
  void reportUnmatched();
  // Why the first infeasible scenarios are so.
  std::map<int, std::string> explanations(ztb::Sweep::Range range);

  const SweepOptions& options_;
  std::string folder_;
  ztb::Sweep sweep_;
  Clock::time_point start_ = Clock::now();
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_RUN_H_
