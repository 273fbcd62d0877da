// Files opened with a limit on memory.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

// Parameters p and q of one position with 1000 records each, which take 64 bytes a record in the
// map.
class MemoryLimitTest : public testing::Test {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol p = database.addParameter("p", {"*"});
    ztb::Symbol q = database.addParameter("q", {"*"});
    for (int i = 0; i < 1000; ++i) {
      const std::string label = "l" + std::to_string(i);
      p.add(label).setLevel(i + 1);
      q.add(label).setLevel(i + 1);
    }
    database.write(path_);
  }
  void TearDown() override { EXPECT_EQ(ztbRxfMemoryLimit(0), 0U) << "the limit was put back"; }

  std::string refusal(const std::string& symbol, const std::string& reason) const {
    return "Symbol " + symbol + " could not be read from " + path_ + ": Limit exceeded: " + reason;
  }

  ztbtest::TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

template <class Use>
std::string failureOf(Use use) {
  try {
    use();
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST_F(MemoryLimitTest, RefusesWhatNeedsMoreBeforeItTakesIt) {
  const ztb::Database database = ztb::Database::open(path_, {.maxMemory = 63'999});
  const std::string text =
      refusal("p", "its 1000 records need about 62.5 KiB in memory, the limit is 62.4 KiB");
  const ztb::Symbol p = database.symbol("p");
  EXPECT_EQ(failureOf([&] { static_cast<void>(p.recordCount()); }), text);
  EXPECT_EQ(failureOf([&] { static_cast<void>(p.find("l1")); }), text);
}

TEST_F(MemoryLimitTest, CountsTheSymbolsOfADatabaseTogether) {
  ztb::Database database;
  database.openFile(path_, {.maxMemory = 100'000});
  EXPECT_EQ(database.symbol("p").find("l999")->level(), 1000);
  EXPECT_EQ(
      failureOf([&] { static_cast<void>(database.symbol("q").recordCount()); }),
      refusal("q",
              "its 1000 records need about 62.5 KiB in memory, what was read before about 62.5 "
              "KiB, the limit is 97.6 KiB"));
  EXPECT_EQ(database.symbol("p").recordCount(), 1000);
  const ztb::Database enough = ztb::Database::open(path_, {.maxMemory = 128'000});
  EXPECT_EQ(enough.symbol("p").recordCount(), 1000);
  EXPECT_EQ(enough.symbol("q").recordCount(), 1000);
}

TEST_F(MemoryLimitTest, LetsUnreadSymbolsPassFromFileToFile) {
  ztb::Database database = ztb::Database::open(path_, {.maxMemory = 1});
  database.write(folder_.file("b.rxf"));
  EXPECT_EQ(ztb::Database::open(folder_.file("b.rxf")).symbol("q").recordCount(), 1000);
}

TEST_F(MemoryLimitTest, LeavesTheLimitOfTheThreadAsItWas) {
  ztbRxfMemoryLimit(63'999);
  EXPECT_EQ(ztb::Database::open(path_, {.maxMemory = 64'000}).symbol("p").recordCount(), 1000);
  EXPECT_THROW(static_cast<void>(ztb::Database::open(folder_.file("none.rxf"), {.maxMemory = 5})),
               ztb::Error);
  const ztb::Database plain = ztb::Database::open(path_, {});
  EXPECT_EQ(ztbRxfMemoryLimit(0), 63'999U);
  EXPECT_THROW(static_cast<void>(plain.symbol("p").recordCount()), ztb::Error);
  EXPECT_EQ(ztb::Database::open(path_).symbol("p").recordCount(), 1000);
}

TEST_F(MemoryLimitTest, IsThatOfTheEstimateWithoutReading) {
  const ztb::RxfFile file(path_);
  EXPECT_EQ(file.memory(file.symbol("p")), 64'000U);
}

}  // namespace
