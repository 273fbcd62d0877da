#include "tools/files/database_diff.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <new>
#include <span>

#include "formats/tables/record_table.h"
#include "tools/files/memory_room.h"
#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// The records of one symbol in the order of the common numbers of labels: straight from the file,
// or sorted in memory where the file has them in another order.
class Side {
 public:
  Side(const ExchangeFile& file, const FileSymbol& symbol, const std::vector<int>& numbers,
       bool inOrder, Progress& progress)
      : walk_(file, symbol), numbers_(numbers), isSet_(symbol.type == ztb::Type::set) {
    progress.step(fmt::format("reading {} of {}", symbol.name, file.path()));
    if (!inOrder) {
      MemoryRoom(file).take(symbol);
      try {
        takeIn(symbol, progress);
      } catch (const std::bad_alloc&) {
        table_.reset();
        throw Failure(withFile(
            file.path(), fmt::format("symbol {}: its {} do not fit into memory, where they are "
                                     "sorted",
                                     symbol.name, counted(symbol.recordCount, "record"))));
      }
    }
    next();
  }

  [[nodiscard]] bool atEnd() const { return atEnd_; }
  [[nodiscard]] std::span<const int> keys() const {
    return table_ ? table_->keys(order_[at_]) : std::span<const int>(keys_);
  }
  [[nodiscard]] std::span<const double> values() const {
    if (table_) {
      return table_->values(order_[at_]);
    }
    return isSet_ ? std::span<const double>() : walk_.values();
  }
  [[nodiscard]] std::string_view text() const {
    if (table_) {
      return table_->text(order_[at_]);
    }
    return isSet_ ? walk_.text() : std::string_view();
  }

  void next() {
    if (table_) {
      at_ = begun_ ? at_ + 1 : 0;
      atEnd_ = at_ == order_.size();
    } else {
      atEnd_ = !walk_.next();
      number();
    }
    begun_ = true;
  }

 private:
  void takeIn(const FileSymbol& symbol, Progress& progress) {
    table_.emplace(static_cast<std::size_t>(symbol.dimension),
                   isSet_ ? 0 : static_cast<std::size_t>(symbol.valueCount));
    while (walk_.next()) {
      number();
      table_->add(keys_, isSet_ ? std::span<const double>() : walk_.values(),
                  isSet_ ? walk_.text() : std::string_view());
      progress.count(table_->size());
    }
    order_ = table_->order();
  }

  // Gives the keys of the record at hand their common numbers.
  void number() {
    keys_.clear();
    for (const int key : walk_.keys()) {
      keys_.push_back(numbers_[static_cast<std::size_t>(key)]);
    }
  }

  RecordWalk walk_;
  const std::vector<int>& numbers_;
  bool isSet_;
  std::optional<formats::RecordTable> table_;
  std::vector<std::size_t> order_;
  std::vector<int> keys_;
  std::size_t at_ = 0;
  bool begun_ = false;
  bool atEnd_ = false;
};

class Comparison {
 public:
  Comparison(const ExchangeFile& before, const ExchangeFile& after, const DiffOptions& options,
             Progress& progress)
      : before_(before), after_(after), options_(options), progress_(progress) {
    numberLabels();
  }

