// What `ztb sweep` tells of its results when it ends.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_
#define ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/sweep/sweep_results.h"
#include "tools/sweep/sweep_scenarios.h"

namespace tool {

class SweepSummary {
 public:
  // All scenarios, and an outcome for each by its label.
  SweepSummary(const std::vector<Scenario>& scenarios,
               const std::map<std::string, ScenarioOutcome>& outcomes)
      : scenarios_(scenarios), outcomes_(outcomes) {}

  // A line on standard error for each of the first scenarios without a solution, and the count of
  // the others; `reasons` has more about some scenarios by their place. Whether there was none.
  [[nodiscard]] bool reportUnsolved(const std::map<std::size_t, std::string>& reasons) const;
  // Counts, time and rate, and the extreme objectives, on standard output. `kept` of the scenarios
  // stem from an earlier run.
  void print(std::size_t kept, double seconds) const;

 private:
  [[nodiscard]] const ScenarioOutcome& outcome(const Scenario& scenario) const {
    return outcomes_.at(scenario.label);
  }

  const std::vector<Scenario>& scenarios_;
  const std::map<std::string, ScenarioOutcome>& outcomes_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_
