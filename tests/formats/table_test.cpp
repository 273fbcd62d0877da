// Tables of each format through one grammar of columns: what is made of them, and what is told of
// those that are wrong.

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <zlib.h>
#include <zstd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"

namespace {

using formatstest::Job;
using formatstest::Options;
using testing::HasSubstr;
using testing::StartsWith;

class TableTest : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& content) {
    std::ofstream(folder_.file(name), std::ios::binary) << content;
  }
  std::string read(const std::string& name) {
    std::ostringstream content;
    content << std::ifstream(folder_.file(name), std::ios::binary).rdbuf();
    return content.str();
  }
  void gzip(const std::string& name, const std::string& content) {
    gzFile file = gzopen(folder_.file(name).c_str(), "wb");
    gzwrite(file, content.data(), static_cast<unsigned>(content.size()));
    gzclose(file);
  }
  void sql(const std::string& name, const char* statements) {
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(folder_.file(name).c_str(), &file), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(file, statements, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(file);
    sqlite3_close(file);
  }

  // Imports a source with options behind it and opens what was made.
  ztb::Database imported(const std::string& source, const Options& options) {
    Options all{{"from", folder_.file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    const std::string out = folder_.file("out" + std::to_string(++outs_) + ".rxf");
    EXPECT_TRUE(job.import(out)) << job.errors(folder_);
    return ztb::Database::open(out);
  }
  // What is told of an import that fails and leaves nothing.
  std::string errorsOf(const std::string& source, const Options& options) {
    Options all{{"from", folder_.file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    EXPECT_FALSE(job.import(folder_.file("none.rxf")));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("none.rxf")));
    return job.errors(folder_);
  }

  ztbtest::TempFolder folder_;
  // Files that were made: one that is open cannot be replaced everywhere.
  int outs_ = 0;
};

const Options price{{"parameter", "price(food) = cents"}};
constexpr const char* foods = "food,cents\nMilk,11\nTofu,7.5\n";

TEST_F(TableTest, ReadsPackedTables) {
  gzip("a.csv.gz", foods);
  EXPECT_EQ(imported("a.csv.gz", price)["price"].find("Tofu")->level(), 7.5);
  std::string packed(1000, '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), foods, std::strlen(foods), 1));
  write("a.csv.zst", packed);
  EXPECT_EQ(imported("a.csv.zst", price)["price"].find("Milk")->level(), 11);
  write("a.tsv", "food\tcents\nMilk\t3\n");
  EXPECT_EQ(imported("a.tsv", price)["price"].find("Milk")->level(), 3);
}

TEST_F(TableTest, TellsPackedTablesThatAreDamagedOrCutShort) {
  gzip("a.csv.gz", foods);
  const std::string whole = read("a.csv.gz");
  write("cut.csv.gz", whole.substr(0, whole.size() - 9));
  EXPECT_EQ(errorsOf("cut.csv.gz", price), "cut.csv.gz: cannot be unpacked: the file is cut short");
  std::string wrong = whole;
  wrong[wrong.size() - 6] = static_cast<char>(wrong[wrong.size() - 6] ^ 1);
  write("wrong.csv.gz", wrong);
  EXPECT_EQ(errorsOf("wrong.csv.gz", price),
            "wrong.csv.gz: cannot be unpacked: incorrect data check");
  write("no.csv.zst", foods);
  EXPECT_EQ(errorsOf("no.csv.zst", price),
            "no.csv.zst: cannot be unpacked: Unknown frame descriptor");
}

TEST_F(TableTest, TellsARecordThatFillsMemory) {
  gzip("bomb.csv.gz", "food,cents\n\"" + std::string(70U << 20U, 'x'));
  EXPECT_EQ(errorsOf("bomb.csv.gz", price), "bomb.csv.gz:2: the record has more than 64 MiB");
}

TEST_F(TableTest, TellsTheBeginningOfVeryManyColumns) {
  std::string header = "c0";
  for (int column = 1; column < 1000000; ++column) header += ",c" + std::to_string(column);
  write("many.csv", header + "\n");
  EXPECT_EQ(
      errorsOf("many.csv", {{"set", "food"}}),
      "many.csv:1:1: no column 'food'; the columns are c0, c1, c2, c3, c4, c5, c6, c7, c8, c9, "
      "c10, c11, c12, c13, c14, c15, c16, c17, c18, c19 and 999980 more\n"
      "none.rxf: not written: 1 problem in the input");
}

TEST_F(TableTest, WritesTablesThatAreReadBack) {
  ztb::Database database;
  ztb::Symbol symbol = database.addParameter("price", {"food"});
  symbol.add("Milk").setLevel(11.25);
  symbol.add("a;b").setLevel(0);
  for (const char* target : {"p.csv", "p.csv.gz", "p.csv.zst", "p.tsv", "p.tsv.gz", "p.jsonl"}) {
    Job job({{"symbol", "price"}, {"to", folder_.file(target)}});
    ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder_);
    EXPECT_EQ(job.counted(ZTB_FORMATS_RECORDS), 2);
    const ztb::Database back = imported(target, {{"parameter", "price(food)"}});
    EXPECT_EQ(back["price"].find("Milk")->level(), 11.25) << target;
    EXPECT_EQ(back["price"].recordCount(), 2) << target;
  }
  Job job(
      {{"symbol", "price"}, {"to", folder_.file("q.csv")}, {"separator", ";"}, {"decimal", ","}});
  ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder_);
  EXPECT_EQ(read("q.csv"), "food;value\nMilk;11,25\n\"a;b\";0\n");
}

TEST_F(TableTest, TakesTheColumnOfTheNameBeforeThatOfValues) {
  write("both.csv", "food,value,price\nMilk,1,2\n");
  EXPECT_EQ(imported("both.csv", {{"parameter", "price(food)"}})["price"].find("Milk")->level(), 2);
  EXPECT_EQ(imported("both.csv", {{"parameter", "cost(food)"}})["cost"].find("Milk")->level(), 1);
  // Labels of a position are no values.
  EXPECT_EQ(errorsOf("both.csv", {{"parameter", "cost(value)"}}),
            "both.csv:1:1: no column 'cost'; the columns are food, value, price\n"
            "none.rxf: not written: 1 problem in the input");
  write("neither.csv", "food,cents\nMilk,1\n");
  EXPECT_EQ(errorsOf("neither.csv", {{"parameter", "price(food)"}}),
            "neither.csv:1:1: no column 'price' or 'value'; the columns are food, cents\n"
            "none.rxf: not written: 1 problem in the input");
  write("twice.csv", "food,value,Value\nMilk,1,2\n");
  EXPECT_EQ(imported("twice.csv", {{"parameter", "price(food)"}})["price"].find("Milk")->level(),
            1);
  write("folded.csv", "food,VALUE,Value\nMilk,1,2\n");
  EXPECT_EQ(errorsOf("folded.csv", {{"parameter", "price(food)"}}),
            "folded.csv:1:1: more than one column 'value'; the columns are food, VALUE, Value\n"
            "none.rxf: not written: 1 problem in the input");
}

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
              HasSubstr("stock.db: SQLite: no such column: nope"));
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

