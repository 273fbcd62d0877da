#include "formats/tables/table_import.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <ztb/column_names.hpp>

#include "formats/tables/domain_argument.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Makes the symbols of an import, with their domains.
class SymbolMaker {
 public:
  SymbolMaker(ztb::Database& database, const std::vector<ImportSource>& sources, bool namesAlone)
      : database_(database), namesAlone_(namesAlone) {
    for (const ImportSource& source : sources) {
      for (const SymbolSpec& spec : source.symbols) {
        names_.push_back(spec.name);
      }
    }
  }

  ztb::Symbol make(const SymbolSpec& spec) {
    const bool keepsNames = namesAlone_ || !isOverASet(spec);
    std::vector<ztb::DomainArgument> domains;
    for (const KeySpec& key : spec.keys) {
      domains.push_back(domainOf(spec, key, keepsNames));
    }
    try {
      return database_.addSymbol(spec.name, typeOf(spec.kind), domains, spec.text, spec.subtype);
    } catch (const ztb::Error& error) {
      throw tool::UsageError(fmt::format("{}: {}", spec.source, error.what()));
    }
  }

  [[nodiscard]] std::vector<std::string> lostRoles() { return std::move(lostRoles_); }

 private:
  static ztb::Type typeOf(SpecKind kind) {
    switch (kind) {
      case SpecKind::parameter:
        return ztb::Type::parameter;
      case SpecKind::variable:
        return ztb::Type::variable;
      default:
        return ztb::Type::set;
    }
  }

  // The set or alias of one position that has this name.
  [[nodiscard]] std::optional<ztb::Symbol> setNamed(const std::string& name) const {
    const std::optional<ztb::Symbol> found = database_.findSymbolOrAlias(name);
    const bool isSet =
        found && found->unaliased().type() == ztb::Type::set && found->unaliased().dimension() == 1;
    return isSet ? found : std::nullopt;
  }

  [[nodiscard]] bool isOverASet(const SymbolSpec& spec) const {
    return std::ranges::any_of(spec.keys, [this](const KeySpec& key) {
      return key.domain ? *key.domain != "*" : setNamed(key.column).has_value();
    });
  }

  ztb::DomainArgument domainOf(const SymbolSpec& spec, const KeySpec& key, bool keepsNames) {
    if (!key.domain) {
      return domainOfColumn(spec, key.column, keepsNames);
    }
    if (*key.domain == "*") {
      return {"*"};
    }
    const std::optional<ztb::Symbol> set = setNamed(*key.domain);
    if (!set) {
      throw tool::UsageError(fmt::format("{}: domain {} is no one-dimensional set made before",
                                         spec.source, *key.domain));
    }
    return {roleOf(spec, key.column, *set)};
  }

  // Without a set that is named, the domain is the set of the column's name, or this name alone. A
  // plain set is over the universe, and so is a position that has its name from a later symbol.
  ztb::DomainArgument domainOfColumn(const SymbolSpec& spec, const std::string& column,
                                     bool keepsNames) {
    if (const std::optional<ztb::Symbol> set = setNamed(column)) {
      return {*set};
    }
    const bool plainSet = typeOf(spec.kind) == ztb::Type::set && spec.keys.size() == 1;
    if (!plainSet && canBeDomain(column) && !isTaken(column)) {
      if (keepsNames) {
        return {column};
      }
      lostRoles_.push_back(
          fmt::format("{}: a position is not called {}: with --check-domains a name without a set "
                      "is not kept beside a set",
                      spec.source, tool::inQuotes(column)));
    }
    return {"*"};
  }

  // A set under the name of the column that is over it: the set itself, or an alias of it. Where
  // another symbol has the name, or no symbol can, it is the set.
  ztb::Symbol roleOf(const SymbolSpec& spec, const std::string& column, const ztb::Symbol& set) {
    if (tool::sameFolded(column, set.name().view())) {
      return set;
    }
    if (const std::optional<ztb::Symbol> known = setNamed(column);
        known && known->unaliased().handle() == set.unaliased().handle()) {
      return *known;
    }
    std::string reason = "another symbol has this name";
    if (!isTaken(column) && !database_.findSymbolOrAlias(column)) {
      try {
        return database_.addAlias(column, set);
      } catch (const ztb::Error& error) {
        reason = error.what();
      }
    }
    lostRoles_.push_back(fmt::format("{}: a position is called {} and not {}: {}", spec.source,
                                     set.name().view(), tool::inQuotes(column), reason));
    return set;
  }

  [[nodiscard]] bool isTaken(const std::string& name) const {
    return std::ranges::any_of(
        names_, [&](const std::string& other) { return tool::sameFolded(other, name); });
  }

  ztb::Database& database_;
  bool namesAlone_;
  std::vector<std::string> names_;
  std::vector<std::string> lostRoles_;
};