  DatabaseDifference run() {
    DatabaseDifference result;
    for (const FileSymbol& symbol : before_.symbols()) {
      const FileSymbol* other = after_.findSymbol(symbol.name);
      if (other == nullptr) {
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
    for (const FileSymbol& symbol : after_.symbols()) {
      if (before_.findSymbol(symbol.name) == nullptr) {
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
      const std::optional<int> known = before_.file().findLabel(label);
      if (!known) {
        labels_.push_back(label);
      }
      numbersOfAfter_.push_back(known.value_or(static_cast<int>(labels_.size()) - 1));
    }
    afterInOrder_ = std::ranges::is_sorted(numbersOfAfter_);
  }

  static SymbolDifference describe(const FileSymbol& symbol, Change change) {
    SymbolDifference difference;
    difference.change = change;
    difference.name = symbol.name;
    difference.type = symbol.type;
    difference.signature = signature(symbol);
    return difference;
  }

  SymbolDifference compareSymbols(const FileSymbol& before, const FileSymbol& after,
                                  std::size_t& comparedRecords) {
    SymbolDifference difference = describe(before, Change::changed);
    const auto attribute = [&](const char* name, const std::string& old, const std::string& now) {
      if (old != now) {
        difference.attributes.push_back({.name = name, .before = old, .after = now});
      }
    };
    attribute("type", std::string(typeWord(before.type)), std::string(typeWord(after.type)));
    attribute("dimension", std::to_string(before.dimension), std::to_string(after.dimension));
    const bool comparable = difference.attributes.empty();
    attribute("text", before.text, after.text);
    if (before.isAlias() && after.isAlias()) {
      attribute("alias of", folded(before_.resolved(before).name),
                folded(after_.resolved(after).name));
      return difference;
    }
    attribute("domains", folded(fmt::format("{}", fmt::join(domainNames(before), ", "))),
              folded(fmt::format("{}", fmt::join(domainNames(after), ", "))));
    if (comparable) {
      attribute("user info", std::to_string(before.userInfo), std::to_string(after.userInfo));
      compareRecords(before, after, difference, comparedRecords);
    }
    return difference;
  }

  void compareRecords(const FileSymbol& before, const FileSymbol& after,
                      SymbolDifference& difference, std::size_t& comparedRecords) {
    Side old(before_, before, numbersOfBefore_, true, progress_);
    Side now(after_, after, numbersOfAfter_, afterInOrder_, progress_);
    while (!old.atEnd() || !now.atEnd()) {
      const std::strong_ordering order = compareKeys(old, now);
      if (std::is_lt(order)) {
        ++difference.goneRecords;
        keep(difference, Change::gone, &old, nullptr);
        old.next();
      } else if (std::is_gt(order)) {
        ++difference.addedRecords;
        keep(difference, Change::added, nullptr, &now);
        now.next();
      } else {
        ++comparedRecords;
        if (!sameContent(old, now)) {
          ++difference.changedRecords;
          keep(difference, Change::changed, &old, &now);
        }
        old.next();
        now.next();
      }
    }
  }

  // Order of the next records of two sides; a side at its end comes last.
  static std::strong_ordering compareKeys(const Side& left, const Side& right) {
    if (left.atEnd() || right.atEnd()) {
      return left.atEnd() <=> right.atEnd();
    }
    return std::lexicographical_compare_three_way(left.keys().begin(), left.keys().end(),
                                                  right.keys().begin(), right.keys().end());
  }

  [[nodiscard]] bool sameValue(double left, double right) const {
    if (sameBits(left, right)) {
      return true;
    }
    return options_.tolerance && !isSpecial(left) && !isSpecial(right) &&
           std::abs(left - right) <= *options_.tolerance;
  }

  [[nodiscard]] bool sameContent(const Side& old, const Side& now) const {
    return old.text() == now.text() &&
           std::ranges::equal(old.values(), now.values(),
                              [this](double left, double right) { return sameValue(left, right); });
  }

  void keep(SymbolDifference& difference, Change change, const Side* old, const Side* now) const {
    if (difference.records.size() >= options_.keptRecords) {
      return;
    }
    RecordDifference record;
    record.change = change;
    for (const int key : old != nullptr ? old->keys() : now->keys()) {
      record.keys.emplace_back(labels_[static_cast<std::size_t>(key)]);
    }
    if (old != nullptr) {
      record.before = contentOf(*old);
    }
    if (now != nullptr) {
      record.after = contentOf(*now);
    }
    difference.records.push_back(std::move(record));
  }

  static RecordContent contentOf(const Side& side) {
    const std::span<const double> values = side.values();
    return {.text = std::string(side.text()), .values = {values.begin(), values.end()}};
  }

  const ExchangeFile& before_;
  const ExchangeFile& after_;
  const DiffOptions& options_;
  Progress& progress_;
  // Number in the common numbering of each label of a file.
  std::vector<int> numbersOfBefore_;
  std::vector<int> numbersOfAfter_;
  std::vector<std::string> labels_;
  // Whether the records of after ascend by the common numbers as well.
  bool afterInOrder_ = false;
};

}  // namespace

DatabaseDifference compare(const ExchangeFile& before, const ExchangeFile& after,
                           const DiffOptions& options, Progress& progress) {
  return Comparison(before, after, options, progress).run();
}

}  // namespace tool
