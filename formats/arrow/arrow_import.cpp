#include "formats/arrow/arrow_import.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>
#include <ztb/case_folding.hpp>
#include <ztb/column_names.hpp>

#include "formats/arrow/arrow_table.h"
#include "formats/arrow/column_records.h"
#include "formats/tables/domain_argument.h"
#include "tools/text/words.h"

namespace formats {

namespace {

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
    failImport(fmt::format("{} ({}) {} not enough for the {} of symbol {}",
                           tool::counted(columns.size(), "column"), fmt::join(columns, ", "),
                           columns.size() == 1 ? "is" : "are",
                           tool::counted(domains.size(), "position"), name));
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

// The records that a table makes.
ColumnRecords recordsOf(ztbRec* database, const ArrowTable& table, const SymbolPlan& plan,
                        ztb::Type type, int subtype, int nulls) {
  NumberPlan numbers{.fields = plan.fields, .names = {}, .others = {}, .nulls = nulls};
  for (const std::size_t column : plan.columns.numbers) {
    numbers.names.push_back(table.names()[column]);
  }
  const bool hasFields = type == ztb::Type::variable || type == ztb::Type::equation;
  if (hasFields && (plan.fields.size() < ztb::fieldCount || nulls == ZTB_ARROW_NULLS_SKIPPED)) {
    numbers.others = newRecordOf(database, type, subtype);
  }
  return {database, type, table.rows(), numbers};
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
    failImport(
        fmt::format("{} of labels {} named, symbol {} has {}", tool::counted(keys.size(), "column"),
                    keys.size() == 1 ? "is" : "are", name,
                    tool::counted(static_cast<std::size_t>(symbol.dimension()), "position")));
  }
  const SymbolPlan plan = planOf(table, std::move(keys), symbol.type(), name);
  table.read(plan.columns);
  ztbRec* database = symbol.database();
  recordsOf(database, table, plan, symbol.type(), symbol.userInfo(), options.nulls).storeIn(symbol);
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
  const ColumnRecords records = recordsOf(database, table, plan, made, 0, options.nulls);
  void* symbol = addSymbol(database, name, made, domainsOf(database, table, keys, made, name));
  records.storeIn({database, symbol});
  return symbol;
}

}  // namespace formats
