// Parquet files through DuckDB: tables, folders of whole databases, and files that are not what
// they should be. A second reader, which is not DuckDB, looks at what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/parquet/duckdb_session.h"
#include "tests/formats/job.h"

namespace {

using formatstest::Job;
using formatstest::Options;
using testing::HasSubstr;
using testing::StartsWith;

double ofBits(std::uint64_t bits) {
  return std::bit_cast<double>(bits);
}

std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

// What a command prints.
std::string printed(const std::string& command) {
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string text;
  std::array<char, 4096> part{};
  for (std::size_t read = 0; (read = std::fread(part.data(), 1, part.size(), pipe)) > 0;) {
    text.append(part.data(), read);
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return text;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void replace(const std::string& file, const std::string& by) {
  std::filesystem::remove(file);
  std::filesystem::copy_file(by, file);
}

class ParquetTest : public testing::Test {
 protected:
  ParquetTest() {
    ztb::Symbol food = database_.addSet("food", {"*"});
    food.add("Milk").setText("1 qt.");
    food.add("Tofu");
    ztb::Symbol price = database_.addParameter("price", {food, "*"});
    price.add("Milk", "a").setLevel(0.1 + 0.2);
    price.add("Tofu", "b").setLevel(-2);
  }

  std::string rxf() {
    database_.write(folder_.file("a.rxf"));
    return folder_.file("a.rxf");
  }
  void writeFolder() {
    Job out({{"all", ""}, {"to", folder_.file("dir")}, {"format", "parquet"}});
    ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  }
  std::string refusalOfFolder() {
    Job in({{"from", folder_.file("dir")}});
    EXPECT_FALSE(in.import(folder_.file("back.rxf")));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("back.rxf")));
    return in.errors(folder_);
  }
  // A file by the second reader: its rows as JSON, and the encodings and codecs of its columns.
  std::string byOtherReader(const std::string& file) {
    return printed(std::string("node ") + ZTB_READ_PARQUET + " " + ZTB_NODE_MODULES + " '" +
                   folder_.file(file) + "'");
  }

  ztb::Database database_;
  ztbtest::TempFolder folder_;
};

TEST_F(ParquetTest, IsReadByAnotherReader) {
  Job out({{"symbol", "price"}, {"to", folder_.file("price.parquet")}});
  ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  EXPECT_EQ(out.counted(ZTB_FORMATS_RECORDS), 2);
  EXPECT_EQ(byOtherReader("price.parquet"),
            "{\"food\":\"Milk\",\"dim_2\":\"a\",\"value\":0.30000000000000004}\n"
            "{\"food\":\"Tofu\",\"dim_2\":\"b\",\"value\":-2}\n");
}

TEST_F(ParquetTest, HasLabelsInDictionariesAndIsPackedByZstd) {
  ztb::Symbol big = database_.addParameter("big", {"*", "*"});
  for (int i = 0; i < 3000; ++i) {
    big.add("row " + std::to_string(i / 50), "column " + std::to_string(i % 50))
        .setLevel(1.0 / (i + 1));
  }
  Job out({{"symbol", "big"}, {"to", folder_.file("big.parquet")}});
  ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  const std::string columns =
      printed(std::string("node ") + ZTB_READ_PARQUET + " " + ZTB_NODE_MODULES + " '" +
              folder_.file("big.parquet") + "' columns");
  EXPECT_THAT(columns, testing::MatchesRegex("dim_1 ZSTD .*DICTIONARY\n"
                                             "dim_2 ZSTD .*DICTIONARY\n"
                                             "value ZSTD .*\n"));
}

TEST_F(ParquetTest, ComesInAsATable) {
  Job out({{"symbol", "price"}, {"to", folder_.file("price.parquet")}});
  ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  ztb::Database other;
  Job in({{"from", folder_.file("price.parquet")}, {"parameter", "cost(food, dim_2) = value"}});
  ASSERT_TRUE(in.importInto(other.handle())) << in.errors(folder_);
  EXPECT_EQ(other["cost"].find("Milk", "a")->level(), 0.1 + 0.2);
  Job wrong({{"from", folder_.file("price.parquet")}, {"parameter", "c(food) = cents"}});
  EXPECT_FALSE(wrong.importInto(other.handle()));
  EXPECT_THAT(wrong.errors(folder_),
              StartsWith("price.parquet: no column 'cents'; the columns are food, dim_2, value\n"));
  Job twice({{"from", folder_.file("price.parquet")}, {"set", "s(value)"}});
  ASSERT_TRUE(twice.importInto(other.handle())) << twice.errors(folder_);
  EXPECT_TRUE(other["s"].find("-2").has_value());
}

// A file of DuckDB's own, made by a query.
TEST_F(ParquetTest, MovesColumnsOfAllTypesAsRowsWould) {
  const std::string file = folder_.file("flows.parquet");
  formats::DuckdbSession session;
  session.run(
      "copy (select 'n' || (i * 7 % 12) as a, date '2024-02-27' + i::integer as day, "
      "(i % 3)::smallint as b, i::bigint * 1000000 as whole, i / 8.0 as amount, i % 2 = 0 "
      "as even from range(3000) t(i)) to '" +
          file + "' (format parquet)",
      file);
  Job in({{"from", file},
          {"parameter", "flow(b, day, a) = amount"},
          {"variable", "x(day) = level: whole, upper: even"},
          {"distinct-set", "a"}});
  ASSERT_TRUE(in.import(folder_.file("flows.rxf"))) << in.errors(folder_);
  const ztb::Database read = ztb::Database::open(folder_.file("flows.rxf"));
  // Labels are numbered as the rows name them, by the order of the symbols and their keys.
  std::vector<std::string> labels;
  for (int number = 1; number <= 6; ++number) labels.push_back(read.label(number).str());
  EXPECT_THAT(labels, testing::ElementsAre("0", "2024-02-27", "n0", "1", "2024-02-28", "n7"));
  ASSERT_EQ(read["flow"].recordCount(), 3000);
  EXPECT_EQ(read["flow"].find("2", "2024-02-29", "n2")->level(), 0.25);
  EXPECT_EQ(read["flow"].find("2", "2032-05-14", "n5")->level(), 2999 / 8.0);
  EXPECT_EQ(read["x"].find("2024-03-01")->level(), 3e6);
  EXPECT_EQ(read["x"].find("2024-03-01")->upper(), 0);
  EXPECT_EQ(read["x"].find("2024-03-02")->upper(), 1);
  EXPECT_EQ(read["a"].recordCount(), 12);
}

TEST_F(ParquetTest, TellsOfRowsThatColumnsCannotTell) {
  const std::string file = folder_.file("rows.parquet");
  formats::DuckdbSession session;
  const auto errorsOf = [&](const std::string& rows, const std::string& symbol) {
    session.run(
        "copy (select * from (values " + rows + ") t(a, v)) to '" + file + "' (format parquet)",
        file);
    Job in({{"from", file}, {"parameter", symbol}});
    EXPECT_FALSE(in.import(folder_.file("rows.rxf")));
    return in.errors(folder_);
  };
  EXPECT_THAT(errorsOf("('x', 1.5), ('y', null)", "p(a) = v"),
              StartsWith("rows.parquet: row 2: v: is empty, expected a number\n"));
  EXPECT_THAT(errorsOf("('x', 1.5), (null, 2)", "p(a) = v"),
              StartsWith("rows.parquet: row 2: a: is empty, expected a label"));
  EXPECT_THAT(errorsOf("('x', 1.5), ('X', 2)", "p(a) = v"),
              StartsWith("rows.parquet: row 2: record (\"x\") of p stands in row 1 already"));
  EXPECT_THAT(errorsOf("('x', 'one'), ('y', '2')", "p(a) = v"),
              StartsWith("rows.parquet: row 1: v: 'one' is not a number\n"));
  EXPECT_THAT(errorsOf("('x', 1), (repeat('y', 64), 2)", "p(a) = v"),
              StartsWith("rows.parquet: row 2: a: label '"));
}

TEST_F(ParquetTest, TellsOfWholeNumbersThatNoDoubleHolds) {
  const std::string file = folder_.file("whole.parquet");
  formats::DuckdbSession session;
  session.run(
      "copy (select * from (values ('x', 9007199254740993), ('y', 9007199254740994), "
      "('z', 3)) t(a, v)) to '" +
          file + "' (format parquet)",
      file);
  Job in({{"from", file}, {"parameter", "p(a) = v"}});
  ASSERT_TRUE(in.import(folder_.file("whole.rxf"))) << in.errors(folder_);
  const std::string warnings = in.warnings(folder_);
  EXPECT_THAT(warnings, HasSubstr("whole.parquet: row 1: warning: v: 9007199254740993 is no "
                                  "double, the nearest one is taken\n"));
  EXPECT_EQ(std::count(warnings.begin(), warnings.end(), '\n'), 1);
  const ztb::Database read = ztb::Database::open(folder_.file("whole.rxf"));
  EXPECT_EQ(read["p"].find("y")->level(), 9007199254740994.0);
  Job labels({{"from", file}, {"set", "s(v)"}});
  ASSERT_TRUE(labels.import(folder_.file("labels.rxf"))) << labels.errors(folder_);
  EXPECT_EQ(labels.warnings(folder_), "");
}

TEST_F(ParquetTest, GoesOutWide) {
  Job out({{"symbol", "price"}, {"to", folder_.file("wide.parquet")}, {"wide", "dim_2"}});
  ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  EXPECT_EQ(byOtherReader("wide.parquet"),
            "{\"food\":\"Milk\",\"a\":0.30000000000000004,\"b\":null}\n"
            "{\"food\":\"Tofu\",\"a\":null,\"b\":-2}\n");
}

TEST_F(ParquetTest, KeepsValuesThatCompareEqualApart) {
  ztb::Symbol x = database_.addVariable("x", 0, {"*"});
  const std::array<double, 8> values{
      0.0,   -0.0,      ofBits(0x7FF8000000000000), ofBits(0xFFF8000000000001),
      1e300, ofBits(1), ofBits(0x7FF0000000000000), ofBits(0xFFF0000000000000)};
  for (std::size_t i = 0; i < values.size(); ++i) {
    ztb::Record record = x.add("i" + std::to_string(i));
    record.setLevel(values[i]);
    record.setScale(values[values.size() - 1 - i]);
  }
  writeFolder();
  Job in({{"from", folder_.file("dir")}});
  ASSERT_TRUE(in.import(folder_.file("back.rxf"))) << in.errors(folder_);
  const ztb::Database back = ztb::Database::open(folder_.file("back.rxf"));
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ztb::Record record = *back.symbol("x").find("i" + std::to_string(i));
    EXPECT_EQ(bitsOf(record.level()), bitsOf(values[i])) << i;
    EXPECT_EQ(bitsOf(record.scale()), bitsOf(values[values.size() - 1 - i])) << i;
  }
}

