// Symbols as tables of SQL, by the C interface.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <ztb/sql.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// A database with tables over it.
class SqlQuery : public testing::Test {
 protected:
  SqlQuery() {
    food_ = database_.addSet("food", {"*"});
    for (const char* label : {"Milk", "Tofu", "2020", "2020.0", "apple", "Zwieback"}) {
      food_->add(label);
    }
    food_->find("Milk")->setText("in quarts");
    holds_ = database_.addParameter("holds", {*food_, "*"});
    set("Milk", "iron", 1);
    set("Milk", "kcal", 3);
    set("Tofu", "iron", 5);
    set("2020", "kcal", 7);
    set("apple", "zinc", 9);
    begin();
  }
  ~SqlQuery() override { ztbSqlClose(&sql_); }

  void begin() {
    ztbSqlClose(&sql_);
    ASSERT_EQ(ztbSqlOpen(&sql_, message_.data(), 512), 1) << message_.data();
    ASSERT_EQ(ztbSqlAttach(sql_, "db", database_.handle(), message_.data(), 512), 1)
        << message_.data();
  }
  void set(const char* food, const char* nutrient, double value) {
    holds_->merge(food, nutrient).setLevel(value);
  }

  // The rows, their cells with blanks between; or, behind '!', what is wrong.
  std::vector<std::string> rows(const char* query) {
    ztbSqlRows* rows = nullptr;
    if (ztbSqlQuery(&rows, sql_, query, message_.data(), 512) == 0) {
      return {"!" + std::string(message_.data())};
    }
    std::vector<std::string> all;
    int state = 0;
    while ((state = ztbSqlNext(rows)) > 0) {
      std::string row;
      for (int column = 0; column < ztbSqlColumnCount(rows); ++column) {
        row += column == 0 ? "" : " ";
        row += ztbSqlType(rows, column) == ZTB_SQL_NULL ? "null" : ztbSqlText(rows, column);
      }
      all.push_back(row);
    }
    if (state < 0) {
      all.push_back("!" + std::string(ztbSqlMessage(rows)));
    }
    ztbSqlRowsClose(&rows);
    return all;
  }
  // How SQLite plans the query.
  std::string plan(const std::string& query) {
    std::string all;
    for (const std::string& row : rows(("explain query plan " + query).c_str())) all += row + '\n';
    return all;
  }

  ztb::Database database_;
  std::optional<ztb::Symbol> food_;
  std::optional<ztb::Symbol> holds_;
  ztbSql* sql_ = nullptr;
  std::array<char, 512> message_{};
};

TEST_F(SqlQuery, HasTheColumnsOfEachKindOfSymbol) {
  database_.addVariable("x", 5, {"food"}).add("Milk").setLower(-2);
  database_.addParameter("pi", {}).add().setLevel(3.25);
  database_.addAlias("f", *food_);
  begin();
  EXPECT_THAT(rows("select * from holds where food = 'tofu'"), ElementsAre("Tofu iron 5.0"));
  EXPECT_THAT(rows("select food, text from food where text <> ''"), ElementsAre("Milk in quarts"));
  EXPECT_THAT(rows("select food, level, lower, scale from x"), ElementsAre("Milk 0.0 -2.0 1.0"));
  EXPECT_THAT(rows("select value from pi"), ElementsAre("3.25"));
  EXPECT_THAT(rows("select * from f where text <> ''"), ElementsAre("Milk in quarts"));
  EXPECT_THAT(rows("select count(*) from \"*\""), ElementsAre("9"));
  EXPECT_THAT(rows("select label from db.\"*\" where label = 'IRON'"), ElementsAre("iron"));
}

TEST_F(SqlQuery, FindsLabelsAtAnyPositionWithCaseFolded) {
  EXPECT_THAT(rows("select food from holds where dim_2 = 'IRON'"), ElementsAre("Milk", "Tofu"));
  EXPECT_THAT(rows("select value from holds where dim_2 = 'kcal' and food = 'MILK'"),
              ElementsAre("3.0"));
  EXPECT_THAT(rows("select value from holds where food = 'Milk ' "), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = ' '"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = ''"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food is null"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = 'never seen'"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = 'a\"b''c'"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = 'milk' collate binary"), IsEmpty());
  EXPECT_THAT(rows("select value from holds where food = 'Milk  ' collate rtrim"),
              ElementsAre("1.0", "3.0"));
}

