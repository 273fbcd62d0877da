// Many records in one call, through the built library.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <fstream>
#include <iterator>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// What the library gives in place of a number of records that it cannot give.
constexpr int kFailed = -1;

class BlockRead : public testing::Test {
 protected:
  void store(const Content& content) {
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    ASSERT_EQ(file.close(), 0);
  }

  // The records of a symbol, `room` in a call; ends at the first call that gives none, whose result
  // goes to last_.
  std::vector<Record> records(const Symbol& symbol, int number, int room) {
    const auto dim = static_cast<std::size_t>(symbol.dim);
    const std::size_t slots = symbol.type < kVariable ? 1 : 5;
    std::vector<int> keys(static_cast<std::size_t>(room) * dim + 1, -7);
    std::vector<double> values(static_cast<std::size_t>(room) * slots + 1, -7);
    bool started = false;
    std::vector<Record> result;
    announced_ = file_.startBlocks(number, started);
    EXPECT_TRUE(started);
    while ((last_ = file_.readBlock(keys.data(), values.data(), room)) > 0) {
      EXPECT_LE(last_, room);
      for (std::size_t i = 0; i < static_cast<std::size_t>(last_); ++i) {
        Record record{{keys.begin() + static_cast<long>(i * dim),
                       keys.begin() + static_cast<long>((i + 1) * dim)},
                      {}};
        for (std::size_t s = 0; s < slots; ++s) {
          record.bits.push_back(std::bit_cast<std::uint64_t>(values[i * slots + s]));
        }
        result.push_back(record);
      }
      EXPECT_EQ(keys.back(), -7);
      EXPECT_EQ(values.back(), -7);
    }
    return result;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  PeerFile file_;
  int announced_ = 0;
  int last_ = 0;
};

// Three blocks of the file, and a symbol behind them.
Content threeBlocks() {
  Content content;
  for (int i = 1; i <= 400; ++i) content.labels.push_back("l" + std::to_string(i));
  Symbol many;
  many.name = "many";
  many.dim = 2;
  for (int i = 0; i < 150000; ++i) {
    many.records.push_back(record({1 + i / 400, 1 + i % 400}, {i * 0.5 + i % 7}));
  }
  Symbol behind;
  behind.name = "behind";
  behind.records = {record({}, {42})};
  content.symbols = {many, behind};
  return content;
}

TEST_F(BlockRead, GivesTheRecordsOfEveryKindOfSymbolWhateverTheRoom) {
  const Content content = smallContent();
  store(content);
  ASSERT_EQ(file_.openRead(path_), 0);
  for (const int room : {1, 2, 100}) {
    for (std::size_t i = 0; i < content.symbols.size(); ++i) {
      const Symbol& symbol = content.symbols[i];
      if (symbol.type == kAlias) continue;
      EXPECT_EQ(records(symbol, static_cast<int>(i) + 1, room), symbol.records) << symbol.name;
      EXPECT_EQ(announced_, static_cast<int>(symbol.records.size()));
      EXPECT_EQ(last_, 0);
      EXPECT_TRUE(file_.finishReading());
    }
  }
  EXPECT_EQ(file_.errorCount(), 0);
}

TEST_F(BlockRead, GoesOverTheBlocksOfTheFile) {
  const Content content = threeBlocks();
  store(content);
  ASSERT_EQ(file_.openRead(path_), 0);
  EXPECT_EQ(records(content.symbols[0], 1, 1000), content.symbols[0].records);
  EXPECT_EQ(announced_, 150000);
  EXPECT_TRUE(file_.finishReading());
  EXPECT_EQ(records(content.symbols[1], 2, 1000), content.symbols[1].records);
}

// What came before the damage is given; the end tells that it counts for nothing.
TEST_F(BlockRead, EndsWithAFailureWhereABlockIsDamaged) {
  const Content content = threeBlocks();
  store(content);
  std::ifstream in(path_, std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  in.close();
  // The first block begins behind the file's head of 96 bytes; its own head of 40 tells at 16 how
  // long its body is.
  std::size_t length = 0;
  for (std::size_t i = 4; i-- > 0;) {
    length = length << 8U | static_cast<unsigned char>(bytes[96 + 16 + i]);
  }
  char& changed = bytes[96 + 40 + length + 40 + 100];
  changed = static_cast<char>(changed + 1);
  std::ofstream(path_, std::ios::binary) << bytes;

  ASSERT_EQ(file_.openRead(path_), 0);
  const std::vector<Record> given = records(content.symbols[0], 1, 1000);
  EXPECT_EQ(announced_, 150000);
  EXPECT_EQ(given.size(), 65536U);
  EXPECT_TRUE(std::equal(given.begin(), given.end(), content.symbols[0].records.begin()));
  EXPECT_EQ(last_, kFailed);
  int key = 0;
  double value = 0;
  EXPECT_EQ(file_.readBlock(&key, &value, 1), kFailed);
  EXPECT_EQ(file_.errorCount(), 1);
  EXPECT_EQ(file_.errorText(file_.takeLastError())
                .find("File is damaged: block 2 of 3 of symbol many: checksum is "),
            0U);
  EXPECT_TRUE(file_.finishReading());
  EXPECT_EQ(records(content.symbols[1], 2, 10), content.symbols[1].records);
}

TEST_F(BlockRead, NeedsAStart) {
  store(smallContent());
  ASSERT_EQ(file_.openRead(path_), 0);
  int key = 0;
  double value = 0;
  EXPECT_EQ(file_.readBlock(&key, &value, 1), kFailed);
  EXPECT_EQ(file_.errorText(file_.takeLastError()),
            "Call out of order: reading records without a start");
  EXPECT_EQ(file_.readBlock(nullptr, &value, 1), kFailed);
  EXPECT_EQ(file_.readBlock(&key, nullptr, 1), kFailed);
  bool started = true;
  EXPECT_EQ(file_.startBlocks(10, started), kFailed);
  EXPECT_FALSE(started);
}

}  // namespace
}  // namespace rxftest
