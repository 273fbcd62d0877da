// Records by columns: whatever a file holds comes, every bit of it, in blocks.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <ztb/rxf.hpp>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

constexpr std::size_t kBlock = ZTB_RXF_BLOCK_RECORDS;

class RxfRecordsTest : public testing::Test {
 protected:
  // A file with `labels` labels l1, l2, ... and one symbol.
  void writeSymbol(int labels, const Symbol& symbol) {
    Content content;
    for (int i = 1; i <= labels; ++i) content.labels.push_back("l" + std::to_string(i));
    content.texts = {"one", "two"};
    content.symbols = {symbol};
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    ASSERT_EQ(file.close(), 0);
  }

  // All records of the only symbol, and how many were in each block.
  std::vector<Record> readAll(std::vector<std::size_t>* blocks = nullptr) {
    const ztb::RxfFile file(path_);
    ztb::RxfRecords records(file, file.symbol(1));
    return readOn(records, blocks);
  }

  static std::vector<Record> readOn(ztb::RxfRecords& records, std::vector<std::size_t>* blocks) {
    std::vector<Record> all;
    while (records.next()) {
      if (blocks != nullptr) blocks->push_back(records.size());
      for (std::size_t i = 0; i < records.size(); ++i) {
        Record& one = all.emplace_back();
        for (int j = 0; j < records.dimension(); ++j) one.keys.push_back(records.keys(j)[i]);
        for (int s = 0; s < records.valueCount(); ++s) {
          one.bits.push_back(std::bit_cast<std::uint64_t>(records.values(s)[i]));
        }
      }
    }
    EXPECT_FALSE(records.next()) << "the end stays the end";
    return all;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

TEST_F(RxfRecordsTest, GivesNoBlockOfASymbolWithoutRecords) {
  Symbol symbol{"p", kParameter, 2, 0, "", {}, 0, {}, ""};
  writeSymbol(3, symbol);
  EXPECT_TRUE(readAll().empty());
}

TEST_F(RxfRecordsTest, GivesAScalar) {
  Symbol symbol{"pi", kParameter, 0, 0, "", {record({}, {3.25})}, 0, {}, ""};
  writeSymbol(1, symbol);
  EXPECT_EQ(readAll(), symbol.records);
}

TEST_F(RxfRecordsTest, GivesTheNumbersOfTexts) {
  Symbol symbol{"s", kSet, 1, 0, "", {}, 0, {}, ""};
  symbol.records = {record({1}, {2}), record({2}, {0}), record({3}, {1})};
  writeSymbol(3, symbol);
  EXPECT_EQ(readAll(), symbol.records);
}

TEST_F(RxfRecordsTest, GivesFiveValuesOfVariablesAndEquations) {
  for (const int type : {kVariable, kEquation}) {
    Symbol symbol{"x", type, 1, type == kEquation ? 53 : 3, "", {}, 0, {}, ""};
    symbol.records = {record({1}, {1, 2, 3, 4, 5}), record({3}, {-1, 0.1, 1e-9, 1e9, 1})};
    writeSymbol(3, symbol);
    EXPECT_EQ(readAll(), symbol.records) << type;
  }
}

// The five special values, and numbers that come close to them, bit for bit.
TEST_F(RxfRecordsTest, GivesSpecialValuesInTheirInternalCoding) {
  Symbol symbol{"p", kParameter, 1, 0, "", {}, 0, {}, ""};
  int label = 0;
  for (const std::uint64_t bits : std::initializer_list<std::uint64_t>{
           0x7E37E43C8800759CU, 0x7FF8000000000000U, 0x7FF0000000000000U, 0xFFF0000000000000U,
           0x0000000000000001U, 0x7FF8000000000001U, 0xFFF8000000000000U, 0x8000000000000000U, 0}) {
    symbol.records.push_back({{++label}, {bits}});
  }
  writeSymbol(label, symbol);
  EXPECT_EQ(readAll(), symbol.records);
}

TEST_F(RxfRecordsTest, GivesTwentyPositions) {
  Symbol symbol{"p", kParameter, 20, 0, "", {}, 0, {}, ""};
  for (int i = 1; i <= 9; ++i) {
    std::vector<int> keys(20, 1);
    keys[static_cast<std::size_t>(2 * (9 - i) + 1)] = i;
    keys[19] += i;
    if (symbol.records.empty() || symbol.records.back().keys < keys) {
      symbol.records.push_back(record(keys, {i * 0.5}));
    }
  }
  ASSERT_GT(symbol.records.size(), 5U);
  writeSymbol(30, symbol);
  EXPECT_EQ(readAll(), symbol.records);
}

TEST_F(RxfRecordsTest, GoesBehindBlocksWithoutReadingThem) {
  Symbol symbol{"p", kParameter, 2, 0, "", {}, 0, {}, ""};
  for (int i = 0; i < static_cast<int>(3 * kBlock) + 5; ++i) {
    symbol.records.push_back(record({1 + i / 1000, 1 + i % 1000}, {i * 1.0}));
  }
  writeSymbol(1000, symbol);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol(1));
  EXPECT_EQ(records.skip(2), 2);
  EXPECT_EQ(records.size(), 0U);
  EXPECT_EQ(records.blockNumber(), 2);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.size(), kBlock);
  EXPECT_EQ(records.values(0)[0], 2.0 * kBlock);
  EXPECT_EQ(records.skip(5), 1) << "one is left";
  EXPECT_FALSE(records.next());
  records.rewind();
  EXPECT_EQ(records.skip(0), 0);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.values(0)[1], 1.0);
  // The first block is present again, and not read.
  records.rewind();
  EXPECT_EQ(records.skip(1), 1);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.values(0)[0], 1.0 * kBlock);
}