TEST_F(TableTest, ReadsJsonLines) {
  write("a.jsonl",
        "\xEF\xBB\xBF{\"food\":\"Milk\",\"year\":2020,\"cents\":11.5}\r\n\n"
        "{\"cents\":\"eps\",\"food\":\"T\\u00f6fu\",\"year\":2021}\n"
        "{\"cents\":null,\"food\":\"Lard\",\"year\":2021}\n");
  const ztb::Database database =
      imported("a.jsonl", {{"skip-empty", ""}, {"parameter", "price(food, year) = cents"}});
  EXPECT_EQ(database["price"].recordCount(), 2);
  EXPECT_EQ(database["price"].find("Milk", "2020")->level(), 11.5);
  EXPECT_EQ(database["price"]
                .find("T\xC3\xB6"
                      "fu",
                      "2021")
                ->level(),
            5e-324);
}

TEST_F(TableTest, KeepsTheSignOfAZeroInJsonLines) {
  write("a.jsonl", "{\"food\":\"Milk\",\"cents\":-0}\n{\"food\":-0,\"cents\":0}\n");
  const ztb::Database database = imported("a.jsonl", price);
  EXPECT_TRUE(std::signbit(database["price"].find("Milk")->level()));
  EXPECT_FALSE(std::signbit(database["price"].find("-0")->level()));
}

