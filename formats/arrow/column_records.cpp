#include "formats/arrow/column_records.h"

#include <fmt/format.h>
#include <ztb/arrow.h>

#include <algorithm>
#include <string_view>

namespace formats {

namespace {

[[noreturn]] void failRecords(const std::string& text) {
  throw ztb::Error("ztbArrowFill", text);
}

double notAvailable(ztbRec* database) {
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> special{};
  c__ztbgetuserspecialvalues(database, special.data());
  return special[ZTB_NOT_AVAILABLE];
}

std::size_t slotsOf(ztb::Type type) {
  return type == ztb::Type::set ? 0 : type == ztb::Type::parameter ? 1 : ztb::fieldCount;
}

void refuseNulls(const ColumnTable& table, const NumberPlan& plan) {
  for (std::size_t column = 0; column < plan.fields.size(); ++column) {
    const std::vector<bool>& nulls = table.numbers[column].nulls;
    const auto first = std::ranges::find(nulls, true);
    if (first != nulls.end()) {
      failRecords(fmt::format("column {}, row {}: a value is missing", plan.names[column],
                              first - nulls.begin()));
    }
  }
}

// False for a row that makes no record.
bool readRow(const ColumnTable& table, const NumberPlan& plan, std::size_t row, double na,
             FieldValues& values) {
  bool any = plan.fields.empty();
  for (std::size_t column = 0; column < plan.fields.size(); ++column) {
    const NumberColumn& numbers = table.numbers[column];
    const bool isNull = !numbers.nulls.empty() && numbers.nulls[row];
    const bool isNa = isNull && plan.nulls == ZTB_ARROW_NULLS_AS_NA;
    if (!isNull || isNa) {
      values[plan.fields[column]] = isNa ? na : numbers.rows[row];
      any = true;
    }
  }
  return any;
}

std::string_view textAt(const ColumnTable& table, std::size_t row) {
  if (table.texts.empty()) return {};
  const std::string& text = table.texts[row];
  if (text.size() > ZTB_MAX_TEXT_LENGTH) {
    failRecords(fmt::format("row {}: a text has {} bytes, at most {} are allowed", row, text.size(),
                            static_cast<int>(ZTB_MAX_TEXT_LENGTH)));
  }
  if (text.find('\0') != std::string::npos) {
    failRecords(fmt::format("row {}: a text holds a zero byte", row));
  }
  return text;
}

}  // namespace

FieldValues newRecordOf(ztbRec* database, ztb::Type type, int subtype) {
  ztb::Database scratch;
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> special{};
  c__ztbgetuserspecialvalues(database, special.data());
  scratch.setSpecialValues(special);
  const ztb::Record record = scratch.addSymbol("v", type, {}, "", subtype).add();
  std::array<int, ZTB_MAX_DIMENSION> keys{};
  FieldValues values{};
  record.raw(keys.data(), values.data());
  return values;
}

NewLabels::NewLabels(ztbRec* database) : database_(database) {
  ztb::detail::require(c__ztbinfo(database, ZTB_INFO_UEL_COUNT, &known_, nullptr, nullptr),
                       database, "ztbInfo");
}

int NewLabels::number(const std::string& label) {
  if (label.find('\0') != std::string::npos) {
    throw ztb::Error("ztbMergeUel", "a label holds a zero byte");
  }
  const int number = ztb::detail::requireLabel(database_, "ztbMergeUel", label.c_str());
  if (number != ztb::detail::newLabel) return number;
  const int next = known_ + static_cast<int>(labels_.size()) + 1;
  const auto [known, isNew] = numbers_.try_emplace(comparedLabel(label), next);
  if (isNew) labels_.push_back(label);
  return known->second;
}

void NewLabels::add() const {
  for (const std::string& label : labels_) {
    ztb::detail::mergeLabel(database_, "ztbMergeUel", label.c_str());
  }
}

ColumnRecords::ColumnRecords(ztbRec* database, ztb::Type type, const ColumnTable& table,
                             const NumberPlan& plan)
    : labels_(database), table_(table.keys.size(), slotsOf(type)) {
  if (plan.nulls == ZTB_ARROW_NULLS_REFUSED) refuseNulls(table, plan);
  const double na = notAvailable(database);
  for (std::size_t row = 0; row < table.rowCount; ++row) {
    FieldValues values{};
    if (readRow(table, plan, row, na, values)) rows_.push_back(row);
  }
  const std::vector<std::vector<int>> numbers = numbersOf(table);
  std::vector<int> keys(numbers.size());
  for (const std::size_t row : rows_) {
    FieldValues values = plan.others;
    readRow(table, plan, row, na, values);
    for (std::size_t key = 0; key < keys.size(); ++key) {
      keys[key] = numbers[key][static_cast<std::size_t>(table.keys[key].rows[row])];
    }
    table_.add(keys, std::span(values).first(slotsOf(type)), textAt(table, row));
  }
  order_ = table_.order();
  refuseDuplicates(table);
}

// For each position the numbers of the labels, 0 for one of rows alone that make no record.
std::vector<std::vector<int>> ColumnRecords::numbersOf(const ColumnTable& table) {
  std::vector<std::vector<int>> numbers;
  for (const LabelColumn& key : table.keys) {
    std::vector<int>& known = numbers.emplace_back(key.labels().size(), 0);
    for (const std::size_t row : rows_) {
      const auto place = static_cast<std::size_t>(key.rows[row]);
      if (known[place] == 0) known[place] = labels_.number(key.labels()[place]);
    }
  }
  return numbers;
}

void ColumnRecords::storeIn(ztb::Symbol symbol) const {
  labels_.add();
  symbol.clear();
  for (const std::size_t record : order_) {
    if (symbol.type() == ztb::Type::set) {
      const std::string_view text = table_.text(record);
      symbol.putElementUnchecked(table_.keys(record), text.empty() ? nullptr : text.data());
    } else {
      FieldValues values{};
      std::ranges::copy(table_.values(record), values.begin());
      symbol.putUnchecked(table_.keys(record), values);
    }
  }
}

void ColumnRecords::refuseDuplicates(const ColumnTable& table) const {
  for (std::size_t at = 1; at < order_.size(); ++at) {
    if (!std::ranges::equal(table_.keys(order_[at - 1]), table_.keys(order_[at]))) continue;
    std::string labels;
    for (const LabelColumn& key : table.keys) {
      const int place = key.rows[rows_[order_[at]]];
      labels += fmt::format("{}\"{}\"", labels.empty() ? "" : ",",
                            key.labels()[static_cast<std::size_t>(place)]);
    }
    failRecords(fmt::format("row {}: another row, {}, has the same labels ({})", rows_[order_[at]],
                            rows_[order_[at - 1]], labels));
  }
}

}  // namespace formats
