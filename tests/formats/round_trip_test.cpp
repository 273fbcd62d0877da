// Whole databases through each format and back: everything the same, every value bit for bit.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/job.h"
#include "tests/formats/random_database.h"

namespace {

using formatstest::describe;
using formatstest::Job;
using formatstest::randomDatabase;

class RoundTripTest : public testing::TestWithParam<const char*> {
 protected:
  // Writes a database to the format and reads it back.
  ztb::Database throughFormat(const std::string& file) {
    const std::string target = folder_.file(GetParam());
    Job out(target.ends_with("parquet")
                ? formatstest::Options{{"all", ""}, {"to", target}, {"format", "parquet"}}
                : formatstest::Options{{"all", ""}, {"to", target}});
    EXPECT_TRUE(out.exportFile(file)) << out.errors(folder_);
    Job in({{"from", target}});
    EXPECT_TRUE(in.import(folder_.file("back.rxf"))) << in.errors(folder_);
    EXPECT_EQ(in.warnings(folder_), "");
    std::filesystem::remove_all(target);
    return ztb::Database::open(folder_.file("back.rxf"));
  }

  ztbtest::TempFolder folder_;
};

TEST_P(RoundTripTest, KeepsRandomDatabases) {
  // A file for each symbol takes its time.
  const bool few = GetParam() == std::string("parquet") || std::getenv("ZTB_SHORT_SERIES");
  const unsigned seeds = few ? 6 : 25;
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    ztb::Database database = randomDatabase(seed);
    database.write(folder_.file("a.rxf"));
    const std::string expected = describe(ztb::Database::open(folder_.file("a.rxf")));
    ASSERT_EQ(describe(throughFormat(folder_.file("a.rxf"))), expected) << "seed " << seed;
  }
}

TEST_P(RoundTripTest, KeepsADatabaseWithoutSymbols) {
  ztb::Database database;
  database.mergeLabel("alone");
  database.write(folder_.file("a.rxf"));
  EXPECT_EQ(describe(throughFormat(folder_.file("a.rxf"))), "label >alone<\n");
}

TEST_P(RoundTripTest, KeepsNamesThatTheFormatHasForItself) {
  ztb::Database database;
  for (const char* name : {"sqlite_master", "History", "history_2", "label", "symbol", "value"}) {
    database.addParameter(name, {"value", "*"}, "a text").add("x", "y").setLevel(1);
  }
  database.addParameter(std::string(63, 'n'), {"*"}).add("x").setLevel(2);
  database.addParameter(std::string(62, 'n') + "m", {"*"}).add("x").setLevel(3);
  database.write(folder_.file("a.rxf"));
  EXPECT_EQ(describe(throughFormat(folder_.file("a.rxf"))),
            describe(ztb::Database::open(folder_.file("a.rxf"))));
}

TEST_P(RoundTripTest, KeepsDomainsThatColumnsCannotBeCalled) {
  const std::vector<std::vector<ztb::DomainArgument>> domains{
      {"", "\\"},    {"a", "\xFF"}, {"\\x41", "b"},    {"value (exact)", "*"}, {" ", "  "},
      {"a,b", "\""}, {"x\ny", "'"}, {"\xC3\x84", "="}, {"_exact", "of"}};
  ztb::Database database;
  for (const auto& names : domains) {
    const std::string number = std::to_string(database.symbolCount());
    database.addSymbol("p" + number, ztb::Type::parameter, names).add("x", "y").setLevel(-0.0);
    database.addSymbol("s" + number, ztb::Type::set, names).add("x", "y");
  }
  database.write(folder_.file("a.rxf"));
  const std::string before = describe(ztb::Database::open(folder_.file("a.rxf")));
  EXPECT_NE(before.find(" in a? in \xFF?"), std::string::npos);
  EXPECT_EQ(describe(throughFormat(folder_.file("a.rxf"))), before);
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTripTest,
                         testing::Values("a.db", "a.xlsx", "a.jsonl", "a.jsonl.gz", "a.jsonl.zst",
                                         "folder/", "parquet"),
                         [](const testing::TestParamInfo<const char*>& target) {
                           std::string name = target.param;
                           for (char& c : name) c = c == '.' || c == '/' ? '_' : c;
                           return name;
                         });

}  // namespace