// SQLite compares a key with a number as text, and with a column of numbers as a number.
TEST_F(SqlQuery, ComparesLabelsWithNumbersAsSqliteDoes) {
  set("2020.0", "zinc", 11);
  database_.addParameter("year", {}).add().setLevel(2020);
  begin();
  EXPECT_THAT(rows("select value from holds where food = 2020"), ElementsAre("7.0"));
  EXPECT_THAT(rows("select value from holds where food = 2020.0"), ElementsAre("11.0"));
  EXPECT_THAT(rows("select holds.value from holds, year where food = year.value"),
              UnorderedElementsAre("7.0", "11.0"));
  // Two labels are equal to the number, so that what follows them is not in order yet.
  set("2020", "zinc", 13);
  EXPECT_THAT(rows("select dim_2, count(*) from year, holds where food = year.value "
                   "group by dim_2"),
              UnorderedElementsAre("kcal 1", "zinc 2"));
  EXPECT_THAT(rows("select value from holds where food in (2020, 'tofu')"),
              UnorderedElementsAre("5.0", "7.0", "13.0"));
}

// Between two columns SQLite compares with numbers only where one of them has the type of such.
TEST_F(SqlQuery, TakesNumbersOfAListAsTheColumnThatTheyComeFromHasThem) {
  set("2020.0", "10", 11);
  auto* own = static_cast<sqlite3*>(ztbSqlConnection(sql_));
  ASSERT_EQ(SQLITE_OK, sqlite3_exec(own,
                                    "create table n(any, whole integer, words text);"
                                    "insert into n values (2020, 2020, 2020), (10, 10, 10)",
                                    nullptr, nullptr, nullptr));
  EXPECT_THAT(rows("select food from holds where food in (select any from n)"), IsEmpty());
  EXPECT_THAT(rows("select food from holds where dim_2 in (select any from n)"), IsEmpty());
  EXPECT_THAT(rows("select food from holds where food in (select whole from n)"),
              UnorderedElementsAre("2020", "2020.0"));
  EXPECT_THAT(rows("select food from holds where dim_2 in (select whole from n)"),
              ElementsAre("2020.0"));
  EXPECT_THAT(rows("select food from holds where food in (select words from n)"),
              ElementsAre("2020"));
}

// SQLite takes 19 digits of a number, and an infinity for one that is too large.
TEST_F(SqlQuery, FindsLabelsByNumbersThatNoDoubleIs) {
  for (const char* label : {"0.12345678901234567890123", "1e400", "-1e400", "1e-400"}) {
    set(label, "iron", 17);
  }
  database_.addParameter("huge", {}).add().setLevel(HUGE_VAL);
  begin();
  const auto like = [&](const std::string& number) {
    return rows(("select food from holds where food in (select " + number + " from huge)").c_str());
  };
  const auto number = [](const std::string& text) { return "cast('" + text + "' as real)"; };
  EXPECT_THAT(like("value"), ElementsAre("1e400"));
  EXPECT_THAT(like(number("-9e999")), ElementsAre("-1e400"));
  EXPECT_THAT(like(number("0")), ElementsAre("1e-400"));
  EXPECT_THAT(like(number("0.12345678901234567890123")), ElementsAre("0.12345678901234567890123"));
}

TEST_F(SqlQuery, TakesListsAndRangesOnTheFirstPosition) {
  EXPECT_THAT(rows("select food, value from holds where food in ('tofu', 'MILK', 'none')"),
              ElementsAre("Milk 1.0", "Milk 3.0", "Tofu 5.0"));
  EXPECT_THAT(rows("select food, value from holds where food in (select food from food) and "
                   "dim_2 = 'kcal'"),
              ElementsAre("Milk 3.0", "2020 7.0"));
  EXPECT_THAT(rows("select distinct food from holds where food >= 'Apple' and food < 'tofu'"),
              UnorderedElementsAre("Milk", "apple"));
  EXPECT_THAT(rows("select distinct food from holds where food > 'apple' and food <= 'TOFU'"),
              UnorderedElementsAre("Milk", "Tofu"));
  EXPECT_THAT(rows("select food from holds where food between 'x' and 'b'"), IsEmpty());
  EXPECT_THAT(rows("select distinct food from holds where food > 2020"),
              UnorderedElementsAre("Milk", "Tofu", "apple"));
  EXPECT_THAT(rows("select value from holds where food = 'milk' or dim_2 = 'iron'"),
              UnorderedElementsAre("1.0", "3.0", "5.0"));
}

