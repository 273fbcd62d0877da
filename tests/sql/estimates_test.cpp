// What the planner of SQLite is told of a table: how many records come, and in which order of
// tables it reads them then.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <memory>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/sql/module.h"
#include "tests/support/matches.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// Estimates of the latest plan, by the conditions that it takes.
struct Told {
  std::string conditions;
  sqlite3_int64 rows;
  bool ordered;
};
std::vector<Told> told;

sqlite3_module tellingModule() {
  sqlite3_module module = formats::sqlModule();
  module.xCreate = nullptr;
  module.xConnect = [](sqlite3* connection, void* data, int, const char* const* arguments,
                       sqlite3_vtab** table, char** message) {
    return formats::guardedSql(message, [&] {
      const auto& database = *static_cast<std::shared_ptr<formats::SqlDatabase>*>(data);
      auto made = std::make_unique<formats::SqlVirtualTable>(database, std::atoi(arguments[3]));
      const int result = formats::declareTable(connection, made->table);
      if (result == SQLITE_OK) *table = &made.release()->base;
      return result;
    });
  };
  module.xCreate = module.xConnect;
  module.xBestIndex = [](sqlite3_vtab* table, sqlite3_index_info* info) {
    static const sqlite3_module own = formats::sqlModule();
    const int result = own.xBestIndex(table, info);
    told.push_back({info->idxStr == nullptr ? "" : info->idxStr, info->estimatedRows,
                    info->orderByConsumed != 0});
    return result;
  };
  return module;
}

class SqlEstimatesTest : public testing::TestWithParam<ztb::Store> {
 protected:
  SqlEstimatesTest() {
    database_.selectStore(GetParam());
    static const sqlite3_module module = tellingModule();
    EXPECT_EQ(sqlite3_open(":memory:", &sql_), SQLITE_OK);
    shared_ = std::make_shared<formats::SqlDatabase>(database_.handle());
    EXPECT_EQ(sqlite3_create_module(sql_, "telling", &module, &shared_), SQLITE_OK);
  }
  ~SqlEstimatesTest() override { sqlite3_close(sql_); }

