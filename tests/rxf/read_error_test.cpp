// What is wrong with a file that is to be read, with its number and its text.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

class ReadError : public testing::Test {
 protected:
  void SetUp() override {
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, smallContent());
    ASSERT_EQ(file.close(), 0);
    bytes_ = readFile(path_);
  }

  void expectError(const std::string& path, int number, const std::string& text) {
    PeerFile file;
    EXPECT_EQ(file.openRead(path), number);
    EXPECT_EQ(file.errorText(number), text);
    EXPECT_EQ(file.errorCount(), 1);
    EXPECT_EQ(file.takeLastError(), number);
    EXPECT_FALSE(file.systemInfo(nullptr, nullptr)) << "nothing is open";
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  std::string bytes_;
};

TEST_F(ReadError, noSuchFile) {
  expectError(folder_.file("none"), 1, "No such file: " + folder_.file("none"));
  expectError(path_ + "/below", 1, "No such file: " + path_ + "/below");
}

TEST_F(ReadError, noPermission) {
  chmod(path_.c_str(), 0);
  if (access(path_.c_str(), R_OK) == 0) {
    // Nothing is closed to the superuser; the number and the text are all that can be asked for.
    PeerFile file;
    EXPECT_EQ(file.errorText(2), "No permission");
    return;
  }
  expectError(path_, 2, "No permission: " + path_ + " cannot be read");
}

TEST_F(ReadError, aFolder) {
  expectError(folder_.path(), 3, "Is a folder: " + folder_.path());
}

TEST_F(ReadError, aPipeDoesNotHoldTheCaller) {
  ASSERT_EQ(mkfifo(folder_.file("pipe").c_str(), 0600), 0);
  expectError(folder_.file("pipe"), 4, "Not a regular file: " + folder_.file("pipe"));
}

TEST_F(ReadError, anotherKindOfFile) {
  writeFile(path_, "name,value\nwheat,1\n");
  expectError(path_, 5, "Not an RXF file: " + path_);
  writeFile(path_, "");
  expectError(path_, 5, "Not an RXF file: " + path_);
}

TEST_F(ReadError, aNewerVersion) {
  bytes_[8] = 2;
  writeFile(path_, bytes_);
  expectError(path_, 6,
              "File has a newer version of the format: " + path_ +
                  " has version 2, this library reads version 1");
}

TEST_F(ReadError, cutShort) {
  writeFile(path_, bytes_.substr(0, bytes_.size() - 1));
  expectError(path_, 7,
              "File is cut short: " + path_ + " has " + std::to_string(bytes_.size() - 1) +
                  " bytes, expected " + std::to_string(bytes_.size()));
  writeFile(path_, bytes_.substr(0, 50));
  expectError(path_, 7, "File is cut short: " + path_ + " has 50 bytes, its header alone needs 96");
  writeFile(path_, bytes_.substr(0, 3));
  expectError(path_, 7, "File is cut short: " + path_ + " has 3 bytes, its header alone needs 96");
}

TEST_F(ReadError, moreBytesThanThereShouldBe) {
  writeFile(path_, bytes_ + "x");
  expectError(path_, 8,
              "File is damaged: header of " + path_ + ": the file has " +
                  std::to_string(bytes_.size() + 1) + " bytes, expected " +
                  std::to_string(bytes_.size()));
}

TEST_F(ReadError, aDamagedHeaderIsNamedWithTheChecksumThatItShouldHave) {
  bytes_[16] = static_cast<char>(bytes_[16] + 1);
  writeFile(path_, bytes_);
  PeerFile file;
  EXPECT_EQ(file.openRead(path_), 8);
  const std::string text = file.errorText(8);
  EXPECT_EQ(text.find("File is damaged: header of " + path_ + ": checksum is "), 0U) << text;
  EXPECT_NE(text.find(", expected "), std::string::npos) << text;
}

TEST_F(ReadError, aDamagedTableIsNamed) {
  bytes_.back() = static_cast<char>(bytes_.back() + 1);
  writeFile(path_, bytes_);
  PeerFile file;
  EXPECT_EQ(file.openRead(path_), 8);
  const std::string text = file.errorText(8);
  EXPECT_EQ(text.find("File is damaged: symbol table of " + path_ +
                      ", chunk 1, entry 1: "
                      "checksum is "),
            0U)
      << text;
}

TEST_F(ReadError, aDamagedBlockIsNamedAndItsSymbolGivesNoRecord) {
  // The first block's head ends at byte 136; its last body byte lies well behind that.
  bytes_[150] = static_cast<char>(bytes_[150] + 1);
  writeFile(path_, bytes_);
  PeerFile file;
  ASSERT_EQ(file.openRead(path_), 0);
  bool started = false;
  EXPECT_EQ(file.startReading(1, started), -1);
  EXPECT_FALSE(started);
  EXPECT_EQ(file.errorCount(), 1);
  const std::string text = file.errorText(file.takeLastError());
  EXPECT_EQ(text.find("File is damaged: block 1 of 1 of symbol grain: checksum is "), 0U) << text;
  EXPECT_NE(text.find(", expected "), std::string::npos) << text;
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  int firstChanged = 0;
  EXPECT_FALSE(file.read(keys.data(), values.data(), &firstChanged));
  EXPECT_EQ(firstChanged, -1);
  EXPECT_TRUE(file.finishReading());
  EXPECT_EQ(file.errorCount(), 1) << "it is told once";
  Content expected = smallContent();
  expected.symbols[0].records.clear();
  EXPECT_TRUE(readContent(file) == expected);
}

TEST(ReadOpening, anEmptyNameIsRefused) {
  PeerFile file;
  EXPECT_EQ(file.openRead(""), 13);
  EXPECT_EQ(file.errorText(13), "File name not acceptable: it is empty");
}

TEST(ReadOpening, aLongNameLeavesRoomForTheReason) {
  const TempFolder folder;
  const std::string path = folder.file(std::string(250, 'n'));
  writeFile(path, std::string("\x89RXF\r\n\x1A\n\x01\0\0\0", 12) + std::string(84, 'x'));
  PeerFile file;
  EXPECT_EQ(file.openRead(path), 8);
  EXPECT_NE(file.errorText(8).find(", expected 7878787878787878"), std::string::npos)
      << file.errorText(8);
}

}  // namespace
}  // namespace rxftest
