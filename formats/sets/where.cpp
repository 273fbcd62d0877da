// Keeps the records of a file that fulfil a condition.

#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "formats/sets/condition.h"
#include "formats/sets/open_files.h"
#include "formats/sets/set_options.h"
#include "formats/sets/set_output.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Which symbols the condition is for: the chosen ones, which must have all that it names; without
// any, those that do.
std::vector<const tool::FileSymbol*> filteredSymbols(const SetOptions& options,
                                                     const tool::ExchangeFile& file,
                                                     const ConditionNode& condition) {
  std::vector<const tool::FileSymbol*> symbols;
  for (const std::string& name : options.chosen) {
    const tool::FileSymbol& symbol = file.symbol(name);
    if (symbol.isAlias() || symbol.isUniverse()) {
      throw tool::UsageError(fmt::format("--symbol {}: has no records of its own", name));
    }
    const SymbolCondition bound(condition, file, symbol);
    if (!bound.missing().empty()) {
      throw tool::UsageError(fmt::format("--where {}: {} has no field or position {}",
                                         tool::shortened(options.condition), symbol.name,
                                         tool::inQuotes(bound.missing())));
    }
    symbols.push_back(&symbol);
  }
  if (!options.chosen.empty()) return symbols;
  std::string missing;
  for (const tool::FileSymbol& symbol : file.symbols()) {
    if (symbol.isAlias()) continue;
    const SymbolCondition bound(condition, file, symbol);
    if (bound.missing().empty()) {
      symbols.push_back(&symbol);
    } else {
      missing = bound.missing();
    }
  }
  if (symbols.empty()) {
    throw tool::UsageError(
        fmt::format("--where {}: no symbol of {} has all fields and positions that it names{}",
                    tool::shortened(options.condition), file.path(),
                    missing.empty() ? "" : fmt::format(", such as {}", tool::inQuotes(missing))));
  }
  return symbols;
}

// Writes the records of a block that are chosen.
class ChosenColumns {
 public:
  void write(SetOutput& output, const ztb::RxfRecords& block,
             const std::vector<std::uint8_t>& chosen) {
    const auto count = static_cast<std::size_t>(std::ranges::count(chosen, 1));
    if (count == 0) return;
    keys_.resize(static_cast<std::size_t>(block.dimension()));
    values_.resize(static_cast<std::size_t>(block.valueCount()));
    std::vector<const int*> keys;
    for (int position = 0; position < block.dimension(); ++position) {
      keys.push_back(pick(block.keys(position), chosen, keys_[static_cast<std::size_t>(position)]));
    }
    // A scalar has no keys, but the address of its keys is handed on all the same.
    keys.push_back(nullptr);
    std::vector<const double*> values;
    for (int slot = 0; slot < block.valueCount(); ++slot) {
      values.push_back(pick(block.values(slot), chosen, values_[static_cast<std::size_t>(slot)]));
    }
    output.addColumns(count, keys, values);
  }

 private:
  template <typename Number>
  static const Number* pick(std::span<const Number> from, const std::vector<std::uint8_t>& chosen,
                            std::vector<Number>& into) {
    into.clear();
    for (std::size_t record = 0; record < from.size(); ++record) {
      if (chosen[record] != 0) into.push_back(from[record]);
    }
    return into.data();
  }

  std::vector<std::vector<int>> keys_;
  std::vector<std::vector<double>> values_;
};

}  // namespace

void selectWhere(const SetRun& run) {
  const ConditionNode condition = parseCondition(run.options.condition);
  auto opened = openFiles(run);
  const tool::ExchangeFile& file = *opened.front();
  const std::vector<const tool::FileSymbol*> filtered =
      filteredSymbols(run.options, file, condition);
  const auto isFiltered = [&](const tool::FileSymbol& symbol) {
    return std::ranges::find(filtered, &symbol) != filtered.end();
  };
  SetOutput output(run.path, run.shownName, run.progress);
  output.addLabels(file);
  ChosenColumns columns;
  for (const tool::FileSymbol& symbol : file.symbols()) {
    NewSymbol described = describeNew(file, symbol);
    // What a set has lost may stand in other symbols still.
    for (const tool::FileDomain& domain : symbol.domains) {
      if (domain.set > 0 && isFiltered(file.resolved(file.symbolAt(domain.set)))) {
        described.checked = false;
      }
    }
    output.addSymbol(described);
    if (symbol.isAlias()) continue;
    run.progress.step("reading " + symbol.name);
    if (!isFiltered(symbol)) {
      output.copyRecords(file, symbol);
      continue;
    }
    const SymbolCondition bound(condition, file, symbol);
    std::vector<std::uint8_t> chosen;
    for (BlockWalk walk(file, symbol); walk.next();) {
      bound.evaluate(walk.block(), chosen);
      columns.write(output, walk.block(), chosen);
    }
  }
  output.addTexts(file);
  run.result.labels = static_cast<std::size_t>(file.labelCount());
  output.publish(opened);
  run.result.symbols = output.symbolCount();
  run.result.records = output.recordCount();
}

}  // namespace formats