TEST_F(ParquetTest, SpellsBytesThatAreNoUtf8) {
  database_["price"].add("caf\xE9", "\\x").setLevel(1);
  database_["food"].find("Tofu")->setText("\xFF");
  writeFolder();
  EXPECT_THAT(byOtherReader("dir/food.parquet"), HasSubstr("\\\\\\\\xFF"));
  Job in({{"from", folder_.file("dir")}});
  ASSERT_TRUE(in.import(folder_.file("back.rxf"))) << in.errors(folder_);
  const ztb::Database back = ztb::Database::open(folder_.file("back.rxf"));
  EXPECT_TRUE(back.symbol("price").find("caf\xE9", "\\x").has_value());
  EXPECT_EQ(back.symbol("food").find("Tofu")->text().str(), "\xFF");
  Job table({{"symbol", "price"}, {"to", folder_.file("price.parquet")}});
  EXPECT_FALSE(table.exportFile(rxf()));
  EXPECT_THAT(table.errors(folder_), HasSubstr("is no UTF-8"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("price.parquet")));
}

TEST_F(ParquetTest, TellsAFileThatIsMissingCutOrOfOtherRows) {
  writeFolder();
  const std::string price = folder_.file("dir/price.parquet");
  const std::string content = contentOf(price);
  std::ofstream(price, std::ios::binary) << content.substr(0, content.size() / 2);
  EXPECT_THAT(refusalOfFolder(), StartsWith("dir/price.parquet: "));
  std::ofstream(price, std::ios::binary) << "";
  EXPECT_THAT(refusalOfFolder(), StartsWith("dir/price.parquet: "));
  std::filesystem::remove(price);
  EXPECT_EQ(refusalOfFolder(), "dir/price.parquet: no such file");
  ztb::Database fewer;
  fewer.addParameter("price", {"food", "*"}).add("Milk", "a").setLevel(1);
  fewer.write(folder_.file("fewer.rxf"));
  Job replaced({{"symbol", "price"}, {"to", price}});
  ASSERT_TRUE(replaced.exportFile(folder_.file("fewer.rxf"))) << replaced.errors(folder_);
  EXPECT_THAT(refusalOfFolder(),
              StartsWith("dir/price.parquet: has 1 row, and 2 were written to it\n"));
  replace(price, ZTB_PARQUET_FILES "/null_label.parquet");
  EXPECT_THAT(refusalOfFolder(),
              StartsWith("dir/price.parquet: row 2: food: is empty, expected a label"));
  writeFolder();
  replace(folder_.file("dir/_labels.parquet"), price);
  EXPECT_THAT(refusalOfFolder(),
              StartsWith("dir/_labels.parquet: row 1: the header is not label\n"));
}

