// The table of symbols that an export leaves beside the records, so that an import finds the
// database as it was.
//
// A folder of exported data holds:
//   _symbols.csv  a row for each symbol, in order:
//                 symbol,type,dimension,domains,user_info,alias_of,text
//                 domains is a name for each position with commas between, "*" for the universe
//   _labels.csv   under the header "label", the labels in the order of their numbers
//   NAME.csv      for each symbol but aliases, the records: a header, then the key columns followed
//                 by text (a set), value (a parameter) or level to scale (a variable, an equation)
#ifndef ZTB_TOOLS_TABLES_MANIFEST_H_
#define ZTB_TOOLS_TABLES_MANIFEST_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tools/files/exchange_file.h"
#include "tools/tables/problem_list.h"

namespace tool {

struct ManifestEntry {
  std::string name;
  ztb::Type type = ztb::Type::set;
  std::vector<std::string> domains;
  int userInfo = 0;
  // The set that an alias stands for, "*" for the universe.
  std::string aliasOf;
  std::string text;
  // Where the entry was read.
  TextPosition at;
};

std::filesystem::path manifestPath(const std::filesystem::path& folder);
std::filesystem::path labelsPath(const std::filesystem::path& folder);
std::filesystem::path recordsPath(const std::filesystem::path& folder, const std::string& symbol);

// The entry of a symbol of a file.
ManifestEntry describe(const ExchangeFile& file, const FileSymbol& symbol);

// Throws Failure if the table cannot be written.
void writeManifest(const std::filesystem::path& folder, const std::vector<ManifestEntry>& entries);

// Reads the table. What is wrong with a row is reported, and the row left out. Throws Failure if
// there is no table to read.
std::vector<ManifestEntry> readManifest(const std::filesystem::path& folder, ProblemList& problems);

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_MANIFEST_H_
