#include "tools/sweep/sweep_scenarios.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "tools/files/memory_room.h"
#include "tools/files/record_walk.h"
#include "tools/models/model_session.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

Failure noSet(const ExchangeFile& file, const std::string& over) {
  return Failure(withFile(
      file.path(), fmt::format("has no set {} to sweep over, nor a parameter with that name for "
                               "its first position",
                               over)));
}

const FileSymbol& sweptSet(const ExchangeFile& file, const FileSymbol& named,
                           const std::string& over) {
  if (file.resolved(named).isUniverse()) throw noSet(file, over);
  const FileSymbol& found = file.resolved(named);
  if (found.type != ztb::Type::set) {
    throw Failure(withFile(
        file.path(), fmt::format("{} is a {}; --over wants a set", over, typeWord(found.type))));
  }
  if (found.dimension != 1) {
    throw Failure(withFile(file.path(), fmt::format("set {} has {} positions; --over wants one",
                                                    over, found.dimension)));
  }
  if (found.recordCount == 0) {
    throw Failure(withFile(file.path(), fmt::format("set {} is empty", over)));
  }
  return found;
}

bool isOver(const ExchangeFile& file, const FileSymbol& parameter, const FileSymbol& set) {
  if (parameter.dimension == 0) {
    return false;
  }
  const FileDomain& domain = parameter.domains.front();
  return domain.set < 0 ? sameFolded(domain.name, set.name)
                        : file.resolved(file.symbolAt(domain.set)).number == set.number;
}

}  // namespace

SweepScenarios::SweepScenarios(const std::string& path, const std::string& over) {
  const ExchangeFile file(path);
  const FileSymbol* named = file.findSymbol(over);
  if (named == nullptr) {
    takeLabels(file, over);
    return;
  }
  const FileSymbol& set = sweptSet(file, *named, over);
  over_ = set.name;
  text_ = set.text;
  for (RecordWalk walk(file, set); walk.next();) {
    scenarios_.push_back(
        {.label = std::string(file.label(walk.keys()[0])), .text = std::string(walk.text())});
  }
  for (const FileSymbol& symbol : file.symbols()) {
    if (symbol.type == ztb::Type::parameter) {
      (isOver(file, symbol, set) ? driving_ : others_).push_back(symbol.name);
    }
  }
  if (driving_.empty()) {
    throw Failure(
        withFile(path, fmt::format("no parameter has set {} as its first domain", over_)));
  }
}

void SweepScenarios::takeLabels(const ExchangeFile& file, const std::string& over) {
  std::vector<bool> found(static_cast<std::size_t>(file.labelCount()) + 1);
  for (const FileSymbol& symbol : file.symbols()) {
    if (symbol.type != ztb::Type::parameter) continue;
    const bool drives = symbol.dimension > 0 && symbol.domains.front().set < 0 &&
                        sameFolded(symbol.domains.front().name, over);
    (drives ? driving_ : others_).push_back(symbol.name);
    if (!drives) continue;
    over_ = symbol.domains.front().name;
    for (RecordWalk walk(file, symbol); walk.next();) {
      found[static_cast<std::size_t>(walk.keys()[0])] = true;
    }
  }
  if (driving_.empty()) throw noSet(file, over);
  for (std::size_t number = 1; number < found.size(); ++number) {
    if (found[number]) {
      scenarios_.push_back(
          {.label = std::string(file.label(static_cast<int>(number))), .text = {}});
    }
  }
  if (scenarios_.empty()) {
    throw Failure(
        withFile(file.path(), fmt::format("no parameter has a record of {} to sweep over", over_)));
  }
}

ScenarioData::ScenarioData(const std::string& path, const SweepScenarios& scenarios,
                           std::span<const std::size_t> chosen, ModelSession& session)
    : session_(session) {
  const ExchangeFile file(path);
  MemoryRoom room(file);
  numbers_.assign(static_cast<std::size_t>(file.labelCount()) + 1, 0);
  // Place of a scenario among those chosen, by the number of its label.
  std::vector<int> places(numbers_.size(), -1);
  for (std::size_t place = 0; place < chosen.size(); ++place) {
    const std::optional<int> label =
        file.file().findLabel(scenarios.scenarios()[chosen[place]].label);
    if (!label) {
      throw Failure(withFile(path, "has changed since the sweep began"));
    }
    places[static_cast<std::size_t>(*label)] = static_cast<int>(place);
  }
  const auto append = [&](Records& records, std::span<const int> keys, double value) {
    for (const int key : keys) {
      records.keys.push_back(sessionNumber(file, key));
    }
    records.values.push_back(value);
  };
  for (const std::string& name : scenarios.others()) {
    if (!session.drives(name)) {
      continue;
    }
    const FileSymbol& source = file.symbol(name);
    room.take(source);
    Records records;
    for (RecordWalk walk(file, source); walk.next();) {
      append(records, walk.keys(), walk.values()[0]);
    }
    write(session.parameter(name, source.dimension), records);
  }
  for (const std::string& name : scenarios.driving()) {
    const FileSymbol& source = file.symbol(name);
    room.take(source);
    Parameter parameter{.symbol = session.parameter(name, source.dimension - 1),
                        .records = std::vector<Records>(chosen.size())};
    for (RecordWalk walk(file, source); walk.next();) {
      const int place = places[static_cast<std::size_t>(walk.keys()[0])];
      if (place >= 0) {
        append(parameter.records[static_cast<std::size_t>(place)], walk.keys().subspan(1),
               walk.values()[0]);
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

int ScenarioData::sessionNumber(const ExchangeFile& file, int number) {
  int& session = numbers_[static_cast<std::size_t>(number)];
  if (session == 0) {
    session = session_.database().mergeLabel(std::string(file.label(number)));
  }
  return session;
}

}  // namespace tool
