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

// What the table of symbols tells: the symbols, which are added, and the labels, if it does.
struct Catalogue {
  std::vector<ReadSymbol> symbols;
  std::optional<ManifestEntry> labels;
};

Catalogue addSymbols(ztb::Database& database, DatabaseReader& reader, ProblemList& problems) {
  Catalogue catalogue;
  for (ManifestEntry& entry : reader.symbols(problems)) {
    if (isUniverse(entry)) {
      catalogue.labels = std::move(entry);
      continue;
    }
    try {
      const ztb::Symbol symbol = addSymbol(database, entry);
      catalogue.symbols.push_back({.entry = std::move(entry), .symbol = symbol});
    } catch (const ztb::Error& error) {
      problems.add(reader.place(entry), error.what());
    }
  }
  return catalogue;
}

// Tells where there are fewer rows than the table of symbols says; more may have been added by
// hand.
void requireCount(std::size_t count, const ManifestEntry& entry, const char* what,
                  const std::string& path, DatabaseReader& database, ProblemList& problems) {
  if (entry.records && count < *entry.records) {
    problems.add(path,
                 fmt::format("has {}, {} tells {}: it is cut short, or rows were taken out and "
                             "the number there not changed",
                             tool::counted(count, what), database.place(entry), *entry.records));
  }
}

void readLabels(DatabaseReader& database, const std::optional<ManifestEntry>& told,
                RecordImport& records, ProblemList& problems) {
  const std::unique_ptr<TableReader> reader = database.labels();
  if (!reader) {
    if (told && told->records.value_or(0) > 0) {
      problems.add(database.place(*told),
                   fmt::format("{} are told, and no _labels is there; with no number here they are "
                               "numbered as they come",
                               tool::counted(*told->records, "label")));
    }
    return;
  }
  if (!reader->next(problems) || reader->fields().size() != 1 ||
      !tool::sameFolded(reader->fields()[0].text, "label")) {
    problems.add(reader->place({.line = 1, .column = 1}), "the header is not label");
    return;
  }
  const std::size_t before = problems.count();
  const std::size_t count = records.readLabels(*reader);
  if (told && problems.count() == before) {
    requireCount(count, *told, "label", reader->path(), database, problems);
  }
}

void readRecords(DatabaseReader& database, const ReadSymbol& symbol, RecordImport& records,
                 ProblemList& problems) {
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
  const std::size_t before = problems.count();
  const std::size_t recordsBefore = records.recordCount();
  records.readRows(reader, columns, {target});
  if (problems.count() == before) {
    requireCount(records.recordCount() - recordsBefore, symbol.entry, "record", reader.path(),
                 database, problems);
  }
}

}  // namespace

void importDatabase(ztb::Database& database, DatabaseReader& reader, RecordImport& records,
                    ProblemList& problems) {
  const Catalogue catalogue = addSymbols(database, reader, problems);
  // A table that cannot be read hides nothing of the others.
  problems.attempt([&] { readLabels(reader, catalogue.labels, records, problems); });
  // Sets first, since the labels of others may be looked up in them.
  for (const bool sets : {true, false}) {
    for (const ReadSymbol& symbol : catalogue.symbols) {
      const bool isSet = symbol.entry.type == ztb::Type::set && symbol.symbol.dimension() == 1;
      if (symbol.entry.type != ztb::Type::alias && isSet == sets) {
        problems.attempt([&] { readRecords(reader, symbol, records, problems); });
      }
    }
  }
}

}  // namespace formats
