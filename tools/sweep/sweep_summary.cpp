#include "tools/sweep/sweep_summary.h"

#include <fmt/format.h>
#include <ztb/model.h>

#include "tools/text/output.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr std::size_t kUnsolvedShown = 20;

std::string wordOf(const ScenarioOutcome& outcome) {
  return outcome.solveStatus == ztbSolveFailed ? "failed" : ztbModelStatusText(outcome.status);
}

}  // namespace

bool SweepSummary::reportUnsolved(const std::map<std::size_t, std::string>& reasons) const {
  std::size_t unsolved = 0;
  for (std::size_t place = 0; place < scenarios_.size(); ++place) {
    const ScenarioOutcome& result = outcome(scenarios_[place]);
    if (result.objective || ++unsolved > kUnsolvedShown) {
      continue;
    }
    std::string text = wordOf(result);
    if (const auto reason = reasons.find(place); reason != reasons.end()) {
      text += ": " + reason->second;
    } else if (result.solveStatus != ztbSolveNormal && result.solveStatus != ztbSolveFailed) {
      text += fmt::format(", {}", ztbModelSolveStatusText(result.solveStatus));
    }
    printError(fmt::format("ztb: scenario {}: {}", scenarios_[place].label, text));
  }
  if (unsolved > kUnsolvedShown) {
    printError(fmt::format("ztb: {} without a solution, of which {} are shown",
                           counted(unsolved, "scenario"), kUnsolvedShown));
  }
  return unsolved == 0;
}

void SweepSummary::print(std::size_t kept, double seconds) const {
  std::map<std::pair<int, std::string>, std::size_t> counts;
  const Scenario* lowest = nullptr;
  const Scenario* highest = nullptr;
  for (const Scenario& scenario : scenarios_) {
    const ScenarioOutcome& result = outcome(scenario);
    ++counts[{result.status, wordOf(result)}];
    if (result.objective) {
      if (lowest == nullptr || *result.objective < *outcome(*lowest).objective) {
        lowest = &scenario;
      }
      if (highest == nullptr || *result.objective > *outcome(*highest).objective) {
        highest = &scenario;
      }
    }
  }
  std::string line = counted(scenarios_.size(), "scenario");
  if (kept > 0) {
    line += fmt::format(", {} of them kept", kept);
  }
  const char* separator = ": ";
  for (const auto& [status, count] : counts) {
    line += fmt::format("{}{} {}", separator, count, status.second);
    separator = ", ";
  }
  line += fmt::format(" in {:.2f} s", seconds);
  if (seconds > 0) {
    line +=
        fmt::format(" ({:.0f} a second)", static_cast<double>(scenarios_.size() - kept) / seconds);
  }
  line += '\n';
  if (lowest != nullptr) {
    line += fmt::format("objective: lowest {:.10g} ({}), highest {:.10g} ({})\n",
                        *outcome(*lowest).objective, printable(lowest->label),
                        *outcome(*highest).objective, printable(highest->label));
  }
  tool::print(line);
}

}  // namespace tool