TEST_F(ParquetTest, TellsAllThatIsWrongWithAFolderAtOnce) {
  database_.addParameter("cost", {"food"}).add("Milk").setLevel(1);
  database_.addVariable("x", 0, {"food"}).add("Milk").setLevel(1);
  writeFolder();
  formats::DuckdbSession session;
  const auto forge = [&](const std::string& name, const std::string& query) {
    const std::string path = folder_.file("dir/" + name + ".parquet");
    session.run("copy (" + query + ") to '" + path + "' (format parquet)", path);
  };
  forge("price",
        "select * from (values ('Milk', 'a', 1.0), ('milk', 'A', 2.0)) t(food, dim_2, value)");
  forge("cost", "select * from (values ('Milk', 1.0), ('Tofu', 2.0)) t(food, value)");
  forge("x", "select 'Milk' as food, 1.0 as level");
  EXPECT_THAT(
      refusalOfFolder(),
      StartsWith("dir/price.parquet: row 2: record (\"Milk\",\"a\") of price stands in row 1 "
                 "already (the case of letters does not matter)\n"
                 "dir/cost.parquet: has 2 rows, and 1 were written to it\n"
                 "dir/x.parquet: has 2 fields, expected 6 for variable x with 1 position\n"
                 "back.rxf: not written: 3 problems in the input"));
}

