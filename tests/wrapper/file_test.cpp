#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

class FileTest : public testing::Test {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol i = database.addSet("i", {"*"});
    i.add("a");
    i.add("b").setText("second");
    database.addAlias("j", i);
    database.addParameter("p", {i}).add("a").setLevel(5);
    database.write(path_);
  }

  ztbtest::TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

TEST_F(FileTest, IsMirroredLazily) {
  ztb::Database database = ztb::Database::open(path_);
  EXPECT_TRUE(database.fileBacked());
  EXPECT_EQ(database.labelCount(), 2);
  EXPECT_EQ(database.symbol("i").find("b")->text(), "second");
  database.closeFile(false);
  EXPECT_FALSE(database.fileBacked());
  EXPECT_EQ(database.symbol("i").recordCount(), 2);
  EXPECT_THROW(static_cast<void>(database.symbol("p").recordCount()), ztb::Error);
}

TEST_F(FileTest, IsReadWhollyBeforeItIsClosed) {
  ztb::Database database = ztb::Database::open(path_);
  database.closeFile(true);
  EXPECT_EQ(database.symbol("p").find("a")->level(), 5);
}

TEST_F(FileTest, IsWrittenOverItsOwnSource) {
  {
    ztb::Database database = ztb::Database::open(path_);
    database.symbol("p").merge("b").setLevel(6);
    database.write(path_);
    EXPECT_FALSE(database.fileBacked());
  }
  const ztb::Database database = ztb::Database::open(path_);
  EXPECT_EQ(database.symbol("p").find("a")->level(), 5);
  EXPECT_EQ(database.symbol("p").find("b")->level(), 6);
  EXPECT_EQ(database.symbol("i").find("b")->text(), "second");
}

TEST_F(FileTest, KeepsTheOldOneWhenARecordIsOutsideItsDomain) {
  ztb::Database database = ztb::Database::open(path_);
  database.symbol("p").add("c");
  const std::string other = folder_.file("b.rxf");
  {
    ztb::Database old;
    old.addSet("old", {"*"}).add("a");
    old.write(other);
  }
  try {
    database.write(other, true);
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.what(),
                 "1 RXF Error(s). First Error: Record outside its domain: p, label >c< at position "
                 "1 is not in i");
  }
  EXPECT_EQ(ztb::Database::open(other).symbol("old").recordCount(), 1);
  database.write(other, false);
  EXPECT_EQ(ztb::Database::open(other).symbol("p").recordCount(), 2);
}

// A symbol of a file is numbered from 1, one that was added from 0.
TEST_F(FileTest, TakesNewAliasesOfItsSets) {
  ztb::Database database = ztb::Database::open(path_);
  const ztb::Symbol i = database.symbol("i");
  EXPECT_EQ(i.number(), 1);
  database.addAlias("k", i);
  EXPECT_EQ(database.symbol("k"), i);
}

// The first block of records begins at byte 96 with a head of 40 bytes.
TEST_F(FileTest, WithADamagedBlockIsNeitherReadNorWrittenUntilItsRecordsAreGivenUp) {
  {
    std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(138);
    file.put('\xFF');
  }
  const std::string other = folder_.file("b.rxf");
  {
    ztb::Database old;
    old.mergeLabel("old");
    old.write(other);
  }
  ztb::Database database = ztb::Database::open(path_);
  const std::string text =
      "Symbol i could not be read from " + path_ + ": File is damaged: block 1 of 1 of symbol i: ";
  const auto expectUnreadable = [&](auto use) {
    try {
      use();
      ADD_FAILURE() << "nothing was thrown";
    } catch (const ztb::Error& error) {
      EXPECT_EQ(std::string(error.what()).find(text), 0U) << error.what();
    }
  };
  ztb::Symbol i = database.symbol("i");
  expectUnreadable([&] { database.write(other); });
  for (int times = 0; times < 2; ++times) {
    expectUnreadable([&] { static_cast<void>(i.recordCount()); });
    expectUnreadable([&] { database.write(other); });
  }
  EXPECT_EQ(ztb::Database::open(other).label(1).view(), "old");
  EXPECT_EQ(database.symbol("p").recordCount(), 1) << "other symbols are read";
  i.clear();
  database.write(other);
  EXPECT_EQ(ztb::Database::open(other).symbol("i").recordCount(), 0);
  EXPECT_EQ(ztb::Database::open(other).symbol("p").recordCount(), 1);
}

TEST_F(FileTest, ThatIsMissingIsNamed) {
  try {
    static_cast<void>(ztb::Database::open("none.rxf"));
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.what(), "Error opening RXF file: No such file: none.rxf");
    EXPECT_STREQ(error.operation(), "ztbInitFromRXF");
  }
}

TEST_F(FileTest, AliasHandlesHaveNoRecordsOfTheirOwn) {
  const ztb::Database database = ztb::Database::open(path_);
  const ztb::Symbol j = *database.findSymbolOrAlias("j");
  EXPECT_EQ(j.recordCount(), 0);
  int records = 0;
  for (const ztb::Record& record : j.records()) {
    static_cast<void>(record);
    ++records;
  }
  EXPECT_EQ(records, 0);
  EXPECT_EQ(database.symbol("j").recordCount(), 2);
}

}  // namespace
