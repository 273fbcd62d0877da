// SQLite as a C++ program uses it: one connection, prepared statements. Failures throw
// std::runtime_error with SQLite's text.
#ifndef ZTB_BENCH_SQLITE_H_
#define ZTB_BENCH_SQLITE_H_

#include <sqlite3.h>

#include <string>

#include "bench/data.h"

namespace bench {

inline constexpr const char* sqliteName = "SQLite";

class Sqlite {
 public:
  // A file, or ":memory:".
  explicit Sqlite(const std::string& file = ":memory:");
  ~Sqlite();
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;

  void execute(const std::string& sql);
  [[nodiscard]] sqlite3* connection() const { return connection_; }

  // Makes a table of three key columns and a value, keyed by numbers or by labels.
  void createNumberTable(const std::string& name);
  void createLabelTable(const std::string& name);
  // Adds the records [first, last) by numbers in key order, all by labels in the shuffled order.
  // The transaction is the caller's.
  void addByNumbers(const std::string& table, const Data& data, std::size_t first,
                    std::size_t last);
  void addByLabels(const std::string& table, const Data& data);

 private:
  sqlite3* connection_ = nullptr;
};

class Statement {
 public:
  Statement(const Sqlite& database, const std::string& sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // Parameters and columns count as SQLite counts them: from 1 and from 0. A text must live until
  // the statement has run.
  void bind(int parameter, int value) { sqlite3_bind_int(statement_, parameter, value); }
  void bind(int parameter, double value) { sqlite3_bind_double(statement_, parameter, value); }
  void bind(int parameter, const std::string& value) {
    sqlite3_bind_text(statement_, parameter, value.c_str(), static_cast<int>(value.size()),
                      SQLITE_STATIC);
  }
  // Whether there is a further row.
  bool step();
  void reset() { sqlite3_reset(statement_); }
  [[nodiscard]] int intAt(int column) { return sqlite3_column_int(statement_, column); }
  [[nodiscard]] const char* textAt(int column) {
    return reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  }
  [[nodiscard]] double doubleAt(int column) { return sqlite3_column_double(statement_, column); }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

// Databases in memory with table "supply" holding all records, shared by the contests that read.
Sqlite& filledByNumbers(const Data& data);
// The same, with an index on the first and the third column beside the one of the key.
Sqlite& filledWithIndex(const Data& data);
Sqlite& filledByLabels(const Data& data);

}  // namespace bench

#endif  // ZTB_BENCH_SQLITE_H_