TEST_F(ParquetTest, LeavesAFolderWithOtherFilesOfTheNames) {
  writeFolder();
  std::filesystem::remove(folder_.file("dir/_symbols.parquet"));
  writeFolder();
  std::filesystem::remove(folder_.file("dir/_symbols.parquet"));
  formats::DuckdbSession session;
  const std::string price = folder_.file("dir/price.parquet");
  session.run("copy (select 'Milk' as food, 11 as cents) to '" + price + "' (format parquet)",
              price);
  Job out({{"all", ""}, {"to", folder_.file("dir")}, {"format", "parquet"}});
  EXPECT_FALSE(out.exportFile(rxf()));
  EXPECT_EQ(out.errors(folder_),
            "dir: has no _symbols.parquet, and files with other columns that would be lost: "
            "dir/price.parquet; give another folder");
}

// Keys of 20 positions are longer than a word, in the order of their rows and in another one.
TEST_F(ParquetTest, MovesLongKeysInAnyOrder) {
  const std::string file = folder_.file("long.parquet");
  formats::DuckdbSession session;
  const auto errorsOf = [&](const std::string& rows, int expected) {
    std::string columns;
    std::string keys;
    for (int key = 1; key <= 20; ++key) {
      columns += "'l' || ((i + " + std::to_string(key) + ") % 50) as k" + std::to_string(key) + ",";
      keys += (key > 1 ? ", k" : "k") + std::to_string(key);
    }
    session.run("copy (select " + columns + " i / 4.0 as v from (" + rows + ") r(i)) to '" + file +
                    "' (format parquet)",
                file);
    Job in({{"from", file}, {"parameter", "p(" + keys + ") = v"}});
    if (!in.import(folder_.file("long.rxf"))) return in.errors(folder_);
    const ztb::Database read = ztb::Database::open(folder_.file("long.rxf"));
    EXPECT_EQ(read["p"].recordCount(), expected);
    double sum = 0;
    for (const ztb::Row row : read["p"].rows()) {
      // Labels of neighbours follow each other; the first tells the row.
      const int first = std::stoi(read.label(row.keys[0]).str().substr(1));
      EXPECT_EQ(read.label(row.keys[19]).str(), "l" + std::to_string((first + 19) % 50));
      EXPECT_EQ(row.values[0], ((first + 49) % 50) / 4.0);
      sum += row.values[0];
    }
    EXPECT_EQ(sum, 49 * 50 / 8.0);
    return std::string();
  };
  EXPECT_EQ(errorsOf("select * from range(50)", 50), "");
  EXPECT_EQ(errorsOf("select 7 * range % 50 from range(50)", 50), "");
  EXPECT_THAT(errorsOf("select range % 50 from range(51)", 50),
              StartsWith("long.parquet: row 51: record (\"l1\",\"l2\","));
}

