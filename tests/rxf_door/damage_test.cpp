// Damaged records, files that change while they are read, and calls that fail: nothing is handed
// out but what was verified, and the text tells where.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <ztb/rxf.hpp>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/reseal.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

constexpr std::size_t kBlock = ZTB_RXF_BLOCK_RECORDS;
constexpr std::size_t kHead = 40;
constexpr int kLabels = 400;

class RxfDamageTest : public testing::Test {
 protected:
  // A parameter p(*, *) of three blocks, and the offsets of their heads.
  void SetUp() override {
    Content content;
    Symbol p{"p", kParameter, 2, 0, "", {}, 0, {}, ""};
    for (int i = 1; i <= kLabels; ++i) content.labels.push_back("l" + std::to_string(i));
    for (int i = 0; i < static_cast<int>(2 * kBlock) + 9; ++i) {
      p.records.push_back(record({1 + i / kLabels, 1 + i % kLabels}, {i * 0.37}));
    }
    content.symbols = {p};
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    ASSERT_EQ(file.close(), 0);
    bytes_ = readFile(path_);
    std::size_t at = 96;
    for (std::size_t& offset : offsets_) {
      offset = at;
      at += kHead + number(at + 16);
    }
  }

  [[nodiscard]] std::size_t number(std::size_t at) const {
    std::size_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
      value = value << 8U | static_cast<unsigned char>(bytes_[at + i]);
    return value;
  }

  // Turns a byte around.
  void damage(std::size_t at) {
    bytes_[at] = static_cast<char>(~bytes_[at]);
    writeFile(path_, bytes_);
  }

  // Reads to the end or to the first failure, whose text it gives.
  struct Reading {
    std::vector<int> blocks;  // the first record of each block, from 1
    std::string text;
    int block = 0;
    unsigned long long offset = 0;
  };
  static Reading readOn(ztb::RxfRecords& records) {
    Reading reading;
    try {
      while (records.next()) {
        reading.blocks.push_back((records.keys(0)[0] - 1) * kLabels + records.keys(1)[0]);
      }
    } catch (const ztb::RxfDamage& damage) {
      EXPECT_EQ(records.size(), 0U);
      EXPECT_STREQ(damage.operation(), "ztbRxfNextBlock");
      reading.text = damage.what();
      reading.block = damage.block();
      reading.offset = damage.offset();
    }
    return reading;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
  std::string bytes_;
  std::array<std::size_t, 3> offsets_{};
};

// What is not read is not verified; a block that cannot be found is.
TEST_F(RxfDamageTest, GoesBehindABlockByItsHead) {
  damage(offsets_[1] + kHead + 3);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  EXPECT_EQ(records.skip(2), 2);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.size(), 9U);

  damage(offsets_[1] + 16);
  const ztb::RxfFile again(path_);
  ztb::RxfRecords lost(again, again.symbol("p"));
  try {
    lost.skip(2);
    ADD_FAILURE() << "a head that is wrong leads on";
  } catch (const ztb::RxfDamage& damage) {
    EXPECT_EQ(damage.block(), 2);
    EXPECT_EQ(damage.offset(), offsets_[1]);
    EXPECT_NE(std::string(damage.what()).find("block 2 of 3 of symbol p"), std::string::npos);
  }
  EXPECT_THROW(lost.next(), ztb::RxfDamage);
}

TEST_F(RxfDamageTest, ThrowsWithThePlaceAndStaysThere) {
  damage(offsets_[1] + kHead + 20);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  const Reading reading = readOn(records);
  EXPECT_EQ(reading.blocks, std::vector<int>{1});
  const std::string begin = "File is damaged: block 2 of 3 of symbol p in ";
  EXPECT_TRUE(reading.text.starts_with(begin)) << reading.text;
  EXPECT_NE(reading.text.find("a.rxf: checksum is "), std::string::npos) << reading.text;
  EXPECT_EQ(reading.block, 2);
  EXPECT_EQ(reading.offset, offsets_[1]);
  EXPECT_EQ(readOn(records).text, reading.text) << "the failure stays";
}

TEST_F(RxfDamageTest, GoesOnBehindADamagedBlockWhenAsked) {
  damage(offsets_[1] + kHead + 20);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  EXPECT_FALSE(records.skipDamage()) << "there was none yet";
  EXPECT_NE(readOn(records).text, "");
  ASSERT_TRUE(records.skipDamage());
  const Reading behind = readOn(records);
  EXPECT_EQ(behind.blocks, std::vector<int>{2 * static_cast<int>(kBlock) + 1});
  EXPECT_EQ(behind.text, "");
  EXPECT_FALSE(records.skipDamage());
}

TEST_F(RxfDamageTest, CannotGoOnBehindADamagedHead) {
  damage(offsets_[1] + 16);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  const Reading reading = readOn(records);
  EXPECT_NE(reading.text.find("checksum of the head is "), std::string::npos) << reading.text;
  EXPECT_FALSE(records.skipDamage());
  EXPECT_EQ(readOn(records).text, reading.text);
}

TEST_F(RxfDamageTest, RewindingMeetsTheDamageAgain) {
  damage(offsets_[2] + kHead);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  const Reading first = readOn(records);
  EXPECT_EQ(first.blocks.size(), 2U);
  records.rewind();
  const Reading second = readOn(records);
  EXPECT_EQ(second.blocks, first.blocks);
  EXPECT_EQ(second.text, first.text);
}

// What is wrong in a block whose checksums are right.
TEST_F(RxfDamageTest, RefusesForgedBlocks) {
  const std::string whole = bytes_;
  const auto textOf = [&](std::size_t at, char value) {
    bytes_ = whole;
    bytes_[at] = value;
    reseal(bytes_);
    writeFile(path_, bytes_);
    const ztb::RxfFile file(path_);
    ztb::RxfRecords records(file, file.symbol("p"));
    return readOn(records).text;
  };
  const auto expectIn = [](const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text;
  };
  expectIn(textOf(offsets_[0], 'X'), "another kind of block");
  expectIn(textOf(offsets_[1] + 4, 2),
           "block 2 of symbol 2 stands here, expected block 2 of symbol 1");
  expectIn(textOf(offsets_[1] + 8, 0),
           "block 1 of symbol 1 stands here, expected block 2 of symbol 1");
  expectIn(textOf(offsets_[2] + 12, 8), "8 records, expected 9");
  // The second block begins with the keys 164, 337: 1 is below the block before, 0 no label.
  expectIn(textOf(offsets_[1] + kHead, 1), "its records do not ascend from the block before");
  expectIn(textOf(offsets_[1] + kHead, 0), "key column 1 has first key 0");
}

// Every byte of the blocks: either all records come, or a failure.
TEST_F(RxfDamageTest, NoDamageGoesUnnoticed) {
  const std::string whole = bytes_;
  const std::size_t end = offsets_[2] + kHead + number(offsets_[2] + 16);
  for (std::size_t at = 96; at < end; at += 7919) {
    bytes_ = whole;
    damage(at);
    const ztb::RxfFile file(path_);
    ztb::RxfRecords records(file, file.symbol("p"));
    EXPECT_NE(readOn(records).text, "") << at;
  }
}

}  // namespace
}  // namespace rxftest
