#include "tools/sweep_scenarios.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "tools/failure.h"
#include "tools/model_session.h"
#include "tools/words.h"

namespace tool {

namespace {

ztb::Symbol sweptSet(DataFile& file, const std::string& over) {
  const std::optional<ztb::Symbol> found = file.database().findSymbol(over);
  if (!found || over == "*") {
    throw Failure(withFile(file.path(), fmt::format("has no set {} to sweep over", over)));
  }
  if (found->type() != ztb::Type::set) {
    throw Failure(withFile(
        file.path(), fmt::format("{} is a {}; --over wants a set", over, typeWord(found->type()))));
  }
  if (found->dimension() != 1) {
    throw Failure(withFile(file.path(), fmt::format("set {} has {} positions; --over wants one",
                                                    over, found->dimension())));
  }
  file.requireIntact(*found);
  if (found->recordCount() == 0) {
    throw Failure(withFile(file.path(), fmt::format("set {} is empty", over)));
  }
  return *found;
}

bool isOver(const ztb::Symbol& parameter, const ztb::Symbol& set) {
  if (parameter.dimension() == 0) {
    return false;
  }
  const ztb::Domain domain = parameter.domains().front();
  return domain.set ? *domain.set == set : sameFolded(domain.name.view(), set.name().view());
}

}  // namespace

SweepScenarios::SweepScenarios(const std::string& path, const std::string& over) {
  DataFile file(path);
  const ztb::Symbol set = sweptSet(file, over);
  over_ = set.name().str();
  text_ = set.text().str();
  for (ztb::Record& record : set.records()) {
    scenarios_.push_back({.label = record.key(0).str(), .text = record.text().str()});
  }
  for (const ztb::Symbol& symbol : file.symbols()) {
    if (symbol.type() == ztb::Type::parameter) {
      (isOver(symbol, set) ? driving_ : others_).push_back(symbol.name().str());
    }
  }
  if (driving_.empty()) {
    throw Failure(
        withFile(path, fmt::format("no parameter has set {} as its first domain", over_)));
  }
}

ScenarioData::ScenarioData(const std::string& path, const SweepScenarios& scenarios,
                           std::span<const std::size_t> chosen, ModelSession& session)
    : session_(session) {
  DataFile file(path);
  numbers_.assign(static_cast<std::size_t>(file.labelCount()) + 1, 0);
  for (int number = 0; number <= file.labelCount(); ++number) {
    labels_.emplace_back(file.label(number));
  }
  // Place of a scenario among those chosen, by the number of its label.
  std::vector<int> places(numbers_.size(), -1);
  for (std::size_t place = 0; place < chosen.size(); ++place) {
    const std::string& label = scenarios.scenarios()[chosen[place]].label;
    places[static_cast<std::size_t>(*file.database().findLabel(label))] = static_cast<int>(place);
  }
  const auto append = [this](Records& records, std::span<const int> keys, double value) {
    for (const int key : keys) {
      records.keys.push_back(sessionNumber(key));
    }
    records.values.push_back(value);
  };
  for (const std::string& name : scenarios.others()) {
    if (!session.drives(name)) {
      continue;
    }
    const ztb::Symbol source = file.symbol(name);
    file.requireIntact(source);
    Records records;
    for (const auto [keys, values] : source.rows()) {
      append(records, keys, values[0]);
    }
    write(session.parameter(name, source.dimension()), records);
  }
  for (const std::string& name : scenarios.driving()) {
    const ztb::Symbol source = file.symbol(name);
    file.requireIntact(source);
    Parameter parameter{.symbol = session.parameter(name, source.dimension() - 1),
                        .records = std::vector<Records>(chosen.size())};
    for (const auto [keys, values] : source.rows()) {
      const int place = places[static_cast<std::size_t>(keys[0])];
      if (place >= 0) {
        append(parameter.records[static_cast<std::size_t>(place)], keys.subspan(1), values[0]);
      }
    }
    parameters_.push_back(std::move(parameter));
  }
}

void ScenarioData::apply(std::size_t position) {
  for (const Parameter& parameter : parameters_) {
    write(parameter.symbol, parameter.records[position]);
  }
}

void ScenarioData::write(ztb::Symbol symbol, const Records& records) {
  const auto dimension = static_cast<std::size_t>(symbol.dimension());
  symbol.clear();
  for (std::size_t record = 0; record < records.values.size(); ++record) {
    symbol.put(std::span(records.keys).subspan(record * dimension, dimension),
               records.values[record]);
  }
  if (session_.applyParameter(symbol) > 0) {
    const std::string name = symbol.name().str();
    if (std::ranges::find(unmatched_, name) == unmatched_.end()) {
      unmatched_.push_back(name);
    }
  }
}

int ScenarioData::sessionNumber(int fileNumber) {
  int& number = numbers_[static_cast<std::size_t>(fileNumber)];
  if (number == 0) {
    number = session_.database().mergeLabel(labels_[static_cast<std::size_t>(fileNumber)]);
  }
  return number;
}

}  // namespace tool
