// Calls of the system that fail under ztb/rxf.hpp, and a file that changes under its reader.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <ztb/rxf.hpp>

#include "tests/rxf/temp_folder.h"
#include "tests/rxf_door/failing_system.h"

namespace rxftest {
namespace {

constexpr int kSide = 300;
constexpr int kRecords = kSide * kSide;  // two blocks

class RxfFaultTest : public testing::Test {
 protected:
  void SetUp() override {
    std::vector<int> rows;
    std::vector<int> columns;
    std::vector<double> values;
    for (int i = 0; i < kRecords; ++i) {
      rows.push_back(1 + i / kSide);
      columns.push_back(1 + i % kSide);
      values.push_back(1.0 / (i + 1));
    }
    ztb::RxfOutput output(path_);
    for (int i = 1; i <= kSide; ++i) output.addLabel("l" + std::to_string(i));
    output.addSymbol(parameter("p", 2), {});
    output.addRecords(kRecords, {rows.data(), columns.data()}, {values.data()});
    output.publish();
    // Long ago, so that any write moves the time.
    const std::array<struct timespec, 2> times = {{{1'000'000'000, 0}, {1'000'000'000, 0}}};
    utimensat(AT_FDCWD, path_.c_str(), times.data(), 0);
  }

  static ztbRxfSymbolInfo parameter(const char* name, int dimension) {
    ztbRxfSymbolInfo info{};
    info.name = name;
    info.text = "";
    info.type = ZTB_PARAMETER;
    info.dimension = dimension;
    return info;
  }

  // Reads on to the end; what comes are the records from `count` on, in order.
  static void readOn(ztb::RxfRecords& records, int& count) {
    while (records.next()) {
      for (std::size_t i = 0; i < records.size(); ++i, ++count) {
        ASSERT_EQ(records.keys(0)[i], 1 + count / kSide);
        ASSERT_EQ(records.keys(1)[i], 1 + count % kSide);
        ASSERT_EQ(records.values(0)[i], 1.0 / (count + 1));
      }
    }
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

TEST_F(RxfFaultTest, EachCallOfAReadFailsOnce) {
  std::map<std::string, int> met;
  for (int at = 1;; ++at) {
    int count = 0;
    std::string text;
    std::string failed;
    {
      const FailingSystem calls(at, EIO);
      try {
        const ztb::RxfFile file(path_);
        ztb::RxfRecords records(file, file.symbol("p"));
        readOn(records, count);
      } catch (const ztb::Error& error) {
        text = error.what();
      }
      failed = calls.failed();
    }
    if (failed.empty()) {
      EXPECT_EQ(count, kRecords);
      break;
    }
    ++met[failed];
    EXPECT_NE(text.find("Input/output error"), std::string::npos) << failed << ' ' << at;
    EXPECT_EQ(count % ZTB_RXF_BLOCK_RECORDS, 0) << "whole blocks alone are handed out";
    EXPECT_LT(count, kRecords);
  }
  EXPECT_EQ(met["open"], 1);
  // Header, four tables but for that of texts, and head and body of two blocks.
  EXPECT_GE(met["pread"], 8);
  EXPECT_GE(met["fstat"], 2);
}

TEST_F(RxfFaultTest, AReadErrorStaysOneUntilTheReaderIsRewound) {
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  ASSERT_TRUE(records.next());
  std::string first;
  {
    const FailingSystem calls(1, EIO);
    try {
      records.next();
      FAIL();
    } catch (const ztb::RxfDamage& damage) {
      first = damage.what();
      EXPECT_EQ(damage.block(), 2);
    }
  }
  try {
    records.next();
    FAIL();
  } catch (const ztb::RxfDamage& damage) {
    EXPECT_EQ(first, damage.what());
  }
  EXPECT_FALSE(records.skipDamage()) << "it is no damage";
  records.rewind();
  int count = 0;
  readOn(records, count);
  EXPECT_EQ(count, kRecords);
}

TEST_F(RxfFaultTest, AFileThatChangesUnderTheReaderFailsIt) {
  const auto size = static_cast<off_t>(std::filesystem::file_size(path_));
  const std::string bytes = readFile(path_);
  const std::map<std::string, std::function<void()>> changes = {
      {"it had " + std::to_string(size) + " bytes, now " + std::to_string(size - 1),
       [&] { ASSERT_EQ(truncate(path_.c_str(), size - 1), 0); }},
      {"it had " + std::to_string(size) + " bytes, now 0",
       [&] { ASSERT_EQ(truncate(path_.c_str(), 0), 0); }},
      {"it was written to",
       [&] { std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out) << bytes; }}};
  for (const auto& [reason, change] : changes) {
    for (const bool started : {false, true}) {
      SetUp();
      const ztb::RxfFile file(path_);
      ztb::RxfRecords records(file, file.symbol("p"));
      if (started) records.next();
      change();
      try {
        records.next();
        FAIL() << reason;
      } catch (const ztb::RxfDamage& damage) {
        EXPECT_EQ(std::string(damage.what()).find("File was changed while it was open: "), 0U)
            << damage.what();
        EXPECT_NE(std::string(damage.what()).find(reason), std::string::npos) << damage.what();
      }
    }
  }
}

TEST_F(RxfFaultTest, AnotherFileOfItsNameChangesNothing) {
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  ASSERT_TRUE(records.next());
  { ztb::RxfOutput(path_).publish(); }
  records.rewind();
  int count = 0;
  readOn(records, count);
  EXPECT_EQ(count, kRecords);
}

// Only the folder's way to the disk may fail behind the change.
TEST_F(RxfFaultTest, EachCallOfAWriteFailsOnceAndLeavesTheOldOrTheNewFile) {
  std::map<std::string, int> met;
  for (int at = 1;; ++at) {
    { ztb::RxfOutput(path_, "old").publish(); }
    std::string text;
    std::string failed;
    {
      const FailingSystem calls(at, EIO);
      try {
        ztb::RxfOutput output(path_, "new");
        const int key = 1;
        const double value = 2.5;
        output.addLabel("a");
        output.addSymbol(parameter("p", 1), {});
        output.addRecords(1, {&key}, {&value});
        output.publish();
      } catch (const ztb::Error& error) {
        text = error.what();
      }
      failed = calls.failed();
    }
    const ztb::RxfFile now(path_);
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"a.rxf"}) << failed << ' ' << at;
    if (text.empty()) {
      EXPECT_EQ(now.producer(), "new") << failed << ' ' << at;
      EXPECT_EQ(now.symbol("p").recordCount, 1) << failed << ' ' << at;
    } else if (failed != "fsync" || now.producer() != "new") {
      EXPECT_EQ(now.producer(), "old") << failed << ' ' << at;
    }
    if (failed.empty()) {
      EXPECT_EQ(text, "");
      break;
    }
    if (!text.empty()) ++met[failed];
  }
  for (const char* call : {"open", "pwrite", "fsync", "rename", "fchmod"}) {
    EXPECT_GE(met[call], 1) << call;
  }
}

}  // namespace
}  // namespace rxftest