  static std::string label(int number) { return "n" + std::to_string(1000 + number); }
  void addLabels(int count) {
    for (int number = 1; number <= count; ++number) database_.mergeLabel(label(number));
  }
  // Makes tables of all symbols, as 0, 1 and so on in the order in which they were added.
  void begin(const std::vector<std::string>& names) {
    for (std::size_t at = 0; at < names.size(); ++at) {
      const std::string text =
          "create virtual table " + names[at] + " using telling(" + std::to_string(at) + ")";
      ASSERT_EQ(sqlite3_exec(sql_, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
          << sqlite3_errmsg(sql_);
    }
  }
  std::vector<std::string> rows(const std::string& query) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(sql_, query.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(sql_);
    std::vector<std::string> all;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = sqlite3_column_text(statement, sqlite3_column_count(statement) - 1);
      all.emplace_back(text == nullptr ? "" : reinterpret_cast<const char*>(text));
    }
    sqlite3_finalize(statement);
    return all;
  }
  std::string plan(const std::string& query) {
    std::string all;
    for (const std::string& row : rows("explain query plan " + query)) all += row + '\n';
    return all;
  }
  // What a plan for the condition told that takes all of it.
  long long estimate(const std::string& table, const std::string& condition) {
    told.clear();
    rows("select count(*) from " + table + " where " + condition);
    std::size_t longest = 0;
    long long estimated = -1;
    for (const Told& each : told) {
      if (each.conditions.size() >= longest) {
        longest = each.conditions.size();
        estimated = each.rows;
      }
    }
    return estimated;
  }
  long long truth(const std::string& table, const std::string& condition) {
    return std::stoll(rows("select count(*) from " + table + " where " + condition).front());
  }

  ztb::Database database_;
  std::shared_ptr<formats::SqlDatabase> shared_;
  sqlite3* sql_ = nullptr;
};

// Few records are counted: each estimate is what comes.
TEST_P(SqlEstimatesTest, CountFewRecords) {
  addLabels(60);
  ztb::Symbol p = database_.addParameter("p", {"*", "*"});
  for (int i = 1; i <= 40; ++i) {
    for (int j = 1; j <= 1 + i * 7 % 20; ++j) p.put(std::array{i, 40 + j}, i + j);
  }
  begin({"p"});
  for (const std::string& condition :
       {std::string("dim_1 = 'n1003'"), std::string("dim_1 = 'N1019'"),
        std::string("dim_1 = 'n1050'"), std::string("dim_1 = 'nowhere'"),
        std::string("dim_1 > 'n1035'"), std::string("dim_1 between 'n1010' and 'n1012'"),
        std::string("dim_1 < 'a'"), std::string("dim_1 >= 'N1039' and dim_1 < 'zzz'")}) {
    EXPECT_EQ(estimate("p", condition), truth("p", condition)) << condition;
  }
  EXPECT_EQ(estimate("p", "value > 3"), truth("p", "1"));
  EXPECT_EQ(estimate("p", "dim_1 = 'n1003' and dim_2 = 'n1041'"), 1);
}

// Many are guessed: within a quarter where they are spread evenly.
TEST_P(SqlEstimatesTest, GuessManyRecords) {
  addLabels(160);
  ztb::Symbol p = database_.addParameter("p", {"*", "*", "*"});
  for (int i = 1; i <= 40; ++i) {
    for (int j = 1; j <= 60; ++j) {
      for (int k = 1; k <= 25; ++k) p.put(std::array{i, 40 + j, 100 + 2 * k}, 1);
    }
  }
  // Every third label is one at the first position, with 1200 records each.
  ztb::Symbol q = database_.addParameter("q", {"*", "*", "*"});
  for (int i = 1; i <= 150; i += 3) {
    for (int j = 1; j <= 30; ++j) {
      for (int k = 1; k <= 40; ++k) q.put(std::array{i, 40 + j, 100 + k}, 1);
    }
  }
  begin({"p", "q"});
  const auto near = [&](const std::string& table, const std::string& condition) {
    const auto real = static_cast<double>(truth(table, condition));
    EXPECT_NEAR(static_cast<double>(estimate(table, condition)), real, real / 4)
        << table << ", " << condition;
  };
  const std::string i = "(select 'n1013')";
  const std::string j = "(select 'n1050')";
  const std::string k = "(select 'n1110')";
  for (const std::string table : {"p", "q"}) {
    near(table, "dim_1 = " + i);
    near(table, "dim_1 = 'n1013'");
    near(table, "dim_1 = " + i + " and dim_2 = " + j);
    near(table, "dim_2 = " + j);
    near(table, "dim_3 = " + k);
    near(table, "dim_2 = " + j + " and dim_3 = " + k);
    near(table, "dim_1 = " + i + " and dim_3 = " + k);
    near(table, "dim_1 > 'n1020'");
    near(table, "dim_1 >= 'n1010' and dim_1 < 'n1030'");
    near(table, "dim_1 < 'n1031' and dim_2 = " + j);
  }
  // The labels of an IN are not told: as many as SQLite takes for a list that it does not know.
  EXPECT_NEAR(static_cast<double>(estimate("p", "dim_1 in (select 'n1013')")), 25 * 1500.0, 4000);
}

// The smaller side of a join is read first, and the larger one by its keys; where only one side can
// be sought in, that one stands inside.
TEST_P(SqlEstimatesTest, LeadToTheOrderOfAJoin) {
  addLabels(160);
  ztb::Symbol big = database_.addParameter("big", {"*", "*"});
  for (int i = 1; i <= 100; ++i) {
    for (int j = 1; j <= 50; ++j) big.put(std::array{i, 100 + j}, 1);
  }
  ztb::Symbol few = database_.addParameter("few", {"*"});
  for (int i = 1; i <= 3; ++i) few.put(std::array{i}, 1);
  ztb::Symbol many = database_.addParameter("many", {"*"});
  for (int i = 1; i <= 100; ++i) many.put(std::array{i}, 1);
  begin({"big", "few", "many"});
  for (const std::string tables : {"big, few", "few, big"}) {
    EXPECT_THAT(plan("select * from " + tables + " where big.dim_1 = few.label"),
                ztbtest::Matches("SCAN few VIRTUAL TABLE INDEX [0-9]+:\n"
                                 "SCAN big VIRTUAL TABLE INDEX [0-9]+:=a\n"));
    // Each label of the second position is sought below each of the first, of which there are many;
    // with one given it is sought once.
    EXPECT_THAT(
        plan("select * from " + tables + " where big.dim_2 = few.label and big.dim_1 = 'n1007'"),
        HasSubstr("SCAN few VIRTUAL TABLE INDEX"));
  }
  for (const std::string tables : {"big, many", "many, big"}) {
    // One label of `big` leaves 50 records, each of which is one of `many`.
    EXPECT_THAT(
        plan("select * from " + tables + " where big.dim_1 = 'n1007' and big.dim_2 = many.label"),
        ztbtest::Matches("SCAN big VIRTUAL TABLE INDEX [0-9]+:=a\n"
                         "SCAN many VIRTUAL TABLE INDEX [0-9]+:=a\n"));
  }
}

TEST_P(SqlEstimatesTest, TellTheOrderOfRecords) {
  addLabels(20);
  ztb::Symbol p = database_.addParameter("p", {"*", "*"});
  for (int i = 1; i <= 5; ++i) {
    for (int j = 1; j <= 5; ++j) p.put(std::array{i, 5 + j}, 1);
  }
  begin({"p"});
  for (const std::string tail :
       {"order by dim_1", "order by dim_1, dim_2", "where dim_1 = 'n1002' order by dim_2",
        "where dim_1 > 'n1002' order by dim_1, dim_2", "where dim_2 = 'n1007' order by dim_1",
        "where dim_1 in ('n1003', 'n1001') order by dim_1, dim_2", "group by dim_1, dim_2",
        "group by dim_2, dim_1", "where dim_1 = 'n1002' group by dim_2"}) {
    EXPECT_THAT(plan("select dim_1, dim_2 from p " + tail), Not(HasSubstr("B-TREE FOR"))) << tail;
    EXPECT_TRUE(told.back().ordered) << tail;
  }
  for (const std::string tail : {"order by dim_2", "order by dim_1 desc", "group by dim_2",
                                 "order by dim_1 collate binary", "order by dim_2, dim_1"}) {
    EXPECT_THAT(plan("select dim_1, dim_2 from p " + tail), HasSubstr("B-TREE FOR")) << tail;
  }
}

// Thousands of records in the order of texts, and behind them a label that is not.
TEST_P(SqlEstimatesTest, TellTheOrderWhereItEndsLate) {
  addLabels(80);
  database_.mergeLabel("a");
  ztb::Symbol p = database_.addParameter("p", {"*", "*"});
  for (int i = 1; i <= 81; ++i) {
    for (int j = 1; j <= 80; ++j) p.put(std::array{i, j}, 1);
  }
  begin({"p"});
  EXPECT_THAT(plan("select * from p order by dim_1"), HasSubstr("B-TREE FOR"));
  EXPECT_EQ(rows("select dim_1 from p order by dim_1 limit 1").front(), "a");
  EXPECT_THAT(plan("select * from p where dim_1 = 'n1040' order by dim_2"),
              Not(HasSubstr("B-TREE FOR")));
}

INSTANTIATE_TEST_SUITE_P(OnStores, SqlEstimatesTest,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie));

}  // namespace
