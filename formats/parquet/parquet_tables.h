// Tables in Parquet files, and whole databases in folders of them, through DuckDB.
//
// A database has a file for each symbol: the label columns, then "text" or the values; _symbols and
// _labels beside. Labels and texts that are no UTF-8 are spelled out. Values are doubles, special
// ones as databases have them. DuckDB writes equal numbers alike, so that -0 would become 0 and one
// NaN another one: where a column has such values, a column NAME (exact) behind all others has them
// as texts, and an empty text elsewhere.
#ifndef ZTB_FORMATS_PARQUET_PARQUET_TABLES_H_
#define ZTB_FORMATS_PARQUET_PARQUET_TABLES_H_

#include <memory>
#include <string>

#include "formats/database_export.h"
#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

std::unique_ptr<TableReader> openParquet(const TableSource& source);
// For a table that is made row by row; it goes out by columns when it is finished.
std::unique_ptr<TableWriter> makeParquet(const TableTarget& target);
// Writes the one symbol that is chosen, by columns.
void writeParquetSymbol(const DatabaseExport& database);

bool isParquetFolder(const std::string& path);
std::unique_ptr<DatabaseReader> openParquetFolder(const std::string& path);
void writeParquetFolder(const DatabaseExport& database);

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_PARQUET_TABLES_H_
