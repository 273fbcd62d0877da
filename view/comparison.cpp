#include "view/comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <unordered_map>

#include "formats/tables/row_sorter.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"
#include "view/record_scan.h"

namespace view {

namespace {

// Changes that are kept to be looked at; all are counted.
constexpr std::size_t mostChanges = 100000;
constexpr std::size_t mostCompared = 20000;

// Numbers of labels, or of texts, that mean the same in both files: those of the first, and behind
// them what only the second has.
class CommonNumbers {
 public:
  using TextOf = std::function<std::string_view(int number)>;

  CommonNumbers(int firstCount, TextOf firstText, int secondCount, TextOf secondText, bool folds)
      : firstCount_(firstCount),
        firstText_(std::move(firstText)),
        secondText_(std::move(secondText)) {
    const auto name = [&](std::string_view text) {
      return folds ? tool::folded(std::string(text)) : std::string(text);
    };
    std::unordered_map<std::string, int> known;
    for (int number = 1; number <= firstCount; ++number)
      known.emplace(name(firstText_(number)), number);
    numbers_.push_back(0);
    for (int number = 1; number <= secondCount; ++number) {
      const auto found = known.find(name(secondText_(number)));
      if (found == known.end()) own_.push_back(number);
      numbers_.push_back(found != known.end() ? found->second
                                              : firstCount + static_cast<int>(own_.size()));
    }
  }

  // Of a number of the second file.
  [[nodiscard]] int of(int number) const { return numbers_[static_cast<std::size_t>(number)]; }
  // Whether the second file has everything in the common order.
  [[nodiscard]] bool ascend() const { return std::ranges::is_sorted(numbers_); }
  [[nodiscard]] std::string_view text(int number) const {
    if (number <= firstCount_) return firstText_(number);
    return secondText_(own_[static_cast<std::size_t>(number - firstCount_ - 1)]);
  }

 private:
  int firstCount_;
  TextOf firstText_;
  TextOf secondText_;
  std::vector<int> numbers_;
  std::vector<int> own_;
};

CommonNumbers commonLabels(const OpenedFile& first, const OpenedFile& second) {
  const tool::ExchangeFile& a = first.exchange();
  const tool::ExchangeFile& b = second.exchange();
  return {a.labelCount(), [&a](int number) { return a.label(number); }, b.labelCount(),
          [&b](int number) { return b.label(number); }, true};
}

CommonNumbers commonTexts(const OpenedFile& first, const OpenedFile& second) {
  const ztb::RxfFile& a = first.exchange().file();
  const ztb::RxfFile& b = second.exchange().file();
  const auto text = [](const ztb::RxfFile& file, int number) {
    return number == 0 ? std::string_view() : file.text(number);
  };
  return {a.textCount(), [&a, text](int number) { return text(a, number); }, b.textCount(),
          [&b, text](int number) { return text(b, number); }, false};
}

// The records of one symbol in the order of the common numbers.
class SideRecords {
 public:
  SideRecords(RecordScan& scan, int slot) : scan_(scan), slot_(slot), keys_(scan.dimension()) {}

  // Has the records of the second file numbered in common, and sorted where that changes their
  // order.
  void renumber(const CommonNumbers& labels, const CommonNumbers* texts) {
    labels_ = &labels;
    texts_ = texts;
    if (labels.ascend()) return;
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    const std::size_t words = std::max<std::size_t>(keys_.size(), 1);
    sorter_.emplace(words, words + 1, error ? "/tmp" : folder.string());
    std::vector<std::uint64_t> row(words + 1);
    while (nextOfFile()) {
      for (std::size_t at = 0; at < keys_.size(); ++at) {
        row[at] = static_cast<std::uint64_t>(keys_[at]);
      }
      row[words] = std::bit_cast<std::uint64_t>(value_);
      sorter_->add(row.data());
    }
  }

