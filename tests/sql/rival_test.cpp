// Random queries over a symbol and over the same records in SQLite's own table: one answer.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <ztb/sql.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

std::vector<std::string> answer(sqlite3* connection, const std::string& query) {
  sqlite3_stmt* statement = nullptr;
  std::vector<std::string> rows;
  if (sqlite3_prepare_v2(connection, query.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    return {sqlite3_errmsg(connection)};
  }
  while (sqlite3_step(statement) == SQLITE_ROW) {
    std::string row;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
      const auto* text = sqlite3_column_text(statement, column);
      row += text == nullptr ? "null|" : std::string(reinterpret_cast<const char*>(text)) + '|';
    }
    rows.push_back(row);
  }
  sqlite3_finalize(statement);
  return rows;
}

class SqlRival : public testing::TestWithParam<ztb::Store> {};

TEST_P(SqlRival, GivesTheAnswersOfItsOwnTables) {
  std::mt19937 random(2026);
  const auto below = [&](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  ztb::Database database;
  database.selectStore(GetParam());
  std::vector<std::string> labels;
  for (int i = 0; i < 40; ++i) {
    labels.push_back((i % 3 == 0   ? "L"
                      : i % 3 == 1 ? "m"
                                   : "") +
                     std::to_string(below(1000)) + (i % 5 == 0 ? "'s" : "") + std::to_string(i));
    database.mergeLabel(labels.back());
  }
  ztb::Symbol symbol = database.addParameter("p", {"i", "j", "k"});
  sqlite3* rival = nullptr;
  ASSERT_EQ(sqlite3_open(":memory:", &rival), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(rival,
                         "create table p(i text collate nocase, j text collate nocase, "
                         "k text collate nocase, value real)",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  const auto quoted = [](const std::string& text) {
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? "''" : std::string(1, c);
    return result + '\'';
  };
  for (int i = 1; i <= 40; ++i) {
    for (int j = 1; j <= 12; ++j) {
      for (int k = 1; k <= 9; ++k) {
        if (below(3) == 0) {
          const double value = below(20);
          symbol.put(std::array{i, j, k}, value);
          const auto at = [&](int number) {
            return quoted(labels[static_cast<std::size_t>(number - 1)]);
          };
          const std::string insert = "insert into p values(" + at(i) + ',' + at(j) + ',' + at(k) +
                                     ',' + std::to_string(value) + ')';
          ASSERT_EQ(sqlite3_exec(rival, insert.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        }
      }
    }
  }
  ztbSql* sql = nullptr;
  std::array<char, 512> message{};
  ASSERT_EQ(ztbSqlOpen(&sql, message.data(), 512), 1);
  ASSERT_EQ(ztbSqlAttach(sql, "db", database.handle(), message.data(), 512), 1);
  auto* own = static_cast<sqlite3*>(ztbSqlConnection(sql));
  const auto label = [&] {
    std::string text = labels[static_cast<std::size_t>(below(below(2) == 0 ? 12 : 40))];
    if (below(3) == 0) std::ranges::transform(text, text.begin(), ::toupper);
    return quoted(below(8) == 0 ? text + "x" : text);
  };
  const auto condition = [&] {
    const std::string column(1, static_cast<char>('i' + below(3)));
    static const std::array<const char*, 6> operators{"=", "<", ">", "<=", ">=", "="};
    switch (below(4)) {
      case 0:
        return column + " in (" + label() + ',' + label() + ',' + label() + ')';
      case 1:
        return "value > " + std::to_string(below(20));
      default:
        return column + ' ' + operators[static_cast<std::size_t>(below(6))] + ' ' + label();
    }
  };
  static const std::array<const char*, 5> heads{
      "select * from p where ", "select i, sum(value), count(*) from p where ",
      "select distinct j from p where ", "select i, j, max(value) from p where ",
      "select k, value from p where "};
  static const std::array<const char*, 5> tails{"", " group by i", "", " group by i, j",
                                                " order by i, j, k"};
  for (int round = 0; round < 200; ++round) {
    const auto kind = static_cast<std::size_t>(below(5));
    std::string query = heads[kind] + condition();
    for (int more = below(3); more > 0; --more) {
      query += (below(4) == 0 ? " or " : " and ") + condition();
    }
    query += tails[kind];
    std::vector<std::string> wanted = answer(rival, query);
    std::vector<std::string> given = answer(own, query);
    if (kind != 4) {
      std::ranges::sort(wanted);
      std::ranges::sort(given);
    }
    ASSERT_EQ(given, wanted) << query;
  }
  const std::string join =
      "select a.i, b.k, a.value, b.value from p a join p b on a.i = b.i and a.j = b.j "
      "where a.k = " +
      quoted(labels[2]) + " order by 1, 2, 3, 4";
  EXPECT_EQ(answer(own, join), answer(rival, join));
  // Queries that name few columns, and rows that are told apart by their numbers nevertheless.
  for (const std::string wanted : {"value", "k", "count(*)", "sum(value)"}) {
    const std::string query = "select " + wanted + " from p where i = " + quoted(labels[3]) +
                              " or j = " + quoted(labels[5]) + " or k in (" + quoted(labels[1]) +
                              ", " + quoted(labels[2]) + ") order by 1";
    EXPECT_EQ(answer(own, query), answer(rival, query)) << query;
  }
  EXPECT_EQ(answer(own, "select count(distinct rowid) from p"),
            answer(rival, "select count(*) from p"));
  EXPECT_EQ(answer(own, "select rowid from p where i = " + quoted(labels[39])),
            answer(own,
                   "select a.rowid from p a where (select b.i from p b where b.rowid = "
                   "a.rowid) = " +
                       quoted(labels[39])));
  ztbSqlClose(&sql);
  sqlite3_close(rival);
}

INSTANTIATE_TEST_SUITE_P(OnStores, SqlRival,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie));

}  // namespace