TEST_F(TableTest, TellsOfWholeNumbersOfJsonLinesThatNoDoubleHolds) {
  write("a.jsonl",
        "{\"food\":9007199254740993,\"cents\":9007199254740993}\n"
        "{\"food\":12345678901234567890123,\"cents\":-12345678901234567890123}\n"
        "{\"food\":1.50,\"cents\":9007199254740994}\n"
        "{\"food\":1e3,\"cents\":1e23}\n");
  Job job({{"from", folder_.file("a.jsonl")}, {"parameter", "price(food) = cents"}});
  ASSERT_TRUE(job.import(folder_.file("a.rxf"))) << job.errors(folder_);
  EXPECT_EQ(job.warnings(folder_),
            "a.jsonl:1: warning: cents: 9007199254740993 is no double, the nearest one is taken\n"
            "a.jsonl:2: warning: cents: -12345678901234567890123 is no double, the nearest one is "
            "taken\n");
  const ztb::Database read = ztb::Database::open(folder_.file("a.rxf"));
  EXPECT_EQ(read["price"].find("9007199254740993")->level(), 9007199254740992.0);
  EXPECT_EQ(read["price"].find("12345678901234567890123")->level(), -12345678901234567890123.0);
  EXPECT_TRUE(read["price"].find("1.5").has_value());
  EXPECT_TRUE(read["price"].find("1000").has_value());
  write("b.jsonl", "{\"food\":\"Milk\",\"cents\":1}\n{\"food\":\"Tofu\",\"cents\":-1e999}\n");
  EXPECT_THAT(errorsOf("b.jsonl", price),
              StartsWith("b.jsonl:2: the number '-1e999' is outside the range of a double\n"));
}

TEST_F(TableTest, TakesVeryManyKeysOfJsonLines) {
  std::string line = "{\"food\":\"Milk\"";
  for (int column = 0; column < 1000000; ++column) {
    line += ",\"c" + std::to_string(column) + "\":" + std::to_string(column);
  }
  write("many.jsonl", line + "}\n" + "{\"food\":\"Tofu\",\"c999999\":7,\"c3\":1}\n");
  const ztb::Database database = imported("many.jsonl", {{"parameter", "price(food) = c999999"}});
  EXPECT_EQ(database["price"].find("Milk")->level(), 999999);
  EXPECT_EQ(database["price"].find("Tofu")->level(), 7);
  write("twice.jsonl", line.substr(0, line.find(",\"c100\"")) + ",\"c77\":1}\n");
  EXPECT_THAT(errorsOf("twice.jsonl", price),
              HasSubstr("twice.jsonl:1: has the key 'c77' twice\n"));
}

TEST_F(TableTest, TellsWhatIsWrongWithJsonLines) {
  write("a.jsonl",
        "{\"food\":\"Milk\",\"cents\":1}\n"
        "{\"food\":\"Tofu\",\"cents\":\n"
        "[1]\n"
        "{\"food\":\"Tofu\",\"cents\":{}}\n"
        "{\"food\":\"Tofu\",\"cents\":[\"1\"]}\n"
        "{\"food\":\"Tofu\",\"food\":\"x\"}\n"
        "{\"food\":\"Tofu\",\"price\":3}\n"
        "{\"food\":\"\xFF\",\"cents\":3}\n"
        "{\"food\":\"Ham\",\"cents\":\"x\"}\n");
  const std::string errors = errorsOf("a.jsonl", price);
  EXPECT_THAT(errors, HasSubstr("a.jsonl:2: is no JSON from char "));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:3: is no object\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:4: holds an object within the object\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:5: cents: is an array, expected a text or a number\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:6: has the key 'food' twice\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:7: the first line has no key 'price'\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:8: is no JSON from char "));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:9: cents: 'x' is not a number\n"));
  EXPECT_THAT(errors, HasSubstr("none.rxf: not written: 8 problems in the input"));
}

TEST_F(TableTest, TellsLinesThatMakeNoDatabase) {
  write("a.jsonl",
        "{\"symbol\":\"p\",\"type\":\"parameter\",\"domains\":[\"*\"],\"user_info\":0}\n"
        "{\"of\":\"q\",\"keys\":[\"a\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"a\",\"b\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"\\\\a\\\\q\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"a\"]}\n"
        "{\"food\":\"Milk\"}\n"
        "{\"symbol\":\"s\",\"type\":\"thing\"}\n"
        "{\"symbol\":\"t\",\"type\":\"set\",\"user_info\":1.5}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:2: of: no line before tells of a symbol 'q'\n"
            "a.jsonl:3: keys: has 2 labels, expected 1\n"
            "a.jsonl:4: keys: a backslash stands before no escape\n"
            "a.jsonl:6: has none of the keys symbol, label and of\n"
            "a.jsonl:7: type: expected set, parameter, variable, equation or alias\n"
            "a.jsonl:8: user_info: is no whole number\n"
            "a.jsonl:5: value: is empty, expected a number\n"
            "none.rxf: not written: 7 problems in the input");
  write("b.jsonl", "\n\n");
  EXPECT_EQ(errorsOf("b.jsonl", {}),
            "b.jsonl: has no line of a symbol or label: it holds no whole database\n"
            "none.rxf: not written: 1 problem in the input");
}

