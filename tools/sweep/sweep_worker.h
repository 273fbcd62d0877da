// The part of a sweep that one process does: a database, a model and a solver of its own, and the
// scenarios given to it.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_
#define ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_scenarios.h"
#include "tools/sweep/worker_processes.h"

namespace tool {

struct SweepWork {
  std::vector<std::size_t> chosen;  // places in the scenario file
  int firstPart = 1;                // number of the first part to publish
  int partStep = 1;                 // from one part's number to the next one's
  bool reportsNotes = false;        // tells on standard error which names of the model changed
  // Place in `chosen` of a scenario at which a worker died: those before it are published first.
  std::optional<std::size_t> publishBefore = std::nullopt;
};

// What a worker sends, beside what WorkerProcesses adds.
struct SweepMessage {
  // A scenario is done.
  static constexpr char done = '.';
  // A part with all scenarios done so far, but for those in earlier parts, is published.
  static constexpr char published = 'p';
  // The solve of a scenario failed: its place in the scenario file, a blank, and why.
  static constexpr char scenarioFailed = 'f';
  // A parameter of this name has records that meet no column of the model.
  static constexpr char unmatched = 'u';
};

// Runs the scenarios and publishes their results in parts: after 100 scenarios, later if that would
// take more than a tenth of the time, but after 5 seconds in any case, and at the end. Throws
// Failure and ztb::Error for what keeps all scenarios from being run.
void runSweepWorker(const SweepOptions& options, const SweepScenarios& scenarios,
                    const std::string& inputs, const SweepWork& work, const WorkerChannel& channel);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_
