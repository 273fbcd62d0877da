#include "sweep/explanation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/files/record_walk.h"
#include "tools/text/number_text.h"

namespace sweep {

namespace {

constexpr std::size_t kDifferencesShown = 5;
constexpr double kSecondsOfOne = 60;

using Records = std::map<std::string, double>;

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
  return std::isnan(value) ? "no record" : std::string(tool::NumberText(value).view());
}

}  // namespace

Explanation::Explanation(const ScenarioFile& scenarios)
    : scenarios_(scenarios), records_(static_cast<std::size_t>(scenarios.count())) {
  const tool::ExchangeFile& file = scenarios.file();
  for (const tool::FileSymbol* parameter : scenarios.driving()) {
    for (tool::RecordWalk walk(file, *parameter); walk.next();) {
      const auto scenario = scenarios.find(std::string(file.label(walk.keys()[0])));
      if (!scenario) continue;
      std::vector<std::string_view> labels;
      for (const int key : walk.keys().subspan(1)) labels.push_back(file.label(key));
      records_[static_cast<std::size_t>(*scenario)].emplace(
          labels.empty() ? parameter->name
                         : fmt::format("{}({})", parameter->name, fmt::join(labels, ", ")),
          walk.values()[0]);
    }
  }
}

std::string Explanation::of(int scenario, const PartIndex& index, ChunkSolver& solver) const {
  std::string text;
  try {
    solver.beginChunk(scenario, scenario + 1);
    solver.data().apply(scenario);
    solver.session().tie().solve(solver.solver());
    text = tool::conflictText(solver.session().model().explain(kSecondsOfOne), "; ");
  } catch (const ztb::Error& error) {
    text = fmt::format("not explained: {}", error.what());
  }
  return text + nearestText(scenario, index);
}

std::string Explanation::nearestText(int scenario, const PartIndex& index) const {
  std::optional<int> nearest;
  std::vector<std::pair<std::string, std::pair<double, double>>> least;
  for (int other = 0; other < scenarios_.count(); ++other) {
    if (!index.outcome(other).objective) continue;
    auto found = differences(records_[static_cast<std::size_t>(scenario)],
                             records_[static_cast<std::size_t>(other)]);
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
                     scenarios_.label(*nearest), fmt::join(texts, ", "));
}

}  // namespace sweep
