// An array job of Slurm whose tasks each take a share of a sweep's chunks by `ztb sweep --part`.
//
// The job is recorded beside the parts as KEY.job, so that one that is still in the queue is found
// again; what a task told stands there as KEY.K.log. Slurm is reached by its commands alone.
#ifndef ZTB_TOOLS_SWEEP_SLURM_ARRAY_H_
#define ZTB_TOOLS_SWEEP_SLURM_ARRAY_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/sweep/sweep_options.h"

namespace tool {

class SlurmArray {
 public:
  // `options` are looked at as long as this object lives. `tasks` is M of all shares K/M.
  SlurmArray(const SweepOptions& options, std::string folder, std::string key, int tasks);

  // The script that is submitted for these shares, numbers from 1 to `tasks` in ascending order.
  [[nodiscard]] std::string script(const std::vector<int>& shares) const;
  // Submits it, and records the job. Throws Failure, also for what Slurm says against it.
  void submit(const std::vector<int>& shares);

  // The job that was recorded, whether or not it is still in the queue; empty: none.
  [[nodiscard]] const std::string& job() const { return job_; }

  struct Queue {
    int running = 0;
    int waiting = 0;
    std::string reason;  // for which all that wait do so; empty: for several
  };
  // The job's tasks that are not through; nothing when all are. Throws Failure where Slurm cannot
  // be asked, which it may be again later.
  [[nodiscard]] std::optional<Queue> queue() const;

  // The last thing that the task of a share told.
  [[nodiscard]] std::string lastWord(int share) const;

 private:
  [[nodiscard]] std::string file(const std::string& ending) const;

  const SweepOptions& options_;
  std::string folder_;
  std::string key_;
  int tasks_;
  std::string job_;
};

// Seconds of a time limit as Slurm takes it: "90", "1:30:00", "2-12"; 0 for one without an end.
// Nothing for other texts.
std::optional<long long> slurmSeconds(const std::string& text);

// A word of a shell's command line.
std::string shellQuoted(const std::string& text);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SLURM_ARRAY_H_