// Cut behind a line, where nothing else shows it.
TEST_F(TableTest, TellsThatTheEndOfADatabaseIsMissing) {
  const std::string catalogue =
      "{\"symbols\":2,\"labels\":2}\n"
      "{\"symbol\":\"p\",\"type\":\"parameter\",\"domains\":[\"*\"],\"records\":2}\n";
  const std::string symbols =
      catalogue + "{\"symbol\":\"s\",\"type\":\"set\",\"domains\":[\"*\"],\"records\":0}\n";
  const std::string labels = symbols + "{\"label\":\"a\"}\n{\"label\":\"b\"}\n";
  const std::string record = "{\"of\":\"p\",\"keys\":[\"a\"],\"value\":1}\n";
  write("a.jsonl", labels + record);
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:2: tells of 2 records of p, the file has 1: its end is missing\n"
            "none.rxf: not written: 1 problem in the input");
  write("a.jsonl", symbols + "{\"label\":\"a\"}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:1: tells of 2 labels, the file has 1: its end is missing\n"
            "a.jsonl:2: tells of 2 records of p, the file has 0: its end is missing\n"
            "none.rxf: not written: 2 problems in the input");
  write("a.jsonl", catalogue);
  EXPECT_THAT(errorsOf("a.jsonl", {}),
              HasSubstr("a.jsonl:1: tells of 2 symbols, the file has 1: its end is missing\n"));
  write("a.jsonl", "{\"symbols\":1,\"labels\":0}\n");
  EXPECT_THAT(errorsOf("a.jsonl", {}),
              HasSubstr("a.jsonl:1: tells of 1 symbol, the file has 0: its end is missing\n"));
  write("a.jsonl",
        "{\"symbols\":\"2\"}\n{\"symbol\":\"s\",\"type\":\"set\",\"records\":1.5}\n"
        "{\"symbols\":0,\"labels\":-1}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:1: symbols: is no count\n"
            "a.jsonl:2: records: is no count\n"
            "a.jsonl:3: labels: is no count\n"
            "none.rxf: not written: 3 problems in the input");
  // A record that was added by hand is taken.
  const std::string other = "{\"of\":\"p\",\"keys\":[\"b\"],\"value\":2}\n";
  write("a.jsonl", labels + record + other + "{\"of\":\"s\",\"keys\":[\"b\"]}\n");
  EXPECT_EQ(imported("a.jsonl", {}).symbol("s").recordCount(), 1);
}