TEST_F(RxfRecordsTest, GoesBehindBlocksOfTheUniverse) {
  Symbol symbol{"p", kParameter, 1, 0, "", {record({1}, {1})}, 0, {}, ""};
  writeSymbol(static_cast<int>(kBlock) + 2, symbol);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("*"));
  EXPECT_EQ(records.skip(1), 1);
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.size(), 2U);
  EXPECT_EQ(records.keys(0)[0], static_cast<int>(kBlock) + 1);
}

TEST_F(RxfRecordsTest, GivesBlocksOf65536Records) {
  Symbol symbol{"p", kVariable, 3, 0, "", {}, 0, {}, ""};
  for (int i = 0; i < static_cast<int>(2 * kBlock) + 77; ++i) {
    symbol.records.push_back(
        record({1 + i / 2500, 1 + i / 50 % 50, 1 + i % 50}, {i * 0.1, 0, -i * 1.0, i * 7.0, 1}));
  }
  writeSymbol(60, symbol);
  std::vector<std::size_t> blocks;
  EXPECT_TRUE(readAll(&blocks) == symbol.records);
  EXPECT_EQ(blocks, (std::vector<std::size_t>{kBlock, kBlock, 77}));
}

TEST_F(RxfRecordsTest, GivesAnExactBlockAsTheOnlyOne) {
  Symbol symbol{"p", kParameter, 1, 0, "", {}, 0, {}, ""};
  for (int i = 1; i <= static_cast<int>(kBlock); ++i) symbol.records.push_back(record({i}, {1}));
  writeSymbol(static_cast<int>(kBlock), symbol);
  std::vector<std::size_t> blocks;
  EXPECT_TRUE(readAll(&blocks) == symbol.records);
  EXPECT_EQ(blocks, std::vector<std::size_t>{kBlock});
}

TEST_F(RxfRecordsTest, GivesEveryLabelOfTheUniverse) {
  Symbol every{"every", kAlias, 1, 0, "", {}, 0, {}, "*"};
  writeSymbol(static_cast<int>(kBlock) + 2, every);
  const ztb::RxfFile file(path_);
  for (const char* name : {"*", "every"}) {
    ztb::RxfRecords records(file, file.symbol(name));
    std::vector<std::size_t> blocks;
    const std::vector<Record> all = readOn(records, &blocks);
    EXPECT_EQ(blocks, (std::vector<std::size_t>{kBlock, 2})) << name;
    for (std::size_t i = 0; i < all.size(); ++i) {
      ASSERT_EQ(all[i], record({static_cast<int>(i) + 1}, {0})) << name;
    }
  }
}

TEST_F(RxfRecordsTest, GivesTheRecordsOfAnAliasesSet) {
  Content content;
  content.labels = {"a", "b"};
  Symbol set{"s", kSet, 1, 0, "", {record({1}, {0}), record({2}, {0})}, 0, {}, ""};
  content.symbols = {set, {"t", kAlias, 1, 1, "", {}, 0, {}, "s"}};
  PeerFile peer;
  ASSERT_EQ(peer.openWrite(path_), 0);
  writeContent(peer, content);
  ASSERT_EQ(peer.close(), 0);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("t"));
  EXPECT_EQ(readOn(records, nullptr), set.records);
}

