// The files of the contests over exchange files: the records stand in a hundred symbols, each with
// an equal share of them in key order.
#ifndef ZTB_BENCH_EXCHANGE_FILES_H_
#define ZTB_BENCH_EXCHANGE_FILES_H_

#include <cstddef>
#include <string>

#include "bench/data.h"
#include "bench/database.h"
#include "bench/duckdb.h"
#include "bench/hdf5_file.h"
#include "bench/sqlite.h"

namespace bench {

inline constexpr std::size_t symbolCount = 100;
// The symbol that is read alone.
inline constexpr std::size_t oneSymbol = 50;

std::string symbolName(std::size_t symbol);

// The records [first, last) of a symbol.
struct Share {
  std::size_t first;
  std::size_t last;
};
Share shareOf(std::size_t symbol, const Data& data);

// A database that holds the labels and all symbols, ready to be written; shared by the contests.
Database& exchangeDatabase(const Data& data);

// Write a whole file, which must not exist for SQLite.
void writeSqliteFile(const std::string& file, const Data& data);
void writeHdf5File(const std::string& file, const Data& data);
// From a database of DuckDB's in memory that holds the same tables as the files.
Duckdb& exchangeDuckdb(const Data& data);
void writeDuckdbFile(Duckdb& database, const std::string& file);

// Paths of written files that hold the data; written at the first use for a record count.
struct ExchangeFiles {
  std::string rxf;
  std::string sqlite;
  std::string hdf5;
  std::string duckdb;  // no file where DuckDB is not there
};
const ExchangeFiles& exchangeFiles(const Data& data);

}  // namespace bench

#endif  // ZTB_BENCH_EXCHANGE_FILES_H_
