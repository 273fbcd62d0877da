// What the command line says of a sweep.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_

#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <ztb/sweep.hpp>

#include "tools/sweep/sweep_progress.h"

namespace tool {

struct SweepOptions {
  std::string model;
  std::string modelData;
  std::string data;
  std::vector<std::string> drives;
  std::string scenarios;
  std::string over;
  std::string solver;
  std::string out;
  std::vector<std::string> reports;
  std::optional<int> chunk;
  std::string timeLimit;
  std::string parts;
  std::optional<std::pair<int, int>> share;  // K and M of --part K/M
  int jobs = 1;
  std::optional<int> stall;
  bool collect = false;
  bool resume = false;
  bool explain = false;
  SweepProgress::Kind progress = SweepProgress::Kind::terminal;

  // An array job of Slurm.
  bool slurm = false;
  std::optional<int> tasks;  // none: by the number of chunks
  std::string time;          // empty: that of the partition
  std::string partition;
  std::vector<std::string> sbatch;  // options of sbatch
  bool noWait = false;
  bool dryRun = false;

  std::string dask;  // address of a scheduler; empty: none

  // Gives a sweep what decides the results, or where no model is named what --parts has saved, and
  // opens it. Throws ztb::Error.
  void open(ztb::Sweep& sweep) const;

  // What decides the results, as ztbSweepOption takes it; files with their paths from the root on.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> ofSweep() const;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_OPTIONS_H_
