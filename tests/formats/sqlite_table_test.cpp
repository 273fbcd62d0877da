// Tables and queries of SQLite.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::Job;
using formatstest::Options;
using formatstest::price;
using formatstest::TableTest;
using testing::HasSubstr;

TEST_F(TableTest, ReadsTablesAndQueriesOfSqlite) {
  sql("stock.db",
      "create table food(name text, cents real, made text); insert into food values"
      "('Milk', 11, '2024-03-01'), ('Tofu', 7.25, '2024-03-02'), ('Lard', null, 'x');"
      "create table other(a); create view cheap as select name, cents from food where cents < 10");
  const Options named{{"skip-empty", ""}, {"parameter", "price(name) = cents"}};
  EXPECT_EQ(imported("stock.db#food", named)["price"].recordCount(), 2);
  EXPECT_EQ(imported("stock.db#CHEAP", named)["price"].find("Tofu")->level(), 7.25);
  const ztb::Database query = imported(
      "stock.db#select name || '#' as name, cents * 2 as cents from food where cents > 8", named);
  EXPECT_EQ(query["price"].find("Milk#")->level(), 22);
  for (const char* sql :
       {"-- dear\n/* ones */ select name, cents from food where cents > 8",
        "with t as (select * from food) select name, cents from t where cents > 8",
        "/**/with/**/t as (select * from food) select name, cents from t where cents > 8"}) {
    EXPECT_EQ(imported(std::string("stock.db#") + sql, named)["price"].find("Milk")->level(), 11);
  }
  EXPECT_EQ(imported("stock.db#values('Milk', 3)", {{"parameter", "p(column1) = column2"}})["p"]
                .find("Milk")
                ->level(),
            3);
}

TEST_F(TableTest, TakesATableOfSqliteForItselfWhateverItIsCalled) {
  sql("stock.db",
      "create table \"with care\"(name, cents); insert into \"with care\" values('Milk', 11)");
  EXPECT_EQ(imported("stock.db#With care", {{"parameter", "price(name) = cents"}})["price"]
                .find("Milk")
                ->level(),
            11);
}

TEST_F(TableTest, TellsWhatIsWrongWithASqliteTable) {
  sql("stock.db",
      "create table food(name, cents); insert into food values"
      "('Milk', 'much'), (null, 1), (x'00ff', 2), ('Tofu', 3), ('tofu', 4)");
  EXPECT_EQ(errorsOf("stock.db#food", {{"parameter", "price(name) = cents"}}),
            "stock.db#food: row 1: cents: 'much' is not a number\n"
            "stock.db#food: row 2: name: is empty, expected a label (the empty label is written "
            "\"\")\n"
            "stock.db#food: row 3: name: is a blob, expected a text or a number\n"
            "stock.db#food: row 5: record (\"Tofu\") of price stands in row 4 already (the case of "
            "letters does not matter)\n"
            "none.rxf: not written: 4 problems in the input");
  EXPECT_EQ(errorsOf("stock.db#drinks", price), "stock.db: no table 'drinks'; its tables are food");
  EXPECT_EQ(errorsOf("stock.db#food", price),
            "stock.db#food: no column 'food'; the columns are name, cents\n"
            "none.rxf: not written: 1 problem in the input");
  EXPECT_THAT(errorsOf("stock.db#select nope from food", price),
              HasSubstr("stock.db#select nope from food: SQLite: no such column: nope"));
  EXPECT_THAT(errorsOf("stock.db#with x as (select 1) delete from food", price),
              HasSubstr("expected a query that only reads"));
  EXPECT_THAT(errorsOf("stock.db", {}), HasSubstr("no whole database was written to it"));
  write("no.db", std::string(5000, 'x'));
  EXPECT_EQ(errorsOf("no.db", {}), "no.db: SQLite: file is not a database");
  const std::string whole = read("stock.db");
  write("cut.db", whole.substr(0, 5000));
  EXPECT_THAT(errorsOf("cut.db#food", {{"parameter", "price(name) = cents"}}),
              HasSubstr("cut.db: is cut short: it has 5000 bytes of 8192"));
}