TEST_F(RxfRecordsTest, GivesTheRecordsOfAnAliasOfASetOfTwoPositions) {
  Content content;
  content.labels = {"a", "b"};
  content.texts = {"one"};
  Symbol set{"s", kSet, 2, 0, "", {record({1, 2}, {1}), record({2, 1}, {0})}, 3, {"*", "*"}, ""};
  content.symbols = {set, {"t", kAlias, 2, 1, "", {}, 0, {}, "s"}};
  PeerFile peer;
  ASSERT_EQ(peer.openWrite(path_), 0);
  writeContent(peer, content);
  ASSERT_EQ(peer.close(), 0);
  const ztb::RxfFile file(path_);
  const ztb::RxfSymbol alias = file.symbol("t");
  EXPECT_EQ(alias.dimension, 2);
  EXPECT_EQ(alias.recordCount, 2);
  EXPECT_EQ(alias.aliasTarget, 1);
  EXPECT_EQ(alias.domains, (std::vector<std::string_view>{"*", "*"}));
  ztb::RxfRecords records(file, alias);
  EXPECT_EQ(readOn(records, nullptr), set.records);
}

TEST_F(RxfRecordsTest, GivesNothingOfAColumnThatThereIsNot) {
  writeSymbol(2, {"p", kParameter, 1, 0, "", {record({1}, {1}), record({2}, {2})}, 0, {}, ""});
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.keys(0).size(), 2U);
  EXPECT_TRUE(records.keys(1).empty());
  EXPECT_TRUE(records.keys(-1).empty());
  EXPECT_TRUE(records.values(1).empty());
}

TEST_F(RxfRecordsTest, RewindsFromAnywhere) {
  Symbol symbol{"p", kParameter, 1, 0, "", {}, 0, {}, ""};
  for (int i = 1; i <= static_cast<int>(kBlock) + 5; ++i) {
    symbol.records.push_back(record({i}, {i * 1.0}));
  }
  writeSymbol(static_cast<int>(kBlock) + 5, symbol);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("p"));
  for (int blocks = 0; blocks <= 3; ++blocks) {
    for (int i = 0; i < blocks; ++i) records.next();
    records.rewind();
    EXPECT_EQ(records.size(), 0U);
    EXPECT_TRUE(readOn(records, nullptr) == symbol.records) << blocks;
    records.rewind();
  }
}

TEST_F(RxfRecordsTest, OutlivesItsFileAndMoves) {
  Symbol symbol{"p", kParameter, 1, 0, "", {record({1}, {1}), record({2}, {2})}, 0, {}, ""};
  writeSymbol(2, symbol);
  auto file = std::make_unique<ztb::RxfFile>(path_);
  ztb::RxfRecords first(*file, file->symbol("p"));
  ztb::RxfRecords other(*file, file->symbol("*"));
  file.reset();
  ztb::RxfRecords second(std::move(first));
  other = std::move(second);
  EXPECT_EQ(readOn(other, nullptr), symbol.records);
}

TEST_F(RxfRecordsTest, ReadersOfOneFileDoNotDisturbEachOther) {
  Symbol symbol{"p", kParameter, 1, 0, "", {}, 0, {}, ""};
  for (int i = 1; i <= static_cast<int>(3 * kBlock); ++i) {
    symbol.records.push_back(record({i}, {i * 1.0}));
  }
  writeSymbol(static_cast<int>(3 * kBlock), symbol);
  const ztb::RxfFile file(path_);
  ztb::RxfRecords ahead(file, file.symbol("p"));
  ztb::RxfRecords behind(file, file.symbol("p"));
  ASSERT_TRUE(ahead.next());
  ASSERT_TRUE(ahead.next());
  ASSERT_TRUE(behind.next());
  EXPECT_EQ(ahead.keys(0)[0], static_cast<int>(kBlock) + 1);
  EXPECT_EQ(behind.keys(0)[0], 1);
  EXPECT_EQ(ahead.blockNumber(), 2);
  EXPECT_EQ(behind.blockNumber(), 1);
  EXPECT_EQ(behind.blockOffset(), 96U) << "behind the header";
}

TEST_F(RxfRecordsTest, SaysWhichSymbolThereIsNot) {
  writeSymbol(1, {"p", kParameter, 1, 0, "", {}, 0, {}, ""});
  const ztb::RxfFile file(path_);
  ztb::RxfSymbol symbol = file.symbol("p");
  symbol.number = 2;
  try {
    const ztb::RxfRecords records(file, symbol);
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.what(), "No such symbol number: 2 in " + path_ + ", expected 0 to 1");
    EXPECT_STREQ(error.operation(), "ztbRxfRecordsOpen");
  }
}

}  // namespace
}  // namespace rxftest
