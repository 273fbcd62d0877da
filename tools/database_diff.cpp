#include "tools/database_diff.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <span>

#include "tools/number_text.h"
#include "tools/record_table.h"
#include "tools/words.h"

namespace tool {

namespace {

class Comparison {
 public:
  Comparison(DataFile& before, DataFile& after, const DiffOptions& options, Progress& progress)
      : before_(before), after_(after), options_(options), progress_(progress) {
    numberLabels();
  }

  DatabaseDifference run() {
    DatabaseDifference result;
    for (const ztb::Symbol& symbol : before_.symbols()) {
      const std::string name = symbol.name().str();
      const std::optional<ztb::Symbol> other = after_.database().findSymbolOrAlias(name);
      if (!other) {
        result.symbols.push_back(describe(symbol, Change::gone));
        continue;
      }
      ++result.comparedSymbols;
      SymbolDifference difference = compareSymbols(symbol, *other, result.comparedRecords);
      if (!difference.attributes.empty() || difference.goneRecords > 0 ||
          difference.addedRecords > 0 || difference.changedRecords > 0) {
        result.symbols.push_back(std::move(difference));
      }
    }
    for (const ztb::Symbol& symbol : after_.symbols()) {
      if (!before_.database().findSymbolOrAlias(symbol.name())) {
        result.symbols.push_back(describe(symbol, Change::added));
      }
    }
    return result;
  }

 private:
  // Gives the labels of after the numbers that they have in before; new ones follow.
  void numberLabels() {
    numbersOfBefore_.push_back(0);
    labels_.emplace_back();
    for (int number = 1; number <= before_.labelCount(); ++number) {
      numbersOfBefore_.push_back(number);
      labels_.emplace_back(before_.label(number));
    }
    numbersOfAfter_.push_back(0);
    for (int number = 1; number <= after_.labelCount(); ++number) {
      const std::string label(after_.label(number));
      const std::optional<int> known = before_.database().findLabel(label);
      if (!known) {
        labels_.push_back(label);
      }
      numbersOfAfter_.push_back(known.value_or(static_cast<int>(labels_.size()) - 1));
    }
  }

  static SymbolDifference describe(const ztb::Symbol& symbol, Change change) {
    SymbolDifference difference;
    difference.change = change;
    difference.name = symbol.name().str();
    difference.type = symbol.type();
    difference.signature = signature(symbol);
    return difference;
  }

  SymbolDifference compareSymbols(const ztb::Symbol& before, const ztb::Symbol& after,
                                  std::size_t& comparedRecords) {
    SymbolDifference difference = describe(before, Change::changed);
    const auto attribute = [&](const char* name, const std::string& old, const std::string& now) {
      if (old != now) {
        difference.attributes.push_back({.name = name, .before = old, .after = now});
      }
    };
    attribute("type", std::string(typeWord(before.type())), std::string(typeWord(after.type())));
    attribute("dimension", std::to_string(before.dimension()), std::to_string(after.dimension()));
    const bool comparable = difference.attributes.empty();
    attribute("text", before.text().str(), after.text().str());
    if (before.type() == ztb::Type::alias && after.type() == ztb::Type::alias) {
      attribute("alias of", folded(before_.resolved(before).name()),
                folded(after_.resolved(after).name()));
      return difference;
    }
    attribute("domains", folded(fmt::format("{}", fmt::join(domainNames(before), ", "))),
              folded(fmt::format("{}", fmt::join(domainNames(after), ", "))));
    if (comparable) {
      attribute("user info", std::to_string(before.userInfo()), std::to_string(after.userInfo()));
      compareRecords(before, after, difference, comparedRecords);
    }
    return difference;
  }

  RecordTable load(DataFile& file, ztb::Symbol symbol, const std::vector<int>& numbers) {
    progress_.step(fmt::format("reading {} of {}", symbol.name().view(), file.path()));
    file.requireIntact(symbol);
    const bool isSet = symbol.type() == ztb::Type::set;
    RecordTable table(static_cast<std::size_t>(symbol.dimension()),
                      isSet ? 0 : symbol.valueCount());
    {
      std::vector<int> keys;
      ztb::Rows rows = symbol.rows();
      for (auto at = rows.begin(); at != rows.end(); ++at) {
        const ztb::Row row = *at;
        keys.clear();
        for (const int key : row.keys) {
          keys.push_back(numbers[static_cast<std::size_t>(key)]);
        }
        if (isSet) {
          table.add(keys, {}, at.record().text());
        } else {
          table.add(keys, row.values, {});
        }
        progress_.count(table.size());
      }
    }
    // From here on the records are in the table.
    symbol.clear();
    return table;
  }