TEST_F(TableTest, TellsOfWholeNumbersOfSqliteThatNoDoubleHolds) {
  sql("ids.db",
      "create table t(a text, v integer);"
      "insert into t values('x', 9007199254740993), ('y', -9223372036854775807),"
      "('z', -9223372036854775808), ('u', 9223372036854775807), ('v', 9007199254740992)");
  Job job({{"from", folder_.file("ids.db")}, {"parameter", "p(a) = v"}});
  ASSERT_TRUE(job.import(folder_.file("ids.rxf"))) << job.errors(folder_);
  EXPECT_EQ(job.warnings(folder_),
            "ids.db#t: row 1: warning: v: 9007199254740993 is no double, the nearest one is taken\n"
            "ids.db#t: row 2: warning: v: -9223372036854775807 is no double, the nearest one is "
            "taken\n"
            "ids.db#t: row 4: warning: v: 9223372036854775807 is no double, the nearest one is "
            "taken\n");
  Job units({{"from", folder_.file("ids.db#select * from t where a = 'x'")},
             {"units", "v = 0.5"},
             {"parameter", "p(a) = v"}});
  ASSERT_TRUE(units.import(folder_.file("ids.rxf"))) << units.errors(folder_);
  EXPECT_THAT(units.warnings(folder_), HasSubstr("v: 9007199254740993 is no double"));
  // As labels they keep each digit.
  const ztb::Database read = imported("ids.db#t", {{"set", "s(v)"}});
  EXPECT_TRUE(read["s"].find("9007199254740993").has_value());
}

