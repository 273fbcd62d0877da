#include "formats/database_export.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <ztb/column_names.hpp>

#include "formats/csv_records.h"
#include "formats/tables/manifest.h"
#include "tools/files/record_walk.h"
#include "tools/files/system_files.h"

namespace formats {

TableHead headOf(const tool::FileSymbol& symbol) {
  TableHead head{.name = symbol.name,
                 .columns = {},
                 .rows = symbol.recordCount,
                 .keys = static_cast<std::size_t>(symbol.dimension)};
  for (const std::string& name :
       ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol))) {
    head.columns.push_back({.name = name, .kind = ColumnKind::label});
  }
  const bool isSet = symbol.type == ztb::Type::set;
  for (const std::string& name : ztb::contentColumns(symbol.type)) {
    head.columns.push_back({.name = name, .kind = isSet ? ColumnKind::text : ColumnKind::number});
  }
  return head;
}

std::vector<FolderFile> filesOf(const DatabaseExport& database,
                                std::string (*pathOf)(const std::string& folder,
                                                      const std::string& symbol)) {
  std::vector<FolderFile> files;
  for (const tool::FileSymbol* symbol : database.symbols) {
    if (symbol->isAlias()) continue;
    files.push_back({.path = pathOf(database.path, symbol->name), .columns = {}});
    for (const TableColumn& column : headOf(*symbol).columns) {
      files.back().columns.push_back(column.name);
    }
  }
  return files;
}

std::size_t writeRecords(TableWriter& writer, const tool::ExchangeFile& file,
                         const tool::FileSymbol& symbol, tool::Progress& progress) {
  CsvWriter* csv = writer.csv();
  if (csv != nullptr && writesInBlocks(*csv, symbol)) {
    return writeCsvRecords(*csv, file, symbol, progress);
  }
  std::size_t records = 0;
  progress.expect(symbol.recordCount);
  const bool isSet = symbol.type == ztb::Type::set;
  for (tool::RecordWalk record(file, symbol); record.next();) {
    for (const int key : record.keys()) {
      writer.label(file.label(key));
    }
    if (isSet) {
      writer.text(record.text());
    } else {
      for (const double value : record.values()) {
        writer.number(value);
      }
    }
    writer.endRow();
    progress.count(++records);
  }
  return records;
}

void endTable(TableWriter& writer, const std::string& name, tool::Progress& progress) {
  if (const std::string_view work = writer.ending(); !work.empty()) {
    progress.step(fmt::format("{} {}", work, name));
  }
  writer.end();
}

void finishTables(TableWriter& writer, const std::string& path, tool::Progress& progress) {
  progress.step("writing " + path);
  const std::string file = writer.growingFile();
  if (file.empty()) return writer.finish();
  const auto began = std::chrono::steady_clock::now();
  const tool::Progress::Detail detail(progress, [&]() -> std::string {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(tool::pathOf(file), error);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - began;
    return error ? "" : tool::bytesText(size, passed.count());
  });
  writer.finish();
}

namespace {

void writeLabels(TableWriter& writer, const tool::ExchangeFile& file) {
  writer.begin({.name = "_labels",
                .columns = {{.name = "label", .kind = ColumnKind::label}},
                .rows = static_cast<std::size_t>(file.labelCount()),
                .keys = 0,
                .exact = true});
  for (int number = 1; number <= file.labelCount(); ++number) {
    writer.label(file.label(number));
    writer.endRow();
  }
  writer.end();
}

}  // namespace

void writeTables(TableWriter& writer, const DatabaseExport& database) {
  std::vector<ManifestEntry> entries;
  for (const tool::FileSymbol* symbol : database.symbols) {
    ManifestEntry& entry = entries.emplace_back(describe(database.file, *symbol));
    if (!symbol->isAlias()) {
      entry.tables = writer.namesFor(symbol->name, symbol->recordCount);
    }
  }
  entries.push_back(universeEntry(database.file));
  const TableHead head = manifestHead(entries.size());
  writer.begin(head);
  for (const ManifestEntry& entry : entries) {
    writeEntry(writer, entry, true);
  }
  writer.end();
  database.progress.step("writing labels");
  writeLabels(writer, database.file);
  for (const tool::FileSymbol* symbol : database.symbols) {
    if (symbol->isAlias()) {
      continue;
    }
    database.progress.step("writing " + symbol->name);
    TableHead table = headOf(*symbol);
    table.exact = true;
    writer.begin(table);
    database.records += writeRecords(writer, database.file, *symbol, database.progress);
    endTable(writer, symbol->name, database.progress);
  }
  finishTables(writer, database.path, database.progress);
}

}  // namespace formats
