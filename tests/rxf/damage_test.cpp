// Every byte of a file is changed and the file is cut at every length: a symbol gives the records
// that were written or none, and an error is always told.

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

std::string bytesOf(const TempFolder& folder, const Content& content) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  EXPECT_EQ(object->openWrite(folder.file("x").c_str(), "producer"), 0);
  writeContent(*object, content);
  EXPECT_EQ(object->errorCount(), 0);
  EXPECT_EQ(object->close(), 0);
  return readFile(folder.file("x"));
}

// Reads what there is to read and holds it against what was written. Result: errors told.
int readAgainst(const std::string& path, const Content& written) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  if (object->openRead(path.c_str()) == 0) {
    const Content content = readContent(*object);
    EXPECT_EQ(content.labels, written.labels);
    EXPECT_EQ(content.texts, written.texts);
    EXPECT_EQ(content.symbols.size(), written.symbols.size());
    for (std::size_t i = 0; i < content.symbols.size(); ++i) {
      if (content.symbols[i].records.empty()) continue;
      EXPECT_EQ(content.symbols[i].records, written.symbols[i].records);
    }
  }
  const int errors = object->errorCount();
  std::array<char, 256> text{};
  object->errorText(object->takeLastError(), text.data());
  EXPECT_EQ(errors == 0, std::string(text.data()) == "Unknown error number 0");
  return errors;
}

TEST(Damage, ofAnyByteIsFoundAndGivesNoWrongRecord) {
  const TempFolder folder;
  const std::string bytes = bytesOf(folder, smallContent());
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const unsigned change : {0x01U, 0x80U, 0xFFU}) {
      std::string changed = bytes;
      changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ change);
      writeFile(folder.file("x"), changed);
      ASSERT_GT(readAgainst(folder.file("x"), smallContent()), 0) << "byte " << at;
    }
  }
}

TEST(Damage, byCuttingAtAnyLengthIsFound) {
  const TempFolder folder;
  const std::string bytes = bytesOf(folder, smallContent());
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    writeFile(folder.file("x"), bytes.substr(0, length));
    const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
    const int error = object->openRead(folder.file("x").c_str());
    ASSERT_EQ(error, length == 0 ? 5 : 7) << length;
  }
}

// Three blocks and a symbol behind them.
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

// Where block `index` of the first symbol begins.
std::size_t blockAt(const std::string& bytes, int index) {
  std::size_t at = 96;
  for (; index > 0; --index) {
    std::size_t length = 0;
    for (std::size_t i = 4; i-- > 0;) {
      length = length << 8U | static_cast<unsigned char>(bytes[at + 16 + i]);
    }
    at += 40 + length;
  }
  return at;
}

class BlockDamage : public testing::Test {
 protected:
  // Opens the file with one byte changed, and gives the records of its first symbol.
  std::vector<Record> readChanged(std::size_t at) {
    std::string changed = bytes_;
    changed[at] = static_cast<char>(changed[at] + 1);
    writeFile(folder_.file("x"), changed);
    EXPECT_EQ(object_->openRead(folder_.file("x").c_str()), 0);
    return readRecords(*object_, 1, 2, kParameter);
  }

  std::string errorText() {
    std::array<char, 256> text{};
    object_->errorText(object_->takeLastError(), text.data());
    return text.data();
  }

  TempFolder folder_;
  Content content_ = threeBlocks();
  std::string bytes_ = bytesOf(folder_, content_);
  std::unique_ptr<RxfObject> object_ = std::make_unique<RxfObject>(rxffile::operatingSystem());
};

TEST_F(BlockDamage, ofABodyLeavesNoRecordOfTheSymbol) {
  EXPECT_TRUE(readChanged(blockAt(bytes_, 1) + 100).empty());
  EXPECT_EQ(object_->errorCount(), 1);
  EXPECT_EQ(errorText().find("File is damaged: block 2 of 3 of symbol many: checksum is "), 0U);
  EXPECT_EQ(readRecords(*object_, 2, 0, kParameter), content_.symbols[1].records);
}

TEST_F(BlockDamage, ofAHeadLeavesNoRecordOfTheSymbol) {
  EXPECT_TRUE(readChanged(blockAt(bytes_, 1) + 16).empty());
  EXPECT_EQ(object_->errorCount(), 1);
  EXPECT_EQ(errorText().find("File is damaged: block 2 of 3 of symbol many: checksum of the head"),
            0U);
  EXPECT_EQ(readRecords(*object_, 2, 0, kParameter), content_.symbols[1].records);
}

TEST_F(BlockDamage, ofTheLastBlockLeavesNoRecordOfTheSymbol) {
  EXPECT_TRUE(readChanged(blockAt(bytes_, 2) + 50).empty());
  EXPECT_EQ(errorText().find("File is damaged: block 3 of 3 of symbol many: "), 0U);
}

TEST_F(BlockDamage, isToldAgainByEveryRead) {
  EXPECT_TRUE(readChanged(blockAt(bytes_, 0) + 50).empty());
  const std::string first = errorText();
  EXPECT_TRUE(readRecords(*object_, 1, 2, kParameter).empty());
  EXPECT_EQ(errorText(), first);
  EXPECT_EQ(object_->errorCount(), 2);
}

}  // namespace
}  // namespace rxftest
