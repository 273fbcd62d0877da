// Adds up the records of a symbol that share the labels of some positions.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ztb/column_names.hpp>

#include "formats/sets/groups.h"
#include "formats/sets/key_packing.h"
#include "formats/sets/open_files.h"
#include "formats/sets/set_options.h"
#include "formats/sets/set_output.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Groups in memory; about 128 MiB of three words each.
constexpr std::size_t mostGroups = std::size_t{1} << 20U;

constexpr std::array<std::string_view, 6> statisticWords{"", "sum", "mean", "min", "max", "count"};

// The positions of --by, from 0, in the order that is given.
std::vector<std::size_t> groupPositions(const std::string& by, const tool::FileSymbol& symbol) {
  std::vector<std::size_t> positions;
  if (by.empty()) return positions;
  const std::vector<std::string> columns =
      ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol));
  for (const std::string& word : tool::splitAtCommas(by)) {
    const std::size_t first = std::min(word.find_first_not_of(' '), word.size());
    const std::string name = word.substr(first, word.find_last_not_of(' ') + 1 - first);
    std::size_t position = 0;
    while (position < columns.size() && !tool::sameFolded(columns[position], name) &&
           std::to_string(position + 1) != name) {
      ++position;
    }
    if (position == columns.size()) {
      throw tool::UsageError(fmt::format("--by {}: {} has no position {}; its positions are {}", by,
                                         symbol.name, tool::inQuotes(name),
                                         fmt::join(columns, ", ")));
    }
    if (std::ranges::find(positions, position) != positions.end()) {
      throw tool::UsageError(
          fmt::format("--by {}: position {} stands twice", by, tool::inQuotes(name)));
    }
    positions.push_back(position);
  }
  return positions;
}

int aggregatedSlot(const SetOptions& options, const tool::FileSymbol& symbol) {
  const bool hasFields = symbol.valueCount == static_cast<int>(ztb::fieldCount);
  if (options.field.empty()) return 0;
  const auto* field = std::ranges::find_if(ztb::fieldNames, [&](std::string_view known) {
    return tool::sameFolded(known, options.field);
  });
  if (!hasFields || field == ztb::fieldNames.end()) {
    throw tool::UsageError(fmt::format("--field {}: {} is a {}{}", options.field, symbol.name,
                                       tool::typeWord(symbol.type),
                                       hasFields ? "; its fields are level, marginal, lower, upper "
                                                   "and scale"
                                                 : ", which has no fields"));
  }
  return static_cast<int>(field - ztb::fieldNames.begin());
}

// The sets that a symbol is over, with what they need in turn, by their numbers.
void needSet(const tool::ExchangeFile& file, int number, std::vector<bool>& needed) {
  if (number <= 0 || needed[static_cast<std::size_t>(number)]) return;
  needed[static_cast<std::size_t>(number)] = true;
  const tool::FileSymbol& symbol = file.symbolAt(number);
  if (symbol.isAlias()) return needSet(file, symbol.aliasTarget, needed);
  for (const tool::FileDomain& domain : symbol.domains) needSet(file, domain.set, needed);
}

void addSets(SetOutput& output, const tool::ExchangeFile& file, const tool::FileSymbol& symbol,
             const std::vector<std::size_t>& positions) {
  std::vector<bool> needed(file.symbols().size() + 1);
  for (const std::size_t position : positions) {
    needSet(file, symbol.domains[position].set, needed);
  }
  for (const tool::FileSymbol& set : file.symbols()) {
    if (!needed[static_cast<std::size_t>(set.number)]) continue;
    output.addSymbol(describeNew(file, set));
    if (!set.isAlias()) output.copyRecords(file, set);
  }
}

void fillGroups(Groups& groups, const KeyPacking& packing, const tool::ExchangeFile& file,
                const tool::FileSymbol& symbol, const std::vector<std::size_t>& positions, int slot,
                const SetRun& run) {
  std::vector<std::uint64_t> keys;
  std::size_t records = 0;
  const std::size_t words = packing.words();
  for (BlockWalk walk(file, symbol); walk.next();) {
    const ztb::RxfRecords& block = walk.block();
    keys.assign(block.size() * words, 0);
    for (std::size_t place = 0; place < positions.size(); ++place) {
      const std::span<const int> labels = block.keys(static_cast<int>(positions[place]));
      for (std::size_t record = 0; record < labels.size(); ++record) {
        packing.put(keys.data() + record * words, place, labels[record]);
      }
    }
    const std::span<const double> values = block.values(slot);
    for (std::size_t record = 0; record < values.size(); ++record) {
      if (run.options.skipsMissing && std::isnan(values[record])) continue;
      groups.add(keys.data() + record * words, values[record]);
    }
    records += block.size();
    run.progress.count(records);
  }
}

}  // namespace

void aggregateSymbol(const SetRun& run) {
  const SetOptions& options = run.options;
  auto opened = openFiles(run);
  const tool::ExchangeFile& file = *opened.front();
  const tool::FileSymbol& symbol = file.resolved(file.symbol(options.chosen.front()));
  if (symbol.isUniverse()) throw tool::UsageError("*: the universe has no records to add up");
  if (symbol.type == ztb::Type::set && options.statistic != Statistic::count) {
    throw tool::UsageError(
        fmt::format("{} is a set, whose elements can be counted only", symbol.name));
  }
  const std::vector<std::size_t> positions = groupPositions(options.by, symbol);
  const int slot = aggregatedSlot(options, symbol);
  const std::string_view word = statisticWords.at(static_cast<std::size_t>(options.statistic));
  NewSymbol total{
      .name = options.name.empty() ? fmt::format("{}_{}", symbol.name, word) : options.name,
      .text = fmt::format("{} of {}", word, tool::signature(symbol)),
      .type = ztb::Type::parameter,
      .userInfo = 0,
      .checked = describeNew(file, symbol).checked,
      .domains = {},
      .aliasOf = {}};
  total.text.resize(std::min<std::size_t>(total.text.size(), ZTB_MAX_TEXT_LENGTH));
  for (const std::size_t position : positions) {
    total.domains.push_back(symbol.domains[position].name);
  }
  SetOutput output(run.path, run.shownName, run.progress);
  output.addLabels(file);
  addSets(output, file, symbol, positions);
  run.progress.step("reading " + symbol.name);
  const KeyPacking packing(positions.size(), file.labelCount());
  Groups groups(packing.words(), run.folder(), mostGroups);
  fillGroups(groups, packing, file, symbol, positions, slot, run);
  output.addSymbol(total);
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  const std::size_t before = output.recordCount();
  std::size_t count = 0;
  groups.walk([&](const std::uint64_t* key, const Amount& amount) {
    for (std::size_t place = 0; place < positions.size(); ++place) {
      keys[place] = packing.label(key, place);
    }
    const double value = amount.result(options.statistic);
    output.addRecord({keys.data(), positions.size()}, {&value, 1});
    ++count;
  });
  output.addTexts(file);
  run.result.labels = static_cast<std::size_t>(file.labelCount());
  output.publish(opened);
  run.result.symbols = output.symbolCount();
  run.result.records = before + count;
}

}  // namespace formats
