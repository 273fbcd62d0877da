// Makes sets and parameters from plain tables, as the options --from, --set, --distinct-set and
// --parameter ask.
#ifndef ZTB_TOOLS_TABLES_TABLE_IMPORT_H_
#define ZTB_TOOLS_TABLES_TABLE_IMPORT_H_

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/tables/record_import.h"
#include "tools/tables/symbol_spec.h"

namespace tool {

// A file and the symbols that are made from its rows.
struct TableSource {
  std::string path;
  std::vector<SymbolSpec> symbols;
};

struct TableImportOptions {
  char separator = ',';
  bool skipEmpty = false;
};

// Adds the symbols to the database in the order of sources, then reads the records. Throws
// UsageError for a symbol that cannot be made or a domain that is no one-dimensional set made
// before; what is wrong with a file goes to problems.
void importTables(ztb::Database& database, const std::vector<TableSource>& sources,
                  const TableImportOptions& options, RecordImport& records, ProblemList& problems);

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_TABLE_IMPORT_H_
