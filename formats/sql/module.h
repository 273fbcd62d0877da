// Symbols as virtual tables of SQLite. The tables are read-only and copy nothing: a query walks
// over the records where they are, as its plan says.
#ifndef ZTB_FORMATS_SQL_MODULE_H_
#define ZTB_FORMATS_SQL_MODULE_H_

#include <memory>
#include <string>
#include <utility>

#include "formats/sql/sqlite_api.h"
#include "formats/sql/table.h"
#include "formats/sql/walk.h"

namespace formats {

// A walk over a table as SQLite holds it. `base` comes first.
struct SqlCursor {
  sqlite3_vtab_cursor base{};
  SqlWalk walk;
  const SqlLabels* labels;
  int dimension;
  // The first column with a number; none has one where it is beyond all.
  int firstValue;

  explicit SqlCursor(SqlTable& table);
};

// A table as SQLite holds it. `base` comes first.
struct SqlVirtualTable {
  sqlite3_vtab base{};
  std::shared_ptr<SqlDatabase> database;
  SqlTable table;
  // One that was closed, with its memory: each run of a query opens and closes one.
  std::unique_ptr<SqlCursor> spare;

  SqlVirtualTable(std::shared_ptr<SqlDatabase> from, int position)
      : database(std::move(from)), table(*database, position) {}
};

// Makes of what is just caught an error of SQLite, whose text goes to `message`.
int sqlFailure(char** message) noexcept;

// Runs `body`, and makes such an error of what it throws.
template <class Body>
int guardedSql(char** message, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return sqlFailure(message);
  }
}

// Gives a label as the result of a column. Without its length: SQLite would take it for a text that
// may lack its zero, and copy it for all who read it as a C string.
inline void giveSqlLabel(sqlite3_context* context, const char* label) {
  sqlite3_result_text(context, label, -1, SQLITE_STATIC);
}

// Declares the columns of the table, keys compared with case folded.
int declareTable(sqlite3* connection, const SqlTable& table);

// The functions of a module whose tables are SqlVirtualTables: all but those that make and find
// them. For a hidden column, one from `columnCount` on, nothing is given out and nothing pushed
// down.
sqlite3_module sqlModule();

// Adds the module `name` to a connection: `create virtual table t using NAME(POSITION)` makes the
// table of the symbol at this position.
int addSqlModule(sqlite3* connection, const std::string& name,
                 std::shared_ptr<SqlDatabase> database);

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_MODULE_H_