TEST_F(TableTest, TakesNumbersInAnotherUnit) {
  write("a.csv", "food,tons,cents\nMilk,1.5,7\nTofu,inf,eps\nHam,0,-29\n");
  const ztb::Database stock = imported("a.csv", {{"rename", "food = dish"},
                                                 {"units", "tons = 1000"},
                                                 {"units", "CENTS=1/100"},
                                                 {"parameter", "kilos(dish) = tons"},
                                                 {"parameter", "price(dish) = cents"}});
  EXPECT_EQ(stock["kilos"].find("Milk")->level(), 1500);
  EXPECT_EQ(stock["kilos"].find("Tofu")->level(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(stock["kilos"].find("Ham")->level(), 0);
  EXPECT_EQ(stock["price"].find("Milk")->level(), 0.07);  // 7 * 0.01 is another double
  EXPECT_EQ(stock["price"].find("Tofu")->level(), 4.94065645841246544e-324);
  EXPECT_EQ(stock["price"].find("Ham")->level(), -0.29);
  // The cells of a wide table, with their own sign for the fraction.
  write("w.csv", "food;2020;2021\nMilk;1,5;2\n");
  const ztb::Database wide = imported("w.csv", {{"separator", ";"},
                                                {"decimal", ","},
                                                {"wide", "year"},
                                                {"units", "value = -2"},
                                                {"parameter", "p(food, year)"}});
  EXPECT_EQ(wide["p"].find("Milk", "2020")->level(), -3);
  EXPECT_EQ(wide["p"].find("Milk", "2021")->level(), -4);
}

TEST_F(TableTest, TellsNumbersThatAreNoneInAnotherUnit) {
  write("a.csv", "food,tons\nMilk,1e308\nTofu,much\nHam,1e-320\n");
  const std::pair<std::string, std::string> spec{"parameter", "p(food) = tons"};
  EXPECT_EQ(errorsOf("a.csv", {{"units", "tons = 1000"}, spec}),
            "a.csv:2:6: tons: is too large or too small in the other unit\n"
            "a.csv:3:6: tons: 'much' is not a number\n"
            "none.rxf: not written: 2 problems in the input");
  EXPECT_THAT(errorsOf("a.csv", {{"units", "tons = 1/1000000"}, spec}),
              HasSubstr("a.csv:4:5: tons: is too large or too small in the other unit\n"));
  EXPECT_THAT(errorsOf("a.csv", {{"units", "kilos = 2"}, spec}),
              HasSubstr("a.csv:1:1: no column 'kilos' of another unit\n"));
  for (const char* units : {"tons", "= 2", "tons = ", "tons = 0", "tons = inf", "tons = 1/",
                            "tons = 1/0", "tons = x", "tons = 1/2/3"}) {
    EXPECT_EQ(errorsOf("a.csv", {{"units", units}, spec}),
              "--units " + std::string(units) +
                  ": expected COLUMN = NUMBER or COLUMN = NUMBER/NUMBER, none of them 0");
  }
}

TEST_F(TableTest, TurnsWideTablesIntoRecords) {
  write("wide.csv", "from,note,2020,2021\nLIS,x,1,2\nOPO,y,,4\n");
  const Options options{{"rename", "from = origin"},
                        {"wide", "year: 2020, 2021"},
                        {"parameter", "flow(origin, year)"}};
  const ztb::Database database = imported("wide.csv", options);
  EXPECT_EQ(database["flow"].recordCount(), 3);
  EXPECT_EQ(database["flow"].find("LIS", "2021")->level(), 2);
  EXPECT_EQ(database["flow"].find("OPO", "2021")->level(), 4);
  EXPECT_EQ(database["flow"].domains()[0].name, "origin");
  sql("wide.db", "create table t(a, \"2020\", \"2021\"); insert into t values('LIS', 1, null)");
  const ztb::Database other =
      imported("wide.db", {{"wide", "year"}, {"parameter", "flow(a, year)"}});
  EXPECT_EQ(other["flow"].recordCount(), 1);
  EXPECT_EQ(other["flow"].find("LIS", "2020")->level(), 1);
  EXPECT_EQ(errorsOf("wide.csv", {{"wide", "year"}, {"parameter", "flow(from, year)"}}),
            "wide.csv:2:5: value: 'x' is not a number\n"
            "wide.csv:3:5: value: 'y' is not a number\n"
            "none.rxf: not written: 2 problems in the input");
  EXPECT_THAT(errorsOf("wide.csv", {{"wide", "year: 1999"}, {"parameter", "flow(from, year)"}}),
              HasSubstr("wide.csv:1:1: no column '1999' to spread\n"));
  EXPECT_THAT(errorsOf("wide.csv", {{"rename", "to=x"}, {"parameter", "flow(from) = 2020"}}),
              HasSubstr("wide.csv:1:1: no column 'to' to rename\n"));
  write("short.csv", "from,2020\nLIS\n");
  EXPECT_EQ(errorsOf("short.csv", {{"wide", "year"}, {"parameter", "flow(from, year)"}}),
            "short.csv:2:1: has 1 field, the header has 2\n"
            "none.rxf: not written: 1 problem in the input");
}

TEST_F(TableTest, WritesWideTables) {
  ztb::Database database;
  ztb::Symbol flow = database.addParameter("flow", {"from", "year"});
  flow.add("LIS", "2020").setLevel(1);
  flow.add("OPO", "2021").setLevel(4);
  flow.add("LIS", "2021").setLevel(2);
  database.addSet("s", {"*"});
  for (const char* position : {"year", "2"}) {
    Job job({{"symbol", "flow"}, {"wide", position}, {"to", folder_.file("w.csv")}});
    ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder_);
    EXPECT_EQ(read("w.csv"), "from,2020,2021\nLIS,1,2\nOPO,,4\n");
  }
  Job wrong({{"symbol", "flow"}, {"wide", "town"}, {"to", folder_.file("x.csv")}});
  EXPECT_FALSE(wrong.exportDatabase(database.handle()));
  EXPECT_EQ(wrong.errors(folder_),
            "--wide town: flow has no such position; its positions are from, year");
  EXPECT_TRUE(wrong.isUsage());
  Job set({{"symbol", "s"}, {"wide", "1"}, {"to", folder_.file("x.csv")}});
  EXPECT_FALSE(set.exportDatabase(database.handle()));
  EXPECT_EQ(set.errors(folder_), "--wide 1: s is a set, which has no values");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("x.csv")));
}

