// The files of other programs through the command: what its options hand on, and what it prints.

#include <sqlite3.h>

#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class ToolFormatsTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"});
    food.add("Ham, smoked").setText("1 lb.");
    food.add("Milk");
    database.addAlias("dish", food);
    database.addParameter("price", {food}).add("Milk").setLevel(0.1 + 0.2);
    database.addVariable("buy", 3, {food, "*"}).add("Milk", "z");
    database.write(path("a.rxf"));
  }
};

TEST_F(ToolFormatsTest, DatabasesGoOutAndComeBack) {
  for (const std::string target : {"a.db", "a.xlsx", "a.jsonl", "a.jsonl.zst", "folder/"}) {
    EXPECT_EQ(ztbFine({"export", "a.rxf", "--all", "--to", target}),
              target + ": 4 symbols, 3 labels, 4 records\n");
    EXPECT_EQ(ztbFine({"import", "b.rxf", "--from", target}),
              "b.rxf: 4 symbols, 3 labels, 4 records\n");
    EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf"}).status, 0) << target;
  }
  ztbFine({"export", "a.rxf", "price", "food", "--to", "some", "--format", "sqlite"});
  EXPECT_EQ(ztbFine({"import", "b.rxf", "--from", "some", "--format", "sqlite"}),
            "b.rxf: 2 symbols, 3 labels, 3 records\n");
}

// Behind a line nothing but the counts shows that the rest is missing.
TEST_F(ToolFormatsTest, LinesOfADatabaseWithoutItsEndAreRefused) {
  ztbFine({"export", "a.rxf", "--all", "--to", "a.jsonl"});
  const std::string whole = read("a.jsonl");
  int lines = 0;
  for (std::size_t end = 0; (end = whole.find('\n', end) + 1) < whole.size(); ++lines) {
    write("cut.jsonl", whole.substr(0, end));
    const Outcome outcome = ztb({"import", "b.rxf", "--from", "cut.jsonl"});
    EXPECT_EQ(outcome.status, 1) << end;
    EXPECT_NE(outcome.errors.find(": its end is missing\n"), std::string::npos) << outcome.errors;
  }
  EXPECT_EQ(lines, 1 + 4 + 3 + 4 - 1);
  EXPECT_FALSE(exists("b.rxf"));
}

TEST_F(ToolFormatsTest, TablesGoOutAndComeBack) {
  EXPECT_EQ(ztbFine({"export", "a.rxf", "food", "--to", "food.tsv.gz"}),
            "food.tsv.gz: 1 symbol, 3 labels, 2 records\n");
  ztbFine({"export", "a.rxf", "--all", "--to", "a.db"});
  EXPECT_EQ(ztbFine({"import", "b.rxf", "--from", "food.tsv.gz", "--set", "food : text", "--from",
                     "a.db#select food as dish, value as v from price", "--rename", "dish=food",
                     "--parameter", "price(food) = v", "--check-domains"}),
            "b.rxf: 2 symbols, 2 labels, 3 records\n");
  EXPECT_EQ(ztbFine({"show", "b.rxf", "price", "--csv"}), "food,value\nMilk,0.30000000000000004\n");
  EXPECT_EQ(ztbFine({"export", "a.rxf", "buy", "--wide", "dim_2", "--to", "-"}),
            "food,z\nMilk,0\n");
}

TEST_F(ToolFormatsTest, NumbersComeInAnotherUnit) {
  write("a.csv", "food,cents\nMilk,7\n");
  ztbFine({"import", "b.rxf", "--from", "a.csv", "--units", "cents=1/100", "--parameter",
           "price(food) = cents"});
  EXPECT_EQ(ztbFine({"show", "b.rxf", "price", "--csv"}), "food,value\nMilk,0.07\n");
}

TEST_F(ToolFormatsTest, WhatIsWrongIsToldWithItsPlace) {
  ztbFine({"export", "a.rxf", "--all", "--to", "a.xlsx"});
  expectFails(1,
              "a.xlsx#food!A2: food: 'Ham, smoked' is not a number\n"
              "a.xlsx#food!B3: text: is empty, expected a label (the empty label is written \"\")\n"
              "a.xlsx#food!A3: food: 'Milk' is not a number\n"
              "ztb: b.rxf: not written: 3 problems in the input\n",
              {"import", "b.rxf", "--from", "a.xlsx#food", "--parameter", "p(text) = food",
               "--skip-empty"});
  EXPECT_FALSE(exists("b.rxf"));
  expectFails(2,
              "ztb: --to a.csv: a csv file takes the table of one symbol, 4 symbols are chosen\n",
              {"export", "a.rxf", "--all", "--to", "a.csv"});
  expectFails(1, "ztb: none.db: cannot be read: No such file or directory\n",
              {"import", "b.rxf", "--from", "none.db"});
  EXPECT_EQ(ztb({"export", "a.rxf", "--all", "--to", "a.db", "--csv", "x"}).status, 2);
  EXPECT_EQ(ztb({"export", "a.rxf", "--all", "--to", "a.q", "--format", "q"}).status, 2);
}

