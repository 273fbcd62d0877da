// What is wrong with several sources of a run, or several tables of one file, is told at once: a
// file that cannot be read hides nothing of the others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::foods;
using formatstest::Job;
using formatstest::Options;
using formatstest::TableTest;
using testing::HasSubstr;

class SeveralProblemsTest : public TableTest {
 protected:
  // What is told of an import of these sources, each of which has a parameter of its own.
  std::string errorsOfAll(const std::vector<std::string>& sources, Options more = {}) {
    Options options;
    int number = 0;
    for (const std::string& source : sources) {
      options.emplace_back("from", folder_.file(source));
      options.emplace_back("parameter", "p" + std::to_string(++number) + "(food) = cents");
    }
    options.insert(options.end(), more.begin(), more.end());
    Job job(options);
    EXPECT_FALSE(job.import(folder_.file("none.rxf")));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("none.rxf")));
    kind_ = job.kind();
    counted_ = job.counted(ZTB_FORMATS_PROBLEMS);
    return job.errors(folder_);
  }

  // A database of two parameters in files of the format, as "a.db" and so on name it.
  void writeDatabase(const std::string& target) {
    ztb::Database database;
    database.addParameter("cost", {"food"}).add("Milk").setLevel(1);
    database.addParameter("price", {"food"}).add("Tofu").setLevel(2);
    Job job({{"all", ""}, {"to", folder_.file(target)}});
    ASSERT_TRUE(job.exportDatabase(database.handle())) << job.errors(folder_);
  }

  int kind_ = 0;
  long long counted_ = 0;
};

// Files of the user's own in a folder that no export has made.
TEST_F(SeveralProblemsTest, AFolderWithOtherFilesOfTheNamesStays) {
  ztb::Database database;
  ztb::Symbol food = database.addSet("food", {"*"});
  food.add("Milk");
  database.addParameter("price", {food}).add("Milk").setLevel(11);
  std::filesystem::create_directory(folder_.file("own"));
  const auto exported = [&](const Options& more) {
    Options options{{"all", ""}, {"to", folder_.file("own")}};
    options.insert(options.end(), more.begin(), more.end());
    Job job(options);
    return job.exportDatabase(database.handle()) ? "" : job.errors(folder_);
  };
  // One that ended early has left its files, and none of symbols.
  write("own/food.csv", "food,text\nMilk,\n");
  write("own/price.csv", "food,cents\nMilk,11\n");
  EXPECT_EQ(exported({{"format", "csv"}}),
            "own: has no _symbols.csv, and files with other columns that would be lost: "
            "own/price.csv; give another folder");
  EXPECT_EQ(read("own/price.csv"), "food,cents\nMilk,11\n");
  EXPECT_FALSE(std::filesystem::exists(folder_.file("own/_labels.csv")));
  write("own/price.csv", "");
  EXPECT_EQ(exported({{"format", "csv"}}), "");
  EXPECT_EQ(read("own/price.csv"), "food,value\nMilk,11\n");
  // From now on what stands there was exported.
  write("own/price.csv", "food,cents\nMilk,11\n");
  EXPECT_EQ(exported({{"format", "csv"}}), "");
}

// The table or file that something is made of stays.
TEST_F(SeveralProblemsTest, AnOutputIsNoInput) {
  const std::string refusal = ": would be replaced by what is made of it; name another file";
  write("foods.csv", foods);
  sql("stock.db", "create table food(food text, cents real)");
  const std::string stock = read("stock.db");
  Job import({{"from", folder_.file("foods.csv")},
              {"parameter", "p(food) = cents"},
              {"from", folder_.file("stock.db#food")},
              {"parameter", "q(food) = cents"}});
  for (const char* file : {"foods.csv", "stock.db"}) {
    EXPECT_FALSE(import.import(folder_.file(file)));
    EXPECT_EQ(import.errors(folder_), file + refusal);
    EXPECT_TRUE(import.isUsage());
  }
  EXPECT_EQ(read("foods.csv"), foods);
  EXPECT_TRUE(read("stock.db") == stock);
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(1);
  database.write(folder_.file("a.rxf"));
  Job out({{"all", ""}, {"to", folder_.file("a.rxf")}, {"format", "jsonl"}});
  EXPECT_FALSE(out.exportFile(folder_.file("a.rxf")));
  EXPECT_EQ(out.errors(folder_), "a.rxf" + refusal);
  EXPECT_EQ(ztb::Database::open(folder_.file("a.rxf"))["price"].recordCount(), 1);
}

TEST_F(SeveralProblemsTest, AreToldOfAllSources) {
  gzip("cut.csv.gz", foods);
  const std::string packed = read("cut.csv.gz");
  write("cut.csv.gz", packed.substr(0, packed.size() - 9));
  write("bad.csv", "food,cents\nMilk,much\n");
  write("header.csv", "food,dollars\nMilk,much\n");
  write("text.xlsx", foods);
  write("text.db", std::string(2000, 'x'));
  write("nothing.csv", "");
  sql("stock.db", "create table food(food text, cents real)");
  Job workbook({{"all", ""}, {"to", folder_.file("w.xlsx")}});
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(1);
  ASSERT_TRUE(workbook.exportDatabase(database.handle()));
  EXPECT_EQ(errorsOfAll({"gone.csv", "bad.csv", "cut.csv.gz", "text.xlsx", "text.db", "header.csv",
                         "stock.db#nope", "w.xlsx#nope", "nothing.csv", "gone.xlsx"}),
            "gone.csv: cannot be read: No such file or directory\n"
            "bad.csv:2:6: cents: 'much' is not a number\n"
            "cut.csv.gz: cannot be unpacked: the file is cut short\n"
            "text.xlsx: is no workbook: it cannot be opened as a zip file\n"
            "text.db: SQLite: file is not a database\n"
            "header.csv:1:1: no column 'cents'; the columns are food, dollars\n"
            "stock.db: no table 'nope'; its tables are food\n"
            "w.xlsx: no sheet 'nope'; its sheets are _symbols, _labels, price\n"
            "nothing.csv: has no header line\n"
            "gone.xlsx: cannot be read: No such file or directory\n"
            "none.rxf: not written: 10 problems in the input");
  EXPECT_EQ(kind_, ZTB_ERROR_DAMAGED_FILE);
  EXPECT_EQ(counted_, 10);
}

