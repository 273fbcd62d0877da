// Queries over a symbol beside the same queries over the same records in SQLite's own table, whose
// primary key is that of the records; both in memory, in one program, and both connections without
// locks, since one thread uses them. Processor time.

#include <sqlite3.h>
#include <ztb/sql.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <ztb/ztb.hpp>

namespace {

constexpr int labels = 100;  // at each of three positions
constexpr int rounds = 5;
constexpr int lookups = 200000;
constexpr int listLookups = 20000;

double seconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

std::string label(int number) {
  return "label" + std::to_string(number);
}

void must(int result, sqlite3* connection) {
  if (result != SQLITE_OK) {
    std::fprintf(stderr, "%s\n", sqlite3_errmsg(connection));
    std::exit(1);
  }
}

sqlite3_stmt* prepared(sqlite3* connection, const char* query) {
  sqlite3_stmt* statement = nullptr;
  must(sqlite3_prepare_v2(connection, query, -1, &statement, nullptr), connection);
  return statement;
}

double lengthOf(const unsigned char* text) {
  return static_cast<double>(std::strlen(reinterpret_cast<const char*>(text)));
}

// The best time of a query, whose rows are read whole, and a sum over them.
struct Timed {
  double time = 1e9;
  double sum = 0;
};

Timed timed(sqlite3* connection, const char* query) {
  sqlite3_stmt* statement = prepared(connection, query);
  Timed result;
  for (int round = 0; round < rounds; ++round) {
    const double begin = seconds();
    result.sum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        result.sum += sqlite3_column_type(statement, column) == SQLITE_TEXT
                          ? lengthOf(sqlite3_column_text(statement, column))
                          : sqlite3_column_double(statement, column);
      }
    }
    result.time = std::min(result.time, seconds() - begin);
    sqlite3_reset(statement);
  }
  sqlite3_finalize(statement);
  return result;
}

struct Lookups {
  const char* query;  // takes a label of each position, and of the last of them up to four
  const char* prefix = "label";
  bool backwards = false;  // positions from the last one on
};

Timed timedLookups(sqlite3* connection, const Lookups& kind, int count) {
  sqlite3_stmt* statement = prepared(connection, kind.query);
  const int parameters = sqlite3_bind_parameter_count(statement);
  Timed result{0, 0};
  const double begin = seconds();
  for (int number = 0; number < count; ++number) {
    std::array<std::string, 6> keys;
    for (int at = 0; at < parameters; ++at) {
      const int position = kind.backwards ? 2 - std::min(at, 2) : std::min(at, 2);
      const int step = at == 0 ? 7 : at == 1 ? 13 : 29 + 3 * (at - 2);
      keys[static_cast<std::size_t>(at)] =
          kind.prefix + std::to_string(1 + position * labels + (number + at) * step % labels);
      sqlite3_bind_text(statement, at + 1, keys[static_cast<std::size_t>(at)].c_str(), -1,
                        SQLITE_STATIC);
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      result.sum += sqlite3_column_double(statement, 0);
    }
    sqlite3_reset(statement);
  }
  result.time = seconds() - begin;
  sqlite3_finalize(statement);
  return result;
}

void report(const char* what, const Timed& own, const Timed& rival) {
  std::printf("%-44s %9.2f %9.2f %7.2f%s\n", what, own.time * 1e3, rival.time * 1e3,
              rival.time / own.time, own.sum == rival.sum ? "" : "  DIFFERENT ANSWERS");
}