TEST_F(TableTest, WritesManyRecordsInTheirOrder) {
  // More than a block, written by several threads.
  constexpr int records = 100000;
  ztb::Database database;
  std::vector<int> keys{0, database.mergeLabel("a;\"b\"")};
  const std::string quoted = "\"a;\"\"b\"\"\"";
  ztb::Symbol value = database.addParameter("v", {"i", "j"});
  ztb::Symbol set = database.addSet("s", {"i", "j"});
  std::string values = "i;j;value\n";
  std::string texts = "i;j;text\n";
  for (int record = 0; record < records; ++record) {
    const std::string label = "i" + std::to_string(record);
    keys[0] = database.mergeLabel(label);
    value.put(keys, record + 0.5);
    set.putElement(keys, record % 2 == 0 ? "t;" : "");
    values += label + ';' + quoted + ';' + std::to_string(record) + ",5\n";
    texts += label + ';' + quoted + (record % 2 == 0 ? ";\"t;\"\n" : ";\n");
  }
  for (const auto& [symbol, expected] : {std::pair("v", values), std::pair("s", texts)}) {
    Job job(
        {{"symbol", symbol}, {"to", folder_.file("a.csv")}, {"separator", ";"}, {"decimal", ","}});
    ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder_);
    EXPECT_EQ(job.counted(ZTB_FORMATS_RECORDS), records);
    // Not EXPECT_EQ: what differs would be shown whole.
    EXPECT_TRUE(read("a.csv") == expected) << symbol;
  }
}

TEST_F(TableTest, TellsMissingCellsOfWideTablesFromWhatIsNotAvailable) {
  for (const char* target : {"w.csv", "w.db", "w.jsonl", "w.xlsx"}) {
    ztb::Database database;
    ztb::Symbol flow = database.addParameter("flow", {"from", "year"});
    flow.add("LIS", "2020").setLevel(1);
    flow.add("LIS", "2021").setLevel(std::nan(""));
    flow.add("OPO", "2021").setLevel(4);
    Job out({{"symbol", "flow"}, {"wide", "year"}, {"to", folder_.file(target)}});
    ASSERT_TRUE(out.exportDatabase(database.handle())) << out.errors(folder_);
    const ztb::Database back =
        imported(target, {{"wide", "year"}, {"parameter", "flow(from, year) = value"}});
    EXPECT_EQ(back["flow"].recordCount(), 3) << target;
    EXPECT_TRUE(std::isnan(back["flow"].find("LIS", "2021")->level())) << target;
  }
}

TEST_F(TableTest, TellsLabelsThatCannotBeColumnsOfAWideTable) {
  ztb::Database database;
  ztb::Symbol flow = database.addParameter("flow", {"from", "year"});
  flow.add("LIS", "From").setLevel(1);
  Job taken({{"symbol", "flow"}, {"wide", "year"}, {"to", folder_.file("w.jsonl")}});
  EXPECT_FALSE(taken.exportDatabase(database.handle()));
  EXPECT_EQ(taken.errors(folder_),
            "--wide year: the label 'From' of flow cannot be a column: the keys have one of this "
            "name");
  ztb::Database unnamed;
  const int none = unnamed.mergeLabel("");
  const int town = unnamed.mergeLabel("LIS");
  unnamed.addParameter("flow", {"from", "year"}).put(std::vector<int>{town, none}, 1);
  Job empty({{"symbol", "flow"}, {"wide", "year"}, {"to", folder_.file("w.jsonl")}});
  EXPECT_FALSE(empty.exportDatabase(unnamed.handle()));
  EXPECT_EQ(empty.errors(folder_),
            "--wide year: the label '' of flow cannot be a column: a column needs a name");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("w.jsonl")));
}

TEST_F(TableTest, TakesDatesAsIsoLabels) {
  write("d.csv", "day,v\n1.3.2024,1\n29/02/2024,2\n30-02-2024,3\n2024-03-05,4\n1.3/2024,5\n");
  const ztb::Database database = imported("d.csv", {{"dates", "dmy"}, {"parameter", "p(day) = v"}});
  EXPECT_EQ(database["p"].find("2024-03-01")->level(), 1);
  EXPECT_EQ(database["p"].find("2024-02-29")->level(), 2);
  EXPECT_EQ(database["p"].find("30-02-2024")->level(), 3);
  EXPECT_EQ(database["p"].find("2024-03-05")->level(), 4);
  EXPECT_EQ(database["p"].find("1.3/2024")->level(), 5);
  write("e.csv", "day,v\n3/1/2024,1\n");
  EXPECT_EQ(imported("e.csv", {{"dates", "mdy"}, {"parameter", "p(day) = v"}})["p"]
                .find("2024-03-01")
                ->level(),
            1);
}

