// The inputs of a sweep, which its scenario file has: what differs most between the scenarios with
// the lowest and the highest objective.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "sweep/checksum.h"
#include "sweep/scenario_file.h"
#include "tools/files/record_walk.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"
#include "view/record_scan.h"
#include "view/sweep_symbols.h"

namespace view {

namespace {

// Inputs that are told; all that differ are counted.
constexpr std::size_t mostInputs = 1000;

struct Extreme {
  int label = 0;  // in the result
  double objective = 0;
};

// One input: its value in both scenarios, nothing where the scenario has none of its own.
struct Difference {
  const tool::FileSymbol* symbol;
  std::vector<int> key;  // without the scenario
  std::optional<double> low;
  std::optional<double> high;

  // The size of the difference beside that of the values; nothing where one is no number.
  [[nodiscard]] std::optional<double> share() const {
    if (!low || !high || !std::isfinite(*low) || !std::isfinite(*high)) return std::nullopt;
    const double size = std::max(std::abs(*low), std::abs(*high));
    if (size == 0) return 0;
    return std::abs(*low / size - *high / size);
  }
};

using InputValues = std::map<std::vector<int>, double>;

// What a parameter has for one scenario, by the other labels.
InputValues inputsOf(const tool::ExchangeFile& file, const tool::FileSymbol& symbol, int scenario,
                     Job& job) {
  InputValues values;
  tool::RecordWalk walk(file, symbol);
  walk.seek(scenario);
  while (walk.next() && walk.keys()[0] == scenario) {
    values.emplace(std::vector<int>(walk.keys().begin() + 1, walk.keys().end()), walk.values()[0]);
    job.count(1);
  }
  return values;
}

void addDifferences(const tool::FileSymbol& symbol, const InputValues& low, const InputValues& high,
                    std::vector<Difference>& result) {
  for (const auto& [key, value] : low) {
    const auto other = high.find(key);
    if (other == high.end()) {
      result.push_back({&symbol, key, value, std::nullopt});
    } else if (!tool::sameBits(value, other->second)) {
      result.push_back({&symbol, key, value, other->second});
    }
  }
  for (const auto& [key, value] : high) {
    if (!low.contains(key)) result.push_back({&symbol, key, std::nullopt, value});
  }
}

void writeValue(const char* name, const std::optional<double>& value, formats::JsonText& answer) {
  answer.name(name);
  if (value) {
    answer.number(*value);
  } else {
    answer.null();
  }
}

void writeExtreme(const char* name, const OpenedFile& sweep, const Extreme& extreme,
                  formats::JsonText& answer) {
  answer.name(name);
  answer.beginObject();
  answer.name("label");
  answer.text(sweep.exchange().label(extreme.label));
  answer.name("objective");
  answer.number(extreme.objective);
  answer.endObject();
}

// The name of the set that was swept over, and the checksum of the scenario file.
struct Origin {
  std::string over;
  std::string checksum;
};

Origin originOf(const OpenedFile& sweep) {
  Origin origin;
  const tool::FileSymbol* status = sweep.exchange().findSymbol(sweepStatusName);
  origin.over = status->domains.front().name;
  const tool::FileSymbol* inputs = sweep.exchange().findSymbol(sweepInputsName);
  const std::string_view word = sweep::inputsWord(inputs->text, "scenarios");
  origin.checksum = word.substr(word.empty() ? 0 : word.find('=') + 1);
  return origin;
}

// The scenario file among the files that were opened; null with the reason.
std::shared_ptr<const OpenedFile> scenariosAmong(const Session& session, const OpenedFile& sweep,
                                                 const Origin& origin, std::string& why) {
  why = "The scenario file tells the inputs: ztb view RESULT SCENARIOS.";
  for (const std::shared_ptr<const OpenedFile>& file : session.files) {
    if (file->id() == sweep.id() || file->kind() == FileKind::model) continue;
    if (sweep::checksumDigits(sweep::checksumOfFile(file->path())) == origin.checksum) return file;
    why = fmt::format("{} is not the scenario file that {} was made from.", file->name(),
                      sweep.name());
  }
  return nullptr;
}

void writeUnknown(const std::string& why, formats::JsonText& answer) {
  answer.beginObject();
  answer.name("known");
  answer.boolean(false);
  answer.name("why");
  answer.text(why);
  answer.endObject();
}

void writeDifference(const Difference& one, const tool::ExchangeFile& file,
                     formats::JsonText& answer) {
  answer.beginObject();
  answer.name("symbol");
  answer.text(one.symbol->name);
  answer.name("key");
  answer.beginArray();
  for (const int label : one.key) answer.text(file.label(label));
  answer.endArray();
  writeValue("low", one.low, answer);
  writeValue("high", one.high, answer);
  writeValue("share", one.share(), answer);
  answer.endObject();
}

}  // namespace

void answerInputs(Question& question) {
  const std::shared_ptr<const OpenedFile> sweep = sweepOf(question);
  formats::JsonText& answer = question.answer;
  const Origin origin = originOf(*sweep);
  std::string why;
  const std::shared_ptr<const OpenedFile> file =
      scenariosAmong(question.session, *sweep, origin, why);
  if (!file) return writeUnknown(why, answer);
  std::optional<Extreme> low;
  std::optional<Extreme> high;
  for (const auto& [label, objective] : valuesOf(*sweep, sweepObjectiveName, question.job)) {
    if (!std::isfinite(objective)) continue;
    if (!low || objective < low->objective) low = {label, objective};
    if (!high || objective > high->objective) high = {label, objective};
  }
  if (!low || low->label == high->label) {
    return writeUnknown("There are no two scenarios with an objective.", answer);
  }
  const sweep::ScenarioFile scenarios(file->path(), origin.over);
  const auto numberOf = [&](const Extreme& extreme) {
    return file->exchange()
        .file()
        .findLabel(std::string(sweep->exchange().label(extreme.label)))
        .value_or(0);
  };
  std::vector<Difference> differences;
  for (const tool::FileSymbol* symbol : scenarios.driving()) {
    addDifferences(*symbol, inputsOf(scenarios.file(), *symbol, numberOf(*low), question.job),
                   inputsOf(scenarios.file(), *symbol, numberOf(*high), question.job), differences);
  }
  // Those without a share, where a scenario has no value of its own, behind all others.
  std::ranges::stable_sort(differences, [](const Difference& left, const Difference& right) {
    return left.share().value_or(-1) > right.share().value_or(-1);
  });
  answer.beginObject();
  answer.name("known");
  answer.boolean(true);
  answer.name("file");
  answer.text(file->name());
  writeExtreme("low", *sweep, *low, answer);
  writeExtreme("high", *sweep, *high, answer);
  answer.name("total");
  answer.count(differences.size());
  answer.name("inputs");
  answer.beginArray();
  for (std::size_t at = 0; at < std::min(mostInputs, differences.size()); ++at) {
    writeDifference(differences[at], scenarios.file(), answer);
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
