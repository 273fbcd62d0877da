// An exchange file beyond 4 GiB: written, read back record by record, and what lies behind the
// border read by a database.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

constexpr std::uintmax_t kBorder = std::uintmax_t{1} << 32;
constexpr int kLabels = 1000;
constexpr int kBlock = 1 << 20;
constexpr int kRecords = 560 * kBlock;

// Value of a record, by the steps of SplitMix64: nearly 8 bytes of it that no compression finds
// anything in. Sign, ten bits of the exponent and the fraction come as they fall; the highest bit
// of the exponent is the inverse of the next, which keeps out what is special.
double valueOf(std::uint64_t record) {
  std::uint64_t bits = (record + 1) * 0x9E3779B97F4A7C15U;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
  bits ^= bits >> 31;
  const std::uint64_t highest = std::uint64_t{1} << 62;
  bits &= ~highest;
  return std::bit_cast<double>((bits & (highest >> 1)) != 0 ? bits : bits | highest);
}

// Records by columns, as both sides of the library have them.
struct Block {
  std::array<std::vector<int>, 3> keys;
  std::vector<double> values;

  // The records from `first` on: their label numbers are their numbers in digits to the base of
  // 1000, counted from 1.
  Block(int first, int count) {
    const auto size = static_cast<std::size_t>(count);
    for (std::vector<int>& column : keys) column.resize(size);
    values.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
      const int record = first + static_cast<int>(i);
      keys[0][i] = record / (kLabels * kLabels) + 1;
      keys[1][i] = record / kLabels % kLabels + 1;
      keys[2][i] = record % kLabels + 1;
      values[i] = valueOf(static_cast<std::uint64_t>(record));
    }
  }
};

class HugeFile : public testing::Test {
 protected:
  void write() const {
    ztb::RxfOutput output(path_);
    for (int label = 0; label < kLabels; ++label) {
      ASSERT_TRUE(output.addLabel("l" + std::to_string(label)));
    }
    ASSERT_TRUE(output.addSymbol(parameter("huge", 3), {}));
    for (int first = 0; first < kRecords; first += kBlock) {
      const Block block(first, kBlock);
      ASSERT_TRUE(output.addRecords(
          kBlock, {block.keys[0].data(), block.keys[1].data(), block.keys[2].data()},
          {block.values.data()}));
    }
    ASSERT_TRUE(output.addSymbol(parameter("behind", 1), {}));
    const std::vector<int> labels{7, 1000};
    const std::vector<double> two{1.5, -2.25};
    ASSERT_TRUE(output.addRecords(2, {labels.data()}, {two.data()}));
    output.publish();
  }

  static ztbRxfSymbolInfo parameter(const char* name, int dimension) {
    ztbRxfSymbolInfo info{};
    info.name = name;
    info.text = "";
    info.type = ZTB_PARAMETER;
    info.dimension = dimension;
    info.domainKind = ZTB_RXF_DOMAIN_NONE;
    return info;
  }

  const ztbtest::TempFolder folder_;
  const std::string path_ = folder_.file("huge.rxf");
};

TEST_F(HugeFile, GivesEachRecordBackAndWhatLiesBehindTheBorder) {
  write();
  ASSERT_GT(std::filesystem::file_size(path_), kBorder);

  const ztb::RxfFile file(path_);
  ztb::RxfRecords records(file, file.symbol("huge"));
  int record = 0;
  while (records.next()) {
    const Block expected(record, static_cast<int>(records.size()));
    for (int position = 0; position < 3; ++position) {
      ASSERT_TRUE(std::ranges::equal(records.keys(position),
                                     expected.keys[static_cast<std::size_t>(position)]))
          << "position " << position << " from record " << record;
    }
    ASSERT_TRUE(std::ranges::equal(records.values(0), expected.values)) << "from record " << record;
    record += static_cast<int>(records.size());
  }
  EXPECT_EQ(record, kRecords);

  const ztb::Database database = ztb::Database::open(path_);
  const ztb::Symbol behind = database.symbol("behind");
  EXPECT_EQ(behind.recordCount(), 2);
  EXPECT_EQ(behind.find("l6")->level(), 1.5);
  EXPECT_EQ(behind.find("l999")->level(), -2.25);
}

}  // namespace