// Also those whose files are read and written in places.
TEST_F(ToolFormatsTest, DatabasesGoThroughStandardStreams) {
  for (const std::string format : {"sqlite", "xlsx", "jsonl"}) {
    const Outcome out = ztb({"export", "a.rxf", "--all", "--to", "-", "--format", format});
    EXPECT_EQ(out.status, 0) << out.errors;
    EXPECT_EQ(out.errors, "");
    const Outcome in = ztb({"import", "b.rxf", "--from", "-", "--format", format}, out.output);
    EXPECT_EQ(in.status, 0) << in.errors;
    EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf"}).status, 0) << format;
  }
  for (const std::string format : {"sqlite", "xlsx"}) {
    const Outcome out = ztb({"export", "a.rxf", "price", "--to", "-", "--format", format});
    const std::vector<std::string> table{"--format", format, "--parameter", "price(food)"};
    for (const std::string source : {"-", "-#price"}) {
      std::vector<std::string> arguments{"import", "c.rxf", "--from", source};
      arguments.insert(arguments.end(), table.begin(), table.end());
      EXPECT_EQ(ztb(arguments, out.output).errors, "") << format;
      EXPECT_EQ(ztbFine({"show", "c.rxf", "price", "--csv"}),
                "food,value\nMilk,0.30000000000000004\n");
    }
    // No temporary name is told.
    const Outcome wrong = ztb(
        {"import", "d.rxf", "--from", "-#price", "--format", format, "--parameter", "price(nope)"},
        out.output);
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(wrong.errors, std::string("standard input#price") +
                                (format == "xlsx" ? ": row 1" : "") +
                                ": no column 'nope'; the columns are food, value\n"
                                "ztb: d.rxf: not written: 1 problem in the input\n");
    EXPECT_EQ(ztb({"import", "d.rxf", "--from", "-", "--format", format}, "no such file").errors,
              format == "xlsx"
                  ? "ztb: standard input: is no workbook: it cannot be opened as a zip file\n"
                  : "ztb: standard input: SQLite: file is not a database\n");
  }
  const Outcome full = ztb({"export", "a.rxf", "price", "--to", "-", "--format", "xlsx"}, "",
                           tooltest::OutputTo::fullDisk);
  EXPECT_EQ(full.status, 1);
  EXPECT_EQ(full.errors, "ztb: standard output: cannot be written: No space left on device\n");
}

TEST_F(ToolFormatsTest, ANameThatTellsNoFormatIsNoFolder) {
  for (const std::string target : {"/dev/full", "b.rxf", "folder", "price.txt"}) {
    const Outcome outcome = ztb({"export", "a.rxf", "--all", "--to", target});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.errors.starts_with("ztb: --to " + target +
                                           ": its ending tells no format, which .csv .csv.gz"))
        << outcome.errors;
    EXPECT_TRUE(outcome.errors.ends_with(" do; give --format, or for a folder a / at its end\n"))
        << outcome.errors;
  }
  EXPECT_FALSE(exists("folder"));
  ztbFine({"export", "a.rxf", "--all", "--to", "folder", "--format", "csv"});
  ztbFine({"export", "a.rxf", "--all", "--to", "folder"});
}

// Whole databases of which a table, or the end of one, is gone.
TEST_F(ToolFormatsTest, CutDatabasesAreNoticed) {
  ztbFine({"export", "a.rxf", "--all", "--to", "a.db"});
  const auto changed = [&](const char* statement) {
    sqlite3* file = nullptr;
    const bool isOpen = sqlite3_open(path("a.db").c_str(), &file) == SQLITE_OK;
    const bool isDone =
        isOpen && sqlite3_exec(file, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(file);
    return isDone;
  };
  ASSERT_TRUE(changed("delete from food where food = 'Milk'"));
  ASSERT_TRUE(changed("delete from _labels where label = 'z'"));
  expectFails(
      1,
      "a.db#_labels: has 2 labels, a.db#_symbols: row 5 tells 3: it is cut short, or rows "
      "were taken out and the number there not changed\n"
      "a.db#food: has 1 record, a.db#_symbols: row 1 tells 2: it is cut short, or rows were "
      "taken out and the number there not changed\n"
      "ztb: b.rxf: not written: 2 problems in the input\n",
      {"import", "b.rxf", "--from", "a.db"});
  ASSERT_TRUE(changed("drop table price"));
  const Outcome outcome = ztb({"import", "b.rxf", "--from", "a.db"});
  EXPECT_NE(outcome.errors.find("tables: price has no table 'price'"), std::string::npos);
  ASSERT_TRUE(changed("drop table _labels"));
  EXPECT_NE(ztb({"import", "b.rxf", "--from", "a.db"}).errors.find("no _labels is there"),
            std::string::npos);
  ztbFine({"export", "a.rxf", "--all", "--to", "a.xlsx"});
  for (const std::string file : {"a.db", "a.xlsx"}) {
    ztbFine({"export", "a.rxf", "--all", "--to", file});
    const std::string bytes = read(file);
    write("cut" + file.substr(1), bytes.substr(0, bytes.size() - 1 - bytes.size() / 3));
    EXPECT_EQ(ztb({"import", "b.rxf", "--from", "cut" + file.substr(1)}).status, 1) << file;
  }
  EXPECT_FALSE(exists("b.rxf"));
}

}  // namespace