TEST_F(ParquetTest, RefusesWhatItCannotTake) {
  std::ofstream(folder_.file("no.parquet")) << "PAR1 and no more";
  Job no({{"from", folder_.file("no.parquet")}, {"parameter", "p(i) = v"}});
  EXPECT_FALSE(no.import(folder_.file("b.rxf")));
  EXPECT_THAT(no.errors(folder_), HasSubstr("no.parquet"));
  Job all({{"all", ""}, {"to", folder_.file("all.parquet")}});
  EXPECT_FALSE(all.exportFile(rxf()));
  EXPECT_THAT(all.errors(folder_),
              HasSubstr("a parquet file takes the table of one symbol, 2 symbols are chosen"));
  Job out({{"all", ""}, {"to", "-"}, {"format", "parquet"}});
  EXPECT_FALSE(out.exportFile(rxf()));
  EXPECT_EQ(out.errors(folder_),
            "--to -: standard output takes the table of one symbol, 2 symbols are chosen");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("b.rxf")));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("all.parquet")));
}

TEST_F(ParquetTest, TakesNamesWithCharsOfPatternsAndQuotes) {
#ifdef _WIN32
  // It has no names with stars.
  const std::string path = folder_.file("it's [a].parquet");
#else
  const std::string path = folder_.file("it's [a]*.parquet");
#endif
  Job out({{"symbol", "price"}, {"to", path}});
  ASSERT_TRUE(out.exportFile(rxf())) << out.errors(folder_);
  ztb::Database other;
  Job in({{"from", path}, {"parameter", "cost(food, dim_2) = value"}});
  ASSERT_TRUE(in.importInto(other.handle())) << in.errors(folder_);
  EXPECT_EQ(other["cost"].recordCount(), 2);
}

#ifdef ZTB_PROGRAM

TEST_F(ParquetTest, GoesThroughTheCommandAndBack) {
  const std::string ztb = ZTB_PROGRAM;
  const std::string folder = folder_.file("dir");
  const std::string back = folder_.file("back.rxf");
  EXPECT_EQ(printed(ztb + " export " + rxf() + " --all --to " + folder +
                    " --format parquet >/dev/null && " + ztb + " import " + back + " --from " +
                    folder + " >/dev/null && " + ztb + " diff " + rxf() + " " + back),
            "no difference: 2 symbols, 4 records\n");
}

TEST_F(ParquetTest, GoesThroughPipes) {
  const std::string ztb = ZTB_PROGRAM;
  const std::string back = folder_.file("back.rxf");
  const std::string import = ztb + " import " + back + " --from - --format parquet --parameter ";
  printed(ztb + " export " + rxf() + " price --to - --format parquet | " + import +
          "'price(food, dim_2)' 2>&1");
  const ztb::Database read = ztb::Database::open(back);
  EXPECT_EQ(read["price"].find("Milk", "a")->level(), 0.1 + 0.2);
  EXPECT_THAT(printed("(echo PAR1 | " + import + "'p(i)' 2>&1); test $? = 1"),
              StartsWith("ztb: standard input: "));
}

TEST_F(ParquetTest, SaysHowToGetDuckdbWhereThereIsNone) {
  // In a process of its own, since the library stays open in this one.
  const std::string command = std::string("ZTB_DUCKDB=") + folder_.file("nowhere.so") + " " +
                              ZTB_PROGRAM + " export " + rxf() + " price --to " +
                              folder_.file("p.parquet") + " 2>&1; test $? = 1";
  const std::string text = printed(command);
  EXPECT_THAT(text, HasSubstr("Parquet files need DuckDB's library libduckdb.so"));
  EXPECT_THAT(text, HasSubstr("ZTB_DUCKDB"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("p.parquet")));
}

#endif  // ZTB_PROGRAM

}  // namespace
