#include "bench/sqlite.h"

#include <memory>
#include <stdexcept>

#include "bench/contest.h"

namespace bench {
namespace {

[[noreturn]] void fail(sqlite3* connection, const std::string& what) {
  throw std::runtime_error("SQLite: " + what + ": " + sqlite3_errmsg(connection));
}

std::string insertInto(const std::string& table) {
  return "INSERT INTO " + table + " VALUES(?1, ?2, ?3, ?4)";
}

std::unique_ptr<Sqlite> databaseByNumbers(const Data& data) {
  auto database = std::make_unique<Sqlite>();
  database->createNumberTable("supply");
  database->execute("BEGIN");
  database->addByNumbers("supply", data, 0, data.size());
  database->execute("COMMIT");
  return database;
}

}  // namespace

Sqlite::Sqlite(const std::string& file) {
  if (sqlite3_open(file.c_str(), &connection_) != SQLITE_OK) {
    fail(connection_, "cannot open " + file);
  }
}

Sqlite::~Sqlite() {
  sqlite3_close(connection_);
}

void Sqlite::execute(const std::string& sql) {
  if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail(connection_, sql);
  }
}

void Sqlite::createNumberTable(const std::string& name) {
  execute("CREATE TABLE " + name +
          "(plant INTEGER, customer INTEGER, week INTEGER, value REAL,"
          " PRIMARY KEY(plant, customer, week)) WITHOUT ROWID");
}

void Sqlite::createLabelTable(const std::string& name) {
  execute("CREATE TABLE " + name +
          "(plant TEXT, customer TEXT, week TEXT, value REAL,"
          " PRIMARY KEY(plant, customer, week)) WITHOUT ROWID");
}

void Sqlite::addByNumbers(const std::string& table, const Data& data, std::size_t first,
                          std::size_t last) {
  Statement insert(*this, insertInto(table));
  for (std::size_t i = first; i < last; ++i) {
    for (std::size_t d = 0; d < dimension; ++d) {
      insert.bind(static_cast<int>(d) + 1, data.keys[i][d]);
    }
    insert.bind(dimension + 1, data.values[i]);
    insert.step();
    insert.reset();
  }
}

void Sqlite::addByLabels(const std::string& table, const Data& data) {
  Statement insert(*this, insertInto(table));
  for (const LabelledRecord& record : data.shuffled) {
    for (std::size_t d = 0; d < dimension; ++d) {
      insert.bind(static_cast<int>(d) + 1, *record.labels[d]);
    }
    insert.bind(dimension + 1, record.value);
    insert.step();
    insert.reset();
  }
}

Statement::Statement(const Sqlite& database, const std::string& sql) {
  if (sqlite3_prepare_v2(database.connection(), sql.c_str(), -1, &statement_, nullptr) !=
      SQLITE_OK) {
    fail(database.connection(), sql);
  }
}

Statement::~Statement() {
  sqlite3_finalize(statement_);
}

bool Statement::step() {
  const int status = sqlite3_step(statement_);
  if (status != SQLITE_ROW && status != SQLITE_DONE) {
    fail(sqlite3_db_handle(statement_), sqlite3_sql(statement_));
  }
  return status == SQLITE_ROW;
}

Sqlite& filledByNumbers(const Data& data) {
  static Shared<Sqlite> shared;
  return shared.get(data, databaseByNumbers);
}

Sqlite& filledWithIndex(const Data& data) {
  static Shared<Sqlite> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = databaseByNumbers(wanted);
    database->execute("CREATE INDEX plantweek ON supply(plant, week)");
    return database;
  });
}

Sqlite& filledByLabels(const Data& data) {
  static Shared<Sqlite> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = std::make_unique<Sqlite>();
    database->createLabelTable("supply");
    database->execute("BEGIN");
    database->addByLabels("supply", wanted);
    database->execute("COMMIT");
    return database;
  });
}

}  // namespace bench