// Beyond 2^53 several integers are the same double, but not the same label.
TEST_F(SqlQuery, TellsLargeIntegersApart) {
  for (const char* label : {"9007199254740992", "9007199254740993", "9007199254740993.0", "1e19"}) {
    set(label, "iron", 17);
  }
  const auto among = [&](const std::string& values) {
    return rows(("select food from holds where food in (" + values + ")").c_str());
  };
  EXPECT_THAT(among("select 9007199254740993 union select 3"), ElementsAre("9007199254740993"));
  EXPECT_THAT(among("select cast('9007199254740992' as integer)"),
              ElementsAre("9007199254740992", "9007199254740993.0"));
  EXPECT_THAT(among("select cast(9007199254740992 as real)"),
              ElementsAre("9007199254740992", "9007199254740993.0"));
  EXPECT_THAT(among("select cast(1e19 as real)"), ElementsAre("1e19"));
  EXPECT_THAT(among("9007199254740993"), ElementsAre("9007199254740993"));
}

// Whoever reads a label as a C string gets the one that is there.
TEST_F(SqlQuery, GivesLabelsWithoutACopy) {
  std::array<ztbSqlRows*, 2> queries{};
  for (ztbSqlRows*& query : queries) {
    ASSERT_EQ(ztbSqlQuery(&query, sql_, "select food from holds", message_.data(), 512), 1);
    ASSERT_EQ(ztbSqlNext(query), 1);
  }
  EXPECT_STREQ(ztbSqlText(queries[0], 0), "Milk");
  EXPECT_EQ(ztbSqlText(queries[0], 0), ztbSqlText(queries[1], 0));
  for (ztbSqlRows*& query : queries) ztbSqlRowsClose(&query);
}

// A long list is faster kept than sought: each record is held against it.
TEST_F(SqlQuery, KeepsTheRecordsOfALongList) {
  EXPECT_THAT(rows("select value from holds where food in (select label from \"*\") and value > 3"),
              ElementsAre("5.0", "7.0", "9.0"));
  EXPECT_THAT(rows("select label from \"*\" where label in ('ZINC', 'tofu')"),
              ElementsAre("Tofu", "zinc"));
}

// SQLite compares what it gives one by one as texts, where it would compare numbers itself.
TEST_F(SqlQuery, TakesListsAtLaterPositionsAsSqliteDoes) {
  set("Tofu", "2020", 21);
  set("Tofu", "kcal", 22);
  database_.addParameter("year", {}).add().setLevel(2020);
  begin();
  EXPECT_THAT(rows("select value from holds where dim_2 in (select value from year)"),
              ElementsAre("21.0"));
  EXPECT_THAT(rows("select value from holds where food = 'tofu' and dim_2 in (select value from "
                   "year)"),
              ElementsAre("21.0"));
  EXPECT_THAT(rows("select food, count(*) from holds where dim_2 in ('KCAL', 'iron') "
                   "group by food"),
              UnorderedElementsAre("Milk 2", "Tofu 2", "2020 1"));
  EXPECT_THAT(rows("select value from holds where dim_2 in ('zinc', 'kcal') and food in ('apple', "
                   "'milk')"),
              UnorderedElementsAre("3.0", "9.0"));
  EXPECT_THAT(rows("select value from holds where dim_2 in ('zinc', 'kcal') and food >= 'b'"),
              UnorderedElementsAre("3.0", "22.0"));
  EXPECT_THAT(rows("select value from holds where dim_2 in (select label from \"*\") and "
                   "value > 8"),
              UnorderedElementsAre("9.0", "21.0", "22.0"));
}

