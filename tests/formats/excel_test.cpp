// Workbooks: those of another program, and what is told of forged ones.

#include <gmock/gmock.h>

#include <filesystem>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"

namespace {

using formatstest::Job;
using formatstest::Options;
using testing::HasSubstr;

class ExcelTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new ztbtest::TempFolder;
    // The build made them.
    std::filesystem::copy(ZTB_MADE_WORKBOOKS, folder_->path());
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }

  // Imports to a file of its own: one that is open cannot be replaced everywhere.
  static ztb::Database opened(Job& job) {
    static int outs = 0;
    const std::string out = folder_->file("out" + std::to_string(++outs) + ".rxf");
    EXPECT_TRUE(job.import(out)) << job.errors(*folder_);
    return ztb::Database::open(out);
  }
  static ztb::Database imported(const std::string& source, const Options& options) {
    Options all{{"from", folder_->file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    return opened(job);
  }
  static std::string errorsOf(const std::string& source, const Options& options) {
    Options all{{"from", folder_->file(source)}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    EXPECT_FALSE(job.import(folder_->file("none.rxf")));
    EXPECT_FALSE(std::filesystem::exists(folder_->file("none.rxf")));
    return job.errors(*folder_);
  }

  static ztbtest::TempFolder* folder_;
};

ztbtest::TempFolder* ExcelTest::folder_ = nullptr;

const Options price{{"parameter", "price(food)"}};

TEST_F(ExcelTest, ReadsTextsNumbersDatesAndTruthValues) {
  const ztb::Database database = imported("plan.xlsx", {{"parameter", "price(food, made)"},
                                                        {"parameter", "fresh(food)"},
                                                        {"parameter", "n(food, fresh)"}});
  EXPECT_EQ(database["price"].find("Milk", "2024-03-01")->level(), 11.25);
  EXPECT_EQ(database["price"].find("Tofu & \"Co\"", "1900-01-15")->level(), 7);
  EXPECT_EQ(database["price"]
                .find("T\xC3\xB6"
                      "fu",
                      "2024-02-29T12:30:00")
                ->level(),
            -3e-7);
  EXPECT_EQ(database["fresh"].find("Milk")->level(), 1);
  EXPECT_EQ(database["n"].find("Milk", "TRUE")->level(), 2020);
  EXPECT_EQ(database["n"].find("Tofu & \"Co\"", "FALSE")->level(), 0.1);
  EXPECT_EQ(database["n"]
                .find("T\xC3\xB6"
                      "fu",
                      "TRUE")
                ->level(),
            1e21);
  EXPECT_EQ(imported("plan.xlsx", {{"parameter", "price(n)"}})["price"].find("2020")->level(),
            11.25);
  EXPECT_EQ(imported("mac.xlsx", {{"parameter", "p(day) = v"}})["p"].find("1904-01-02")->level(),
            1);
}

TEST_F(ExcelTest, ReadsRangesMergedCellsAndWideTables) {
  const ztb::Database database = imported(
      "plan.xlsx#My Prices!!B3:E6", {{"wide", "year"}, {"parameter", "price(group, food, year)"}});
  EXPECT_EQ(database["price"].recordCount(), 4);
  EXPECT_EQ(database["price"].find("dairy", "Milk", "2021")->level(), 2);
  EXPECT_EQ(database["price"].find("dairy", "Curd", "2020")->level(), 3);
  EXPECT_EQ(database["price"].find("soy", "Tofu", "2020")->level(), 4);
  const ztb::Database range =
      imported("plan.xlsx#'my prices!'!$C$3:$D$6", {{"parameter", "price(food) = 2020"}});
  EXPECT_EQ(range["price"].find("Tofu")->level(), 4);
}

TEST_F(ExcelTest, ReadsWhatOtherProgramsLeaveOut) {
  const ztb::Database database = imported("loose.xlsx", price);
  EXPECT_EQ(database["price"].find("Milk")->level(), 2.5);
  EXPECT_EQ(database["price"].find("Tofu")->level(), 5e-324);
}

TEST_F(ExcelTest, ReadsWhatLibreOfficeWrote) {
  const std::string file = ZTB_WORKBOOKS "/libreoffice.xlsx";
  const auto read = [&](const std::string& part, const Options& options) {
    Options all{{"from", file + part}};
    all.insert(all.end(), options.begin(), options.end());
    Job job(all);
    return opened(job);
  };
  // Values of formulas are those that LibreOffice computed.
  const ztb::Database plan = read("#Plan!A1:G3", {{"parameter", "cents(food, made)"},
                                                  {"parameter", "double(code, fresh)"},
                                                  {"parameter", "n(ripens) = cents"}});
  EXPECT_EQ(plan["cents"].find("Milk", "2024-02-29")->level(), 11.25);
  EXPECT_EQ(plan["cents"].find("K\xC3\xA4se & \"Co\"", "2024-12-31T23:59:59.500")->level(), -0.1);
  EXPECT_EQ(plan["double"].find("Milk-11.25", "TRUE")->level(), 22.5);
  EXPECT_EQ(plan["double"].find("K\xC3\xA4se & \"Co\"", "FALSE")->level(), -0.2);
  EXPECT_EQ(plan["n"].find("48:30:00")->level(), 11.25);
  EXPECT_EQ(plan["n"].find("01:02:03")->level(), -0.1);
  const ztb::Database wide =
      read("#Wide & merged!B3:E5", {{"wide", "year"}, {"parameter", "price(group, food, year)"}});
  EXPECT_EQ(wide["price"].recordCount(), 3);
  EXPECT_EQ(wide["price"].find("dairy", "Milk", "2021")->level(), 2);
  EXPECT_EQ(wide["price"].find("dairy", "Curd", "2020")->level(), 3);
  Job wrong({{"from", file + "#Plan"}, {"parameter", "double(code)"}, {"set", "food"}});
  EXPECT_FALSE(wrong.import(folder_->file("none.rxf")));
  EXPECT_THAT(wrong.errors(*folder_), HasSubstr("#Plan!E4: double: holds an error"));
  EXPECT_THAT(wrong.errors(*folder_),
              HasSubstr("#Plan!A4: food: label 'two\\nlines' holds a control character"));
}

TEST_F(ExcelTest, FindsTextsAndStylesUnderAnyName) {
  const ztb::Database plan =
      imported("other_parts.xlsx#Plan!A1:G3", {{"parameter", "cents(food, made)"}});
  EXPECT_EQ(plan["cents"].find("Milk", "2024-02-29")->level(), 11.25);
}

TEST_F(ExcelTest, ReadsDatesInIsoFormOfASheetInQuotes) {
  for (const char* sheet : {"", "#it's", "#'it''s'", "#'it''s'!A1:B3"}) {
    const ztb::Database days =
        imported(std::string("quoted.xlsx") + sheet, {{"parameter", "p(day) = v"}});
    EXPECT_EQ(days["p"].find("2024-03-01")->level(), 1) << sheet;
    EXPECT_EQ(days["p"].find("2024-03-01T12:30:00")->level(), 2) << sheet;
  }
}

TEST_F(ExcelTest, ReadsTheSheetOfTheOnlySymbol) {
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(2);
  Job one({{"symbol", "price"}, {"to", folder_->file("one.xlsx")}});
  ASSERT_TRUE(one.exportDatabase(database.handle())) << one.errors(*folder_);
  const Options value{{"parameter", "price(food) = value"}};
  EXPECT_EQ(imported("one.xlsx", value)["price"].find("Milk")->level(), 2);
  database.addSet("s", {"*"});
  Job two({{"all", ""}, {"to", folder_->file("two.xlsx")}});
  ASSERT_TRUE(two.exportDatabase(database.handle())) << two.errors(*folder_);
  EXPECT_EQ(errorsOf("two.xlsx", value),
            "two.xlsx: which sheet is meant? give --from two.xlsx#SHEET; its sheets are _symbols, "
            "_labels, price, s");
}

TEST_F(ExcelTest, PassesOverNumbersOfRowsThatNoColumnUses) {
  const ztb::Database plain = imported("numbered.xlsx", {{"parameter", "p(food) = cents"}});
  EXPECT_EQ(plain["p"].recordCount(), 2);
  EXPECT_EQ(plain["p"].find("Tofu")->level(), 7);
  EXPECT_THAT(
      errorsOf("numbered.xlsx", {{"wide", "unit"}, {"parameter", "p(food, unit)"}}),
      HasSubstr("numbered.xlsx#Sheet!A2: stands beside the table, whose columns are B to C"));
  // As a column they have a name to be given.
  const ztb::Database named = imported(
      "numbered.xlsx#Sheet!A1:C3", {{"rename", "= row"}, {"parameter", "p(row, food) = cents"}});
  EXPECT_EQ(named["p"].find("1", "Tofu")->level(), 7);
}

TEST_F(ExcelTest, TellsWhatIsWrongWithASheet) {
  EXPECT_EQ(errorsOf("plan.xlsx#Formulas", price),
            "plan.xlsx#Formulas!B2: price: is a formula without a value: let a spreadsheet program "
            "compute and save it\n"
            "plan.xlsx#Formulas!B3: price: holds an error\n"
            "none.rxf: not written: 2 problems in the input");
  EXPECT_EQ(errorsOf("plan.xlsx#Prices", price),
            "plan.xlsx: no sheet 'Prices'; its sheets are Plan, My Prices!, Formulas");
  EXPECT_THAT(errorsOf("plan.xlsx#Plan!B3:A1", price),
              HasSubstr("'B3:A1' is no range of cells such as B3:F90"));
  EXPECT_THAT(
      errorsOf("plan.xlsx#My Prices!", {{"set", "beside"}}),
      HasSubstr("plan.xlsx#My Prices!!C3: stands beside the table, whose columns are B to B; "
                "give its range as #SHEET!A1:B2"));
  EXPECT_THAT(errorsOf("plan.xlsx#Plan!A1:C3", {{"parameter", "price(made) = food"}}),
              HasSubstr("plan.xlsx#Plan!A2: food: 'Milk' is not a number"));
  EXPECT_THAT(errorsOf("plan.xlsx", {}),
              HasSubstr("plan.xlsx: no whole database was written to it"));
}

TEST_F(ExcelTest, RefusesForgedAndDamagedWorkbooks) {
  EXPECT_EQ(errorsOf("empty.xlsx", price), "empty.xlsx: is no workbook: it has no part for one");
  EXPECT_EQ(errorsOf("cut.xlsx", price),
            "cut.xlsx: is no workbook: it cannot be opened as a zip file");
  EXPECT_THAT(errorsOf("flipped.xlsx", price), HasSubstr("flipped.xlsx: part xl/sheet.xml"));
  EXPECT_THAT(errorsOf("number.xlsx", price),
              HasSubstr("number.xlsx#S!B2: price: is a number that cannot be read"));
  EXPECT_THAT(errorsOf("truth.xlsx", price),
              HasSubstr("truth.xlsx#S!B2: price: is no truth value, which is 0 or 1"));
  EXPECT_THAT(errorsOf("truth.xlsx", {{"set", "nope"}}),
              HasSubstr("truth.xlsx#S: row 1: no column 'nope'"));
  EXPECT_EQ(errorsOf("shared.xlsx", price),
            "shared.xlsx: a cell refers to the shared text 7, of 2");
  EXPECT_EQ(errorsOf("place.xlsx", price), "place.xlsx: S: a cell of row 2 is called ZZZZ2");
  EXPECT_EQ(errorsOf("backwards.xlsx", price), "backwards.xlsx: S: a cell of row 2 is called A2");
  EXPECT_EQ(errorsOf("rows.xlsx", price), "rows.xlsx: S: a row has the number 3 behind row 5");
  EXPECT_EQ(errorsOf("merge.xlsx", price), "merge.xlsx: S: B are no merged cells");
  EXPECT_EQ(errorsOf("merges.xlsx", price), "merges.xlsx: S: more than 4194304 cells are merged");
  EXPECT_EQ(errorsOf("entity.xlsx", price),
            "entity.xlsx: part xl/sheet.xml, line 1: a document type, which no workbook has");
  EXPECT_EQ(errorsOf("nonsense.xlsx", price),
            "nonsense.xlsx: part xl/sheet.xml, line 1: mismatched tag");
  EXPECT_EQ(errorsOf("bomb.xlsx", price),
            "bomb.xlsx: part xl/sheet.xml grows to more than 400 times its size when it is "
            "unpacked");
}

}  // namespace
