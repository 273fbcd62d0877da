// Files whose checksums are right and whose content is not: they are refused where they are wrong,
// and whatever is delivered is in order and within the labels.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <random>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/reseal.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

std::string bytesOf(const TempFolder& folder, const Content& content) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  EXPECT_EQ(object->openWrite(folder.file("x").c_str(), "producer"), 0);
  writeContent(*object, content);
  EXPECT_EQ(object->close(), 0);
  return readFile(folder.file("x"));
}

// Reads everything; records have to ascend within the labels, and every announced one has to come.
void readSoundly(const std::string& path) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  if (object->openRead(path.c_str()) != 0) return;
  int symbolCount = 0;
  int labelCount = 0;
  object->systemInfo(&symbolCount, &labelCount);
  std::array<char, 256> name{};
  for (int i = 1; i <= symbolCount; ++i) {
    int dim = 0;
    int type = 0;
    ASSERT_TRUE(object->symbolInfo(i, name.data(), &dim, &type));
    bool started = false;
    const int count = object->startReading(i, started);
    std::vector<int> previous;
    for (int r = 0; r < count; ++r) {
      std::array<int, 20> keys{};
      std::array<double, 5> values{};
      int firstChanged = 0;
      ASSERT_TRUE(object->read(keys.data(), values.data(), &firstChanged));
      const std::vector<int> now(keys.begin(), keys.begin() + dim);
      for (const int key : now) ASSERT_TRUE(key >= 1 && key <= labelCount) << key;
      if (r > 0) {
        ASSERT_LT(previous, now);
      }
      previous = now;
    }
    if (started) {
      ASSERT_TRUE(object->finishReading());
    }
  }
}

TEST(Hostile, anyByteChangedUnderRightChecksums) {
  const TempFolder folder;
  const std::string bytes = bytesOf(folder, smallContent());
  for (std::size_t at = 8; at < bytes.size(); ++at) {
    for (const unsigned change : {0x01U, 0x02U, 0x40U, 0xFFU}) {
      std::string changed = bytes;
      changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ change);
      reseal(changed);
      writeFile(folder.file("x"), changed);
      ASSERT_NO_FATAL_FAILURE(readSoundly(folder.file("x"))) << at;
    }
  }
}

TEST(Hostile, compressedColumnsChangedUnderRightChecksums) {
  const TempFolder folder;
  Content content;
  for (int i = 1; i <= 300; ++i) content.labels.push_back("l" + std::to_string(i));
  Symbol symbol;
  symbol.name = "p";
  symbol.dim = 3;
  symbol.type = kVariable;
  for (int i = 0; i < 3000; ++i) {
    symbol.records.push_back(record({1 + i / 301, 1 + i / 7 % 43, 1 + i % 7 * 40 + i / 301},
                                    {i * 0.1, 1.0 / (i % 30 + 1), i * 1e300, 0, 1}));
  }
  content.symbols = {symbol};
  const std::string bytes = bytesOf(folder, content);
  std::mt19937 random(3);
  const int rounds = std::getenv("ZTB_SHORT_SERIES") ? 500 : 1500;
  for (int round = 0; round < rounds; ++round) {
    std::string changed = bytes;
    for (unsigned i = 0; i <= random() % 3; ++i) {
      changed[96 + random() % (changed.size() - 96)] = static_cast<char>(random());
    }
    reseal(changed);
    writeFile(folder.file("x"), changed);
    ASSERT_NO_FATAL_FAILURE(readSoundly(folder.file("x"))) << round;
  }
}

class HostileHeader : public testing::Test {
 protected:
  int openWith(std::size_t at, std::uint64_t value, std::size_t size) {
    std::string changed = bytes_;
    for (std::size_t i = 0; i < size; ++i, value >>= 8U) {
      changed[at + i] = static_cast<char>(value & 0xFFU);
    }
    reseal(changed);
    writeFile(folder_.file("x"), changed);
    const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
    return object->openRead(folder_.file("x").c_str());
  }

  TempFolder folder_;
  std::string bytes_ = bytesOf(folder_, smallContent());
};

TEST_F(HostileHeader, countsThatDisagreeWithTheTablesAreDamage) {
  for (const std::size_t count : {12U, 16U, 20U}) {
    EXPECT_EQ(openWith(count, 3, 4), 8) << count;
    EXPECT_EQ(openWith(count, 2147483647U, 4), 8) << count;
    EXPECT_EQ(openWith(count, 0xFFFFFFFFU, 4), 8) << count;
  }
}

TEST_F(HostileHeader, tablesOutsideTheFileAreDamage) {
  for (const std::size_t field : {32U, 40U, 48U, 56U, 64U}) {
    for (const std::uint64_t value :
         {std::uint64_t{0}, std::uint64_t{1} << 40U, ~std::uint64_t{0}, ~std::uint64_t{0} - 1000}) {
      EXPECT_EQ(openWith(field, value, 8), 8) << field << " " << value;
    }
  }
}

TEST_F(HostileHeader, aVersionOfZeroIsDamage) {
  EXPECT_EQ(openWith(8, 0, 4), 8);
}

// A file of one scalar: its entry ends with dimension, record count, offset and length of the
// records, and a byte for the domain.
class HostileEntry : public testing::Test {
 protected:
  std::string textWith(std::string changed) {
    reseal(changed);
    writeFile(folder_.file("x"), changed);
    const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
    EXPECT_EQ(object->openRead(folder_.file("x").c_str()), 8);
    std::array<char, 256> text{};
    object->errorText(8, text.data());
    return text.data();
  }
  // The file with other bytes in place of those that stand `before` the end.
  std::string with(std::size_t before, const std::string& other) const {
    std::string changed = bytes_;
    return changed.replace(changed.size() - before, other.size(), other);
  }

  TempFolder folder_;
  std::string bytes_ = bytesOf(folder_, [] {
    Content content;
    content.labels = {"ab"};
    Symbol symbol;
    symbol.name = "p";
    symbol.records = {record({}, {1})};
    content.symbols = {symbol};
    return content;
  }());
};

TEST_F(HostileEntry, aScalarHasNoTwoRecords) {
  EXPECT_NE(textWith(with(21, "\x02")).find("2 records of dimension 0"), std::string::npos);
}

TEST_F(HostileEntry, recordsLieBetweenTheHeaderAndTheTables) {
  for (const char offset : {'\x00', '\x5F', '\xFF'}) {
    EXPECT_NE(textWith(with(17, std::string(1, offset))).find("outside the file's data"),
              std::string::npos);
  }
  EXPECT_NE(textWith(with(9, "\xFF")).find("outside the file's data"), std::string::npos);
}

TEST_F(HostileEntry, recordsHaveRoomForTheirHeads) {
  EXPECT_NE(textWith(with(9, "\x27")).find("39 bytes, outside the file's data"), std::string::npos);
}

TEST_F(HostileEntry, aLabelHasNoBlankAtItsEnd) {
  std::string changed = bytes_;
  const std::size_t label = changed.find(
      "\x02"
      "ab");
  ASSERT_NE(label, std::string::npos);
  changed[label + 2] = ' ';
  EXPECT_NE(textWith(changed).find("label is not acceptable"), std::string::npos);
}

}  // namespace
}  // namespace rxftest
