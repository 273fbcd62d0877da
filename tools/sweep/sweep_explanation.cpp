#include "tools/sweep/sweep_explanation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/files/record_walk.h"
#include "tools/models/model_session.h"
#include "tools/text/number_text.h"

namespace tool {

namespace {

constexpr std::size_t kExplained = 20;
constexpr std::size_t kDifferencesShown = 5;
constexpr double kSecondsOfOne = 60;

// Values by the records' names, such as "price(Milk)", of each scenario.
using Records = std::map<std::string, double>;

std::vector<Records> readScenarios(const std::string& path, const SweepScenarios& scenarios) {
  const ExchangeFile file(path);
  std::map<std::string_view, std::size_t> placeOf;
  for (std::size_t place = 0; place < scenarios.scenarios().size(); ++place) {
    placeOf.emplace(scenarios.scenarios()[place].label, place);
  }
  std::vector<Records> records(scenarios.scenarios().size());
  for (const std::string& name : scenarios.driving()) {
    for (RecordWalk walk(file, file.symbol(name)); walk.next();) {
      const auto found = placeOf.find(file.label(walk.keys()[0]));
      if (found == placeOf.end()) continue;
      std::vector<std::string_view> labels;
      for (const int key : walk.keys().subspan(1)) labels.push_back(file.label(key));
      records[found->second].emplace(
          labels.empty() ? name : fmt::format("{}({})", name, fmt::join(labels, ", ")),
          walk.values()[0]);
    }
  }
  return records;
}

// Records that are not the same in both, with each one's value there; NaN for none.
std::vector<std::pair<std::string, std::pair<double, double>>> differences(const Records& one,
                                                                           const Records& other) {
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  std::vector<std::pair<std::string, std::pair<double, double>>> result;
  for (const auto& [name, value] : one) {
    const auto found = other.find(name);
    if (found == other.end()) {
      result.push_back({name, {value, none}});
    } else if (found->second != value) {
      result.push_back({name, {value, found->second}});
    }
  }
  for (const auto& [name, value] : other) {
    if (!one.contains(name)) result.push_back({name, {none, value}});
  }
  return result;
}

std::string valueText(double value) {
  return std::isnan(value) ? "no record" : std::string(NumberText(value).view());
}

// What separates a scenario from the nearest one with a solution; empty where none has one.
std::string nearestText(const std::vector<Records>& records, std::size_t place,
                        const SweepScenarios& scenarios,
                        const std::map<std::string, ScenarioOutcome>& outcomes) {
  std::optional<std::size_t> nearest;
  std::vector<std::pair<std::string, std::pair<double, double>>> least;
  for (std::size_t other = 0; other < records.size(); ++other) {
    if (!outcomes.at(scenarios.scenarios()[other].label).objective) continue;
    auto found = differences(records[place], records[other]);
    if (nearest && found.size() >= least.size()) continue;
    nearest = other;
    least = std::move(found);
  }
  if (!nearest) return "";
  std::vector<std::string> texts;
  for (const auto& [name, values] : least) {
    if (texts.size() == kDifferencesShown) {
      texts.push_back(fmt::format("and {} more", least.size() - kDifferencesShown));
      break;
    }
    texts.push_back(
        fmt::format("{} {} (there {})", name, valueText(values.first), valueText(values.second)));
  }
  return fmt::format("; scenario {}, the nearest with a solution, differs in {}",
                     scenarios.scenarios()[*nearest].label, fmt::join(texts, ", "));
}

}  // namespace

std::map<std::size_t, std::string> explainScenarios(
    const SweepOptions& options, const SweepScenarios& scenarios,
    const std::map<std::string, ScenarioOutcome>& outcomes) {
  std::vector<std::size_t> chosen;
  for (std::size_t place = 0; place < scenarios.scenarios().size(); ++place) {
    const bool infeasible =
        outcomes.at(scenarios.scenarios()[place].label).status == ztbModelInfeasible;
    if (infeasible && chosen.size() < kExplained) chosen.push_back(place);
  }
  std::map<std::size_t, std::string> texts;
  if (chosen.empty()) return texts;
  const std::vector<Records> records = readScenarios(options.scenarios, scenarios);
  std::optional<ModelFills> fills = fillsOf(options.data, options.model);
  ModelSession session(options.model, options.modelData, fills ? &*fills : nullptr, options.drives);
  const std::string solver =
      options.solver.empty() ? session.standardSolverOfParameters() : options.solver;
  ScenarioData data(options.scenarios, scenarios, chosen, session);
  for (std::size_t position = 0; position < chosen.size(); ++position) {
    const std::size_t place = chosen[position];
    try {
      data.apply(position);
      session.tie().solve(solver);
      texts[place] = conflictText(session.model().explain(kSecondsOfOne), "; ");
    } catch (const ztb::Error& error) {
      texts[place] = fmt::format("not explained: {}", error.what());
    }
    texts[place] += nearestText(records, place, scenarios, outcomes);
  }
  return texts;
}

}  // namespace tool
