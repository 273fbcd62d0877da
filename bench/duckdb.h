// DuckDB in memory as a C++ program uses it: one connection on one thread, appenders and prepared
// statements. Its library is opened at run time. Failures throw std::runtime_error with its text.
#ifndef ZTB_BENCH_DUCKDB_H_
#define ZTB_BENCH_DUCKDB_H_

#include <string>

#include "bench/contest.h"
#include "bench/data.h"

namespace bench {

inline constexpr const char* duckdbName = "DuckDB";

class Duckdb {
 public:
  // Whether the environment variable ZTB_DUCKDB names the library, or its folder, and it opens.
  static bool isThere();

  Duckdb();
  ~Duckdb();
  Duckdb(const Duckdb&) = delete;
  Duckdb& operator=(const Duckdb&) = delete;

  void execute(const std::string& sql);

  // Makes a table of three key columns and a value: of numbers, without an index, or of labels,
  // with the one of its key.
  void createNumberTable(const std::string& name);
  void createLabelTable(const std::string& name);
  // Adds the records [first, last) by numbers in key order, all by labels in the shuffled order.
  void addByNumbers(const std::string& table, const Data& data, std::size_t first,
                    std::size_t last);
  void addByLabels(const std::string& table, const Data& data);
  void addLabels(const Data& data);

 private:
  friend class DuckdbQuery;
  void* database_ = nullptr;
  void* connection_ = nullptr;
};

// A prepared query for one column of doubles.
class DuckdbQuery {
 public:
  DuckdbQuery(const Duckdb& database, const std::string& sql);
  ~DuckdbQuery();
  DuckdbQuery(const DuckdbQuery&) = delete;
  DuckdbQuery& operator=(const DuckdbQuery&) = delete;

  // Parameters count from 1.
  void bind(int parameter, int value);
  void bind(int parameter, const std::string& value);
  // Reads all rows of the result.
  double sum();

 private:
  void* statement_ = nullptr;
};

// The contest, with DuckDB as one more rival where its library is there.
Contest withDuckdb(Contest contest, Measured run);

// Databases in memory with table "supply" holding all records, shared by the contests that read.
Duckdb& duckdbByNumbers(const Data& data);
Duckdb& duckdbByLabels(const Data& data);

}  // namespace bench

#endif  // ZTB_BENCH_DUCKDB_H_
