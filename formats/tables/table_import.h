// Makes sets, parameters and variables from plain tables, as the options --from, --set,
// --distinct-set, --parameter and --variable ask, and --wide, --rename and --dates before them.
//
// The name of a key column is kept as the role of its position. Over a set of another name it
// becomes an alias of that set, made in front of the symbol; where no set is named, the name alone
// is the domain.
#ifndef ZTB_FORMATS_TABLES_TABLE_IMPORT_H_
#define ZTB_FORMATS_TABLES_TABLE_IMPORT_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/shaped_reader.h"
#include "formats/table_source.h"
#include "formats/tables/record_import.h"
#include "formats/tables/symbol_spec.h"

namespace formats {

// A table and the symbols that are made from its rows.
struct ImportSource {
  TableSource table;
  std::function<std::unique_ptr<TableReader>(const TableSource& source)> open;
  TableShape shape;
  std::vector<SymbolSpec> symbols;
};

struct TableImportOptions {
  bool skipEmpty = false;
  // Whether positions without a set have their column's name as domain also beside one with a set.
  // The domains of a symbol are kept as checked ones only where a set or the universe is behind
  // each.
  bool namesAlone = true;
};

// Adds the symbols to the database in the order of sources, then reads the records. Throws
// UsageError for a symbol that cannot be made or a domain that is no one-dimensional set made
// before; what is wrong with a file goes to problems. Gives a text for each role that could not be
// kept.
std::vector<std::string> importTables(ztb::Database& database,
                                      const std::vector<ImportSource>& sources,
                                      const TableImportOptions& options, RecordImport& records,
                                      ProblemList& problems);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_TABLE_IMPORT_H_
