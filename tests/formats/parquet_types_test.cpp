// Columns of the types that Parquet files of other programs have: files by queries of DuckDB.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/parquet/duckdb_session.h"
#include "tests/formats/job.h"

namespace {

using formatstest::Job;
using testing::ElementsAre;

class ParquetTypesTest : public testing::Test {
 protected:
  void write(const std::string& query) {
    formats::DuckdbSession session;
    session.run("copy (" + query + ") to '" + file() + "' (format parquet)", file());
  }
  std::string file() const { return folder_.file("types.parquet"); }

  // The labels that a set of a column has, in the order of the rows.
  std::vector<std::string> labelsOf(const std::string& column) {
    ztb::Database database;
    Job in({{"from", file()}, {"distinct-set", column}});
    EXPECT_TRUE(in.importInto(database.handle())) << in.errors(folder_);
    std::vector<std::string> labels;
    for (int number = 1; number <= database.labelCount(); ++number) {
      labels.push_back(database.label(number).str());
    }
    return labels;
  }

  ztbtest::TempFolder folder_;
};

// Some programs write all whole numbers as decimals of 38 digits.
TEST_F(ParquetTypesTest, KeepsEachDigitOfDecimalsAsLabels) {
  write(
      "select * from (values (12345678901234567890::decimal(38,0), 10.50::decimal(20,2), "
      "10.50::decimal(9,2)), (12345678901234567891, 1234567890123456.78, 100), "
      "(100, -0.01, -0.01)) t(whole, long, short)");
  EXPECT_THAT(labelsOf("whole"),
              ElementsAre("12345678901234567890", "12345678901234567891", "100"));
  EXPECT_THAT(labelsOf("long"), ElementsAre("10.5", "1234567890123456.78", "-0.01"));
  EXPECT_THAT(labelsOf("short"), ElementsAre("10.5", "100", "-0.01"));
}

// The literals are doubles by the compiler, which takes the nearest ones.
TEST_F(ParquetTypesTest, TakesTheNearestDoublesOfDecimals) {
  const std::string query =
      "select * from (values ('a', 462162224867251104.43::decimal(20,2), "
      "7.9677929657989223322268184025139953062::decimal(38,37)), ('b', 0.10, 0.1), "
      "('c', -2, null)) t(i, v, w)";
  write(query);
  ztb::Database database;
  Job columns({{"from", file()}, {"parameter", "p(i) = v"}});
  ASSERT_TRUE(columns.importInto(database.handle())) << columns.errors(folder_);
  EXPECT_EQ(columns.warnings(folder_), "");
  // The null has rows read one by one.
  Job rows({{"from", file()},
            {"parameter", "q(i) = w"},
            {"parameter", "r(i) = v"},
            {"skip-empty", ""},
            {"decimal", ","}});
  ASSERT_TRUE(rows.importInto(database.handle())) << rows.errors(folder_);
  EXPECT_EQ(rows.warnings(folder_), "");
  for (const char* name : {"p", "r"}) {
    EXPECT_EQ(database[name].find("a")->level(), 462162224867251104.43);
    EXPECT_EQ(database[name].find("b")->level(), 0.1);
    EXPECT_EQ(database[name].find("c")->level(), -2);
  }
  EXPECT_EQ(database["q"].find("a")->level(), 7.9677929657989223322268184025139953062);
  EXPECT_EQ(database["q"].recordCount(), 2);
}

TEST_F(ParquetTypesTest, TellsOfWholeDecimalsThatNoDoubleHolds) {
  write("select 'a' as i, 9007199254740993::decimal(38,0) as v");
  ztb::Database database;
  Job in({{"from", file()}, {"parameter", "p(i) = v"}});
  ASSERT_TRUE(in.importInto(database.handle())) << in.errors(folder_);
  EXPECT_EQ(in.warnings(folder_),
            "types.parquet: row 1: warning: v: 9007199254740993 is no double, the nearest one is "
            "taken\n");
}

// Midday in New York is five in the afternoon in UTC, on a day of winter.
TEST_F(ParquetTypesTest, TakesMomentsOfTimeZonesInUtc) {
  write(
      "select * from (values ('2024-01-15 12:00:00-05'::timestamptz, timestamp '2024-01-15 "
      "12:00:00'), ('2024-01-15 00:00:00.25+00', timestamp '2024-01-15'), ('infinity', "
      "timestamp 'infinity')) t(moment, local)");
  EXPECT_THAT(labelsOf("moment"),
              ElementsAre("2024-01-15T17:00:00+00:00", "2024-01-15T00:00:00.25+00:00", "infinity"));
  EXPECT_THAT(labelsOf("local"), ElementsAre("2024-01-15T12:00:00", "2024-01-15", "infinity"));
}

}  // namespace
