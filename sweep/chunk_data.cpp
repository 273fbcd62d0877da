#include "sweep/chunk_data.h"

#include "tools/files/memory_room.h"

namespace sweep {

using tool::FileSymbol;
using tool::RecordWalk;

ChunkData::ChunkData(const ScenarioFile& scenarios, tool::ModelSession& session)
    : scenarios_(scenarios), session_(session) {
  const tool::ExchangeFile& file = scenarios.file();
  numbers_.assign(static_cast<std::size_t>(file.labelCount()) + 1, 0);
  tool::MemoryRoom room(file);
  for (const FileSymbol* source : scenarios.others()) {
    if (!session.drives(source->name)) continue;
    (void)session.parameter(source->name, source->dimension);
    room.take(*source, source->recordCount);
    Parameter& other = others_.emplace_back();
    other.source = source;
    for (RecordWalk walk(file, *source); walk.next();) {
      other.records.keys.insert(other.records.keys.end(), walk.keys().begin(), walk.keys().end());
      other.records.values.push_back(walk.values()[0]);
    }
  }
  for (const FileSymbol* source : scenarios.driving()) {
    (void)session.parameter(source->name, source->dimension - 1);
    parameters_.emplace_back().source = source;
  }
}

void ChunkData::begin(int first, int end) {
  for (const int number : asked_) numbers_[static_cast<std::size_t>(number)] = 0;
  asked_.clear();
  first_ = first;
  tool::MemoryRoom room(scenarios_.file());
  for (Parameter& parameter : parameters_) {
    read(parameter, first, end);
    room.take(*parameter.source, parameter.records.values.size());
  }
  for (const Parameter& other : others_) {
    write(*other.source, other.source->dimension, other.records, 0, other.records.values.size());
  }
}

void ChunkData::read(Parameter& parameter, int first, int end) {
  if (!parameter.walk) {
    parameter.walk = std::make_unique<RecordWalk>(scenarios_.file(), *parameter.source);
  }
  RecordWalk& walk = *parameter.walk;
  walk.seek(scenarios_.number(first));
  parameter.records.keys.clear();
  parameter.records.values.clear();
  parameter.begins.assign(1, 0);
  int scenario = first;
  bool isThere = walk.next();
  while (isThere && scenario < end) {
    const int key = walk.keys()[0];
    if (key > scenarios_.number(scenario)) {
      parameter.begins.push_back(parameter.records.values.size());
      ++scenario;
      continue;
    }
    if (key == scenarios_.number(scenario)) {
      const std::span<const int> keys = walk.keys().subspan(1);
      parameter.records.keys.insert(parameter.records.keys.end(), keys.begin(), keys.end());
      parameter.records.values.push_back(walk.values()[0]);
    }
    isThere = walk.next();
  }
  parameter.begins.resize(static_cast<std::size_t>(end - first) + 1,
                          parameter.records.values.size());
}

void ChunkData::apply(int scenario) {
  const auto place = static_cast<std::size_t>(scenario - first_);
  for (const Parameter& parameter : parameters_) {
    write(*parameter.source, parameter.source->dimension - 1, parameter.records,
          parameter.begins[place], parameter.begins[place + 1]);
  }
}

void ChunkData::write(const FileSymbol& source, int dimension, const Records& records,
                      std::size_t begin, std::size_t end) {
  ztb::Symbol symbol = session_.parameter(source.name, dimension);
  symbol.clear();
  const auto positions = static_cast<std::size_t>(dimension);
  std::vector<int> keys(positions);
  for (std::size_t record = begin; record < end; ++record) {
    for (std::size_t position = 0; position < positions; ++position) {
      keys[position] = sessionNumber(records.keys[record * positions + position]);
    }
    symbol.put(keys, records.values[record]);
  }
  if (session_.applyParameter(symbol) > 0) unmatched_.insert(source.name);
}

int ChunkData::sessionNumber(int number) {
  int& session = numbers_[static_cast<std::size_t>(number)];
  if (session == 0) {
    session = session_.database().mergeLabel(std::string(scenarios_.file().label(number)));
    asked_.push_back(number);
  }
  return session;
}

}  // namespace sweep
