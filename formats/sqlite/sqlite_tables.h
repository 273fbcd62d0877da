// Tables and queries of SQLite files, and whole databases in them.
//
// A database has a strict table for each symbol: a text column for each position, then "text" or
// the values, with a unique index over the keys; _symbols and _labels beside. A file that is there
// is replaced as long as nothing but exports wrote to it. Values are reals,
// infinities and 1e300 among them; NULL is "na", and another NaN the text nan:0x... of its bits.
#ifndef ZTB_FORMATS_SQLITE_SQLITE_TABLES_H_
#define ZTB_FORMATS_SQLITE_SQLITE_TABLES_H_

#include <memory>
#include <string>

#include "formats/database_export.h"
#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

// The part is a table, a view, or a query, whose first word behind comments is "select", "with" or
// "values"; empty for the only table that there is.
std::unique_ptr<TableReader> openSqlite(const TableSource& source);
std::unique_ptr<TableWriter> makeSqlite(const TableTarget& target);
std::unique_ptr<DatabaseReader> openSqliteDatabase(const std::string& path);
void writeSqliteDatabase(const DatabaseExport& database);

// Stands in the definition of each table that is written, as a comment.
inline constexpr const char* exportMark = " written by ztb export ";

// Throws Failure where a file of this name has tables that no export wrote, which would be lost
// with it, or where a log stands beside it that would go over to the new file.
void requireReplaceableSqlite(const std::string& path);

}  // namespace formats

#endif  // ZTB_FORMATS_SQLITE_SQLITE_TABLES_H_
