#include "tools/sweep/sweep_summary.h"

#include <fmt/format.h>
#include <ztb/model.h>

#include <cmath>
#include <optional>
#include <utility>

#include "tools/charts/chart.h"
#include "tools/charts/terminal_chart.h"
#include "tools/text/console.h"
#include "tools/text/output.h"
#include "tools/text/screen.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr int kUnsolvedShown = 20;

}  // namespace

std::string SweepSummary::wordOf(const std::optional<ztb::Sweep::Outcome>& outcome) const {
  if (!outcome) return missing_;
  return outcome->solveStatus == ztbSolveFailed ? "failed" : ztbModelStatusText(outcome->status);
}

bool SweepSummary::reportUnsolved(const std::map<int, std::string>& reasons) const {
  int unsolved = 0;
  for (int scenario = range_.first; scenario < range_.end; ++scenario) {
    const auto outcome = sweep_.outcome(scenario);
    if ((outcome && outcome->objective) || ++unsolved > kUnsolvedShown) continue;
    std::string text = wordOf(outcome);
    const auto known = reasons.find(scenario);
    const std::string reason = known != reasons.end() ? known->second : sweep_.reason(scenario);
    if (!reason.empty()) {
      text += ": " + reason;
    } else if (outcome && outcome->solveStatus != ztbSolveNormal &&
               outcome->solveStatus != ztbSolveFailed) {
      text += fmt::format(", {}", ztbModelSolveStatusText(outcome->solveStatus));
    }
    printError(fmt::format("ztb: scenario {}: {}", sweep_.scenario(scenario), text));
  }
  if (unsolved > kUnsolvedShown) {
    printError(fmt::format("ztb: {} without a solution, of which {} are shown",
                           counted(static_cast<std::size_t>(unsolved), "scenario"),
                           kUnsolvedShown));
  }
  return unsolved == 0;
}

void SweepSummary::print(int kept, double seconds) const {
  // "missing" stands behind all statuses.
  constexpr int behindAll = 1000;
  std::map<std::pair<int, std::string>, int> counts;
  std::optional<std::pair<double, int>> lowest;
  std::optional<std::pair<double, int>> highest;
  for (int scenario = range_.first; scenario < range_.end; ++scenario) {
    const auto outcome = sweep_.outcome(scenario);
    ++counts[{outcome ? outcome->status : behindAll, wordOf(outcome)}];
    if (!outcome || !outcome->objective) continue;
    const double objective = *outcome->objective;
    if (!lowest || objective < lowest->first) lowest = {objective, scenario};
    if (!highest || objective > highest->first) highest = {objective, scenario};
  }
  const int all = range_.end - range_.first;
  std::string line = counted(static_cast<std::size_t>(all), "scenario");
  if (kept > 0) line += fmt::format(", {} of them kept", kept);
  const char* separator = ": ";
  for (const auto& [status, count] : counts) {
    line += fmt::format("{}{} {}", separator, count, status.second);
    separator = ", ";
  }
  line += fmt::format(" in {:.2f} s", seconds);
  if (seconds > 0 && all > kept) line += fmt::format(" ({:.0f} a second)", (all - kept) / seconds);
  line += '\n';
  if (lowest) {
    line += fmt::format("objective: lowest {:.10g} ({}), highest {:.10g} ({})\n", lowest->first,
                        printable(sweep_.scenario(lowest->second)), highest->first,
                        printable(sweep_.scenario(highest->second)));
  }
  tool::print(line);
  if (lowest && outputIsTerminal()) printDistribution(lowest->first, highest->first);
}

void SweepSummary::printDistribution(double lowest, double highest) const {
  constexpr std::size_t bins = 8;
  constexpr std::size_t fewest = 10;
  if (!std::isfinite(lowest) || !std::isfinite(highest)) return;
  Histogram histogram(lowest, highest, bins);
  std::size_t solved = 0;
  for (int scenario = range_.first; scenario < range_.end; ++scenario) {
    const auto outcome = sweep_.outcome(scenario);
    if (!outcome || !outcome->objective) continue;
    histogram.add(*outcome->objective);
    ++solved;
  }
  // They are sooner read themselves.
  if (solved < fewest) return;
  const std::size_t width = tableWidth(std::nullopt);
  tool::print(drawInTerminal(
      histogram.chart(""), ChartType::bar,
      {.width = width == 0 ? TerminalStyle{}.width : width, .ascii = !localeTakesUtf8()}));
}

}  // namespace tool
