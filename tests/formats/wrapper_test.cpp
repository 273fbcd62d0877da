// ztb/formats.hpp, the C++ wrapper.

#include <gtest/gtest.h>

#include <fstream>
#include <ztb/formats.hpp>

#include "tests/support/temp_folder.h"

namespace {

TEST(FormatsWrapper, TakesADatabaseOutAndBringsItBack) {
  const ztbtest::TempFolder folder;
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(0.1 + 0.2);
  ztb::Formats({{"all", ""}, {"to", folder.file("a.db")}}).exportFrom(database);
  ztb::Formats job({{"from", folder.file("a.db")}});
  job.importTo(folder.file("a.rxf"));
  EXPECT_EQ(job.counted(ZTB_FORMATS_RECORDS), 1);
  EXPECT_EQ(job.warnings(), "");
  ztb::Formats({{"all", ""}, {"to", folder.file("b.jsonl")}}).exportFrom(folder.file("a.rxf"));
  ztb::Database back;
  ztb::Formats({{"from", folder.file("b.jsonl")}}).importInto(back);
  EXPECT_EQ(back["price"].find("Milk")->level(), 0.1 + 0.2);
}

TEST(FormatsWrapper, ThrowsWithTheKindOfTheFailure) {
  const ztbtest::TempFolder folder;
  try {
    ztb::Formats({{"from", folder.file("none.db")}}).importTo(folder.file("a.rxf"));
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.kind(), ztb::ErrorKind::noFile);
    EXPECT_STREQ(error.operation(), "ztbFormatsImport");
  }
  std::ofstream(folder.file("a.csv")) << "i,v\na,x\n";
  ztb::Database database;
  try {
    ztb::Formats({{"from", folder.file("a.csv")}, {"parameter", "p(i) = v"}}).importInto(database);
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.kind(), ztb::ErrorKind::damagedFile);
    EXPECT_NE(std::string(error.text()).find("a.csv:2:3: v: 'x' is not a number\n"),
              std::string::npos);
  }
  EXPECT_THROW(ztb::Formats({{"colour", "red"}}), ztb::Error);
}

}  // namespace
