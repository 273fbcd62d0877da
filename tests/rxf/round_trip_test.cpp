// What was written comes back, through the built library.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

void write(const std::string& path, const Content& content) {
  PeerFile file;
  ASSERT_EQ(file.openWrite(path), 0);
  writeContent(file, content);
  EXPECT_EQ(file.errorCount(), 0);
  for (const std::string& text : file.drainErrors()) ADD_FAILURE() << text;
  EXPECT_EQ(file.close(), 0);
}

Content read(const std::string& path) {
  PeerFile file;
  EXPECT_EQ(file.openRead(path), 0);
  Content content = readContent(file);
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_EQ(file.close(), 0);
  return content;
}

void expectRoundTrip(const Content& content) {
  const TempFolder folder;
  write(folder.file("x.rxf"), content);
  EXPECT_TRUE(read(folder.file("x.rxf")) == content);
}

TEST(RoundTrip, everyKindOfSymbol) {
  const TempFolder folder;
  write(folder.file("x.rxf"), smallContent());
  const Content back = read(folder.file("x.rxf"));
  EXPECT_EQ(back.labels, smallContent().labels);
  EXPECT_EQ(back.texts, smallContent().texts);
  ASSERT_EQ(back.symbols.size(), smallContent().symbols.size());
  for (std::size_t i = 0; i < back.symbols.size(); ++i) {
    EXPECT_TRUE(back.symbols[i] == smallContent().symbols[i]) << back.symbols[i].name;
  }
}

TEST(RoundTrip, anEmptyFile) {
  expectRoundTrip({});
}

TEST(RoundTrip, labelsAlone) {
  expectRoundTrip({{"a", "b", std::string(63, 'c'), "\x80\xFF"}, {}, {}});
}

TEST(RoundTrip, textsWithOddBytes) {
  std::string odd;
  for (int byte = 1; byte < 256; ++byte) odd += static_cast<char>(byte);
  expectRoundTrip({{}, {odd, odd.substr(1), odd.substr(2), std::string(255, 't')}, {}});
}

TEST(RoundTrip, everyDimensionWithOneAndFiveValues) {
  Content content;
  for (int i = 1; i <= 9; ++i) content.labels.push_back("l" + std::to_string(i));
  for (int i = 1; i <= 9; ++i) content.texts.push_back("t" + std::to_string(i));
  for (int dim = 0; dim <= 20; ++dim) {
    for (const int type : {kSet, kParameter, kVariable, kEquation}) {
      Symbol symbol;
      symbol.name = "s" + std::to_string(dim) + "_" + std::to_string(type);
      symbol.type = type;
      symbol.dim = dim;
      symbol.userInfo = type * 1000 - dim;
      symbol.text = "text of " + symbol.name;
      for (int i = 1; i <= (dim == 0 ? 1 : 9); ++i) {
        std::vector<int> keys(static_cast<std::size_t>(dim), 5);
        if (dim > 0) keys.back() = i;
        std::vector<double> values;
        for (int s = 0; s < (type < kVariable ? 1 : 5); ++s) {
          values.push_back(type == kSet ? i : i * 0.37 + s);
        }
        symbol.records.push_back(record(keys, values));
      }
      content.symbols.push_back(symbol);
    }
  }
  expectRoundTrip(content);
}

TEST(RoundTrip, userInformationOfEveryWidth) {
  Content content;
  for (const int info : {0, 1, -1, 53, 2147483647, -2147483647 - 1}) {
    Symbol symbol;
    symbol.name = "s" + std::to_string(content.symbols.size());
    symbol.userInfo = info;
    content.symbols.push_back(symbol);
  }
  expectRoundTrip(content);
}

TEST(RoundTrip, anAliasOfAnAliasIsOneOfTheSet) {
  Content content;
  content.symbols = {{"i", kSet, 1, 0, "", {}, 0, {}, ""}, {"j", kAlias, 1, 1, "", {}, 0, {}, "i"}};
  const TempFolder folder;
  {
    PeerFile file;
    file.openWrite(folder.file("x.rxf"));
    writeContent(file, content);
    EXPECT_TRUE(file.addAlias("k", "J"));
    EXPECT_TRUE(file.addAlias("u", "*"));
    EXPECT_TRUE(file.addAlias("v", "u"));
    EXPECT_EQ(file.errorCount(), 0);
    file.close();
  }
  const Content back = read(folder.file("x.rxf"));
  ASSERT_EQ(back.symbols.size(), 5U);
  EXPECT_EQ(back.symbols[2].aliasOf, "i");
  EXPECT_EQ(back.symbols[4].aliasOf, "*");
  EXPECT_EQ(back.symbols[4].userInfo, 0);
}

