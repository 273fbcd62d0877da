// The reader by columns with a thread that decodes ahead: any order of calls gives what it gives
// without.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "providers/rxf/column_reader.h"
#include "providers/rxf/failure.h"
#include "tests/rxf/helped_calls.h"
#include "tests/rxf/large_symbol.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::ColumnReader;
using rxffile::Failure;
using rxffile::RxfReader;

// A reader of p, and what its calls gave, as text.
class Reader {
 public:
  Reader(unsigned processors, const std::string& path)
      : calls_(processors), columns_(std::make_shared<const RxfReader>(calls_, path), 1) {}

  std::string next() {
    return told([this] {
      const std::uint32_t count = columns_.next();
      std::string text = std::to_string(count);
      if (count == 0) return text;
      const int first = 65536 * static_cast<int>(columns_.blockNumber() - 1);
      for (int i = 0; i < static_cast<int>(count); ++i) {
        if (columns_.keys(0)[i] != largeRow(first + i) ||
            columns_.keys(1)[i] != largeColumn(first + i) ||
            columns_.values(0)[i] != largeValue(first + i)) {
          return "record " + std::to_string(i) + " is wrong";
        }
      }
      return text;
    });
  }
  std::string skip() {
    return told([this] { return std::string(columns_.skip() ? "skipped" : "end"); });
  }
  std::string rewind() {
    columns_.rewind();
    return place();
  }
  std::string skipDamage() { return (columns_.skipDamage() ? "goes on" : "does not") + place(); }

  [[nodiscard]] const HelpedCalls& calls() const { return calls_; }

 private:
  std::string told(const std::function<std::string()>& call) {
    try {
      return call() + place();
    } catch (const Failure& failure) {
      return failure.detail().c_str() + place();
    }
  }
  [[nodiscard]] std::string place() const {
    return " at " + std::to_string(columns_.blockNumber()) + ',' +
           std::to_string(columns_.blockOffset());
  }

  HelpedCalls calls_;
  ColumnReader columns_;
};

class ColumnsAhead : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<TempFolder>();
    writeLargeSymbol(folder_->file("large"));
    const std::string bytes = readFile(folder_->file("large"));
    std::string damaged = bytes;
    for (const int block : {2, 4, kLargeBlocks}) {
      char& changed = damaged[bodyOfBlock(bytes, block) + 11];
      changed = static_cast<char>(changed + 1);
    }
    writeFile(folder_->file("damaged"), damaged);
    // The head of a block, without which none behind it can be found.
    damaged = bytes;
    char& changed = damaged[bodyOfBlock(bytes, 5) - 40];
    changed = static_cast<char>(changed + 1);
    writeFile(folder_->file("lost"), damaged);
  }
  static void TearDownTestSuite() { folder_.reset(); }

  static inline std::unique_ptr<TempFolder> folder_;
};

long taskCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                       std::filesystem::directory_iterator());
}

TEST_F(ColumnsAhead, ReadsEachBlockOnceWithAThreadThatEndsWithThem) {
  const long before = taskCount();
  Reader reader(2, folder_->file("large"));
  for (int block = 1; block < kLargeBlocks; ++block) {
    EXPECT_EQ(reader.next().substr(0, 6), "65536 ");
    EXPECT_EQ(reader.calls().threads(), block < 2 ? 0 : 1) << "who looks at one block has no other";
  }
  EXPECT_EQ(reader.next().substr(0, 3), "77 ");
  EXPECT_EQ(taskCount(), before);
  EXPECT_EQ(reader.next().substr(0, 2), "0 ");
  EXPECT_EQ(reader.calls().helped(), 3 * (kLargeBlocks - 2));
}

TEST_F(ColumnsAhead, LeavesBlocksAloneBehindOneThatWasSkipped) {
  for (int skipped = 1; skipped <= 2; ++skipped) {
    Reader reader(2, folder_->file("large"));
    for (int block = 1; block <= kLargeBlocks; ++block) {
      block == skipped ? reader.skip() : reader.next();
    }
    EXPECT_EQ(reader.next().substr(0, 2), "0 ");
    EXPECT_EQ(reader.calls().threads(), 0);
  }
}

TEST_F(ColumnsAhead, GivesWhatIsGivenWithoutInAnyOrderOfCalls) {
  std::mt19937 random(20);
  int threads = 0;
  for (const char* file : {"large", "damaged", "lost"}) {
    for (int round = 0; round < 12; ++round) {
      Reader alone(1, folder_->file(file));
      Reader helped(2, folder_->file(file));
      for (int step = 0; step < 3 * kLargeBlocks; ++step) {
        const unsigned what = random() % 24;
        std::string (Reader::*const call)() = what < 19   ? &Reader::next
                                              : what < 20 ? &Reader::skip
                                              : what < 21 ? &Reader::rewind
                                                          : &Reader::skipDamage;
        ASSERT_EQ((helped.*call)(), (alone.*call)())
            << file << " round " << round << " step " << step;
      }
      EXPECT_EQ(alone.calls().threads(), 0);
      threads += helped.calls().threads();
    }
  }
  EXPECT_GT(threads, 10);
}

}  // namespace
}  // namespace rxftest