// Finds columns by name in the header of one file.
class Header {
 public:
  Header(TableReader& reader, ProblemList& problems) : reader_(reader), problems_(problems) {
    read_ = reader.next(problems);
    if (!read_) {
      problems.add(reader.path(), "has no header line");
      return;
    }
    position_ = reader.position();
    for (const TableField& field : reader.fields()) {
      names_.emplace_back(field.text);
    }
  }

  [[nodiscard]] bool read() const { return read_; }
  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

  // The places of the columns that have the names of fields, with these; reported if there is none.
  std::vector<FieldSpec> fields() {
    std::vector<FieldSpec> result;
    for (std::size_t field = 0; field < ztb::fieldCount; ++field) {
      const std::string name(ztb::fieldNames.at(field));
      if (!matching([&](const std::string& other) {
             return tool::sameFolded(other, name);
           }).empty()) {
        result.push_back({.field = field, .column = name});
      }
    }
    if (result.empty()) {
      problems_.add(reader_.place(position_),
                    fmt::format("no column {}; the columns are {}",
                                fmt::join(ztb::fieldNames, ", "), columnList()));
    }
    return result;
  }

  // The place of a column; reported, and 0, if there is none or more than one.
  std::size_t find(const std::string& name) {
    const std::vector<std::size_t> found = places(name);
    return found.empty() ? missing(tool::inQuotes(name)) : single(found, name);
  }
  // That of the second one where there is none of the first name.
  std::size_t findEither(const std::string& first, std::string_view second) {
    const std::string other(second);
    const std::vector<std::size_t> found = places(first);
    if (!found.empty()) return single(found, first);
    const std::vector<std::size_t> others = places(other);
    return others.empty() ? missing(tool::inQuotes(first) + " or " + tool::inQuotes(other))
                          : single(others, other);
  }

 private:
  // All columns of a name: as written, else with the case of letters folded.
  [[nodiscard]] std::vector<std::size_t> places(const std::string& name) const {
    std::vector<std::size_t> found =
        matching([&](const std::string& other) { return other == name; });
    return found.empty()
               ? matching([&](const std::string& other) { return tool::sameFolded(other, name); })
               : found;
  }
  std::size_t missing(const std::string& names) {
    problems_.add(reader_.place(position_),
                  fmt::format("no column {}; the columns are {}", names, columnList()));
    return 0;
  }
  std::size_t single(const std::vector<std::size_t>& found, const std::string& name) {
    if (found.size() == 1) return found.front();
    problems_.add(reader_.place(position_),
                  fmt::format("more than one column {}; the columns are {}", tool::inQuotes(name),
                              columnList()));
    return 0;
  }
  template <class Predicate>
  [[nodiscard]] std::vector<std::size_t> matching(Predicate predicate) const {
    std::vector<std::size_t> found;
    for (std::size_t column = 0; column < names_.size(); ++column) {
      if (predicate(names_[column])) {
        found.push_back(column);
      }
    }
    return found;
  }

  [[nodiscard]] std::string columnList() const {
    constexpr std::size_t most = 20;
    const std::size_t shown = std::min(names_.size(), most);
    std::vector<std::string> first;
    for (std::size_t name = 0; name < shown; ++name) first.push_back(tool::shortened(names_[name]));
    std::string list = fmt::format("{}", fmt::join(first, ", "));
    if (shown < names_.size()) {
      list += fmt::format(" and {} more", names_.size() - shown);
    }
    return list;
  }

  TableReader& reader_;
  ProblemList& problems_;
  bool read_ = false;
  TextPosition position_;
  std::vector<std::string> names_;
};

// The values of a record of a variable before any is set.
std::array<double, ztb::fieldCount> defaultsOf(int subtype) {
  ztb::Database scratch;
  const ztb::Record record = scratch.addVariable("v", subtype, {}).add();
  return {record.level(), record.marginal(), record.lower(), record.upper(), record.scale()};
}

// What the column of values is called in exported tables.
constexpr std::string_view usualContent = "value";

// Whether a position has the labels of that column.
bool hasUsualKey(const SymbolSpec& spec) {
  return std::ranges::any_of(
      spec.keys, [](const KeySpec& key) { return tool::sameFolded(key.column, usualContent); });
}

ImportTarget planTarget(const SymbolSpec& spec, const ztb::Symbol& symbol, Header& header,
                        const TableImportOptions& options) {
  ImportTarget target{.symbol = symbol,
                      .keyColumns = {},
                      .valueColumns = {},
                      .valueFields = {},
                      .defaults = {},
                      .textColumn = std::nullopt,
                      .distinct = spec.kind == SpecKind::distinctSet,
                      .skipEmpty = options.skipEmpty && symbol.type() != ztb::Type::set};
  for (const KeySpec& key : spec.keys) {
    target.keyColumns.push_back(header.find(key.column));
  }
  if (spec.kind == SpecKind::parameter) {
    target.valueColumns.push_back(spec.contentIsGiven || hasUsualKey(spec)
                                      ? header.find(spec.contentColumn)
                                      : header.findEither(spec.contentColumn, usualContent));
    target.valueFields.push_back(0);
  } else if (spec.kind == SpecKind::variable) {
    target.defaults = defaultsOf(spec.subtype);
    for (const FieldSpec& field : spec.fields.empty() ? header.fields() : spec.fields) {
      target.valueColumns.push_back(header.find(field.column));
      target.valueFields.push_back(field.field);
    }
  } else if (!spec.contentColumn.empty()) {
    target.textColumn = header.find(spec.contentColumn);
  }
  return target;
}

