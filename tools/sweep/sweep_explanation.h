// Why scenarios of a sweep have no solution: the rows and bounds that cannot hold together, and the
// records in which a scenario differs from the nearest one that has a solution.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_EXPLANATION_H_
#define ZTB_TOOLS_SWEEP_SWEEP_EXPLANATION_H_

#include <cstddef>
#include <map>
#include <string>

#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_results.h"
#include "tools/sweep/sweep_scenarios.h"

namespace tool {

// Texts by the places of the first infeasible scenarios. The nearest scenario is the one with the
// fewest records that are other or missing in one of the two. Throws Failure when the model or the
// scenarios cannot be read.
std::map<std::size_t, std::string> explainScenarios(
    const SweepOptions& options, const SweepScenarios& scenarios,
    const std::map<std::string, ScenarioOutcome>& outcomes);

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_EXPLANATION_H_