TEST_F(SeveralProblemsTest, OfOneKindHaveIt) {
  EXPECT_EQ(errorsOfAll({"b.csv", "a.db"}),
            "b.csv: cannot be read: No such file or directory\n"
            "a.db: cannot be read: No such file or directory\n"
            "none.rxf: not written: 2 problems in the input");
  EXPECT_EQ(kind_, ZTB_ERROR_NO_FILE);
  // One stands alone, and once however often it is met.
  EXPECT_EQ(errorsOfAll({"b.csv", "b.csv"}), "b.csv: cannot be read: No such file or directory");
  EXPECT_EQ(kind_, ZTB_ERROR_NO_FILE);
}

// The first problems of cells do not use up the lines that files have.
TEST_F(SeveralProblemsTest, OfFilesAreNotLeftToACount) {
  std::string rows = "food,cents\n";
  for (int row = 0; row < 30; ++row) rows += "f" + std::to_string(row) + ",x\n";
  write("bad.csv", rows);
  write("text.xlsx", foods);
  const std::string errors = errorsOfAll({"bad.csv", "text.xlsx"}, {{"max-errors", "2"}});
  EXPECT_EQ(errors,
            "bad.csv:2:4: cents: 'x' is not a number\n"
            "bad.csv:3:4: cents: 'x' is not a number\n"
            "text.xlsx: is no workbook: it cannot be opened as a zip file\n"
            "... and 28 more\n"
            "none.rxf: not written: 31 problems in the input");
}

TEST_F(SeveralProblemsTest, OfTheColumnsOfOneSymbolHideNoneOfAnother) {
  write("a.csv", "food,cents\nMilk,much\n");
  EXPECT_EQ(errorsOf("a.csv", {{"parameter", "p(food) = nope"}, {"parameter", "q(food) = cents"}}),
            "a.csv:1:1: no column 'nope'; the columns are food, cents\n"
            "a.csv:2:6: cents: 'much' is not a number\n"
            "none.rxf: not written: 2 problems in the input");
}

TEST_F(SeveralProblemsTest, LeaveADatabaseAsItWas) {
  write("bad.csv", "food,cents\nMilk,much\n");
  ztb::Database database;
  Job job({{"from", folder_.file("gone.db")},
           {"parameter", "p(food) = cents"},
           {"from", folder_.file("bad.csv")},
           {"parameter", "q(food) = cents"}});
  EXPECT_FALSE(job.importInto(database.handle()));
  EXPECT_EQ(job.errors(folder_),
            "gone.db: cannot be read: No such file or directory\n"
            "bad.csv:2:6: cents: 'much' is not a number\n"
            "nothing is imported: 2 problems in the input");
  EXPECT_EQ(database.symbolCount(), 0);
  EXPECT_EQ(database.labelCount(), 0);
}

TEST_F(SeveralProblemsTest, AreToldOfAllFilesOfAFolder) {
  writeDatabase("dir/");
  write("dir/_labels.csv", "\xFF\xFEl");
  std::filesystem::remove(folder_.file("dir/cost.csv"));
  write("dir/price.csv", "food,value\nTofu,much\n");
  EXPECT_EQ(errorsOf("dir", {}),
            "dir/_labels.csv: is encoded in UTF-16, expected UTF-8 or plain bytes\n"
            "dir/cost.csv: cannot be read: No such file or directory\n"
            "dir/price.csv:2:6: value: 'much' is not a number\n"
            "none.rxf: not written: 3 problems in the input");
}

TEST_F(SeveralProblemsTest, AreToldOfAllTablesOfASqliteFile) {
  writeDatabase("a.db");
  // Views in place of tables, each with a column that there is not.
  sql("a.db",
      "drop table cost; create view cost as select nope from _labels;"
      "drop table price; create view price as select 1 as food, nope as value from _labels");
  EXPECT_EQ(errorsOf("a.db", {}),
            "a.db#cost: SQLite: no such column: nope\n"
            "a.db#price: SQLite: no such column: nope\n"
            "none.rxf: not written: 2 problems in the input");
}

TEST_F(SeveralProblemsTest, AreToldOfAllSheetsOfAWorkbook) {
  const std::string folder = ZTB_MADE_WORKBOOKS;
  Job job({{"from", folder + "/two_damaged_sheets.xlsx"}});
  EXPECT_FALSE(job.import(folder_.file("none.rxf")));
  const std::string errors = job.errors(folder_);
  EXPECT_THAT(errors, HasSubstr("part xl/worksheets/sheet3.xml, line 1: mismatched tag\n"));
  EXPECT_THAT(errors, HasSubstr("two_damaged_sheets.xlsx: has no part for the sheet price\n"));
  EXPECT_THAT(errors, HasSubstr("none.rxf: not written: 2 problems in the input"));
}

}  // namespace
