// Special values are stored as codes, through the tables of the writer and of the reader.

#include <gtest/gtest.h>

#include <array>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using Table = std::array<std::uint64_t, 5>;

constexpr Table kDefaults = {0x7E37E43C8800759CU, 0x7FF8000000000000U, 0x7FF0000000000000U,
                             0xFFF0000000000000U, 1U};

std::array<double, 16> doubles(const Table& table) {
  std::array<double, 16> values{};
  for (std::size_t i = 0; i < table.size(); ++i) values[i] = std::bit_cast<double>(table[i]);
  return values;
}

// Writes the values into one symbol of `type`, under the writer's table.
void write(const std::string& path, const Table& table, int type,
           const std::vector<std::uint64_t>& bits) {
  PeerFile file;
  ASSERT_EQ(file.openWrite(path), 0);
  ASSERT_TRUE(file.setSpecialValues(doubles(table).data()));
  Content content;
  Symbol symbol;
  symbol.name = "p";
  symbol.dim = 1;
  symbol.type = type;
  for (std::size_t i = 0; i < bits.size(); ++i) {
    content.labels.push_back("l" + std::to_string(i));
    const std::size_t slots = type < kVariable ? 1 : 5;
    symbol.records.push_back({{static_cast<int>(i) + 1}, std::vector(slots, bits[i])});
  }
  content.texts = {"text 1"};
  content.symbols.push_back(symbol);
  writeContent(file, content);
  ASSERT_EQ(file.errorCount(), 0);
  ASSERT_EQ(file.close(), 0);
}

std::vector<std::uint64_t> read(const std::string& path, const Table& table) {
  PeerFile file;
  EXPECT_EQ(file.openRead(path), 0);
  EXPECT_TRUE(file.setReadSpecialValues(doubles(table).data()));
  std::vector<std::uint64_t> bits;
  const Content content = readContent(file);
  for (const Record& record : content.symbols.at(0).records) {
    for (const std::uint64_t slot : record.bits) EXPECT_EQ(slot, record.bits[0]);
    bits.push_back(record.bits[0]);
  }
  return bits;
}

constexpr Table kMine = {0x4000000000000001U, 0x4000000000000002U, 0x4000000000000003U,
                         0x4000000000000004U, 0x4000000000000005U};
constexpr Table kOther = {0xC000000000000001U, 0xC000000000000002U, 0xC000000000000003U,
                          0xC000000000000004U, 0xC000000000000005U};

TEST(SpecialValues, theDefaultsAreGivenToWhoAsks) {
  PeerFile file;
  std::array<double, 16> values{};
  values[5] = 42;
  file.specialValues(values.data());
  for (std::size_t i = 0; i < kDefaults.size(); ++i) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(values[i]), kDefaults[i]) << i;
  }
  EXPECT_EQ(values[5], 42) << "there are five and no more";
}

TEST(SpecialValues, aTableThatWasSetIsGivenBack) {
  PeerFile file;
  file.setSpecialValues(doubles(kMine).data());
  std::array<double, 16> values{};
  file.specialValues(values.data());
  EXPECT_EQ(values, doubles(kMine));
}

TEST(SpecialValues, aMissingTableIsRefusedAndTheOldOneStays) {
  PeerFile file;
  ASSERT_TRUE(file.setSpecialValues(doubles(kMine).data()));
  EXPECT_FALSE(file.setSpecialValues(nullptr));
  EXPECT_FALSE(file.setReadSpecialValues(nullptr));
  std::array<double, 16> values{};
  file.specialValues(values.data());
  EXPECT_EQ(values, doubles(kMine));
}

TEST(SpecialValues, whileAFileIsReadTheReadersAreGiven) {
  const TempFolder folder;
  write(folder.file("x"), kMine, kParameter, {kMine[0]});
  PeerFile file;
  ASSERT_TRUE(file.setSpecialValues(doubles(kMine).data()));
  ASSERT_TRUE(file.setReadSpecialValues(doubles(kOther).data()));
  ASSERT_EQ(file.openRead(folder.file("x")), 0);
  std::array<double, 16> values{};
  file.specialValues(values.data());
  EXPECT_EQ(values, doubles(kOther));
  file.close();
  file.specialValues(values.data());
  EXPECT_EQ(values, doubles(kMine));
}

TEST(SpecialValues, theWritersBecomeTheReaders) {
  const TempFolder folder;
  for (const int type : {kParameter, kVariable, kEquation}) {
    write(folder.file("x"), kMine, type, {kMine[4], kMine[1], kMine[0], kMine[3], kMine[2]});
    EXPECT_EQ(read(folder.file("x"), kOther),
              (std::vector<std::uint64_t>{kOther[4], kOther[1], kOther[0], kOther[3], kOther[2]}));
  }
}

TEST(SpecialValues, aValueOutsideTheWritersTableKeepsItsBitsEvenIfItIsInTheReaders) {
  const TempFolder folder;
  const std::vector<std::uint64_t> bits = {
      kOther[1],           kDefaults[0],        kDefaults[1],
      kDefaults[2],        kDefaults[4],        0x7FF8000000000001U,
      0xFFF8000000000000U, 0x8000000000000000U, 0};
  write(folder.file("x"), kMine, kParameter, bits);
  EXPECT_EQ(read(folder.file("x"), kOther), bits);
}

TEST(SpecialValues, aSetsTextNumberIsNeverSpecial) {
  const TempFolder folder;
  // Tables in which text numbers 0 and 1 stand for special values.
  Table numbers = kMine;
  numbers[0] = std::bit_cast<std::uint64_t>(0.0);
  numbers[4] = std::bit_cast<std::uint64_t>(1.0);
  const std::vector<std::uint64_t> bits = {numbers[0], numbers[4]};
  write(folder.file("x"), numbers, kSet, bits);
  EXPECT_EQ(read(folder.file("x"), kOther), bits);
}

}  // namespace
}  // namespace rxftest