TEST_F(SqlQuery, SortsOnlyWhereRecordsHaveAnotherOrder) {
  EXPECT_THAT(rows("select distinct food from holds order by food"),
              ElementsAre("2020", "apple", "Milk", "Tofu"));
  EXPECT_THAT(plan("select * from holds order by food"), HasSubstr("TEMP B-TREE FOR ORDER BY"));
  ztb::Symbol sorted = database_.addParameter("sorted", {"*", "*"});
  sorted.put(std::array{1, 2}, 1);  // Milk, Tofu
  sorted.put(std::array{1, 6}, 2);  // Milk, Zwieback
  sorted.put(std::array{2, 2}, 3);  // Tofu, Tofu
  begin();
  EXPECT_THAT(rows("select * from sorted order by dim_1, dim_2"),
              ElementsAre("Milk Tofu 1.0", "Milk Zwieback 2.0", "Tofu Tofu 3.0"));
  EXPECT_EQ(plan("select * from sorted order by dim_1, dim_2").find("B-TREE"), std::string::npos);
  EXPECT_EQ(plan("select * from sorted where dim_1 = 'milk' order by dim_2").find("B-TREE"),
            std::string::npos);
  EXPECT_THAT(plan("select * from sorted order by dim_2"), HasSubstr("B-TREE"));
  EXPECT_THAT(plan("select * from sorted order by dim_1 desc"), HasSubstr("B-TREE"));
  EXPECT_EQ(plan("select food, sum(value) from holds group by food").find("B-TREE"),
            std::string::npos);
  EXPECT_THAT(rows("select food, sum(value) from holds group by food"),
              ElementsAre("Milk 4.0", "Tofu 5.0", "2020 7.0", "apple 9.0"));
}

TEST_F(SqlQuery, GivesSpecialValuesAsSqlHasThem) {
  const ztb::SpecialValues special = database_.specialValues();
  set("Milk", "iron", special[ZTB_UNDEFINED]);
  set("Milk", "kcal", special[ZTB_NOT_AVAILABLE]);
  set("Tofu", "iron", special[ZTB_PLUS_INFINITY]);
  set("2020", "kcal", special[ZTB_MINUS_INFINITY]);
  set("apple", "zinc", special[ZTB_EPSILON]);
  const std::vector<std::string> expected{"null", "null", "Inf", "-Inf", "4.94065645841247e-324"};
  EXPECT_EQ(rows("select value from holds"), expected);
  // Whatever the caller spells them like.
  database_.setSpecialValues({-1, -2, -3, -4, -5});
  EXPECT_EQ(rows("select value from holds"), expected);
}

TEST_F(SqlQuery, EndsWithAnErrorWhenRecordsChange) {
  for (const bool removes : {false, true}) {
    ztbSqlRows* query = nullptr;
    ASSERT_EQ(ztbSqlQuery(&query, sql_, "select value from holds", message_.data(), 512), 1);
    ASSERT_EQ(ztbSqlNext(query), 1);
    if (removes) {
      holds_->clear();
    } else {
      set("Zwieback", "iron", 4);
    }
    EXPECT_EQ(ztbSqlNext(query), -1);
    EXPECT_STREQ(ztbSqlMessage(query),
                 "records of the database were changed while the query was reading");
    EXPECT_EQ(ztbSqlNext(query), -1);
    ztbSqlRowsClose(&query);
  }
  EXPECT_THAT(rows("select count(*) from holds"), ElementsAre("0"));
}

TEST_F(SqlQuery, FollowsASymbolToAnotherStore) {
  for (const ztb::Store store : {ztb::Store::vector, ztb::Store::trie, ztb::Store::map}) {
    holds_ = database_.moveTo(*holds_, store);
    EXPECT_THAT(rows("select value from holds where food = 'tofu'"), ElementsAre("5.0"));
    EXPECT_THAT(rows("select count(*), sum(value) from holds"), ElementsAre("5 25.0"));
  }
}

TEST_F(SqlQuery, EndsWhenAskedTo) {
  const char* lengthy =
      "with recursive c(x) as (select 1 union all select x + 1 from c limit 100000000) "
      "select max(x) from c";
  int asked = 0;
  const auto thirdTime = [](void* count) { return ++*static_cast<int*>(count) == 3 ? 1 : 0; };
  ztbSqlAsk(sql_, thirdTime, &asked);
  EXPECT_THAT(rows(lengthy), ElementsAre("!interrupted"));
  EXPECT_EQ(asked, 3);
  EXPECT_THAT(rows("select value from holds where food = 'tofu'"), ElementsAre("5.0"));
  ztbSqlAsk(sql_, nullptr, nullptr);
  EXPECT_THAT(rows("with recursive c(x) as (select 1 union all select x + 1 from c limit 100000) "
                   "select max(x) from c"),
              ElementsAre("100000"));
  EXPECT_EQ(asked, 3);
}

