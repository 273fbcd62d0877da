#include "formats/database_import.h"

#include <fmt/format.h>

#include <numeric>
#include <optional>
#include <ztb/column_names.hpp>

#include "formats/tables/domain_argument.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

struct ReadSymbol {
  ManifestEntry entry;
  ztb::Symbol symbol;
};

ztb::Symbol addSymbol(ztb::Database& database, const ManifestEntry& entry) {
  if (entry.type == ztb::Type::alias) {
    return database.addAlias(entry.name, database.symbol(entry.aliasOf), entry.text);
  }
  std::vector<ztb::DomainArgument> domains;
  for (const std::string& name : entry.domains) {
    domains.push_back(domainArgument(database, name));
  }
  return database.addSymbol(entry.name, entry.type, domains, entry.text, entry.userInfo);
}

std::vector<ReadSymbol> addSymbols(ztb::Database& database, DatabaseReader& reader,
                                   ProblemList& problems) {
  std::vector<ReadSymbol> symbols;
  for (ManifestEntry& entry : reader.symbols(problems)) {
    try {
      const ztb::Symbol symbol = addSymbol(database, entry);
      symbols.push_back({.entry = std::move(entry), .symbol = symbol});
    } catch (const ztb::Error& error) {
      problems.add(reader.place(entry), error.what());
    }
  }
  return symbols;
}

void readLabels(DatabaseReader& database, RecordImport& records, ProblemList& problems) {
  const std::unique_ptr<TableReader> reader = database.labels();
  if (!reader) {
    return;
  }
  if (!reader->next(problems) || reader->fields().size() != 1 ||
      !tool::sameFolded(reader->fields()[0].text, "label")) {
    problems.add(reader->place({.line = 1, .column = 1}), "the header is not label");
    return;
  }
  records.readLabels(*reader);
}

void readRecords(DatabaseReader& database, const ReadSymbol& symbol, RecordImport& records,
                 ProblemList& problems) {
  if (!records.checksDomains()) {
    if (const std::optional<std::size_t> count = database.fill(symbol.entry, symbol.symbol)) {
      records.countFilled(*count);
      return;
    }
  }
  const std::unique_ptr<TableReader> opened = database.records(symbol.entry);
  TableReader& reader = *opened;
  const std::size_t keyCount = symbol.entry.domains.size();
  const std::size_t contentCount = ztb::contentColumns(symbol.entry.type).size();
  if (!reader.next(problems)) {
    problems.add(reader.path(), "has no header line");
    return;
  }
  if (reader.fields().size() != keyCount + contentCount) {
    problems.add(reader.place(reader.position()),
                 fmt::format("has {}, expected {} for {} {} with {}",
                             tool::counted(reader.fields().size(), "field"),
                             keyCount + contentCount, tool::typeWord(symbol.entry.type),
                             symbol.entry.name, tool::counted(keyCount, "position")));
    return;
  }
  std::vector<std::string> columns;
  for (const TableField& field : reader.fields()) {
    columns.emplace_back(field.text);
  }
  ImportTarget target{.symbol = symbol.symbol,
                      .keyColumns = std::vector<std::size_t>(keyCount),
                      .valueColumns = {},
                      .valueFields = {},
                      .defaults = {},
                      .textColumn = std::nullopt,
                      .distinct = false,
                      .skipEmpty = false};
  std::iota(target.keyColumns.begin(), target.keyColumns.end(), std::size_t{0});
  if (symbol.entry.type == ztb::Type::set) {
    target.textColumn = keyCount;
  } else {
    target.valueColumns.resize(contentCount);
    std::iota(target.valueColumns.begin(), target.valueColumns.end(), keyCount);
    target.valueFields.resize(contentCount);
    std::iota(target.valueFields.begin(), target.valueFields.end(), std::size_t{0});
  }
  records.readRows(reader, columns, {target});
}

}  // namespace

void importDatabase(ztb::Database& database, DatabaseReader& reader, RecordImport& records,
                    ProblemList& problems) {
  const std::vector<ReadSymbol> symbols = addSymbols(database, reader, problems);
  readLabels(reader, records, problems);
  // Sets first, since the labels of others may be looked up in them.
  for (const bool sets : {true, false}) {
    for (const ReadSymbol& symbol : symbols) {
      const bool isSet = symbol.entry.type == ztb::Type::set && symbol.symbol.dimension() == 1;
      if (symbol.entry.type != ztb::Type::alias && isSet == sets) {
        readRecords(reader, symbol, records, problems);
      }
    }
  }
}

}  // namespace formats
