// The C functions of ztb/sql.h.

#include <ztb/sql.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/case_folding.hpp>

#include "formats/sql/module.h"

#define SQL_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

std::string quoted(std::string_view name) {
  std::string text = "\"";
  for (const char c : name) {
    text += c;
    if (c == '"') {
      text += c;
    }
  }
  return text + '"';
}

int fail(char* message, int messageSize, std::string_view text) {
  if (message != nullptr && messageSize > 0) {
    const std::size_t size = std::min(text.size(), static_cast<std::size_t>(messageSize) - 1);
    text.copy(message, size);
    message[size] = '\0';
  }
  return 0;
}

// Runs `body`, which throws what is wrong.
template <class Body>
int guarded(char* message, int messageSize, Body&& body) {
  try {
    body();
    return 1;
  } catch (const std::bad_alloc&) {
    return fail(message, messageSize, "Out of memory");
  } catch (const std::exception& error) {
    return fail(message, messageSize, error.what());
  }
}

}  // namespace

namespace formats {

struct Finalize {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

}  // namespace formats
struct ztbSqlRec {
  ztbSqlRec() {
    // One thread at a time is the caller's part, and locks take a third of the time of reading
    // rows.
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(":memory:", &connection, flags, nullptr) != SQLITE_OK) {
      const std::string text = sqlite3_errmsg(connection);
      sqlite3_close(connection);
      throw ztb::Error("ztbSqlOpen", text);
    }
  }
  ztbSqlRec(const ztbSqlRec&) = delete;
  ztbSqlRec& operator=(const ztbSqlRec&) = delete;
  ~ztbSqlRec() { sqlite3_close_v2(connection); }

