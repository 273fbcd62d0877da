// The result of a sweep: how its scenarios ended, and how what it reports is spread over them.

#include <fmt/format.h>
#include <ztb/model.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "tools/files/record_walk.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"
#include "view/distribution.h"
#include "view/record_scan.h"
#include "view/sweep_symbols.h"

namespace view {

namespace {

// Values that a fan may be drawn of: all are held.
constexpr std::size_t mostFanValues = 5'000'000;
constexpr std::array<double, 5> quantiles{0.05, 0.25, 0.5, 0.75, 0.95};

// Why solves failed, by the labels of their scenarios.
std::map<int, std::string> reasonsOf(const OpenedFile& file) {
  std::map<int, std::string> reasons;
  const tool::FileSymbol* symbol = file.exchange().findSymbol(sweepReasonName);
  if (symbol == nullptr || symbol->dimension != 1 || symbol->type != ztb::Type::set) return reasons;
  for (tool::RecordWalk walk(file.exchange(), *symbol); walk.next();) {
    reasons.emplace(walk.keys()[0], walk.text());
  }
  return reasons;
}

void writeFailed(const OpenedFile& file, const std::map<int, double>& statuses,
                 const std::map<int, double>& solveStatuses,
                 const std::map<int, double>& objectives, formats::JsonText& answer) {
  const std::map<int, std::string> reasons = reasonsOf(file);
  answer.name("failed");
  answer.beginArray();
  for (const auto& [scenario, status] : statuses) {
    if (objectives.contains(scenario)) continue;
    const auto solve = solveStatuses.find(scenario);
    const bool isFailed =
        solve != solveStatuses.end() && static_cast<int>(solve->second) == ztbSolveFailed;
    answer.beginObject();
    answer.name("label");
    answer.text(file.exchange().label(scenario));
    answer.name("status");
    answer.text(isFailed ? "failed" : ztbModelStatusText(static_cast<int>(status)));
    answer.name("reason");
    const auto reason = reasons.find(scenario);
    answer.text(reason == reasons.end() ? std::string() : reason->second);
    answer.endObject();
  }
  answer.endArray();
}

void writeObjectives(const OpenedFile& file, const std::map<int, double>& objectives,
                     formats::JsonText& answer) {
  Distribution distribution;
  answer.name("objective");
  answer.beginArray();
  for (const auto& [scenario, value] : objectives) {
    distribution.measure(value);
    answer.beginObject();
    answer.name("label");
    answer.text(file.exchange().label(scenario));
    answer.name("value");
    answer.number(value);
    answer.endObject();
  }
  answer.endArray();
  distribution.divide(usualClasses);
  for (const auto& [scenario, value] : objectives) distribution.count(value);
  answer.name("histogram");
  distribution.write(answer);
}

bool isReport(const tool::FileSymbol& symbol) {
  return symbol.type == ztb::Type::parameter && symbol.dimension >= 1 &&
         symbol.name != sweepStatusName && symbol.name != sweepSolveStatusName &&
         symbol.name != sweepObjectiveName;
}

// The value below which a share of the sorted values lies, between two of them where it falls
// there.
double quantileOf(const std::vector<double>& sorted, double share) {
  const double place = share * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  const double part = place - static_cast<double>(below);
  return sorted[below] * (1 - part) + sorted[above] * part;
}

}  // namespace

std::shared_ptr<const OpenedFile> sweepOf(const Question& question) {
  std::shared_ptr<const OpenedFile> file = question.session.file(question.parameters);
  if (file->kind() != FileKind::sweep) {
    throw RequestError(400, fmt::format("{} is no result of ztb sweep", file->name()));
  }
  return file;
}

std::map<int, double> valuesOf(const OpenedFile& file, const std::string& name, Job& job) {
  std::map<int, double> values;
  const tool::FileSymbol* symbol = file.exchange().findSymbol(name);
  if (symbol == nullptr || symbol->dimension != 1 || symbol->type == ztb::Type::set) return values;
  job.expect(symbol->recordCount);
  for (tool::RecordWalk walk(file.exchange(), *symbol); walk.next();) {
    values.emplace(walk.keys()[0], walk.values()[0]);
    job.count(1);
  }
  return values;
}

void answerSweep(Question& question) {
  const std::shared_ptr<const OpenedFile> held = sweepOf(question);
  const OpenedFile& file = *held;
  const std::map<int, double> statuses = valuesOf(file, sweepStatusName, question.job);
  const std::map<int, double> solveStatuses = valuesOf(file, sweepSolveStatusName, question.job);
  const std::map<int, double> objectives = valuesOf(file, sweepObjectiveName, question.job);
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("scenarios");
  answer.count(statuses.size());
  writeFailed(file, statuses, solveStatuses, objectives, answer);
  writeObjectives(file, objectives, answer);
  answer.name("reports");
  answer.beginArray();
  for (const tool::FileSymbol& symbol : file.exchange().symbols()) {
    if (isReport(symbol)) answer.text(symbol.name);
  }
  answer.endArray();
  answer.endObject();
}

// Over the labels at a position, the second without "x", quantiles of the sums of each scenario.
void answerFan(Question& question) {
  sweepOf(question);
  RecordScan scan(question);
  if (!isReport(scan.symbol())) {
    throw RequestError(400, fmt::format("{} is no report of the sweep", scan.symbol().name));
  }
  const bool hasX = scan.dimension() > 1;
  const std::size_t x =
      hasX ? question.parameters.number("x", 1, scan.dimension() - 1) : std::size_t{0};
  if (hasX && x == 0) throw RequestError(400, "x: the first position has the scenarios");
  // By the label at x, then by the scenario.
  std::map<int, std::map<int, double>> sums;
  std::size_t held = 0;
  while (scan.next()) {
    const std::span<const int> scenarios = scan.block().keys(0);
    const std::span<const int> labels = scan.block().keys(static_cast<int>(x));
    const std::span<const double> values = scan.block().values(0);
    for (std::size_t record = 0; record < values.size(); ++record) {
      if (scan.chosen()[record] == 0 || tool::isSpecial(values[record])) continue;
      const auto [sum, isNew] = sums[hasX ? labels[record] : 0].emplace(scenarios[record], 0);
      sum->second += values[record];
      held += isNew ? 1 : 0;
    }
    if (held > mostFanValues) {
      throw RequestError(
          413,
          fmt::format("A fan is drawn of {} values at most: filter the records.", mostFanValues));
    }
  }
  std::vector<std::vector<double>> sorted;
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  answer.name("x");
  answer.beginArray();
  for (const auto& [label, ofScenarios] : sums) {
    answer.text(label == 0 ? std::string_view(scan.symbol().name) : scan.label(label));
    std::vector<double>& values = sorted.emplace_back();
    for (const auto& [scenario, value] : ofScenarios) values.push_back(value);
    std::ranges::sort(values);
  }
  answer.endArray();
  answer.name("bands");
  answer.beginArray();
  for (const double quantile : quantiles) {
    answer.beginObject();
    answer.name("quantile");
    answer.number(quantile);
    answer.name("y");
    answer.beginArray();
    for (const std::vector<double>& values : sorted) answer.number(quantileOf(values, quantile));
    answer.endArray();
    answer.endObject();
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