TEST_F(TableTest, TellsOptionsThatMakeNoSense) {
  write("a.csv", foods);
  const auto fault = [&](const Options& options) {
    Job job(options);
    EXPECT_FALSE(job.import(folder_.file("none.rxf")) || job.exportFile(folder_.file("a.rxf")));
    EXPECT_TRUE(job.isUsage());
    return job.errors(folder_);
  };
  ztbFormatsJob* job = nullptr;
  ztbFormatsCreate(&job);
  const auto refused = [&](const char* name, const char* value) {
    EXPECT_EQ(ztbFormatsOption(job, name, value), 0);
    EXPECT_EQ(ztbFormatsIsUsage(job), 1);
    return std::string(ztbFormatsMessage(job));
  };
  EXPECT_EQ(refused("colour", "red"), "--colour: no such option");
  EXPECT_EQ(refused("rename", "a=b"), "--rename a=b: a --from FILE must stand before it");
  ztbFormatsOption(job, "from", folder_.file("a.csv").c_str());
  EXPECT_EQ(refused("rename", "a"), "--rename a: expected OLD=NEW");
  EXPECT_EQ(refused("wide", ":"), "--wide :: expected NAME, or NAME: COLUMN, ...");
  EXPECT_EQ(refused("dates", "ydm"), "--dates ydm: expected dmy, mdy or ymd");
  EXPECT_THAT(refused("format", "abc"),
              HasSubstr("--format 'abc': no such format, expected csv, tsv, sqlite"));
  EXPECT_EQ(refused("max-errors", "-1"), "--max-errors -1: expected a whole number");
  EXPECT_EQ(refused("store", "heap"), "--store heap: expected map, vector or trie");
  ztbFormatsFree(&job);
  EXPECT_EQ(fault({{"to", "x.csv"}}), "give the names of symbols, or --all");
  EXPECT_EQ(fault({{"all", ""}}), "nothing to write to: give --to TARGET, or --csv DIR");
}

TEST_F(TableTest, AddsTablesToADatabaseThatIsThere) {
  write("a.csv", "food,cents\nMilk,11\nTofu,0\n");
  write("b.csv", "food,grams\nMilk,5\nHam,9\n");
  ztb::Database database;
  ztb::Symbol food = database.addSet("food", {"*"});
  food.add("Tofu");
  food.add("Milk");
  database.addAlias("dish", food);
  Job job({{"from", folder_.file("a.csv")}, {"check-domains", ""}, {"parameter", price[0].second}});
  ASSERT_TRUE(job.importInto(database.handle())) << job.errors(folder_);
  EXPECT_EQ(job.counted(ZTB_FORMATS_SYMBOLS), 1);
  EXPECT_EQ(database["price"].find("Milk")->level(), 11);
  EXPECT_EQ(database["price"].domains()[0].set->handle(), food.handle());
  EXPECT_EQ(database.symbolCount(), 3);

  // A label outside, and a name that is taken: nothing is added, no label either.
  Job outside(
      {{"from", folder_.file("b.csv")}, {"check-domains", ""}, {"parameter", "w(food) = grams"}});
  EXPECT_FALSE(outside.importInto(database.handle()));
  EXPECT_EQ(outside.errors(folder_),
            "b.csv:3:1: label 'Ham' (position 1 of w) is not in set food\n"
            "nothing is imported: 1 problem in the input");
  EXPECT_EQ(outside.kind(), ZTB_ERROR_DAMAGED_FILE);
  Job taken({{"from", folder_.file("b.csv")}, {"parameter", "price(food) = grams"}});
  EXPECT_FALSE(taken.importInto(database.handle()));
  EXPECT_EQ(taken.errors(folder_), "Symbol price exists already");
  EXPECT_EQ(taken.kind(), ZTB_ERROR_EXISTS);
  EXPECT_EQ(database.symbolCount(), 3);
  EXPECT_EQ(database.labelCount(), 2);
}

