// A whole database in a file of many tables, as formats/database_export.h writes it: _symbols,
// _labels, and the tables that _symbols names.
#ifndef ZTB_FORMATS_TABLES_DATABASE_H_
#define ZTB_FORMATS_TABLES_DATABASE_H_

#include <memory>
#include <string>
#include <vector>

#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

// How the tables of such a file are found and opened.
struct TablesFile {
  std::string path;
  std::vector<std::string> tables;
  std::unique_ptr<TableReader> (*open)(const TableSource& source) = nullptr;
};

// Throws UsageError, with the tables that there are, where none is _symbols.
std::unique_ptr<DatabaseReader> openTablesDatabase(TablesFile file);

// Of tables that a database was written to, the one with records, where there is one only; none
// where there are more. Nothing for tables that no database was written to.
struct DatabaseTables {
  bool areDatabase = false;
  std::optional<std::size_t> onlyOne;
};
DatabaseTables databaseTables(const std::vector<std::string>& tables);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_DATABASE_H_