// A symbol of a wide table, whose values stand in the column that the spread ones are put together
// in unless another one is named.
SymbolSpec inShape(const SymbolSpec& spec, const TableShape& shape) {
  SymbolSpec result = spec;
  if (!shape.wide.empty() && spec.kind == SpecKind::parameter && spec.contentColumn == spec.name) {
    result.contentColumn = spreadValues;
    result.contentIsGiven = true;
  }
  return result;
}

// The shape, with the columns that the symbols are made from.
TableShape shapeOf(const ImportSource& source) {
  TableShape shape = source.shape;
  for (const SymbolSpec& spec : source.symbols) {
    const SymbolSpec inside = inShape(spec, shape);
    for (const KeySpec& key : inside.keys) {
      shape.kept.push_back(key.column);
    }
    shape.kept.push_back(inside.contentColumn);
    for (const FieldSpec& field : inside.fields) {
      shape.kept.push_back(field.column);
    }
  }
  return shape;
}

// What a column of this name is called in the file.
std::string nameInFile(const TableShape& shape, const std::string& name) {
  for (const auto& [old, renamed] : shape.renames) {
    if (tool::sameFolded(renamed, name)) return old;
  }
  return name;
}

// The columns of the file that the source is made from; the shape is that of shapeOf().
UsedColumns usedColumns(const ImportSource& source, const TableShape& shape) {
  UsedColumns used{.all = !shape.wide.empty() && shape.spread.empty(), .names = {}};
  const auto use = [&](const std::string& name) {
    const bool isMade = !shape.wide.empty() && (tool::sameFolded(name, shape.wide) ||
                                                tool::sameFolded(name, spreadValues));
    if (!isMade && !name.empty()) used.names.push_back({nameInFile(shape, name)});
  };
  for (const SymbolSpec& spec : source.symbols) {
    const SymbolSpec inside = inShape(spec, shape);
    for (const KeySpec& key : inside.keys) use(key.column);
    for (const FieldSpec& field : inside.fields) use(field.column);
    if (inside.kind == SpecKind::variable) {
      // Without names any column may be one of its fields.
      used.all = used.all || inside.fields.empty();
    } else if (inside.kind == SpecKind::parameter && !inside.contentIsGiven &&
               !hasUsualKey(inside)) {
      used.names.push_back(
          {nameInFile(shape, inside.contentColumn), nameInFile(shape, std::string(usualContent))});
    } else {
      use(inside.contentColumn);
    }
  }
  for (const std::string& name : shape.spread) use(name);
  for (const auto& [old, name] : shape.renames) used.names.push_back({old});
  for (const UnitChange& change : shape.units) use(change.column);
  return used;
}

// What is wrong with the columns of one symbol hides nothing of the others.
void readSource(const ImportSource& source, const std::vector<ztb::Symbol>& symbols,
                const TableImportOptions& options, RecordImport& records, ProblemList& problems) {
  const TableShape shape = shapeOf(source);
  TableSource table = source.table;
  table.used = usedColumns(source, shape);
  const std::unique_ptr<TableReader> reader = shaped(source.open(table), shape);
  Header header(*reader, problems);
  if (!header.read()) return;
  std::vector<ImportTarget> targets;
  for (std::size_t spec = 0; spec < symbols.size(); ++spec) {
    const std::size_t before = problems.count();
    ImportTarget target =
        planTarget(inShape(source.symbols[spec], source.shape), symbols[spec], header, options);
    if (problems.count() == before) targets.push_back(std::move(target));
  }
  if (!targets.empty()) records.readRows(*reader, header.names(), targets);
}

}  // namespace

std::vector<std::string> importTables(ztb::Database& database,
                                      const std::vector<ImportSource>& sources,
                                      const TableImportOptions& options, RecordImport& records,
                                      ProblemList& problems) {
  SymbolMaker maker(database, sources, options.namesAlone);
  std::vector<std::vector<ztb::Symbol>> symbols;
  for (const ImportSource& source : sources) {
    std::vector<ztb::Symbol>& made = symbols.emplace_back();
    for (const SymbolSpec& spec : source.symbols) {
      made.push_back(maker.make(spec));
    }
  }
  for (std::size_t index = 0; index < sources.size(); ++index) {
    const ImportSource& source = sources[index];
    problems.attempt([&] { readSource(source, symbols[index], options, records, problems); });
  }
  return maker.lostRoles();
}

}  // namespace formats