TEST_F(TableTest, KeepsValuesWhateverSpecialValuesTheDatabaseHasSet) {
  write("a.csv", "food,cents\nMilk,0\nTofu,eps\n");
  ztb::Database database;
  ztb::SpecialValues values = database.specialValues();
  values[ZTB_EPSILON] = 0.0;
  database.setSpecialValues(values);
  Job job({{"from", folder_.file("a.csv")}, {"parameter", price[0].second}});
  ASSERT_TRUE(job.importInto(database.handle())) << job.errors(folder_);
  EXPECT_EQ(database.userSpecialValues()[ZTB_EPSILON], 0.0);
  database.write(folder_.file("out.rxf"));
  const ztb::Database back = ztb::Database::open(folder_.file("out.rxf"));
  EXPECT_EQ(back["price"].find("Milk")->level(), 0.0);
  EXPECT_EQ(back["price"].find("Tofu")->level(), 5e-324);
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

TEST_F(TableTest, TellsAMissingFileByItsKind) {
  Job job({{"from", folder_.file("none.csv")}, {"set", "x"}});
  EXPECT_FALSE(job.import(folder_.file("none.rxf")));
  EXPECT_EQ(job.errors(folder_), "none.csv: cannot be read: No such file or directory");
  EXPECT_EQ(job.kind(), ZTB_ERROR_NO_FILE);
  EXPECT_FALSE(job.isUsage());
}

TEST_F(TableTest, ListsItsFormats) {
  EXPECT_EQ(ztbFormatOfFile("a.CSV.gz"), 0);
  EXPECT_EQ(ztbFormatOfFile("a.txt"), -1);
  EXPECT_EQ(ztbFormatOfFile(".csv"), -1);
  ztbFormatInfo info{};
  ASSERT_EQ(ztbFormat(ztbFormatOfFile("a.sqlite3"), &info), 1);
  EXPECT_STREQ(info.name, "sqlite");
  EXPECT_EQ(info.abilities, ZTB_FORMAT_READS_TABLES | ZTB_FORMAT_WRITES_TABLES |
                                ZTB_FORMAT_READS_DATABASES | ZTB_FORMAT_WRITES_DATABASES);
  EXPECT_STREQ(info.missingToRead, "");
  EXPECT_EQ(ztbFormat(ztbFormatCount(), &info), 0);
  EXPECT_EQ(ztbFormat(-1, &info), 0);
}

// A big CSV file is read by all processors; "chunk-bytes" makes a small one a big one.
TEST_F(TableTest, FilesInChunksBecomeTheSameFilesAndGiveTheSameErrors) {
  std::string sorted = "i,\"j\",v,w\n";
  std::string mixed = sorted;
  for (int row = 0; row < 300; ++row) {
    const std::string value = std::to_string(row);
    const auto two = [](int number) { return std::to_string(number + 10); };
    sorted += "a" + two(row / 20) + ",b" + two(row % 20) + "," + value + ".1," + value + "\r\n";
    mixed +=
        "\"a," + two(row * 7919 % 30) + "\",B" + two(row * 7919 % 300 / 30) + "," + value + ",na\n";
  }
  const auto result = [&](const std::string& text, Options options, const std::string& chunkBytes) {
    write("big.csv", text);
    options.insert(options.begin(), {"from", folder_.file("big.csv")});
    options.emplace_back("chunk-bytes", chunkBytes);
    Job job(options);
    std::filesystem::remove(folder_.file("big.rxf"));
    if (!job.import(folder_.file("big.rxf"))) return job.errors(folder_);
    return job.warnings(folder_) + read("big.rxf");
  };
  const std::vector<Options> choices{
      {{"parameter", "p(i, j) = v"}},
      {{"parameter", "p(j, i) = w"}, {"parameter", "q(i, j) = v"}},
      {{"distinct-set", "i"}, {"distinct-set", "j"}, {"parameter", "p(i, j) = v"}},
      {{"distinct-set", "j"},
       {"set", "ij(i, j)"},
       {"parameter", "p(i, j) = v"},
       {"check-domains", ""}},
      {{"variable", "positive x(j, i) = upper: v, level: w"}},
      {{"set", "i"}},
      {{"parameter", "p(i) = v"}},
      {{"parameter", "p(v, i, j) = v"}, {"skip-empty", ""}},
      {{"set", "s(i, j) : w"}},
  };
  // Each of the choices in two files, and each of the files that are wrong in one of them.
  const auto expectSame = [&](const std::string& text, const Options& options,
                              const std::string& chunkBytes) {
    EXPECT_EQ(result(text, options, chunkBytes), result(text, options, "1000000"))
        << options[0].second;
  };
  for (const Options& options : choices) {
    expectSame(sorted, options, "333");
    expectSame(mixed, options, "1");
  }
  for (const std::string wrong :
       {"x,y,z,1\n", "A,\"b\nc\"d,1,1\n", "a,b,1\n", "a10,b29,5,\n", "\"\",a10,1,2\n"}) {
    expectSame(sorted + wrong, choices[0], "333");
    expectSame(mixed + wrong, choices[2], "333");
  }
}

}  // namespace
