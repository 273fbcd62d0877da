// The table of one symbol that was written here, read back as any table is: every label and value
// as it was, in the formats that have to spell some of them out.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::Job;
using formatstest::TableTest;
using testing::HasSubstr;

// Labels that look like numbers, words or what is spelled out, with values of all kinds.
const std::map<std::string, std::uint64_t> odd{{"Milk", 0x3FD3333333333334},   // 0.1 + 0.2
                                               {"2020", 0x3FD5555555555555},   // 1/3
                                               {"007", 0x8000000000000000},    // -0
                                               {"1e3", 0x7E37E43C8800759C},    // undef
                                               {"-0", 0x7FF8000000000000},     // na
                                               {"TRUE", 0x7FF0000000000000},   // inf
                                               {"na", 0xFFF0000000000000},     // -inf
                                               {"", 0x0000000000000001},       // eps
                                               {"\\", 0x7FF8000000000001},     // another NaN
                                               {"\\x41", 0x7FEFFFFFFFFFFFFF},  // the largest double
                                               {"a\\b", 0x4340000000000001},   // 2^53 + 2
                                               {"\xE4\xB8\xAD", 0x0000000000000003},
                                               {"\x7F\x80\xFF", 0x4059000000000000},  // 100
                                               {"=1+1", 0x419D6F34547E6B75},  // 123456789.12345...
                                               {"2024-03-01", 0xBFD5555555555555},
                                               {"_x0041_", 0x0000000000000000},
                                               {"#N/A", 0x401E000000000000},  // 7.5
                                               {"  lead", 0x3DF12E0BE826D695}};

class OwnTableTest : public TableTest {
 protected:
  OwnTableTest() {
    ztb::Symbol price = database_.addParameter("price", {"food"});
    for (const auto& [label, bits] : odd) {
      const int number = database_.mergeLabel(label);
      price.put(std::vector<int>{number}, std::bit_cast<double>(bits));
    }
    ztb::Symbol food = database_.addSet("food", {"*"});
    food.add("\\x41").setText("\\ a\x01");
    food.add("").setText("1e3");
  }

  void exportSymbol(const std::string& symbol, const formatstest::Options& to) {
    formatstest::Options options{{"symbol", symbol}};
    options.insert(options.end(), to.begin(), to.end());
    Job job(options);
    ASSERT_TRUE(job.exportDatabase(database_.handle())) << job.errors(folder_);
  }

  static std::map<std::string, std::uint64_t> records(const ztb::Symbol& symbol,
                                                      const ztb::Database& database) {
    std::map<std::string, std::uint64_t> found;
    for (const ztb::Row row : symbol.rows()) {
      found[database.label(row.keys[0]).str()] = std::bit_cast<std::uint64_t>(row.values[0]);
    }
    return found;
  }
  std::map<std::string, std::uint64_t> pricesOf(const std::string& source) {
    const ztb::Database back = imported(source, {{"parameter", "price(food)"}});
    return records(back["price"], back);
  }

  ztb::Database database_;
};

TEST_F(OwnTableTest, OfAWorkbookComesBackAsItWas) {
  exportSymbol("price", {{"to", folder_.file("p.xlsx")}});
  EXPECT_EQ(pricesOf("p.xlsx"), odd);
  EXPECT_EQ(pricesOf("p.xlsx#price"), odd);
  EXPECT_EQ(pricesOf("p.xlsx#price!A1:B19"), odd);
  EXPECT_EQ(pricesOf("p.xlsx#price!A1:C19"), odd);
  // Among other symbols too, and a set with its texts.
  Job all({{"all", ""}, {"to", folder_.file("all.xlsx")}});
  ASSERT_TRUE(all.exportDatabase(database_.handle())) << all.errors(folder_);
  EXPECT_EQ(pricesOf("all.xlsx#price"), odd);
  const ztb::Database back = imported("all.xlsx#food", {{"set", "f(food) : text"}});
  EXPECT_EQ(back["f"].find("\\x41")->text().str(), "\\ a\x01");
  EXPECT_EQ(back["f"].find("")->text().str(), "1e3");
}

TEST_F(OwnTableTest, OfAWideSheetKeepsEachBit) {
  ztb::Symbol stock = database_.addParameter("stock", {"food", "year"});
  stock.add("Milk", "2020").setLevel(0.1 + 0.2);
  stock.add("Milk", "2021").setLevel(-0.0);
  stock.add("Tofu", "2021").setLevel(1.0 / 3);
  exportSymbol("stock", {{"to", folder_.file("w.xlsx")}, {"wide", "year"}});
  const ztb::Database back =
      imported("w.xlsx", {{"wide", "year"}, {"parameter", "stock(food, year)"}});
  EXPECT_EQ(back["stock"].recordCount(), 3);
  EXPECT_EQ(back["stock"].find("Milk", "2020")->level(), 0.1 + 0.2);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(back["stock"].find("Milk", "2021")->level()),
            0x8000000000000000);
  EXPECT_EQ(back["stock"].find("Tofu", "2021")->level(), 1.0 / 3);
}