TEST_F(TableTest, DestroysNoTablesOfAnotherProgram) {
  ztb::Database database;
  ztb::Symbol stock = database.addParameter("stock", {"food", "year"});
  stock.add("Milk", "2020").setLevel(1);
  const auto exported = [&](const std::string& file, const Options& options) {
    Options all{{"to", folder_.file(file)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    job.exportDatabase(database.handle());
    return job.errors(folder_);
  };
  const Options one{{"symbol", "stock"}};
  const Options wide{{"symbol", "stock"}, {"wide", "year"}};
  const std::string refusal =
      " has tables that no export wrote and that would be lost: shipments; give another file, and "
      "its tables can be put together in SQL";
  sql("own.db", "create table shipments(food text); insert into shipments values ('Tofu')");
  for (const Options& options : {one, wide, Options{{"all", ""}}}) {
    EXPECT_EQ(exported("own.db", options), "own.db:" + refusal);
  }
  EXPECT_EQ(imported("own.db", {{"set", "f(food)"}})["f"].recordCount(), 1);
  // What was exported is replaced, unless something of another program stands in it by now.
  for (const Options& options : {one, wide}) {
    const std::string file = options.size() == 1 ? "one.db" : "wide.db";
    EXPECT_EQ(exported(file, options), "");
    EXPECT_EQ(exported(file, options), "");
    sql(file, "create view shipments as select 1");
    EXPECT_EQ(exported(file, options), file + ":" + refusal);
  }
  // So is a file that is no database.
  write("text.db", formatstest::foods);
  EXPECT_EQ(exported("text.db", one), "");
  write("empty.db", "");
  EXPECT_EQ(exported("empty.db", one), "");
}

TEST_F(TableTest, ReadsATableWhosePagesStandInTheLogOfSqlite) {
  sqlite3* file = nullptr;
  ASSERT_EQ(sqlite3_open(folder_.file("live.db").c_str(), &file), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(file,
                         "pragma journal_mode = wal; create table t(food, cents); "
                         "insert into t values('Milk', 11)",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  // The program that has it open has not moved them into the file.
  const ztb::Database read = imported("live.db#t", price);
  EXPECT_EQ(read["price"].find("Milk")->level(), 11);
  sqlite3_close(file);
}

TEST_F(TableTest, LeavesNothingBesideASqliteFileThatKeepsALog) {
  sql("logged.db",
      "pragma journal_mode = wal; create table t(food, cents); insert into t values('Milk', 11)");
  const std::string before = read("logged.db");
  EXPECT_EQ(imported("logged.db#t", price)["price"].find("Milk")->level(), 11);
  EXPECT_FALSE(std::filesystem::exists(folder_.file("logged.db-wal")));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("logged.db-shm")));
  EXPECT_TRUE(read("logged.db") == before);
  // As in a folder that nothing can be written to: there can be no index of the log.
  std::filesystem::rename(folder_.file("logged.db"), folder_.file("a #100%.db"));
  std::filesystem::create_directory(folder_.file("a #100%.db-shm"));
  EXPECT_EQ(imported("a #100%.db#t", price)["price"].find("Milk")->level(), 11);
}

// The pages in the log would be taken for the newest of the file that was exported.
TEST_F(TableTest, LeavesASqliteFileThatALogBelongsTo) {
  ztb::Database database;
  ztb::Symbol cost = database.addParameter("price", {"food"});
  cost.add("Milk").setLevel(11);
  const auto exported = [&](const std::string& file) {
    Job job({{"symbol", "price"}, {"to", folder_.file(file)}});
    job.exportDatabase(database.handle());
    return job.errors(folder_);
  };
  const auto refusal = [](const std::string& file, const std::string& log) {
    return file + ": beside it stands the log " + log +
           ", which SQLite would apply to the new file; let the program that has the file open "
           "close it, or remove the log";
  };
  for (const char* file : {"wal.db", "rollback.db"}) EXPECT_EQ(exported(file), "");
  sql("wal.db", "pragma journal_mode = wal");
  const auto open = [&](const char* file, const char* statements) {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(folder_.file(file).c_str(), &opened), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(opened, statements, nullptr, nullptr, nullptr), SQLITE_OK);
    return opened;
  };
  sqlite3* wal = open("wal.db", "update price set value = 5");
  // Pages go to the file while the transaction is not at its end.
  sqlite3* rollback = open("rollback.db",
                           "pragma cache_size = 1; begin; create table t(a); insert into t select "
                           "randomblob(9000) from price; update price set value = 5");
  cost.find("Milk")->setLevel(12);
  EXPECT_EQ(exported("wal.db"), refusal("wal.db", "wal.db-wal"));
  EXPECT_EQ(imported("wal.db", {{"parameter", "price(food)"}})["price"].find("Milk")->level(), 5);
  // A log that lost its file waits for the next one of the name.
  std::filesystem::copy_file(folder_.file("wal.db-wal"), folder_.file("gone.db-wal"));
  EXPECT_EQ(exported("gone.db"), refusal("gone.db", "gone.db-wal"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("gone.db")));
  std::filesystem::copy_file(folder_.file("rollback.db-journal"), folder_.file("lost.db-journal"));
  EXPECT_EQ(exported("lost.db"), refusal("lost.db", "lost.db-journal"));
  sqlite3_close(wal);
  sqlite3_close(rollback);
  for (const char* file : {"wal.db", "rollback.db"}) {
    EXPECT_EQ(exported(file), "");
    EXPECT_EQ(imported(file, {{"parameter", "price(food)"}})["price"].find("Milk")->level(), 12);
  }
}

TEST_F(TableTest, RefusesQueriesOfSqliteWithParameters) {
  sql("stock.db", "create table t(food, cents); insert into t values('Milk', 11)");
  EXPECT_EQ(errorsOf("stock.db#select * from t where food = :food", price),
            "stock.db#select * from t where food = :food: expected a query without parameters, "
            "found :food");
  EXPECT_THAT(errorsOf("stock.db#select * from t where food = ?", price),
              HasSubstr("expected a query without parameters, found ?"));
}

}  // namespace