  bool next() {
    if (!sorter_) return nextOfFile();
    if (!sorter_->next()) return false;
    const std::uint64_t* row = sorter_->row();
    for (std::size_t at = 0; at < keys_.size(); ++at) keys_[at] = static_cast<int>(row[at]);
    value_ = std::bit_cast<double>(row[std::max<std::size_t>(keys_.size(), 1)]);
    return true;
  }
  [[nodiscard]] const std::vector<int>& keys() const { return keys_; }
  [[nodiscard]] double value() const { return value_; }

 private:
  bool nextOfFile() {
    for (;;) {
      while (at_ < size_ && scan_.chosen()[at_] == 0) ++at_;
      if (at_ < size_) break;
      if (!scan_.next()) return false;
      at_ = 0;
      size_ = scan_.block().size();
    }
    for (std::size_t position = 0; position < keys_.size(); ++position) {
      const int key = scan_.block().keys(static_cast<int>(position))[at_];
      keys_[position] = labels_ == nullptr ? key : labels_->of(key);
    }
    value_ = scan_.block().values(slot_)[at_++];
    if (texts_ != nullptr) value_ = texts_->of(static_cast<int>(value_));
    return true;
  }

  RecordScan& scan_;
  int slot_;
  std::vector<int> keys_;
  double value_ = 0;
  const CommonNumbers* labels_ = nullptr;
  const CommonNumbers* texts_ = nullptr;
  std::size_t at_ = 0;
  std::size_t size_ = 0;
  std::optional<formats::RowSorter> sorter_;
};

// By how much a value changes, a record that is not there counting as 0; nothing where a special
// value has a part in it.
std::optional<double> amountOf(const RecordChange& change) {
  const bool special =
      (change.kind != RecordChange::Kind::added && tool::isSpecial(change.before)) ||
      (change.kind != RecordChange::Kind::gone && tool::isSpecial(change.after));
  if (special) return std::nullopt;
  return (change.kind == RecordChange::Kind::gone ? 0 : change.after) -
         (change.kind == RecordChange::Kind::added ? 0 : change.before);
}

// The greatest first, those of no amount before all.
bool isGreater(const RecordChange& left, const RecordChange& right) {
  constexpr double most = std::numeric_limits<double>::infinity();
  const double a = std::abs(amountOf(left).value_or(most));
  const double b = std::abs(amountOf(right).value_or(most));
  return a != b ? a > b : left.keys < right.keys;
}

void keepGreatest(std::vector<RecordChange>& changes) {
  if (changes.size() <= mostChanges) return;
  const auto end = changes.begin() + static_cast<std::ptrdiff_t>(mostChanges);
  std::nth_element(changes.begin(), end, changes.end(), isGreater);
  changes.erase(end, changes.end());
}

Comparison compared(SideRecords& first, SideRecords& second, bool isSet) {
  Comparison result;
  const auto add = [&](RecordChange change) {
    // Texts are no amounts: their changes stay in the order of the keys.
    if (isSet && result.changes.size() >= mostChanges) return;
    result.changes.push_back(std::move(change));
    if (result.changes.size() >= 2 * mostChanges) keepGreatest(result.changes);
  };
  bool hasFirst = first.next();
  bool hasSecond = second.next();
  while (hasFirst || hasSecond) {
    const bool isGone = hasFirst && (!hasSecond || first.keys() < second.keys());
    const bool isAdded = !isGone && (!hasFirst || second.keys() < first.keys());
    if (isGone) {
      ++result.gone;
      add({RecordChange::Kind::gone, first.keys(), first.value(), 0});
    } else if (isAdded) {
      ++result.added;
      add({RecordChange::Kind::added, second.keys(), 0, second.value()});
    } else if (tool::sameBits(first.value(), second.value())) {
      ++result.same;
    } else {
      ++result.changed;
      add({RecordChange::Kind::changed, first.keys(), first.value(), second.value()});
    }
    if (!isAdded) hasFirst = first.next();
    if (!isGone) hasSecond = second.next();
  }
  if (!isSet) {
    keepGreatest(result.changes);
    std::ranges::sort(result.changes, isGreater);
  }
  return result;
}

std::string_view kindWord(RecordChange::Kind kind) {
  switch (kind) {
    case RecordChange::Kind::added:
      return "new";
    case RecordChange::Kind::gone:
      return "gone";
    default:
      return "changed";
  }
}

void writeChange(const RecordChange& change, const CommonNumbers& labels,
                 const CommonNumbers* texts, formats::JsonText& answer) {
  const auto value = [&](const char* name, bool isThere, double number) {
    answer.name(name);
    if (!isThere) {
      answer.null();
    } else if (texts != nullptr) {
      answer.text(texts->text(static_cast<int>(number)));
    } else {
      answer.number(number);
    }
  };
  answer.beginObject();
  answer.name("keys");
  answer.beginArray();
  for (const int key : change.keys) answer.text(labels.text(key));
  answer.endArray();
  answer.name("kind");
  answer.text(kindWord(change.kind));
  value("a", change.kind != RecordChange::Kind::added, change.before);
  value("b", change.kind != RecordChange::Kind::gone, change.after);
  answer.name("change");
  const std::optional<double> amount = texts == nullptr ? amountOf(change) : std::nullopt;
  if (amount) {
    answer.number(*amount);
  } else {
    answer.null();
  }
  answer.endObject();
}

}  // namespace

void answerCompare(Question& question) {
  const Parameters& parameters = question.parameters;
  RecordScan first(question);
  RecordScan second(question, RecordScan::secondSide);
  const tool::FileSymbol& before = first.symbol();
  const tool::FileSymbol& after = second.symbol();
  if (before.dimension != after.dimension || before.valueCount != after.valueCount ||
      (before.type == ztb::Type::set) != (after.type == ztb::Type::set)) {
    throw RequestError(400, fmt::format("{} and {} cannot be compared: they have other positions "
                                        "or values",
                                        tool::signature(before), tool::signature(after)));
  }
  const bool isSet = before.type == ztb::Type::set;
  const int slot = isSet ? 0 : first.slot(parameters);
  const std::size_t from = parameters.number("from", 0, mostChanges);
  const std::size_t count = parameters.number("count", 100, mostCompared);
  const std::string order = parameters.text("sort", "change");
  if (order != "change" && order != "key") {
    throw RequestError(400,
                       fmt::format("sort: {} is neither change nor key", tool::inQuotes(order)));
  }
  const CommonNumbers labels = commonLabels(first.file(), second.file());
  std::optional<CommonNumbers> texts;
  if (isSet) texts.emplace(commonTexts(first.file(), second.file()));
  const CommonNumbers* const commonText = texts ? &*texts : nullptr;
  const std::string name =
      fmt::format("{} {} {} {} {} {}\n{}\n{}", first.file().id(), before.number, second.file().id(),
                  after.number, slot, order, first.filter().words(), second.filter().words());
  const auto comparison = question.session.comparisons.get(name, [&] {
    SideRecords left(first, slot);
    SideRecords right(second, slot);
    right.renumber(labels, commonText);
    Comparison result = compared(left, right, isSet);
    if (order == "key") std::ranges::sort(result.changes, {}, &RecordChange::keys);
    return result;
  });
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  const auto number = [&](const char* word, std::size_t value) {
    answer.name(word);
    answer.count(value);
  };
  number("new", comparison->added);
  number("gone", comparison->gone);
  number("changed", comparison->changed);
  number("same", comparison->same);
  // Rows that can be asked for, and all that differ.
  number("total", comparison->changes.size());
  number("differ", comparison->added + comparison->gone + comparison->changed);
  number("from", from);
  answer.name("rows");
  answer.beginArray();
  for (std::size_t at = from; at < std::min(from + count, comparison->changes.size()); ++at) {
    writeChange(comparison->changes[at], labels, commonText, answer);
  }
  answer.endArray();
  answer.endObject();
}

}  // namespace view
