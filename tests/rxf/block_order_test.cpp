// Blocks whose own bytes are right but that do not belong where they stand.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/reseal.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

constexpr int blockRecords = 65536;
constexpr int side = 256;  // a block holds side * side records
constexpr std::size_t headBytes = 40;

// Where block `index` of the first symbol begins.
std::size_t blockAt(const std::string& bytes, int index) {
  std::size_t at = 96;
  for (; index > 0; --index) {
    std::size_t length = 0;
    for (std::size_t i = 4; i-- > 0;) {
      length = length << 8U | static_cast<unsigned char>(bytes[at + 16 + i]);
    }
    at += headBytes + length;
  }
  return at;
}

class BlockOrder : public testing::Test {
 protected:
  // Writes a parameter p of three dimensions with the records (i, j, k), i up to `blocks`, j and k
  // up to `side`, so that the records of one i make a block. A value that does not repeat takes its
  // eight bytes in the file.
  void write(int blocks, bool repeated) {
    RxfObject& object = *object_;
    ASSERT_EQ(object.openWrite(path_.c_str(), ""), 0);
    object.startLabels();
    for (int i = 1; i <= side; ++i) object.addLabel(("l" + std::to_string(i)).c_str());
    object.finishLabels();
    object.startWriting("p", "", 3, kParameter, 0);
    std::uint64_t state = 1;
    for (int i = 0; i < blocks * blockRecords; ++i) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      const std::array<int, 3> keys{1 + i / blockRecords, 1 + i / side % side, 1 + i % side};
      const double value = repeated ? 1 : static_cast<double>(state >> 11U) / 3.0;
      ASSERT_TRUE(object.write(keys.data(), &value));
    }
    object.finishWriting();
    ASSERT_EQ(object.close(), 0);
    bytes_ = readFile(path_);
  }

  // How many of the announced records come.
  int recordsRead(int announced) {
    std::array<int, 3> keys{};
    double value = 0;
    int firstChanged = 0;
    int count = 0;
    while (count < announced && object_->read(keys.data(), &value, &firstChanged)) ++count;
    return count;
  }
  std::string onlyErrorText(int number) {
    EXPECT_EQ(object_->errorCount(), 1);
    EXPECT_EQ(object_->takeLastError(), number);
    std::array<char, 256> text{};
    object_->errorText(number, text.data());
    return text.data();
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x");
  std::string bytes_;
  std::unique_ptr<RxfObject> object_ = std::make_unique<RxfObject>(rxffile::operatingSystem());
};

TEST_F(BlockOrder, aBlockThatDoesNotAscendFromTheOneBeforeIsDamage) {
  write(3, true);
  // The body begins with the first key of the first position.
  bytes_[blockAt(bytes_, 1) + headBytes] = 1;
  reseal(bytes_);
  writeFile(path_, bytes_);
  ASSERT_EQ(object_->openRead(path_.c_str()), 0);
  bool started = false;
  EXPECT_EQ(object_->startReading(1, started), -1);
  EXPECT_EQ(onlyErrorText(8),
            "File is damaged: block 2 of 3 of symbol p: its records do not ascend from the block "
            "before");
}

TEST_F(BlockOrder, aBlockThatAnotherTookThePlaceOfWhileItWasReadEndsTheReading) {
  constexpr int blocks = 16;
  write(blocks, false);
  ASSERT_EQ(object_->openRead(path_.c_str()), 0);
  bool started = false;
  ASSERT_EQ(object_->startReading(1, started), blocks * blockRecords);
  // The last byte of a block is one of a value.
  std::string changed = bytes_;
  const std::size_t end = blockAt(bytes_, blocks);
  changed[end - 1] = static_cast<char>(changed[end - 1] ^ 1);
  reseal(changed);
  // In its place: a new file of the name would not be the one that is read.
  std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out) << changed;
  EXPECT_LT(recordsRead(blocks * blockRecords), blocks * blockRecords);
  std::array<int, 3> keys{};
  double value = 0;
  int firstChanged = 0;
  EXPECT_FALSE(object_->read(keys.data(), &value, &firstChanged));
  EXPECT_EQ(firstChanged, -1);
  EXPECT_TRUE(object_->finishReading());
  EXPECT_EQ(onlyErrorText(35), "File was changed while it was open: it was written to");
}

}  // namespace
}  // namespace rxftest
