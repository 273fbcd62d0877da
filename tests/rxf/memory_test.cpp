// What opening a file touches, and how much memory the records of a symbol take while they pass.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/counting_new.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

constexpr int labelCount = 2000;
constexpr int headerBytes = 96;

// Writes a parameter of two dimensions whose values do not compress; gives the most memory that was
// in use meanwhile.
std::size_t write(const std::string& path, int records) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  EXPECT_EQ(object->openWrite(path.c_str(), ""), 0);
  object->startLabels();
  for (int i = 1; i <= labelCount; ++i) object->addLabel(("l" + std::to_string(i)).c_str());
  object->finishLabels();
  object->startWriting("p", "", 2, kParameter, 0);
  std::uint64_t state = 1;
  const HeapPeak peak;
  for (int i = 0; i < records; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const std::array<int, 2> keys{1 + i / labelCount, 1 + i % labelCount};
    const double value = static_cast<double>(state >> 11U) / 3.0;
    EXPECT_TRUE(object->write(keys.data(), &value));
  }
  object->finishWriting();
  const std::size_t most = peak.bytes();
  EXPECT_EQ(object->errorCount(), 0);
  EXPECT_EQ(object->close(), 0);
  return most;
}

// Reads the parameter; gives the most memory that was in use meanwhile.
std::size_t read(const std::string& path, int records) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  EXPECT_EQ(object->openRead(path.c_str()), 0);
  const HeapPeak peak;
  bool started = false;
  EXPECT_EQ(object->startReading(1, started), records);
  std::array<int, 2> keys{};
  double value = 0;
  int firstChanged = 0;
  for (int i = 0; i < records; ++i) {
    EXPECT_TRUE(object->read(keys.data(), &value, &firstChanged));
  }
  object->finishReading();
  return peak.bytes();
}

TEST(Memory, ofWritingASymbolIsTheSameForAnyNumberOfRecords) {
  const TempFolder folder;
  const std::size_t some = write(folder.file("some"), 1'000'000);
  const std::size_t many = write(folder.file("many"), 2'000'000);
  EXPECT_GT(some, 0U);
  EXPECT_LE(many, some + some / 10);
}

TEST(Memory, ofReadingASymbolIsTheSameForAnyNumberOfRecords) {
  const TempFolder folder;
  write(folder.file("some"), 1'000'000);
  write(folder.file("many"), 2'000'000);
  const std::size_t some = read(folder.file("some"), 1'000'000);
  const std::size_t many = read(folder.file("many"), 2'000'000);
  EXPECT_GT(some, 0U);
  EXPECT_LE(many, some + some / 10);
  EXPECT_LT(many, 2'000'000U * sizeof(double)) << "the records are not held";
}

// Notes where a file is read.
class WatchedCalls : public rxffile::SystemCalls {
 public:
  ssize_t pread(int fd, void* data, std::size_t size, off_t offset) override {
    const auto at = static_cast<std::uint64_t>(offset);
    if (at < headerBytes) return SystemCalls::pread(fd, data, size, offset);
    lowest_ = std::min(lowest_, at);
    return SystemCalls::pread(fd, data, size, offset);
  }
  // The first byte behind the header that was asked for.
  [[nodiscard]] std::uint64_t lowest() const { return lowest_; }

 private:
  std::uint64_t lowest_ = ~std::uint64_t{0};
};

// The offset of the first table, behind all records, as the header tells it.
std::uint64_t tablesAt(const std::string& bytes) {
  std::uint64_t offset = 0;
  for (std::size_t i = 8; i-- > 0;)
    offset = offset << 8U | static_cast<unsigned char>(bytes[32 + i]);
  return offset;
}

TEST(Opening, readsTheTablesAndNoRecord) {
  const TempFolder folder;
  write(folder.file("x"), 200'000);
  WatchedCalls calls;
  const auto object = std::make_unique<RxfObject>(calls);
  ASSERT_EQ(object->openRead(folder.file("x").c_str()), 0);
  const std::uint64_t tables = tablesAt(readFile(folder.file("x")));
  EXPECT_GT(tables, 1'000'000U);
  EXPECT_EQ(calls.lowest(), tables);
  bool started = false;
  EXPECT_EQ(object->startReading(1, started), 200'000);
  EXPECT_EQ(calls.lowest(), std::uint64_t{headerBytes});
}

}  // namespace
}  // namespace rxftest
