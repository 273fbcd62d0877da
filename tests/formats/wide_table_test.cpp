// Tables with a column for each label of a position, in and out.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::Job;
using formatstest::Options;
using formatstest::TableTest;
using testing::HasSubstr;

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

TEST_F(TableTest, NamesTheColumnWithoutATitle) {
  write("r.csv", ",2020,2021\nMilk,1,2\nTofu,3,4\n");
  const ztb::Database read =
      imported("r.csv", {{"rename", "=food"}, {"wide", "year"}, {"parameter", "p(food, year)"}});
  EXPECT_EQ(read["p"].recordCount(), 4);
  EXPECT_EQ(read["p"].find("Tofu", "2021")->level(), 4);
}

}  // namespace
