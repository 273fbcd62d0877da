// The table of symbols that an export leaves beside the records, so that an import finds the
// database as it was.
//
// A folder of exported data holds:
//   _symbols.csv  a row for each symbol, in order:
//                 symbol,type,dimension,domains,user_info,alias_of,text,records
//                 domains is a name for each position with commas between, "*" for the universe
//                 records is the number of records, of an alias those of its set; the last row, of
//                 the universe "*", has the number of labels, so that what was cut short is known
//   _labels.csv   under the header "label", the labels in the order of their numbers
//                 In a file of many tables, a column "tables" tells which ones a symbol has, with
//                 slashes between.
//   NAME.csv      for each symbol but aliases, the records: a header, then the key columns followed
//                 by text (a set), value (a parameter) or level to scale (a variable, an equation)
#ifndef ZTB_FORMATS_TABLES_MANIFEST_H_
#define ZTB_FORMATS_TABLES_MANIFEST_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/tables/problem_list.h"
#include "formats/tables/table_reader.h"
#include "formats/tables/table_writer.h"
#include "tools/files/exchange_file.h"

namespace formats {

struct ManifestEntry {
  std::string name;
  ztb::Type type = ztb::Type::set;
  std::vector<std::string> domains;
  int userInfo = 0;
  // The set that an alias stands for, "*" for the universe.
  std::string aliasOf;
  std::string text;
  // The tables of its records in a file of many.
  std::vector<std::string> tables;
  // How many records, or of the universe labels, there are; nothing where that is not told.
  std::optional<std::size_t> records;
  // Where the entry was read.
  TextPosition at;
};

std::string manifestPath(const std::string& folder);
std::string labelsPath(const std::string& folder);
std::string recordsPath(const std::string& folder, const std::string& symbol);

// A file of a folder that records go to, with its columns.
struct FolderFile {
  std::string path;
  std::vector<std::string> columns;
};

// Makes the folder of a table of symbols, and takes an older such table away: it is there again
// only when everything is. Throws Failure for a folder without one, which no export has made, that
// has such a file with other columns: it would be lost.
void beginFolder(const std::string& manifest, const std::vector<FolderFile>& files,
                 const std::function<std::unique_ptr<TableReader>(const std::string&)>& open);

// The entry of a symbol of a file.
ManifestEntry describe(const tool::ExchangeFile& file, const tool::FileSymbol& symbol);

// The entry that stands behind all others.
ManifestEntry universeEntry(const tool::ExchangeFile& file);
inline bool isUniverse(const ManifestEntry& entry) {
  return entry.name == "*";
}

// The table of symbols in a file of many tables, and an entry of it as a row; without the tables of
// its records in a folder.
TableHead manifestHead(std::size_t symbols);
void writeEntry(TableWriter& writer, const ManifestEntry& entry, bool withTables);

// Throws Failure if the table cannot be written.
void writeManifest(const std::string& folder, const std::vector<ManifestEntry>& entries);

// Reads the table, with or without columns of tables and of records; an older one has no numbers of
// records, and no entry of the universe. What is wrong with a row is reported, and the row left
// out.
std::vector<ManifestEntry> readManifest(TableReader& reader, ProblemList& problems);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_MANIFEST_H_
