// The part of a sweep that one process of this machine does.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_
#define ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_

#include <string>
#include <vector>
#include <ztb/sweep.hpp>

#include "tools/sweep/worker_processes.h"

namespace tool {

struct SweepWork {
  std::vector<int> chunks;  // in ascending order
  int careful = -1;         // chunk before which what was solved is published: a worker died in it
  bool tellsNotes = false;  // on standard error, what is to be known of the model
  bool (*stops)() = [] { return false; };  // whether that came before the worker heard it
};

// What a worker sends, beside what WorkerProcesses adds.
struct SweepMessage {
  // The model is open, and the basis that chunks start from there.
  static constexpr char prepared = 'b';
  // The solve of a scenario failed; `done` follows.
  static constexpr char failed = 'f';
  // A scenario is done.
  static constexpr char done = '.';
  // A part with all scenarios done so far, but for those in earlier parts, is published.
  static constexpr char published = 'p';
};

// Solves the chunks and publishes their results in parts: with a chunk after 100 scenarios, later
// if that would take more than a tenth of the time, but with the first one that ends after 5
// seconds, and at the end, also at that which a request makes. Throws Failure and ztb::Error for
// what keeps all scenarios from being run.
void runSweepWorker(ztb::Sweep& sweep, const std::string& folder, const SweepWork& work,
                    const WorkerChannel& channel);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_WORKER_H_
