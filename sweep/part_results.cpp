#include "sweep/part_results.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <ztb/model.h>

#include <array>

#include "tools/text/failure.h"

namespace sweep {

using tool::Failure;

namespace {

constexpr std::size_t kMaxName = 63;
constexpr std::size_t kMaxText = 255;

ztb::Symbol makeSet(ztb::Database& database, const std::string& name,
                    const ztb::DomainArgument& domain, const std::string& text = "") {
  try {
    return database.addSet(name, {domain}, text);
  } catch (const ztb::Error& error) {
    throw Failure(fmt::format("{} cannot stand in the result file: {}", name, error.what()));
  }
}

// The beginning of a text that an element can have, which ends with a whole character.
std::string cut(std::string text) {
  if (text.size() <= kMaxText) return text;
  std::size_t end = kMaxText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  text.resize(end);
  return text;
}

}  // namespace

bool Outcome::hasFailed() const {
  return solveStatus == ztbSolveFailed;
}

// Numbers of the solved database's labels in the one of the results.
class PartResults::Labels {
 public:
  Labels(const ztb::Database& solved, ztb::Database& target) : solved_(solved), target_(target) {}

  int operator()(int number) {
    const auto place = static_cast<std::size_t>(number);
    if (place >= numbers_.size()) numbers_.resize(place + 1);
    if (numbers_[place] == 0) numbers_[place] = target_.mergeLabel(solved_.label(number).str());
    return numbers_[place];
  }

 private:
  const ztb::Database& solved_;
  ztb::Database& target_;
  std::vector<int> numbers_;
};

PartResults::PartResults(const std::string& over, const std::string& inputs,
                         const std::vector<std::pair<std::string, int>>& reports)
    : set_(makeSet(database_, over, "*")),
      status_(add(kStatus, 1)),
      solveStatus_(add(kSolveStatus, 1)),
      objective_(add(kObjective, 1)),
      reason_(makeSet(database_, kReason, set_)) {
  makeSet(database_, kInputs, "*", inputs);
  for (const auto& [name, dimension] : reports) {
    reports_.push_back(
        {name, add(name + "_level", dimension + 1), add(name + "_marginal", dimension + 1)});
  }
}

PartResults::~PartResults() = default;

ztb::Symbol PartResults::add(const std::string& name, int dimension) {
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

void PartResults::add(std::string_view label, std::string_view text, const Outcome& outcome,
                      const std::string& reason) {
  const std::string name(label);
  ztb::Record element = set_.add(name);
  if (!text.empty()) element.setText(std::string(text));
  last_ = database_.mergeLabel(name);
  const std::array<int, 1> key{last_};
  status_.put(key, outcome.status);
  solveStatus_.put(key, outcome.solveStatus);
  if (outcome.objective) objective_.put(key, *outcome.objective);
  if (outcome.hasFailed()) {
    ztb::Record failed = reason_.add(name);
    if (!reason.empty()) failed.setText(cut(reason));
  }
}

void PartResults::takeSolution(const ztb::Database& solved) {
  if (!labels_) labels_ = std::make_unique<Labels>(solved, database_);
  for (Report& report : reports_) {
    std::vector<int> target(static_cast<std::size_t>(report.level.dimension()));
    target[0] = last_;
    for (const auto [keys, values] : solved.symbol(report.symbol).rows()) {
      for (std::size_t position = 0; position < keys.size(); ++position) {
        target[position + 1] = (*labels_)(keys[position]);
      }
      report.level.put(target, values[ZTB_LEVEL]);
      report.marginal.put(target, values[ZTB_MARGINAL]);
    }
  }
}

void PartResults::changeDatabase() {
  labels_.reset();
}

void PartResults::write(const std::string& file, const std::set<std::string>& unmatched) {
  try {
    makeSet(database_, kUnmatched, "*", cut(fmt::format("{}", fmt::join(unmatched, " "))));
    database_.write(file);
  } catch (const ztb::Error& error) {
    throw Failure(tool::withFile(file, error.what()));
  }
}

}  // namespace sweep
