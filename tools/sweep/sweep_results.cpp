#include "tools/sweep/sweep_results.h"

#include <fmt/format.h>

#include <array>
#include <functional>

#include "tools/files/record_walk.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr const char* kInputs = "sweep_inputs";
constexpr const char* kStatus = "sweep_status";
constexpr const char* kSolveStatus = "sweep_solve_status";
constexpr const char* kObjective = "sweep_objective";
constexpr std::size_t kMaxName = 63;

ztb::Symbol makeSet(ztb::Database& database, const std::string& over, const std::string& text) {
  return database.addSet(over, {"*"}, text);
}

}  // namespace

class SweepResults::Labels {
 public:
  // `labelOf` gives the text of a label number of the other side.
  Labels(std::function<std::string(int)> labelOf, ztb::Database& target)
      : labelOf_(std::move(labelOf)), target_(target) {}

  int operator()(int number) {
    const auto place = static_cast<std::size_t>(number);
    if (place >= numbers_.size()) {
      numbers_.resize(place + 1);
    }
    if (numbers_[place] == 0) {
      numbers_[place] = target_.mergeLabel(labelOf_(number));
    }
    return numbers_[place];
  }

 private:
  std::function<std::string(int)> labelOf_;
  ztb::Database& target_;
  std::vector<int> numbers_;
};

SweepResults::SweepResults(const std::string& over, const std::string& text,
                           const std::string& inputs)
    : set_(makeSet(database_, over, text)),
      status_(add(kStatus, 1)),
      solveStatus_(add(kSolveStatus, 1)),
      objective_(add(kObjective, 1)) {
  try {
    database_.addSet(kInputs, {"*"}, inputs);
  } catch (const ztb::Error& error) {
    throw Failure(fmt::format("{}: {}", kInputs, error.what()));
  }
}

SweepResults::~SweepResults() = default;

std::string SweepResults::inputsOf(const std::string& file) {
  const ExchangeFile results(file);
  const FileSymbol* inputs = results.findSymbol(kInputs);
  if (inputs == nullptr || inputs->type != ztb::Type::set) {
    throw Failure(withFile(file, "is no result of a sweep"));
  }
  return inputs->text;
}

ztb::Symbol SweepResults::add(const std::string& name, int dimension) {
  if (name.size() > kMaxName) {
    throw Failure(fmt::format("{}: the name has {} bytes, at most {} are allowed", name,
                              name.size(), kMaxName));
  }
  std::vector<ztb::DomainArgument> domains(static_cast<std::size_t>(dimension), "*");
  domains.front() = set_;
  try {
    return database_.addSymbol(name, ztb::Type::parameter, domains);
  } catch (const ztb::Error& error) {
    throw Failure(fmt::format("{} cannot stand in the result file: {}", name, error.what()));
  }
}

void SweepResults::addReport(const std::string& name, int dimension) {
  for (const char* ending : {"_level", "_marginal"}) {
    reported_.push_back(add(name + ending, dimension + 1));
  }
}

void SweepResults::addScenario(const std::string& label, const std::string& text) {
  ztb::Record record = set_.add(label);
  if (!text.empty()) {
    record.setText(text);
  }
}

void SweepResults::setOutcome(const std::string& label, const ScenarioOutcome& outcome) {
  const std::array<int, 1> key{database_.mergeLabel(label)};
  status_.put(key, outcome.status);
  solveStatus_.put(key, outcome.solveStatus);
  if (outcome.objective) {
    objective_.put(key, *outcome.objective);
  }
}

void SweepResults::takeSolution(const std::string& label, const std::string& name,
                                const ztb::Database& solved) {
  ztb::Symbol level = database_.symbol(name + "_level");
  ztb::Symbol marginal = database_.symbol(name + "_marginal");
  if (!solvedLabels_) {
    solvedLabels_ = std::make_unique<Labels>(
        [&solved](int number) { return solved.label(number).str(); }, database_);
  }
  std::vector<int> target(static_cast<std::size_t>(level.dimension()));
  target[0] = database_.mergeLabel(label);
  for (const auto [keys, values] : solved.symbol(name).rows()) {
    for (std::size_t position = 0; position < keys.size(); ++position) {
      target[position + 1] = (*solvedLabels_)(keys[position]);
    }
    level.put(target, values[ZTB_LEVEL]);
    marginal.put(target, values[ZTB_MARGINAL]);
  }
}

void SweepResults::absorbParameter(const ExchangeFile& file, const FileSymbol& source,
                                   Labels& labels) {
  if (!database_.findSymbol(source.name)) {
    reported_.push_back(add(source.name, source.dimension));
  }
  ztb::Symbol target = database_.symbol(source.name);
  std::array<int, ZTB_MAX_DIMENSION> numbers{};
  for (RecordWalk walk(file, source); walk.next();) {
    const std::span<const int> keys = walk.keys();
    for (std::size_t position = 0; position < keys.size(); ++position) {
      numbers.at(position) = labels(keys[position]);
    }
    target.put(std::span(numbers).first(keys.size()), walk.values()[0]);
  }
}

void SweepResults::absorb(const std::string& path) {
  const ExchangeFile file(path);
  Labels labels([&file](int number) { return std::string(file.label(number)); }, database_);
  for (const FileSymbol& symbol : file.symbols()) {
    if (symbol.type == ztb::Type::parameter) {
      absorbParameter(file, symbol, labels);
    }
  }
}

std::map<std::string, ScenarioOutcome> SweepResults::outcomes() const {
  std::map<std::string, ScenarioOutcome> outcomes;
  for (ztb::Record& record : status_.records()) {
    outcomes[record.key(0).str()].status = static_cast<int>(record.level());
  }
  for (ztb::Record& record : solveStatus_.records()) {
    outcomes[record.key(0).str()].solveStatus = static_cast<int>(record.level());
  }
  for (ztb::Record& record : objective_.records()) {
    outcomes[record.key(0).str()].objective = record.level();
  }
  return outcomes;
}

void SweepResults::clear() {
  status_.clear();
  solveStatus_.clear();
  objective_.clear();
  for (ztb::Symbol& symbol : reported_) {
    symbol.clear();
  }
}

void SweepResults::write(const std::string& file) {
  try {
    database_.write(file);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(file, error.what()));
  }
}

}  // namespace tool
