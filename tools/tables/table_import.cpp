#include "tools/tables/table_import.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <optional>
#include <ranges>

#include "tools/tables/csv_reader.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// The domain of a key column: the named set, or the set of the column's name if one was made
// before.
ztb::DomainArgument domainOf(const ztb::Database& database, const SymbolSpec& spec,
                             const KeySpec& key) {
  const bool named = key.domain.has_value();
  const std::string& name = named ? *key.domain : key.column;
  if (name == "*") {
    return {"*"};
  }
  const std::optional<ztb::Symbol> set = database.findSymbol(name);
  if (set && set->type() == ztb::Type::set && set->dimension() == 1) {
    return {*set};
  }
  if (named) {
    throw UsageError(
        fmt::format("{}: domain {} is no one-dimensional set made before", spec.source, name));
  }
  return {"*"};
}

ztb::Symbol makeSymbol(ztb::Database& database, const SymbolSpec& spec) {
  std::vector<ztb::DomainArgument> domains;
  for (const KeySpec& key : spec.keys) {
    domains.push_back(domainOf(database, spec, key));
  }
  const ztb::Type type = spec.kind == SpecKind::parameter ? ztb::Type::parameter : ztb::Type::set;
  try {
    return database.addSymbol(spec.name, type, domains, spec.text);
  } catch (const ztb::Error& error) {
    throw UsageError(fmt::format("{}: {}", spec.source, error.what()));
  }
}

// Finds columns by name in the header of one file: as written, else with the case of letters
// folded.
class Header {
 public:
  Header(CsvReader& reader, ProblemList& problems) : reader_(reader), problems_(problems) {
    read_ = reader.next(problems);
    if (!read_) {
      problems.add(reader.path(), {}, "has no header line");
      return;
    }
    position_ = reader.position();
    for (const CsvField& field : reader.fields()) {
      names_.emplace_back(field.text);
    }
  }

  [[nodiscard]] bool read() const { return read_; }
  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

  // The place of a column; reported, and 0, if there is none or more than one.
  std::size_t find(const std::string& name) {
    auto found = matching([&](const std::string& other) { return other == name; });
    if (found.empty()) {
      found = matching([&](const std::string& other) { return sameFolded(other, name); });
    }
    if (found.size() != 1) {
      problems_.add(
          reader_.path(), position_,
          fmt::format("{} {}; the columns are {}",
                      found.empty() ? "no column" : "more than one column", inQuotes(name),
                      fmt::join(names_ | std::views::transform(shortened), ", ")));
      return 0;
    }
    return found.front();
  }

 private:
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

  CsvReader& reader_;
  ProblemList& problems_;
  bool read_ = false;
  TextPosition position_;
  std::vector<std::string> names_;
};

ImportTarget planTarget(const SymbolSpec& spec, const ztb::Symbol& symbol, Header& header,
                        const TableImportOptions& options) {
  ImportTarget target{.symbol = symbol,
                      .keyColumns = {},
                      .valueColumns = {},
                      .textColumn = std::nullopt,
                      .distinct = spec.kind == SpecKind::distinctSet,
                      .skipEmpty = options.skipEmpty && spec.kind == SpecKind::parameter};
  for (const KeySpec& key : spec.keys) {
    target.keyColumns.push_back(header.find(key.column));
  }
  if (spec.kind == SpecKind::parameter) {
    target.valueColumns.push_back(header.find(spec.contentColumn));
  } else if (!spec.contentColumn.empty()) {
    target.textColumn = header.find(spec.contentColumn);
  }
  return target;
}

}  // namespace

void importTables(ztb::Database& database, const std::vector<TableSource>& sources,
                  const TableImportOptions& options, RecordImport& records, ProblemList& problems) {
  std::vector<std::vector<ztb::Symbol>> symbols;
  for (const TableSource& source : sources) {
    std::vector<ztb::Symbol>& made = symbols.emplace_back();
    for (const SymbolSpec& spec : source.symbols) {
      made.push_back(makeSymbol(database, spec));
    }
  }
  for (std::size_t index = 0; index < sources.size(); ++index) {
    CsvReader reader(sources[index].path, options.separator);
    Header header(reader, problems);
    if (!header.read()) {
      continue;
    }
    const std::size_t before = problems.count();
    std::vector<ImportTarget> targets;
    for (std::size_t spec = 0; spec < symbols[index].size(); ++spec) {
      targets.push_back(
          planTarget(sources[index].symbols[spec], symbols[index][spec], header, options));
    }
    if (problems.count() == before) {
      records.readRows(reader, header.names(), targets);
    }
  }
}

}  // namespace tool