  void compareRecords(const ztb::Symbol& before, const ztb::Symbol& after,
                      SymbolDifference& difference, std::size_t& comparedRecords) {
    const RecordTable old = load(before_, before, numbersOfBefore_);
    const RecordTable now = load(after_, after, numbersOfAfter_);
    const std::vector<std::size_t> oldOrder = old.order();
    const std::vector<std::size_t> nowOrder = now.order();
    std::size_t inOld = 0;
    std::size_t inNow = 0;
    while (inOld < oldOrder.size() || inNow < nowOrder.size()) {
      const std::strong_ordering order = compareKeys(old, oldOrder, inOld, now, nowOrder, inNow);
      if (std::is_lt(order)) {
        ++difference.goneRecords;
        keep(difference, Change::gone, &old, oldOrder[inOld++], nullptr, 0);
      } else if (std::is_gt(order)) {
        ++difference.addedRecords;
        keep(difference, Change::added, nullptr, 0, &now, nowOrder[inNow++]);
      } else {
        ++comparedRecords;
        if (!sameContent(old, oldOrder[inOld], now, nowOrder[inNow])) {
          ++difference.changedRecords;
          keep(difference, Change::changed, &old, oldOrder[inOld], &now, nowOrder[inNow]);
        }
        ++inOld;
        ++inNow;
      }
    }
  }

  // Order of the next records of two tables; a table at its end comes last.
  static std::strong_ordering compareKeys(const RecordTable& left,
                                          const std::vector<std::size_t>& leftOrder,
                                          std::size_t inLeft, const RecordTable& right,
                                          const std::vector<std::size_t>& rightOrder,
                                          std::size_t inRight) {
    if (inLeft == leftOrder.size() || inRight == rightOrder.size()) {
      return (inLeft == leftOrder.size()) <=> (inRight == rightOrder.size());
    }
    const std::span<const int> leftKeys = left.keys(leftOrder[inLeft]);
    const std::span<const int> rightKeys = right.keys(rightOrder[inRight]);
    return std::lexicographical_compare_three_way(leftKeys.begin(), leftKeys.end(),
                                                  rightKeys.begin(), rightKeys.end());
  }

  [[nodiscard]] bool sameValue(double left, double right) const {
    if (sameBits(left, right)) {
      return true;
    }
    return options_.tolerance && !isSpecial(left) && !isSpecial(right) &&
           std::abs(left - right) <= *options_.tolerance;
  }

  [[nodiscard]] bool sameContent(const RecordTable& old, std::size_t oldRecord,
                                 const RecordTable& now, std::size_t nowRecord) const {
    return old.text(oldRecord) == now.text(nowRecord) &&
           std::ranges::equal(old.values(oldRecord), now.values(nowRecord),
                              [this](double left, double right) { return sameValue(left, right); });
  }

  void keep(SymbolDifference& difference, Change change, const RecordTable* old,
            std::size_t oldRecord, const RecordTable* now, std::size_t nowRecord) const {
    if (difference.records.size() >= options_.keptRecords) {
      return;
    }
    RecordDifference record;
    record.change = change;
    const std::span<const int> keys = old != nullptr ? old->keys(oldRecord) : now->keys(nowRecord);
    for (const int key : keys) {
      record.keys.push_back(labels_[static_cast<std::size_t>(key)]);
    }
    if (old != nullptr) {
      record.before = contentOf(*old, oldRecord);
    }
    if (now != nullptr) {
      record.after = contentOf(*now, nowRecord);
    }
    difference.records.push_back(std::move(record));
  }

  static RecordContent contentOf(const RecordTable& table, std::size_t record) {
    const std::span<const double> values = table.values(record);
    return {.text = std::string(table.text(record)), .values = {values.begin(), values.end()}};
  }

  DataFile& before_;
  DataFile& after_;
  const DiffOptions& options_;
  Progress& progress_;
  // Number in the common numbering of each label of a file.
  std::vector<int> numbersOfBefore_;
  std::vector<int> numbersOfAfter_;
  std::vector<std::string> labels_;
};

}  // namespace

DatabaseDifference compare(DataFile& before, DataFile& after, const DiffOptions& options,
                           Progress& progress) {
  return Comparison(before, after, options, progress).run();
}

}  // namespace tool