  void run(const std::string& text) const {
    if (sqlite3_exec(connection, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
      throw ztb::Error("ztbSqlAttach", sqlite3_errmsg(connection));
    }
  }

  void attach(const std::string& schema, std::shared_ptr<formats::SqlDatabase> database) {
    if (const std::string name = ztb::folded(schema); name == "main" || name == "temp") {
      throw ztb::Error("ztbSqlAttach",
                       "a database cannot be called " + schema + ", which is a name of SQLite's");
    }
    const std::string module = "ztb_" + std::to_string(databases.size());
    run("attach ':memory:' as " + quoted(schema));
    try {
      if (formats::addSqlModule(connection, module, database) != SQLITE_OK) {
        throw ztb::Error("ztbSqlAttach", sqlite3_errmsg(connection));
      }
      int count = 0;
      ztb::detail::require(
          c__ztbinfo(database->handle, ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS, &count, nullptr, nullptr),
          database->handle, "ztbInfo");
      run("begin");
      for (int position = formats::SqlTable::universe; position < count; ++position) {
        addTable(schema, module, *database, position);
      }
      run("commit");
    } catch (...) {
      sqlite3_exec(connection, "rollback", nullptr, nullptr, nullptr);
      sqlite3_exec(connection, ("detach " + quoted(schema)).c_str(), nullptr, nullptr, nullptr);
      throw;
    }
    schemas.push_back(schema);
    databases[ztb::folded(schema)] = std::move(database);
  }

  // What helps with the error of SQLite just now: the names of databases, where a table is sought
  // in one that there is not.
  [[nodiscard]] std::string hint() const {
    const std::string text = sqlite3_errmsg(connection);
    constexpr std::string_view begin = "no such table: ";
    const std::size_t point = text.find('.');
    if (!text.starts_with(begin) || point == std::string::npos ||
        databases.contains(ztb::folded(text.substr(begin.size(), point - begin.size())))) {
      return "";
    }
    std::string names;
    for (const std::string& schema : schemas) names += (names.empty() ? "" : ", ") + schema;
    return "; the databases are called " + names;
  }

  sqlite3* connection = nullptr;
  std::vector<std::string> schemas;  // in the order of their coming
  std::map<std::string, std::shared_ptr<formats::SqlDatabase>> databases;  // by folded name

 private:
  // Names that begin with "sqlite_" are SQLite's own.
  void addTable(const std::string& schema, const std::string& module,
                const formats::SqlDatabase& database, int position) const {
    std::string name = "*";
    if (position != formats::SqlTable::universe) {
      void* symbol = nullptr;
      ztb::detail::require(c__ztbgetsymbolbynumber(database.handle, position, &symbol),
                           database.handle, "ztbGetSymbolByNumber");
      name = ztb::Symbol(database.handle, symbol).name().str();
    }
    const bool isReserved = ztb::folded(name).starts_with("sqlite_");
    run("create virtual table " + quoted(schema) + '.' + quoted(isReserved ? "ztb_" + name : name) +
        " using " + module + '(' + std::to_string(position) + ')');
  }
};

struct ztbSqlRowsRec {
  formats::Statement statement;
  std::string message;
};

SQL_EXPORT int ztbSqlOpen(ztbSql** sql, char* message, int messageSize) {
  *sql = nullptr;
  return guarded(message, messageSize, [&] { *sql = new ztbSqlRec; });
}

SQL_EXPORT int ztbSqlAttach(ztbSql* sql, const char* schema, ztbRec* database, char* message,
                            int messageSize) {
  return guarded(message, messageSize,
                 [&] { sql->attach(schema, std::make_shared<formats::SqlDatabase>(database)); });
}

SQL_EXPORT int ztbSqlAttachFile(ztbSql* sql, const char* schema, const char* path, char* message,
                                int messageSize) {
  return guarded(message, messageSize, [&] {
    ztb::Database database;
    // Files have their records in order, which the vector takes and walks best.
    database.selectStore(ztb::Store::vector);
    database.openFile(path);
    sql->attach(schema, std::make_shared<formats::SqlDatabase>(std::move(database)));
  });
}

SQL_EXPORT ztbRec* ztbSqlDatabase(ztbSql* sql, const char* schema) {
  const auto found = sql->databases.find(ztb::folded(schema));
  return found == sql->databases.end() ? nullptr : found->second->handle;
}

SQL_EXPORT int ztbSqlQuery(ztbSqlRows** rows, ztbSql* sql, const char* query, char* message,
                           int messageSize) {
  *rows = nullptr;
  return guarded(message, messageSize, [&] {
    const auto prepare = [&](const char* text, const char** behind) {
      sqlite3_stmt* statement = nullptr;
      if (sqlite3_prepare_v2(sql->connection, text, -1, &statement, behind) != SQLITE_OK) {
        throw ztb::Error("ztbSqlQuery", sqlite3_errmsg(sql->connection) + sql->hint());
      }
      return formats::Statement(statement);
    };
    const char* behind = nullptr;
    formats::Statement statement = prepare(query, &behind);
    if (statement == nullptr || sqlite3_column_count(statement.get()) == 0 ||
        sqlite3_stmt_readonly(statement.get()) == 0) {
      throw ztb::Error("ztbSqlQuery", "a query that gives rows is expected, as select does");
    }
    if (prepare(behind, nullptr) != nullptr) {
      throw ztb::Error("ztbSqlQuery", "one query is expected, another stands behind it");
    }
    *rows = new ztbSqlRowsRec{std::move(statement), {}};
  });
}

SQL_EXPORT void ztbSqlAsk(ztbSql* sql, int (*ask)(void* owner), void* owner) {
  constexpr int stepsBetween = 10000;  // of SQLite's machine
  sqlite3_progress_handler(sql->connection, stepsBetween, ask, owner);
}

SQL_EXPORT int ztbSqlParameterCount(const ztbSqlRows* rows) {
  return sqlite3_bind_parameter_count(rows->statement.get());
}

SQL_EXPORT int ztbSqlBindText(ztbSqlRows* rows, int number, const char* text) {
  return sqlite3_bind_text(rows->statement.get(), number, text, -1, SQLITE_TRANSIENT) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlBindReal(ztbSqlRows* rows, int number, double value) {
  return sqlite3_bind_double(rows->statement.get(), number, value) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlBindInteger(ztbSqlRows* rows, int number, long long value) {
  return sqlite3_bind_int64(rows->statement.get(), number, value) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlBindNull(ztbSqlRows* rows, int number) {
  return sqlite3_bind_null(rows->statement.get(), number) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlBindChars(ztbSqlRows* rows, int number, const char* chars, int size) {
  // Without a place there would be a null.
  return sqlite3_bind_text(rows->statement.get(), number, size == 0 ? "" : chars, size,
                           SQLITE_TRANSIENT) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlBindBlob(ztbSqlRows* rows, int number, const void* bytes, int size) {
  return sqlite3_bind_blob(rows->statement.get(), number, size == 0 ? "" : bytes, size,
                           SQLITE_TRANSIENT) == SQLITE_OK;
}

SQL_EXPORT int ztbSqlNext(ztbSqlRows* rows) {
  if (!rows->message.empty()) {
    return -1;
  }
  const int result = sqlite3_step(rows->statement.get());
  if (result == SQLITE_ROW || result == SQLITE_DONE) {
    return result == SQLITE_ROW ? 1 : 0;
  }
  rows->message = sqlite3_errmsg(sqlite3_db_handle(rows->statement.get()));
  return -1;
}

SQL_EXPORT const char* ztbSqlMessage(const ztbSqlRows* rows) {
  return rows->message.c_str();
}

SQL_EXPORT int ztbSqlColumnCount(const ztbSqlRows* rows) {
  return sqlite3_column_count(rows->statement.get());
}

SQL_EXPORT const char* ztbSqlColumnName(const ztbSqlRows* rows, int column) {
  const char* name = sqlite3_column_name(rows->statement.get(), column);
  return name == nullptr ? "" : name;
}

SQL_EXPORT int ztbSqlType(const ztbSqlRows* rows, int column) {
  switch (sqlite3_column_type(rows->statement.get(), column)) {
    case SQLITE_INTEGER:
      return ZTB_SQL_INTEGER;
    case SQLITE_FLOAT:
      return ZTB_SQL_REAL;
    case SQLITE_NULL:
      return ZTB_SQL_NULL;
    case SQLITE_BLOB:
      return ZTB_SQL_BLOB;
    default:
      return ZTB_SQL_TEXT;
  }
}

SQL_EXPORT long long ztbSqlInteger(const ztbSqlRows* rows, int column) {
  return sqlite3_column_int64(rows->statement.get(), column);
}

SQL_EXPORT double ztbSqlReal(const ztbSqlRows* rows, int column) {
  return sqlite3_column_double(rows->statement.get(), column);
}

SQL_EXPORT const char* ztbSqlText(const ztbSqlRows* rows, int column) {
  const auto* text = sqlite3_column_text(rows->statement.get(), column);
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

SQL_EXPORT const void* ztbSqlBlob(const ztbSqlRows* rows, int column) {
  return sqlite3_column_blob(rows->statement.get(), column);
}

SQL_EXPORT int ztbSqlSize(const ztbSqlRows* rows, int column) {
  return sqlite3_column_bytes(rows->statement.get(), column);
}

SQL_EXPORT void* ztbSqlConnection(ztbSql* sql) {
  return sql->connection;
}

SQL_EXPORT void ztbSqlRowsClose(ztbSqlRows** rows) {
  delete std::exchange(*rows, nullptr);
}

SQL_EXPORT void ztbSqlClose(ztbSql** sql) {
  delete std::exchange(*sql, nullptr);
}