TEST_F(OwnTableTest, OfAWideSheetHasTextsAsTheyAre) {
  ztb::Symbol stock = database_.addParameter("stock", {"food", "year"});
  stock.add("\\x41", "\\").setLevel(1);
  exportSymbol("stock", {{"to", folder_.file("w.xlsx")}, {"wide", "year"}});
  const ztb::Database back =
      imported("w.xlsx", {{"wide", "year"}, {"parameter", "stock(food, year)"}});
  EXPECT_EQ(back["stock"].find("\\x41", "\\")->level(), 1);
  // An empty cell is none, and _x0041_ is an A.
  for (const char* label : {"", "_x0041_", "\\_x0041_"}) {
    stock.clear();
    stock.add(label, "2020").setLevel(1);
    Job job({{"symbol", "stock"}, {"to", folder_.file("none.xlsx")}, {"wide", "year"}});
    EXPECT_FALSE(job.exportDatabase(database_.handle())) << label;
    EXPECT_EQ(job.errors(folder_),
              "none.xlsx: '" + std::string(label) + "' cannot stand in a cell of a workbook");
  }
}

TEST_F(OwnTableTest, OfSeveralSheetsIsReadFromAllOfThem) {
  const std::string parts = ZTB_MADE_WORKBOOKS "/parts.xlsx";
  const auto pricesIn = [&](const std::string& source) {
    Job job({{"from", source}, {"parameter", "price(food)"}});
    const std::string out = folder_.file("parts" + std::to_string(++outs_) + ".rxf");
    EXPECT_TRUE(job.import(out)) << job.errors(folder_);
    const ztb::Database back = ztb::Database::open(out);
    return records(back["price"], back);
  };
  const std::map<std::string, std::uint64_t> second{{"Tofu", 0x4008000000000000},
                                                    {"Curd", 0x3FD3333333333334}};
  std::map<std::string, std::uint64_t> all = second;
  all["\\a"] = 0x3FD3333333333334;
  all["2020"] = 0x3FF0000000000000;
  EXPECT_EQ(pricesIn(parts), all);
  EXPECT_EQ(pricesIn(parts + "#price"), all);
  EXPECT_EQ(pricesIn(parts + "#price (2)"), second);
  // A sheet of the user's own is taken as it stands.
  EXPECT_EQ(pricesIn(parts + "#Mine"),
            (std::map<std::string, std::uint64_t>{{"\\\\\\a", 0x4010000000000000}}));
}

TEST_F(OwnTableTest, OfSqliteComesBackAsItWas) {
  exportSymbol("price", {{"to", folder_.file("p.db")}});
  EXPECT_EQ(pricesOf("p.db"), odd);
  EXPECT_EQ(pricesOf("p.db#price"), odd);
  // NULL in a table of the user's own stays a missing value, and one that a query makes too.
  sql("p.db", "create table mine(food text, price real); insert into mine values ('Milk', null)");
  EXPECT_THAT(errorsOf("p.db#mine", {{"parameter", "price(food)"}}),
              HasSubstr("p.db#mine: row 1: price: is empty, expected a number"));
  EXPECT_EQ(pricesOf("p.db"), odd);
  EXPECT_THAT(errorsOf("p.db#select food, value from price", {{"parameter", "price(food)"}}),
              HasSubstr("value: is empty, expected a number"));
  EXPECT_EQ(pricesOf("p.db#select food, ifnull(value, 'na') as value from price"), odd);
}

// Another program may write a table anew, without what was declared.
TEST_F(OwnTableTest, OfSqliteTakesNoMissingLabelForAValue) {
  exportSymbol("price", {{"to", folder_.file("p.db")}});
  sql("p.db",
      "drop table price; create table price(food text, value any);"
      "insert into price values (null, null), ('Milk', null)");
  EXPECT_EQ(errorsOf("p.db#price", {{"parameter", "price(food)"}}),
            "p.db#price: row 1: food: is empty, expected a label (the empty label is written "
            "\"\")\n"
            "none.rxf: not written: 1 problem in the input");
}

TEST_F(OwnTableTest, OfAFolderOfParquetFilesComesBackAsItWas) {
  exportSymbol("price", {{"to", folder_.file("dir")}, {"format", "parquet"}});
  EXPECT_EQ(pricesOf("dir/price.parquet"), odd);
  database_.addParameter("cost", {"", "\\"}).add("x", "y").setLevel(1);
  exportSymbol("cost", {{"to", folder_.file("dir")}, {"format", "parquet"}});
  const ztb::Database back =
      imported("dir/cost.parquet", {{"rename", "= kind"}, {"parameter", "cost(kind, \\) = value"}});
  EXPECT_EQ(back["cost"].find("x", "y")->level(), 1);
}

}  // namespace