TEST_F(SqlQuery, TakesParameters) {
  ztbSqlRows* query = nullptr;
  ASSERT_EQ(ztbSqlQuery(&query, sql_, "select value from holds where food = ? and value > ?",
                        message_.data(), 512),
            1);
  EXPECT_EQ(ztbSqlParameterCount(query), 2);
  EXPECT_EQ(ztbSqlBindText(query, 1, "MILK"), 1);
  EXPECT_EQ(ztbSqlBindReal(query, 2, 1.5), 1);
  EXPECT_EQ(ztbSqlBindInteger(query, 3, 1), 0);
  ASSERT_EQ(ztbSqlNext(query), 1);
  EXPECT_EQ(ztbSqlReal(query, 0), 3);
  EXPECT_EQ(ztbSqlNext(query), 0);
  ztbSqlRowsClose(&query);
}

TEST_F(SqlQuery, TakesAndGivesTextsWithZerosBlobsAndNulls) {
  ztbSqlRows* query = nullptr;
  ASSERT_EQ(ztbSqlQuery(&query, sql_, "select ?, ?, ?, ?, ?, hex(?1), hex(?2), typeof(?4)",
                        message_.data(), 512),
            1);
  EXPECT_EQ(ztbSqlBindChars(query, 1, "a\0b", 3), 1);
  EXPECT_EQ(ztbSqlBindBlob(query, 2, "\0\xff", 2), 1);
  EXPECT_EQ(ztbSqlBindInteger(query, 3, 3), 1);
  EXPECT_EQ(ztbSqlBindNull(query, 3), 1);
  EXPECT_EQ(ztbSqlBindChars(query, 4, nullptr, 0), 1);
  EXPECT_EQ(ztbSqlBindBlob(query, 5, nullptr, 0), 1);
  EXPECT_EQ(ztbSqlBindNull(query, 9), 0);
  EXPECT_EQ(ztbSqlBindChars(query, 9, "a", 1), 0);
  EXPECT_EQ(ztbSqlBindBlob(query, 9, "a", 1), 0);
  ASSERT_EQ(ztbSqlNext(query), 1);
  const auto type = [&](int column) { return ztbSqlType(query, column); };
  EXPECT_EQ(type(0), ZTB_SQL_TEXT);
  EXPECT_EQ(std::string(ztbSqlText(query, 0), static_cast<std::size_t>(ztbSqlSize(query, 0))),
            std::string("a\0b", 3));
  EXPECT_EQ(type(1), ZTB_SQL_BLOB);
  ASSERT_EQ(ztbSqlSize(query, 1), 2);
  EXPECT_EQ(static_cast<const unsigned char*>(ztbSqlBlob(query, 1))[1], 0xff);
  EXPECT_EQ(type(2), ZTB_SQL_NULL);
  EXPECT_EQ(ztbSqlSize(query, 2), 0);
  EXPECT_EQ(type(4), ZTB_SQL_BLOB);
  EXPECT_EQ(ztbSqlSize(query, 4), 0);
  EXPECT_STREQ(ztbSqlText(query, 5), "610062");
  EXPECT_STREQ(ztbSqlText(query, 6), "00FF");
  EXPECT_STREQ(ztbSqlText(query, 7), "text");
  ztbSqlRowsClose(&query);
}

TEST_F(SqlQuery, TakesEveryStatementThatGivesRows) {
  EXPECT_THAT(rows("-- first\n/* then */ select 1 -- last"), ElementsAre("1"));
  EXPECT_THAT(rows("values (1, 'a'), (2, 'b')"), ElementsAre("1 a", "2 b"));
  EXPECT_THAT(rows("with t(x) as (select sum(value) from holds) select * from t"),
              ElementsAre("25.0"));
}

TEST_F(SqlQuery, TellsTheNamesOfDatabasesWhereOneIsSought) {
  EXPECT_THAT(rows("select * from main.holds"),
              ElementsAre("!no such table: main.holds; the databases are called db"));
  EXPECT_THAT(rows("select * from DB.none"), ElementsAre("!no such table: DB.none"));
  EXPECT_THAT(rows("select * from none"), ElementsAre("!no such table: none"));
  for (const char* name : {"main", "TEMP"}) {
    EXPECT_EQ(ztbSqlAttach(sql_, name, database_.handle(), message_.data(), 512), 0);
    EXPECT_EQ(message_.data(),
              "a database cannot be called " + std::string(name) + ", which is a name of SQLite's");
  }
}

