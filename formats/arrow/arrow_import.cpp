#include "formats/arrow/arrow_import.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>
#include <ztb/case_folding.hpp>
#include <ztb/column_names.hpp>

#include "formats/arrow/arrow_table.h"
#include "formats/tables/domain_argument.h"
#include "formats/tables/record_table.h"

namespace formats {

namespace {

using FieldValues = std::array<double, ztb::fieldCount>;

[[noreturn]] void failImport(const std::string& text) {
  throw ztb::Error("ztbArrowFill", text);
}

// ---- columns ------------------------------------------------------------------------------------

std::optional<std::size_t> placeOf(const std::vector<std::string>& names, std::string_view name) {
  auto found = std::ranges::find(names, name);
  if (found == names.end()) {
    found = std::ranges::find_if(
        names, [&](const std::string& other) { return ztb::sameFolded(other, name); });
  }
  return found == names.end() ? std::nullopt
                              : std::optional(static_cast<std::size_t>(found - names.begin()));
}

std::optional<std::size_t> fieldOf(std::string_view name) {
  const auto* const found = std::ranges::find_if(
      ztb::fieldNames, [&](std::string_view field) { return ztb::sameFolded(field, name); });
  return found == ztb::fieldNames.end()
             ? std::nullopt
             : std::optional(static_cast<std::size_t>(found - ztb::fieldNames.begin()));
}

// The places of columns with these names; nothing where one is missing or meant twice.
std::optional<std::vector<std::size_t>> placesOf(const std::vector<std::string>& columns,
                                                 const std::vector<std::string>& names) {
  std::vector<std::size_t> places;
  for (const std::string& name : names) {
    const std::optional<std::size_t> place = placeOf(columns, name);
    if (!place || std::ranges::find(places, *place) != places.end()) return std::nullopt;
    places.push_back(*place);
  }
  return places;
}

std::vector<std::size_t> keysOfOptions(const std::vector<std::string>& columns,
                                       const ztbArrowImportOptions& options) {
  const std::vector<std::string> names(options.keys, options.keys + options.keyCount);
  std::optional<std::vector<std::size_t>> places = placesOf(columns, names);
  if (!places) {
    failImport(fmt::format("the columns are {}, and not all of {} are among them, once each",
                           fmt::join(columns, ", "), fmt::join(names, ", ")));
  }
  return std::move(*places);
}

std::vector<std::size_t> keysOfSymbol(const std::vector<std::string>& columns,
                                      const ztb::Symbol& symbol) {
  std::vector<std::string> domains;
  for (const ztb::Domain& domain : symbol.domains()) domains.push_back(domain.name.str());
  const std::string name = symbol.name().str();
  if (std::optional<std::vector<std::size_t>> places =
          placesOf(columns, ztb::keyColumns(name, symbol.type(), domains))) {
    return std::move(*places);
  }
  if (columns.size() < domains.size()) {
    failImport(fmt::format("{} columns ({}) are not enough for the {} positions of symbol {}",
                           columns.size(), fmt::join(columns, ", "), domains.size(), name));
  }
  std::vector<std::size_t> places(domains.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  return places;
}

// What the columns of a stream are for a symbol.
struct SymbolPlan {
  ColumnPlan columns;
  // The field of each column of numbers.
  std::vector<std::size_t> fields;
};

// Columns that are no keys are the content.
SymbolPlan planOf(const ArrowTable& table, std::vector<std::size_t> keys, ztb::Type type,
                  const std::string& symbol) {
  SymbolPlan plan{.columns = {.keys = std::move(keys), .numbers = {}, .text = {}}, .fields = {}};
  std::vector<std::size_t> rest;
  std::vector<std::string> names;
  for (std::size_t column = 0; column < table.names().size(); ++column) {
    if (std::ranges::find(plan.columns.keys, column) == plan.columns.keys.end()) {
      rest.push_back(column);
      names.push_back(table.names()[column]);
    }
  }
  const auto refuse = [&](const char* expected) {
    failImport(fmt::format("symbol {}: expected {} beside the columns of labels, and there {} {}{}",
                           symbol, expected, rest.size() == 1 ? "is" : "are",
                           rest.empty() ? "none" : "", fmt::join(names, ", ")));
  };
  if (type == ztb::Type::set) {
    if (rest.size() > 1) refuse("one column of texts at most");
    if (!rest.empty()) plan.columns.text = rest.front();
    return plan;
  }
  plan.columns.numbers = rest;
  if (type == ztb::Type::parameter) {
    if (rest.size() != 1) refuse("one column of numbers");
    plan.fields = {0};
    return plan;
  }
  for (const std::string& name : names) {
    const std::optional<std::size_t> field = fieldOf(name);
    const bool isLevel = !field && rest.size() == 1;
    if ((!field && !isLevel) ||
        std::ranges::find(plan.fields, field.value_or(0)) != plan.fields.end()) {
      refuse("columns of level, marginal, lower, upper and scale, once each,");
    }
    plan.fields.push_back(field.value_or(0));
  }
  if (rest.empty()) refuse("columns of level, marginal, lower, upper or scale");
  return plan;
}

// ---- records ------------------------------------------------------------------------------------

// Numbers of labels, new ones as the database would give them; they are added by add() alone.
class NewLabels {
 public:
  explicit NewLabels(ztbRec* database) : database_(database) {
    ztb::detail::require(c__ztbinfo(database, ZTB_INFO_UEL_COUNT, &known_, nullptr, nullptr),
                         database, "ztbInfo");
  }

  int number(const std::string& label) {
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

  void add() const {
    for (const std::string& label : labels_) {
      ztb::detail::mergeLabel(database_, "ztbMergeUel", label.c_str());
    }
  }

 private:
  ztbRec* database_;
  int known_ = 0;
  std::vector<std::string> labels_;
  std::unordered_map<std::string, int> numbers_;
};

double notAvailable(ztbRec* database) {
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> special{};
  c__ztbgetuserspecialvalues(database, special.data());
  return special[ZTB_NOT_AVAILABLE];
}

// The values of a new record of such a symbol, as the caller spells them.
FieldValues defaultsOf(ztbRec* database, ztb::Type type, int subtype) {
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

// The records that a table makes, all of them checked, in the order in which they are stored.
class Records {
 public:
  Records(ztbRec* database, const ArrowTable& table, const SymbolPlan& plan,
          const FieldValues& from, int nulls)
      : labels_(database), table_(plan.columns.keys.size(), ztb::fieldCount) {
    std::vector<std::vector<int>> numbers;
    for (const LabelColumn& key : table.keys()) {
      std::vector<int>& known = numbers.emplace_back();
      for (const std::string& label : key.labels()) known.push_back(labels_.number(label));
    }
    if (nulls == ZTB_ARROW_NULLS_REFUSED) refuseNulls(table, plan);
    const double na = notAvailable(database);
    std::vector<int> keys(numbers.size());
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      FieldValues values = from;
      if (!readValues(table, plan, row, nulls, na, values)) continue;
      for (std::size_t key = 0; key < keys.size(); ++key) {
        keys[key] = numbers[key][static_cast<std::size_t>(table.keys()[key].rows[row])];
      }
      table_.add(keys, values, textAt(table, plan, row));
      rows_.push_back(row);
    }
    order_ = table_.order();
    refuseDuplicates(table);
  }

  // Replaces the records of the symbol.
  void storeIn(ztb::Symbol symbol) const {
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

 private:
  static void refuseNulls(const ArrowTable& table, const SymbolPlan& plan) {
    for (std::size_t column = 0; column < plan.fields.size(); ++column) {
      const std::vector<bool>& nulls = table.numbers()[column].nulls;
      const auto first = std::ranges::find(nulls, true);
      if (first != nulls.end()) {
        failImport(fmt::format("column {}, row {}: a value is missing",
                               table.names()[plan.columns.numbers[column]], first - nulls.begin()));
      }
    }
  }

  // False for a row that makes no record.
  static bool readValues(const ArrowTable& table, const SymbolPlan& plan, std::size_t row,
                         int nulls, double na, FieldValues& values) {
    bool any = plan.fields.empty();
    for (std::size_t column = 0; column < plan.fields.size(); ++column) {
      const NumberColumn& numbers = table.numbers()[column];
      const bool isNull = !numbers.nulls.empty() && numbers.nulls[row];
      if (!isNull) {
        values[plan.fields[column]] = numbers.rows[row];
      } else if (nulls == ZTB_ARROW_NULLS_AS_NA) {
        values[plan.fields[column]] = na;
      }
      any = any || !isNull || nulls == ZTB_ARROW_NULLS_AS_NA;
    }
    return any;
  }

  static std::string_view textAt(const ArrowTable& table, const SymbolPlan& plan, std::size_t row) {
    if (!plan.columns.text) return {};
    const std::string& text = table.texts()[row];
    if (text.size() > ZTB_MAX_TEXT_LENGTH) {
      failImport(fmt::format("row {}: a text has {} bytes, at most {} are allowed", row,
                             text.size(), static_cast<int>(ZTB_MAX_TEXT_LENGTH)));
    }
    if (text.find('\0') != std::string::npos) {
      failImport(fmt::format("row {}: a text holds a zero byte", row));
    }
    return text;
  }

  void refuseDuplicates(const ArrowTable& table) const {
    for (std::size_t at = 1; at < order_.size(); ++at) {
      if (!std::ranges::equal(table_.keys(order_[at - 1]), table_.keys(order_[at]))) continue;
      std::string labels;
      for (const LabelColumn& key : table.keys()) {
        const int place = key.rows[rows_[order_[at]]];
        labels += fmt::format("{}\"{}\"", labels.empty() ? "" : ",",
                              key.labels()[static_cast<std::size_t>(place)]);
      }
      failImport(fmt::format("row {}: another row, {}, has the same labels ({})", rows_[order_[at]],
                             rows_[order_[at - 1]], labels));
    }
  }

  NewLabels labels_;
  RecordTable table_;
  std::vector<std::size_t> rows_;
  std::vector<std::size_t> order_;
};

// What records hold where no column tells it.
FieldValues valuesWithoutColumns(ztbRec* database, ztb::Type type, int subtype,
                                 const SymbolPlan& plan, int nulls) {
  const bool hasFields = type == ztb::Type::variable || type == ztb::Type::equation;
  const bool all = plan.fields.size() == ztb::fieldCount && nulls != ZTB_ARROW_NULLS_SKIPPED;
  return hasFields && !all ? defaultsOf(database, type, subtype) : FieldValues{};
}

// ---- new symbols --------------------------------------------------------------------------------

// The type that the columns tell.
ztb::Type typeOf(const ArrowTable& table) {
  const std::vector<std::string>& names = table.names();
  if (std::ranges::any_of(names, [](const auto& name) { return fieldOf(name).has_value(); })) {
    return ztb::Type::variable;
  }
  const bool isValue = !names.empty() && (!table.canBeLabel(names.size() - 1) ||
                                          ztb::sameFolded(names.back(), "value"));
  return isValue ? ztb::Type::parameter : ztb::Type::set;
}

std::vector<std::size_t> keysOfNewSymbol(const ArrowTable& table, ztb::Type type) {
  const std::vector<std::string>& names = table.names();
  std::vector<std::size_t> keys;
  for (std::size_t column = 0; column < names.size(); ++column) {
    const bool isLast = column + 1 == names.size();
    const bool isContent = type == ztb::Type::set
                               ? isLast && column > 0 && ztb::sameFolded(names[column], "text")
                           : type == ztb::Type::parameter ? isLast
                                                          : fieldOf(names[column]).has_value();
    if (!isContent) keys.push_back(column);
  }
  return keys;
}

struct NewDomains {
  std::vector<std::string> names;
  std::vector<void*> sets;
};

NewDomains domainsOf(ztbRec* database, const ArrowTable& table,
                     const std::vector<std::size_t>& keys, ztb::Type type,
                     const std::string& symbol) {
  NewDomains domains;
  for (const std::size_t key : keys) {
    const std::string& column = table.names()[key];
    void* set = nullptr;
    if (c__ztbfindsymbolwithalias(database, column.c_str(), &set) != 0 && set != nullptr) {
      const ztb::Symbol found = ztb::Symbol(database, set).unaliased();
      if (found.type() != ztb::Type::set || found.dimension() != 1) set = nullptr;
    }
    const bool plainSet = type == ztb::Type::set && keys.size() == 1;
    const bool named =
        set != nullptr || (!plainSet && canBeDomain(column) && !ztb::sameFolded(column, symbol));
    domains.names.push_back(named ? column : "*");
    domains.sets.push_back(set);
  }
  return domains;
}

void requireNewName(ztbRec* database, const std::string& name) {
  void* found = nullptr;
  if (c__ztbfindsymbolwithalias(database, name.c_str(), &found) != 0 && found != nullptr) {
    throw ztb::Error("ztbAddSymbol", "Symbol " + name + " exists already", ztb::ErrorKind::exists);
  }
}

void* addSymbol(ztbRec* database, const std::string& name, ztb::Type type, NewDomains domains) {
  void* symbol = nullptr;
  std::vector<const char*> names;
  for (const std::string& domain : domains.names) names.push_back(domain.c_str());
  const int dimension = static_cast<int>(names.size());
  const int result =
      dimension == 0
          ? c__ztbaddsymbol(database, name.c_str(), 0, static_cast<int>(type), 0, "", &symbol)
          : c__ztbaddsymbolx(database, name.c_str(), dimension, static_cast<int>(type), 0, "",
                             domains.sets.data(), names.data(), &symbol);
  ztb::detail::require(result != 0 && symbol != nullptr ? 1 : 0, database, "ztbAddSymbol");
  return symbol;
}

void requireType(int type) {
  if (type < -1 || type > ZTB_EQUATION) {
    failImport(fmt::format("{} is no type of a symbol with records", type));
  }
}

}  // namespace

void fillFromArrow(const ztb::Symbol& symbol, ArrowArrayStream* stream,
                   const ztbArrowImportOptions& options) {
  ArrowTable table(stream);
  const std::string name = symbol.name().str();
  if (symbol.type() == ztb::Type::alias || name == "*") {
    failImport(fmt::format("{} has no records of its own", name));
  }
  std::vector<std::size_t> keys = options.keys == nullptr ? keysOfSymbol(table.names(), symbol)
                                                          : keysOfOptions(table.names(), options);
  if (keys.size() != static_cast<std::size_t>(symbol.dimension())) {
    failImport(fmt::format("{} columns of labels are named, symbol {} has {} positions",
                           keys.size(), name, symbol.dimension()));
  }
  const SymbolPlan plan = planOf(table, std::move(keys), symbol.type(), name);
  table.read(plan.columns);
  ztbRec* database = symbol.database();
  Records(database, table, plan,
          valuesWithoutColumns(database, symbol.type(), symbol.userInfo(), plan, options.nulls),
          options.nulls)
      .storeIn(symbol);
}

void* makeFromArrow(ztbRec* database, const std::string& name, int type, ArrowArrayStream* stream,
                    const ztbArrowImportOptions& options) {
  ArrowTable table(stream);
  requireType(type);
  requireNewName(database, name);
  const ztb::Type made = type < 0 ? typeOf(table) : static_cast<ztb::Type>(type);
  const std::vector<std::size_t> keys = options.keys == nullptr
                                            ? keysOfNewSymbol(table, made)
                                            : keysOfOptions(table.names(), options);
  if (keys.size() > ZTB_MAX_DIMENSION) {
    failImport(fmt::format("{} columns of labels, a symbol has at most {} positions", keys.size(),
                           static_cast<int>(ZTB_MAX_DIMENSION)));
  }
  const SymbolPlan plan = planOf(table, keys, made, name);
  table.read(plan.columns);
  const Records records(database, table, plan,
                        valuesWithoutColumns(database, made, 0, plan, options.nulls),
                        options.nulls);
  void* symbol = addSymbol(database, name, made, domainsOf(database, table, keys, made, name));
  records.storeIn({database, symbol});
  return symbol;
}

}  // namespace formats
