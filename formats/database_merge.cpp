#include "formats/database_merge.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "formats/tables/record_table.h"

namespace formats {

namespace {

// Values pass into the database as they are inside, whatever its user has set, until this goes.
class InternalValues {
 public:
  explicit InternalValues(ztbRec* database) : database_(database) {
    c__ztbgetuserspecialvalues(database_, user_.data());
    std::array<double, ZTB_SPECIAL_VALUE_COUNT> internal{};
    c__ztbgetspecialvalues(database_, internal.data());
    c__ztbsetspecialvalues(database_, internal.data());
  }
  InternalValues(const InternalValues&) = delete;
  InternalValues& operator=(const InternalValues&) = delete;
  ~InternalValues() { c__ztbsetspecialvalues(database_, user_.data()); }

 private:
  ztbRec* database_;
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> user_{};
};

bool isSet(const ztb::Symbol& symbol) {
  return symbol.type() == ztb::Type::set && symbol.dimension() == 1;
}

void copyElements(const ztb::Symbol& from, ztb::Symbol to, ztb::Database& database) {
  ztb::Rows rows = from.rows();
  for (auto at = rows.begin(); at != rows.end(); ++at) {
    ztb::Text label;
    const int number = (*at).keys.front();
    c__ztbgetuelbyindex(from.database(), number, label.buffer());
    const std::array<int, 1> key{database.mergeLabel(label.str())};
    to.putElement(key, at.record().text().str());
  }
}

std::optional<ztb::Symbol> findSymbol(ztbRec* database, const std::string& name) {
  void* handle = nullptr;
  if (c__ztbfindsymbolwithalias(database, name.c_str(), &handle) == 0 || handle == nullptr) {
    return std::nullopt;
  }
  return ztb::Symbol(database, handle);
}

ztb::Symbol addAlias(ztbRec* database, const ztb::Symbol& alias) {
  const ztb::Symbol set = alias.unaliased();
  const std::string target = set.name().str();
  // The library wants the position of the set; that of no set stands for the universe.
  int position = -1;
  int at = 0;
  for (const ztb::Symbol& symbol : ztb::Symbols(database)) {
    if (symbol.name().view() == target && symbol.type() != ztb::Type::alias) position = at;
    ++at;
  }
  void* handle = nullptr;
  ztb::detail::require(c__ztbaddsymbol(database, alias.name().str().c_str(), set.dimension(),
                                       ZTB_ALIAS, position, alias.text().str().c_str(), &handle),
                       database, "ztbAddSymbol");
  return {database, handle};
}

ztb::Symbol addLike(ztbRec* database, const ztb::Symbol& symbol) {
  if (symbol.type() == ztb::Type::alias) return addAlias(database, symbol);
  std::array<void*, ZTB_MAX_DIMENSION> sets{};
  std::array<std::string, ZTB_MAX_DIMENSION> names;
  std::array<const char*, ZTB_MAX_DIMENSION> texts{};
  std::size_t position = 0;
  for (const ztb::Domain& domain : symbol.domains()) {
    names[position] = domain.name.str();
    texts[position] = names[position].c_str();
    if (domain.set && names[position] != "*") {
      const std::optional<ztb::Symbol> set = findSymbol(database, names[position]);
      sets[position] = set ? set->handle() : nullptr;
    }
    ++position;
  }
  const std::string name = symbol.name().str();
  const std::string text = symbol.text().str();
  void* handle = nullptr;
  const int type = static_cast<int>(symbol.type());
  if (position == 0) {
    ztb::detail::require(
        c__ztbaddsymbol(database, name.c_str(), 0, type, symbol.userInfo(), text.c_str(), &handle),
        database, "ztbAddSymbol");
  } else {
    const int result =
        c__ztbaddsymbolx(database, name.c_str(), static_cast<int>(position), type,
                         symbol.userInfo(), text.c_str(), sets.data(), texts.data(), &handle);
    ztb::detail::require(result != 0 && handle != nullptr ? 1 : 0, database, "ztbAddSymbolX");
  }
  return {database, handle};
}

// Label numbers of one database in another.
class LabelNumbers {
 public:
  LabelNumbers(ztbRec* target, const ztb::Database& from)
      : target_(target),
        from_(from),
        numbers_(static_cast<std::size_t>(from.labelCount()) + 1, 0) {}

  int of(int number) {
    int& known = numbers_[static_cast<std::size_t>(number)];
    if (known == 0) {
      const std::string label = from_.label(number).str();
      ztb::detail::require(c__ztbmergeuel(target_, label.c_str(), &known), target_, "ztbMergeUel");
    }
    return known;
  }

 private:
  ztbRec* target_;
  const ztb::Database& from_;
  std::vector<int> numbers_;
};

void copyRecords(const ztb::Symbol& from, ztb::Symbol to, LabelNumbers& labels) {
  const bool set = from.type() == ztb::Type::set;
  RecordTable table(static_cast<std::size_t>(from.dimension()), set ? 0 : from.valueCount());
  std::vector<int> keys;
  ztb::Rows rows = from.rows();
  for (auto at = rows.begin(); at != rows.end(); ++at) {
    keys.clear();
    for (const int key : (*at).keys) keys.push_back(labels.of(key));
    if (set) {
      table.add(keys, {}, at.record().text().str());
    } else {
      table.add(keys, (*at).values, {});
    }
  }
  for (const std::size_t record : table.order()) {
    if (set) {
      const std::string_view text = table.text(record);
      to.putElement(table.keys(record), text.empty() ? nullptr : text.data());
    } else {
      std::array<double, ztb::fieldCount> values{};
      const std::span<const double> read = table.values(record);
      std::copy(read.begin(), read.end(), values.begin());
      to.putUnchecked(table.keys(record), values);
    }
  }
}

}  // namespace

void lendSets(ztbRec* target, ztb::Database& database, RecordImport& records, bool withElements) {
  for (const ztb::Symbol& symbol : ztb::Symbols(target)) {
    const std::string name = symbol.name().str();
    if (isSet(symbol)) {
      const ztb::Symbol set = database.addSet(name, {"*"});
      if (withElements) {
        copyElements(symbol, set, database);
        records.know(set);
      }
    } else if (symbol.type() == ztb::Type::alias && symbol.dimension() == 1) {
      const ztb::Symbol set = symbol.unaliased();
      if (std::optional<ztb::Symbol> lent = database.findSymbol(set.name().str())) {
        database.addAlias(name, *lent);
      }
    }
  }
}

void addSymbols(ztbRec* target, const ztb::Database& database, int first, int firstLabel) {
  const int count = database.symbolCount();
  std::string taken;
  bool several = false;
  for (int position = first; position < count; ++position) {
    const std::string name = database.symbolAt(position).name().str();
    if (!findSymbol(target, name)) continue;
    several = !taken.empty();
    taken += (taken.empty() ? "" : ", ") + name;
  }
  if (!taken.empty()) {
    throw ztb::Error(
        "ztbAddSymbol",
        (several ? "Symbols " + taken + " exist" : "Symbol " + taken + " exists") + " already",
        ztb::ErrorKind::exists);
  }
  const InternalValues guard(target);
  LabelNumbers labels(target, database);
  // New labels first, in their order.
  for (int number = firstLabel; number <= database.labelCount(); ++number) labels.of(number);
  for (int position = first; position < count; ++position) {
    const ztb::Symbol symbol = database.symbolAt(position);
    const ztb::Symbol added = addLike(target, symbol);
    if (symbol.type() != ztb::Type::alias) copyRecords(symbol, added, labels);
  }
}

}  // namespace formats
