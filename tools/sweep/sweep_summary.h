// What `ztb sweep` tells of its results when it ends.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_
#define ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_

#include <map>
#include <string>
#include <ztb/sweep.hpp>

namespace tool {

class SweepSummary {
 public:
  // Of the scenarios from `first` to before `end`, as they were found. `missing` is said of those
  // without an outcome.
  SweepSummary(ztb::Sweep& sweep, ztb::Sweep::Range range, std::string missing)
      : sweep_(sweep), range_(range), missing_(std::move(missing)) {}

  // A line on standard error for each of the first scenarios without a solution, and the count of
  // the others; `reasons` has more about some scenarios. Whether there was none.
  [[nodiscard]] bool reportUnsolved(const std::map<int, std::string>& reasons) const;
  // Counts, time and rate, and the extreme objectives, on standard output. `kept` of the scenarios
  // stem from an earlier run. On a terminal the distribution of the objectives stands below.
  void print(int kept, double seconds) const;

 private:
  void printDistribution(double lowest, double highest) const;
  [[nodiscard]] std::string wordOf(const std::optional<ztb::Sweep::Outcome>& outcome) const;

  ztb::Sweep& sweep_;
  ztb::Sweep::Range range_;
  std::string missing_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_SUMMARY_H_
