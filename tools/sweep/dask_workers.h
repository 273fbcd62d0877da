// Has a cluster of Dask solve chunks: the Python package hands them out, in a process of its own,
// and leaves their parts in the folder.
#ifndef ZTB_TOOLS_SWEEP_DASK_WORKERS_H_
#define ZTB_TOOLS_SWEEP_DASK_WORKERS_H_

#include <string>
#include <vector>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_progress.h"

namespace tool {

// Ends early once `stops` says so. Throws Failure for what keeps chunks from being solved; parts
// that have come stand in the folder all the same.
void solveWithDask(const SweepOptions& options, const std::string& folder,
                   const std::vector<int>& chunks, SweepProgress& progress, bool (*stops)());

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_DASK_WORKERS_H_