// A value of every class of bit pattern, by number.
double valueOf(std::size_t i) {
  constexpr std::array<std::uint64_t, 8> patterns = {
      0x7FF8000000000001U, 0xFFF4000000000000U, 0x8000000000000000U, 0x000FFFFFFFFFFFFFU,
      0x7FEFFFFFFFFFFFFFU, 0x0000000000000001U, 0x7FF0000000000000U, 0x3FD5555555555555U};
  return i % 3 == 0 ? std::sqrt(static_cast<double>(i)) : std::bit_cast<double>(patterns[i % 8]);
}

// `count` records of dimension 3 in rows of 50.
void writeMany(const std::string& path, int count) {
  PeerFile file;
  ASSERT_EQ(file.openWrite(path), 0);
  file.startLabels();
  for (int i = 1; i <= 300; ++i) file.addLabel(("l" + std::to_string(i)).c_str());
  file.finishLabels();
  file.startWriting("many", "", 3, kParameter, 0);
  for (int i = 0; i < count; ++i) {
    const std::array<int, 3> keys = {1 + i / 15000, 1 + i / 50 % 300, 1 + i % 50 * 6};
    const double value = valueOf(static_cast<std::size_t>(i));
    ASSERT_TRUE(file.write(keys.data(), &value));
  }
  file.finishWriting();
  ASSERT_EQ(file.errorCount(), 0);
  ASSERT_EQ(file.close(), 0);
}

void expectMany(const std::string& path, int count) {
  PeerFile file;
  ASSERT_EQ(file.openRead(path), 0);
  bool started = false;
  ASSERT_EQ(file.startReading(1, started), count);
  ASSERT_TRUE(started);
  std::array<int, 3> keys{};
  double value = 0;
  int firstChanged = 0;
  for (int i = 0; i < count; ++i) {
    ASSERT_TRUE(file.read(keys.data(), &value, &firstChanged));
    ASSERT_EQ(keys, (std::array<int, 3>{1 + i / 15000, 1 + i / 50 % 300, 1 + i % 50 * 6})) << i;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value),
              std::bit_cast<std::uint64_t>(valueOf(static_cast<std::size_t>(i))))
        << i;
    const int expected = i % 15000 == 0 ? 1 : i % 50 == 0 ? 2 : 3;
    ASSERT_EQ(firstChanged, expected) << i;
  }
  EXPECT_FALSE(file.read(keys.data(), &value, &firstChanged));
  EXPECT_EQ(file.errorCount(), 0);
}

class ManyRecords : public testing::TestWithParam<int> {};

TEST_P(ManyRecords, comeBack) {
  const TempFolder folder;
  writeMany(folder.file("x.rxf"), GetParam());
  expectMany(folder.file("x.rxf"), GetParam());
}

INSTANTIATE_TEST_SUITE_P(AroundTheBordersOfBlocks, ManyRecords,
                         testing::Values(1, 1023, 1024, 1025, 65535, 65536, 65537, 131071, 131072,
                                         131073));

TEST(RoundTrip, aMillionRecords) {
  const TempFolder folder;
  writeMany(folder.file("x.rxf"), 1000000);
  expectMany(folder.file("x.rxf"), 1000000);
}

TEST(RoundTrip, threeMillionRecordsThatDoNotAllStayInMemory) {
  const TempFolder folder;
  writeMany(folder.file("x.rxf"), 3000000);
  expectMany(folder.file("x.rxf"), 3000000);
}

TEST(RoundTrip, aHundredThousandLabels) {
  Content content;
  for (int i = 0; i < 100000; ++i) content.labels.push_back("label " + std::to_string(i));
  for (int i = 0; i < 100000; ++i) content.texts.push_back("text " + std::to_string(i));
  expectRoundTrip(content);
}

}  // namespace
}  // namespace rxftest