TEST_F(SqlQuery, RefusesWhatIsNoSingleQuery) {
  EXPECT_THAT(rows("selct 1"), ElementsAre("!near \"selct\": syntax error"));
  EXPECT_THAT(rows(""), ElementsAre("!a query that gives rows is expected, as select does"));
  EXPECT_THAT(rows("create temp table t(x)"),
              ElementsAre("!a query that gives rows is expected, as select does"));
  EXPECT_THAT(rows("delete from holds"), ElementsAre("!table holds may not be modified"));
  EXPECT_THAT(rows("select 1; select 2"),
              ElementsAre("!one query is expected, another stands behind it"));
  EXPECT_THAT(rows("select 1; -- done"), ElementsAre("1"));
}

TEST_F(SqlQuery, ReadsFilesAndTellsTheirDamage) {
  const ztbtest::TempFolder folder;
  database_.write(folder.file("diet.rxf"));
  ASSERT_EQ(ztbSqlAttachFile(sql_, "file", folder.file("diet.rxf").c_str(), message_.data(), 512),
            1);
  EXPECT_THAT(rows("select a.value, b.value from file.holds a join db.holds b using (food, dim_2) "
                   "where food = 'tofu'"),
              ElementsAre("5.0 5.0"));
  EXPECT_NE(ztbSqlDatabase(sql_, "FILE"), nullptr);
  EXPECT_EQ(ztbSqlDatabase(sql_, "none"), nullptr);
  EXPECT_EQ(ztbSqlAttachFile(sql_, "x", folder.file("none.rxf").c_str(), message_.data(), 512), 0);
  EXPECT_THAT(message_.data(), HasSubstr("No such file"));
  EXPECT_EQ(ztbSqlAttach(sql_, "db", database_.handle(), message_.data(), 512), 0);
  EXPECT_STREQ(message_.data(), "database db is already in use");
}

// Twenty positions of many labels: a row's number cannot be made of its labels' numbers.
TEST_F(SqlQuery, TellsRecordsOfManyPositionsApart) {
  const std::vector<ztb::DomainArgument> domains(20, "*");
  ztb::Symbol wide = database_.addSymbol("wide", ztb::Type::parameter, domains);
  std::array<int, 20> keys{};
  keys.fill(1);
  for (int label = 1; label <= 6; ++label) {
    keys[19] = label;
    wide.put(keys, label);
  }
  begin();
  EXPECT_THAT(rows("select value from wide where dim_20 = 'milk' or dim_20 = 'tofu' or "
                   "dim_1 = 'milk' and dim_20 = 'milk'"),
              UnorderedElementsAre("1.0", "2.0"));
}

// The number of a row is asked for though no column of a key is, in the middle of blocks too.
TEST_F(SqlQuery, NumbersRowsOfWhichFewColumnsAreRead) {
  ztb::Symbol big = database_.addParameter("big", {"*", "*"});
  for (int i = 1; i <= 40; ++i) database_.mergeLabel("n" + std::to_string(i));
  for (int i = 1; i <= 40; ++i) {
    for (int j = 1; j <= 40; ++j) big.put(std::array{i, j}, 100 * i + j);
  }
  begin();
  EXPECT_THAT(rows("select count(distinct rowid), count(distinct value), sum(value) from big"),
              ElementsAre("1600 1600 3312800.0"));
  EXPECT_THAT(rows("select value, (select dim_1 || dim_2 from big b where b.rowid = a.rowid) = "
                   "dim_1 || dim_2 from big a where value in (101, 4040)"),
              ElementsAre("101.0 1", "4040.0 1"));
  EXPECT_THAT(rows("select value from big where value > 3900 and rowid > 0 limit 1 offset 60"),
              ElementsAre("4021.0"));
  EXPECT_THAT(rows("select text from food where rowid > 0 and text <> ''"),
              ElementsAre("in quarts"));
}

TEST_F(SqlQuery, ReadsOnlyTheSymbolsOfTheQuery) {
  const ztbtest::TempFolder folder;
  database_.write(folder.file("diet.rxf"));
  const ztb::Database opened = ztb::Database::open(folder.file("diet.rxf"));
  ASSERT_EQ(ztbSqlAttach(sql_, "lazy", opened.handle(), message_.data(), 512), 1);
  EXPECT_THAT(rows("select count(*) from lazy.food"), ElementsAre("6"));
  // The file goes away with what was not read.
  c__ztbcloserxf(opened.handle(), 0);
  EXPECT_THAT(rows("select count(*) from lazy.food"), ElementsAre("6"));
  EXPECT_THAT(rows("select count(*) from lazy.holds").front(),
              testing::AnyOf("0", testing::StartsWith("!")));
}

}  // namespace
