// What a worker of a sweep is told where it is a program of its own, and the program.
#ifndef ZTB_TOOLS_SWEEP_WORKER_REQUEST_H_
#define ZTB_TOOLS_SWEEP_WORKER_REQUEST_H_

#include <map>
#include <string>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_worker.h"

namespace tool {

// The command of ztb that does what it reads from standard input. Nobody gives it by hand, and no
// help tells of it.
inline constexpr const char* kWorkerCommand = "sweep-worker";

// The work of a worker in one line of text. `key` is that of the sweep, which the worker compares
// with what it reads; `skipped` are scenarios that are not solved, and why.
std::string workerRequest(const SweepOptions& options, const std::string& key,
                          const std::string& folder, const SweepWork& work,
                          const std::map<int, std::string>& skipped);

// Reads a request, does it, and ends the process. What is told goes to standard output.
[[noreturn]] void runRequestedWorker();

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_WORKER_REQUEST_H_
