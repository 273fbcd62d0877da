// Tables of each format through one grammar of columns: what is made of them, and what is told of
// those that are wrong.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zstd.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::foods;
using formatstest::Job;
using formatstest::Options;
using formatstest::price;
using formatstest::TableTest;
using testing::HasSubstr;

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

TEST_F(TableTest, PacksAndUnpacksByEndingsInLettersOfEitherCase) {
  gzip("A.CSV.GZ", foods);
  const ztb::Database database = imported("A.CSV.GZ", price);
  EXPECT_EQ(database["price"].find("Tofu")->level(), 7.5);
  for (const auto& [file, begin] :
       {std::pair("B.CSV.GZ", "\x1F\x8B"), std::pair("B.Jsonl.Zst", "\x28\xB5\x2F\xFD")}) {
    Job out({{"symbol", "price"}, {"to", folder_.file(file)}});
    ASSERT_TRUE(out.exportDatabase(database.handle())) << out.errors(folder_);
    EXPECT_THAT(read(file), testing::StartsWith(begin));
    EXPECT_EQ(imported(file, {{"parameter", "p(food) = value"}})["p"].find("Milk")->level(), 11);
  }
}

TEST_F(TableTest, TellsFilesThatAreNoTextByTheirKinds) {
  gzip("packed.gz", foods);
  sql("stock.db", "create table t(a)");
  for (const auto& [content, kind] :
       {std::pair(read("packed.gz"), "a file packed by gzip, which ends in .gz"),
        std::pair(read("stock.db"), "a SQLite file, which --format sqlite reads"),
        std::pair(std::string("PK\x03\x04"),
                  "a zip file, as workbooks are, which --format xlsx "
                  "reads"),
        std::pair(std::string("PAR1\x15"), "a Parquet file, which --format parquet reads")}) {
    write("a.csv", content);
    EXPECT_EQ(errorsOf("a.csv", price),
              "a.csv: begins as " + std::string(kind) + ", expected a table of text");
  }
  write("a.csv", "PAR1,cents\nMilk,3\n");
  EXPECT_EQ(imported("a.csv", {{"parameter", "p(PAR1) = cents"}})["p"].find("Milk")->level(), 3);
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

TEST_F(TableTest, TellsOptionsOfASourceThatAreGivenTwice) {
  for (const auto& [name, value] : Options{{"wide", "year"}, {"dates", "dmy"}, {"format", "tsv"}}) {
    const std::pair<std::string, std::string> option{name, value};
    Job twice({{"from", "a.csv"}, option, option});
    EXPECT_FALSE(twice.import(folder_.file("none.rxf")));
    EXPECT_TRUE(twice.isUsage());
    EXPECT_EQ(twice.errors(folder_),
              "--" + name + " " + value + ": --" + name + " is given twice for --from a.csv");
    Job others({{"from", "a.csv"}, option, {"from", "b.csv"}, option});
    EXPECT_EQ(others.errors(folder_), "");
  }
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
  EXPECT_EQ(refused("rename", "a="), "--rename a=: expected OLD=NEW");
  EXPECT_EQ(refused("wide", ":"), "--wide :: expected NAME, or NAME: COLUMN, ...");
  EXPECT_EQ(refused("dates", "ydm"), "--dates ydm: expected dmy, mdy or ymd");
  EXPECT_THAT(refused("format", "abc"),
              HasSubstr("--format 'abc': no such format, expected csv, tsv, sqlite"));
  EXPECT_EQ(refused("max-errors", "-1"), "--max-errors -1: expected a whole number");
  EXPECT_EQ(refused("store", "heap"), "--store heap: expected map, vector or trie");
  ztbFormatsFree(&job);
  EXPECT_EQ(fault({{"to", "x.csv"}}), "give the names of symbols, or --all");
  gzip("a.tsv.gz", "food\tcents\n");
  for (const std::string file : {"a.csv", "a.tsv.gz"}) {
    EXPECT_EQ(errorsOf(file + "#select 1", price),
              "--from " + file + "#select 1: " + file +
                  " is a table as a whole, and has no part 'select 1'");
  }
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
  database.addParameter("cost", {"food"});
  Job both({{"from", folder_.file("a.csv")},
            {"parameter", "price(food) = cents"},
            {"parameter", "new(food) = cents"},
            {"parameter", "cost(food) = cents"}});
  EXPECT_FALSE(both.importInto(database.handle()));
  EXPECT_EQ(both.errors(folder_), "Symbols price, cost exist already");
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
