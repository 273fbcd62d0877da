#include "tools/tables/folder_import.h"

#include <fmt/format.h>

#include <filesystem>
#include <numeric>
#include <optional>
#include <ztb/column_names.hpp>

#include "tools/tables/csv_reader.h"
#include "tools/tables/domain_argument.h"
#include "tools/tables/manifest.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct FolderSymbol {
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

std::vector<FolderSymbol> addSymbols(ztb::Database& database, const std::filesystem::path& folder,
                                     ProblemList& problems) {
  std::vector<FolderSymbol> symbols;
  for (ManifestEntry& entry : readManifest(folder, problems)) {
    try {
      const ztb::Symbol symbol = addSymbol(database, entry);
      symbols.push_back({.entry = std::move(entry), .symbol = symbol});
    } catch (const ztb::Error& error) {
      problems.add(manifestPath(folder).string(), entry.at, error.what());
    }
  }
  return symbols;
}

void readLabels(const std::filesystem::path& folder, RecordImport& records, ProblemList& problems) {
  const std::filesystem::path path = labelsPath(folder);
  if (!std::filesystem::exists(path)) {
    return;
  }
  CsvReader reader(path.string(), ',');
  if (!reader.next(problems) || reader.fields().size() != 1 ||
      !sameFolded(reader.fields()[0].text, "label")) {
    problems.add(reader.path(), {.line = 1, .column = 1}, "the header is not label");
    return;
  }
  records.readLabels(reader);
}

void readRecords(const std::filesystem::path& folder, const FolderSymbol& symbol,
                 RecordImport& records, ProblemList& problems) {
  CsvReader reader(recordsPath(folder, symbol.entry.name).string(), ',');
  const std::size_t keyCount = symbol.entry.domains.size();
  const std::size_t contentCount = ztb::contentColumns(symbol.entry.type).size();
  if (!reader.next(problems)) {
    problems.add(reader.path(), {}, "has no header line");
    return;
  }
  if (reader.fields().size() != keyCount + contentCount) {
    problems.add(
        reader.path(), reader.position(),
        fmt::format("has {}, expected {} for {} {} with {}",
                    counted(reader.fields().size(), "field"), keyCount + contentCount,
                    typeWord(symbol.entry.type), symbol.entry.name, counted(keyCount, "position")));
    return;
  }
  std::vector<std::string> columns;
  for (const CsvField& field : reader.fields()) {
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

void importFolder(ztb::Database& database, const std::string& folder, RecordImport& records,
                  ProblemList& problems) {
  const std::vector<FolderSymbol> symbols = addSymbols(database, folder, problems);
  readLabels(folder, records, problems);
  // Sets first, since the labels of others may be looked up in them.
  for (const bool sets : {true, false}) {
    for (const FolderSymbol& symbol : symbols) {
      const bool isSet = symbol.entry.type == ztb::Type::set && symbol.symbol.dimension() == 1;
      if (symbol.entry.type != ztb::Type::alias && isSet == sets) {
        readRecords(folder, symbol, records, problems);
      }
    }
  }
}

}  // namespace tool