void fill(sqlite3* rival, const ztb::Symbol& symbol) {
  must(sqlite3_exec(rival,
                    "create table p(i text collate nocase not null, j text collate nocase not null,"
                    "k text collate nocase not null, value real, primary key(i, j, k)) "
                    "without rowid; begin",
                    nullptr, nullptr, nullptr),
       rival);
  sqlite3_stmt* insert = prepared(rival, "insert into p values(?, ?, ?, ?)");
  for (const ztb::Row row : symbol.rows()) {
    for (int position = 0; position < 3; ++position) {
      sqlite3_bind_text(insert, position + 1,
                        label(row.keys[static_cast<std::size_t>(position)]).c_str(), -1,
                        SQLITE_TRANSIENT);
    }
    sqlite3_bind_double(insert, 4, row.values[0]);
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  must(sqlite3_exec(rival, "commit", nullptr, nullptr, nullptr), rival);
}

// What passes before a query over a live database gives its first row, beside the load into
// SQLite's table before it can.
double firstRow(ztbRec* database) {
  double best = 1e9;
  for (int round = 0; round < rounds; ++round) {
    const double begin = seconds();
    ztbSql* sql = nullptr;
    ztbSqlRows* rows = nullptr;
    std::array<char, 512> message{};
    if (ztbSqlOpen(&sql, message.data(), 512) == 0 ||
        ztbSqlAttach(sql, "db", database, message.data(), 512) == 0 ||
        ztbSqlQuery(&rows, sql, "select * from p", message.data(), 512) == 0 ||
        ztbSqlNext(rows) != 1) {
      std::fprintf(stderr, "%s\n", message.data());
      std::exit(1);
    }
    best = std::min(best, seconds() - begin);
    ztbSqlRowsClose(&rows);
    ztbSqlClose(&sql);
  }
  return best;
}

void contest(ztb::Store store, const char* name, sqlite3* rival) {
  ztb::Database database;
  database.selectStore(store);
  ztb::Symbol symbol = database.addParameter("p", {"i", "j", "k"});
  for (int number = 1; number <= 3 * labels; ++number) {
    database.mergeLabel(label(number));
  }
  for (int i = 1; i <= labels; ++i) {
    for (int j = 1; j <= labels; ++j) {
      for (int k = 1; k <= labels; ++k) {
        symbol.put(std::array{i, labels + j, 2 * labels + k}, i * 0.5 + k);
      }
    }
  }
  static double loadOfRival = 0;
  if (sqlite3_total_changes(rival) == 0) {
    const double begin = seconds();
    fill(rival, symbol);
    loadOfRival = seconds() - begin;
  }
  ztbSql* sql = nullptr;
  std::array<char, 512> message{};
  if (ztbSqlOpen(&sql, message.data(), 512) == 0 ||
      ztbSqlAttach(sql, "db", database.handle(), message.data(), 512) == 0) {
    std::fprintf(stderr, "%s\n", message.data());
    std::exit(1);
  }
  auto* own = static_cast<sqlite3*>(ztbSqlConnection(sql));
  std::printf("\n%-44s %9s %9s %7s\n", name, "ztb ms", "SQLite ms", "ratio");
  const auto both = [&](const char* what, const char* query) {
    report(what, timed(own, query), timed(rival, query));
  };
  both("full scan, sum of values", "select sum(value) from p");
  both("full scan, all columns", "select * from p");
  both("full scan, all columns in a sum",
       "select sum(length(i) + length(j) + length(k) + value) from p");
  both("full scan, least and greatest value", "select min(value), max(value) from p");
  both("count", "select count(*) from p");
  both("prefix of 10^4 records, sum of values", "select sum(value) from p where i = 'label7'");
  both("prefix of 10^4 records, all columns", "select * from p where i = 'label7'");
  both("second position, all columns", "select * from p where j = 'label150'");
  both("groups of the first position", "select i, sum(value) from p group by i");
  both("least and greatest of each group", "select i, min(value), max(value) from p group by i");
  both(
      "list of ten first labels, all columns",
      "select * from p where i in ('label3', 'label7', 'LABEL11', 'label20', 'label31', 'label44', "
      "'label59', 'label66', 'label81', 'label97')");
  const auto bothLookups = [&](const char* what, const Lookups& kind, int count) {
    report(what, timedLookups(own, kind, count), timedLookups(rival, kind, count));
  };
  constexpr const char* lookup = "select value from p where i = ? and j = ? and k = ?";
  bothLookups("200,000 lookups", {lookup}, lookups);
  bothLookups("200,000 lookups in other case", {lookup, "LABEL"}, lookups);
  bothLookups("20,000 lookups, four in a list at the end",
              {"select value from p where i = ? and j = ? and k in (?, ?, ?, ?)"}, listLookups);
  bothLookups("20,000 lookups, four in a list at the start",
              {"select value from p where k = ? and j = ? and i in (?, ?, ?, ?)", "label", true},
              listLookups);
  std::printf("%-44s %9.2f %9.2f\n", "live database to the first row; rival's load",
              firstRow(database.handle()) * 1e3, loadOfRival * 1e3);
  ztbSqlClose(&sql);
}

}  // namespace

int main() {
  sqlite3* rival = nullptr;
  constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  must(sqlite3_open_v2(":memory:", &rival, flags, nullptr), rival);
  contest(ztb::Store::map, "map", rival);
  contest(ztb::Store::vector, "vector", rival);
  contest(ztb::Store::trie, "trie", rival);
  sqlite3_close(rival);
}
