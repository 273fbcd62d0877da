// A file that changes, ends or cannot be read while it is open: a read that has begun fails, and
// never gives a mixture of what was there at different times.

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;

// More than is kept of verified blocks, so that some are read again.
constexpr int records = 1'500'000;
constexpr int side = 1500;

// A parameter p of two dimensions; `factor` makes the values.
void writeLarge(const std::string& path, double factor) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  ASSERT_EQ(object->openWrite(path.c_str(), ""), 0);
  object->startLabels();
  for (int i = 1; i <= side; ++i) object->addLabel(("l" + std::to_string(i)).c_str());
  object->finishLabels();
  object->startWriting("p", "", 2, kParameter, 0);
  for (int i = 0; i < records; ++i) {
    const std::array<int, 2> keys{1 + i / side, 1 + i % side};
    const double value = factor / (i + 1);
    ASSERT_TRUE(object->write(keys.data(), &value));
  }
  object->finishWriting();
  ASSERT_EQ(object->close(), 0);
}

// Reads fail from a chosen one on.
class FailingReads : public rxffile::SystemCalls {
 public:
  ssize_t pread(int fd, void* data, std::size_t size, off_t offset) override {
    if (left_ == 0) {
      errno = EIO;
      return -1;
    }
    --left_;
    return SystemCalls::pread(fd, data, size, offset);
  }
  void failAfter(int reads) { left_ = reads; }

 private:
  int left_ = -1;
};

class ChangedFile : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<TempFolder>();
    writeLarge(folder_->file("model"), 1);
    bytes_ = readFile(folder_->file("model"));
    writeLarge(folder_->file("model"), 3);
    otherBytes_ = readFile(folder_->file("model"));
  }
  static void TearDownTestSuite() { folder_.reset(); }

  ChangedFile() {
    writeFile(path_, bytes_);
    // Long ago, so that any write moves the time.
    using Time = std::filesystem::file_time_type;
    std::filesystem::last_write_time(path_, Time::clock::now() - std::chrono::hours(100'000));
    EXPECT_EQ(object_->openRead(path_.c_str()), 0);
  }

  int start() {
    bool started = false;
    return object_->startReading(1, started);
  }
  // Reads until no more comes; every record is one of the file that was opened.
  int readOn() {
    std::array<int, 2> keys{};
    double value = 0;
    firstChanged_ = 0;
    int count = 0;
    for (; object_->read(keys.data(), &value, &firstChanged_); ++count) {
      EXPECT_EQ(value, 1.0 / (count + 1));
      EXPECT_EQ((keys[0] - 1) * side + keys[1] - 1, count);
    }
    return count;
  }
  // The one error there was.
  std::string errorText() {
    EXPECT_EQ(object_->errorCount(), 1);
    std::array<char, 256> text{};
    object_->errorText(object_->takeLastError(), text.data());
    return text.data();
  }

  static inline std::unique_ptr<TempFolder> folder_;
  static inline std::string bytes_;
  static inline std::string otherBytes_;

  std::string path_ = folder_->file("x");
  FailingReads calls_;
  std::unique_ptr<RxfObject> object_ = std::make_unique<RxfObject>(calls_);
  int firstChanged_ = 0;
};

TEST_F(ChangedFile, thatIsWholeIsReadInTwoPasses) {
  EXPECT_EQ(start(), records);
  EXPECT_EQ(readOn(), records);
  EXPECT_TRUE(object_->finishReading());
  EXPECT_EQ(object_->errorCount(), 0);
}

TEST_F(ChangedFile, truncatedBeforeTheReadGivesNoRecord) {
  std::filesystem::resize_file(path_, 5000);
  EXPECT_EQ(start(), -1);
  EXPECT_EQ(errorText(), "File was changed while it was open: it had " +
                             std::to_string(bytes_.size()) + " bytes, now 5000");
  EXPECT_TRUE(object_->finishReading());
}

TEST_F(ChangedFile, truncatedDuringTheReadFailsIt) {
  ASSERT_EQ(start(), records);
  std::filesystem::resize_file(path_, 5000);
  EXPECT_LT(readOn(), records);
  EXPECT_EQ(firstChanged_, -1);
  EXPECT_EQ(errorText(), "File was changed while it was open: it had " +
                             std::to_string(bytes_.size()) + " bytes, now 5000");
}

TEST_F(ChangedFile, rewrittenInPlaceWithAnotherWholeFileFailsTheRead) {
  ASSERT_EQ(start(), records);
  std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out) << otherBytes_;
  EXPECT_LT(readOn(), records);
  EXPECT_EQ(firstChanged_, -1);
  EXPECT_EQ(errorText().find("File was changed while it was open: it "), 0U);
}

TEST_F(ChangedFile, rewrittenBeforeTheReadIsNotTakenForTheOneThatWasOpened) {
  std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out) << bytes_;
  EXPECT_EQ(start(), -1);
  EXPECT_EQ(errorText(), "File was changed while it was open: it was written to");
}

TEST_F(ChangedFile, replacedByRenamingIsStillReadAsItWas) {
  ASSERT_EQ(start(), records);
  writeFile(folder_->file("y"), otherBytes_);
  std::filesystem::rename(folder_->file("y"), path_);
  EXPECT_EQ(readOn(), records);
  EXPECT_EQ(object_->errorCount(), 0);
}

TEST_F(ChangedFile, thatCannotBeReadGivesNoRecord) {
  calls_.failAfter(20);
  EXPECT_EQ(start(), -1);
  EXPECT_EQ(errorText(), "Reading failed: block 11 of 23 of symbol p: Input/output error");
}

TEST_F(ChangedFile, thatCannotBeReadAgainFailsTheReadFromThereOn) {
  ASSERT_EQ(start(), records);
  calls_.failAfter(3);
  EXPECT_LT(readOn(), records);
  EXPECT_EQ(firstChanged_, -1);
  firstChanged_ = 0;
  EXPECT_EQ(readOn(), 0);
  EXPECT_EQ(firstChanged_, -1);
  EXPECT_TRUE(object_->finishReading());
  const std::string text = errorText();
  EXPECT_EQ(text.find("Reading failed: block "), 0U) << text;
  EXPECT_NE(text.find(" of 23 of symbol p: Input/output error"), std::string::npos) << text;
}

TEST_F(ChangedFile, thatCanBeReadAgainIsReadWhole) {
  calls_.failAfter(0);
  EXPECT_EQ(start(), -1);
  EXPECT_TRUE(object_->finishReading());
  calls_.failAfter(-1);
  EXPECT_EQ(start(), records);
  EXPECT_EQ(readOn(), records);
  EXPECT_NE(firstChanged_, -1);
}

}  // namespace
}  // namespace rxftest
