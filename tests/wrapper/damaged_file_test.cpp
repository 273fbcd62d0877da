// Files that are damaged or changed behind their first block of records: what is not read whole is
// not read.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/rxf/reseal.h"
#include "tests/support/temp_folder.h"

namespace {

// Parameter p with 300 * 300 records, a block of 65,536 and one of 24,464, and parameter q.
class DamagedFileTest : public testing::Test {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol p = database.addParameter("p", {"*", "*"});
    for (int i = 1; i <= 300; ++i) database.mergeLabel("l" + std::to_string(i));
    for (int i = 0; i < 300; ++i) {
      for (int j = 0; j < 300; ++j) {
        p.merge("l" + std::to_string(i + 1), "l" + std::to_string(j + 1)).setLevel(i * j + 0.5);
      }
    }
    database.addParameter("q", {"*"}).add("l1").setLevel(7);
    database.write(path_);
    ztb::Database old;
    old.mergeLabel("old");
    old.write(other_);
  }

  // Where the head of the second block of p is.
  [[nodiscard]] std::streamoff secondBlock() const {
    const ztb::RxfFile file(path_);
    ztb::RxfRecords records(file, file.symbol("p"));
    EXPECT_TRUE(records.next());
    EXPECT_TRUE(records.next());
    EXPECT_EQ(records.size(), 24'464U);
    return static_cast<std::streamoff>(records.blockOffset());
  }
  void spoil(std::streamoff at) const {
    std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
    file.seekg(at);
    const char byte = static_cast<char>(file.get() ^ 0x10);
    file.seekp(at);
    file.put(byte);
  }

  // Every use of p fails with one text, which begins so; another file is not replaced.
  void expectUnreadable(ztb::Database& database, const std::string& reason) const {
    std::string first;
    const auto failure = [&](auto use) {
      try {
        use();
        ADD_FAILURE() << "nothing was thrown";
      } catch (const ztb::Error& error) {
        if (first.empty()) first = error.what();
        EXPECT_EQ(first, error.what());
      }
    };
    const ztb::Symbol p = database.symbol("p");
    for (int times = 0; times < 2; ++times) {
      failure([&] { static_cast<void>(p.recordCount()); });
      failure([&] { static_cast<void>(p.find("l1", "l1")); });
      failure([&] {
        for (const ztb::Record& record : p.records()) static_cast<void>(record);
      });
      failure([&] { database.write(other_); });
    }
    EXPECT_EQ(first.find("Symbol p could not be read from " + path_ + ": " + reason), 0U) << first;
    EXPECT_EQ(ztb::Database::open(other_).label(1).view(), "old");
  }

  ztbtest::TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
  std::string other_ = folder_.file("b.rxf");
};

TEST_F(DamagedFileTest, ADamagedSecondBlockLeavesNothingOfTheFirst) {
  spoil(secondBlock() + 60);
  ztb::Database database = ztb::Database::open(path_);
  expectUnreadable(database, "File is damaged: block 2 of 2 of symbol p: ");
  EXPECT_EQ(database.symbol("q").find("l1")->level(), 7);
  database.symbol("p").clear();
  database.write(other_);
  const ztb::Database written = ztb::Database::open(other_);
  EXPECT_EQ(written.symbol("p").recordCount(), 0);
  EXPECT_EQ(written.symbol("q").find("l1")->level(), 7);
}

TEST_F(DamagedFileTest, AnUnreadSymbolThatIsDamagedFailsTheWrite) {
  spoil(secondBlock() + 60);
  ztb::Database database = ztb::Database::open(path_);
  try {
    database.write(other_);
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_EQ(std::string(error.what())
                  .find("Symbol p could not be read from " + path_ +
                        ": File is damaged: block 2 of 2 of symbol p: "),
              0U)
        << error.what();
  }
  EXPECT_EQ(ztb::Database::open(other_).label(1).view(), "old");
}

TEST_F(DamagedFileTest, AFileThatIsCutWhileItIsOpenIsNotReadInPart) {
  ztb::Database database = ztb::Database::open(path_);
  std::filesystem::resize_file(path_, static_cast<std::uintmax_t>(secondBlock() + 60));
  expectUnreadable(database, "File was changed while it was open: it had ");
}

TEST_F(DamagedFileTest, AFileThatIsWrittenInItsPlaceWhileItIsOpenIsNotReadInPart) {
  ztb::Database database = ztb::Database::open(path_);
  const auto later = std::filesystem::last_write_time(path_) + std::chrono::seconds(5);
  // The bytes come back as they were.
  const std::streamoff at = secondBlock() + 60;
  spoil(at);
  spoil(at);
  std::filesystem::last_write_time(path_, later);
  expectUnreadable(database, "File was changed while it was open: it was written to");
}

TEST_F(DamagedFileTest, AFileThatTakesItsNameWhileItIsOpenChangesNothing) {
  ztb::Database database = ztb::Database::open(path_);
  std::filesystem::rename(other_, path_);
  EXPECT_EQ(database.symbol("p").recordCount(), 90'000);
  EXPECT_EQ(database.symbol("p").find("l300", "l300")->level(), 299 * 299 + 0.5);
}

// What is forged behind right checksums.
TEST(ForgedTexts, TwinsAreRefusedAndAMissingOneFailsItsSet) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  const auto make = [&] {
    ztb::Database database;
    ztb::Symbol s = database.addSet("s", {"*"});
    s.add("a").setText("first");
    s.add("b").setText("other");
    database.write(path);
  };
  const auto failure = [&](auto use) -> std::string {
    try {
      use();
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "nothing was thrown";
  };
  for (const char* twin : {"first", "FIRST"}) {
    make();
    rxftest::forgeFile(path, "other", twin);
    const std::string text =
        "File is damaged: text table of " + path + ", chunk 1, entry 2: text stands twice";
    EXPECT_EQ(failure([&] { static_cast<void>(ztb::Database::open(path)); }),
              "Error opening RXF file: " + text);
    EXPECT_EQ(failure([&] { const ztb::RxfFile file(path); }), text);
  }
  make();
  rxftest::forgeFile(path, rxftest::ascendingTexts(1), rxftest::ascendingTexts(2));
  const ztb::Database database = ztb::Database::open(path);
  const std::string text = failure([&] { static_cast<void>(database.symbol("s").recordCount()); });
  EXPECT_EQ(text.find("Symbol s could not be read from " + path +
                      ": File is damaged: block 1 of 1 of symbol s: "),
            0U)
      << text;
  EXPECT_EQ(failure([&] { static_cast<void>(database.symbol("s").find("a")); }), text);
  const ztb::RxfFile file(path);
  ztb::RxfRecords records(file, file.symbol("s"));
  const std::string told = failure([&] { records.next(); });
  EXPECT_EQ(told.find("File is damaged: block 1 of 1 of symbol s in " + path + ": "), 0U) << told;
}

}  // namespace
