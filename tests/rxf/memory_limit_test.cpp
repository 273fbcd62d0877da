// A limit on the memory that the records of a file may take in a database.

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

unsigned long long setLimit(unsigned long long bytes) {
  return exported<unsigned long long(unsigned long long)>("ztbRxfMemoryLimit")(bytes);
}

int filesThatTookIt() {
  return exported<int()>("ztbRxfMemoryLimitTaken")();
}

// Parameters p and q of one position with 1000 records each: 64 bytes a record, by a node of 32
// bytes, 8 for the key, 8 for the value, 8 of the allocator, rounded up to 16.
class Limit : public testing::Test {
 protected:
  Limit() {
    Content content;
    Symbol p;
    p.name = "p";
    p.dim = 1;
    for (int i = 1; i <= 1000; ++i) {
      content.labels.push_back("l" + std::to_string(i));
      p.records.push_back(record({i}, {1}));
    }
    Symbol q = p;
    q.name = "q";
    content.symbols = {p, q};
    PeerFile file;
    EXPECT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    EXPECT_EQ(file.errorCount(), 0);
    EXPECT_EQ(file.close(), 0);
  }
  ~Limit() override { setLimit(0); }

  static int start(PeerFile& file, int symbol) {
    bool started = false;
    const int count = file.startReading(symbol, started);
    file.finishReading();
    return count;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
};

TEST_F(Limit, isNoneAtFirst) {
  PeerFile file;
  ASSERT_EQ(file.openRead(path_), 0);
  EXPECT_EQ(start(file, 1), 1000);
}

TEST_F(Limit, refusesASymbolThatNeedsMoreAndTellsWhat) {
  setLimit(63'999);
  PeerFile file;
  ASSERT_EQ(file.openRead(path_), 0);
  EXPECT_EQ(start(file, 1), -1);
  EXPECT_EQ(file.errorCount(), 1);
  EXPECT_EQ(file.takeLastError(), 29);
  EXPECT_EQ(
      file.errorText(29),
      "Limit exceeded: its 1000 records need about 62.5 KiB in memory, the limit is 62.4 KiB");
}

TEST_F(Limit, countsEachSymbolOnceAndAllTogether) {
  setLimit(100'000);
  PeerFile file;
  ASSERT_EQ(file.openRead(path_), 0);
  EXPECT_EQ(start(file, 1), 1000);
  EXPECT_EQ(start(file, 1), 1000);
  EXPECT_EQ(start(file, 2), -1);
  EXPECT_EQ(file.errorText(29),
            "Limit exceeded: its 1000 records need about 62.5 KiB in memory, what was read before "
            "about 62.5 KiB, the limit is 97.6 KiB");
}

TEST_F(Limit, isThatOfTheThreadAndTheTimeOfTheOpening) {
  PeerFile before;
  ASSERT_EQ(before.openRead(path_), 0);
  setLimit(1);
  EXPECT_EQ(start(before, 1), 1000);
  std::thread([&] {
    PeerFile elsewhere;
    ASSERT_EQ(elsewhere.openRead(path_), 0);
    EXPECT_EQ(start(elsewhere, 1), 1000);
  }).join();
  PeerFile after;
  ASSERT_EQ(after.openRead(path_), 0);
  setLimit(0);
  EXPECT_EQ(start(after, 1), -1);
  EXPECT_EQ(after.errorText(29),
            "Limit exceeded: its 1000 records need about 62.5 KiB in memory, the limit is 1 B");
}

TEST_F(Limit, isGivenBackWhenAnotherIsSet) {
  EXPECT_EQ(setLimit(5), 0U);
  EXPECT_EQ(setLimit(7), 5U);
  std::thread([] { EXPECT_EQ(setLimit(3), 0U); }).join();
  EXPECT_EQ(setLimit(0), 7U);
}

TEST_F(Limit, tellsHowManyFilesTookItSinceItWasSet) {
  setLimit(5);
  EXPECT_EQ(filesThatTookIt(), 0);
  PeerFile first;
  ASSERT_EQ(first.openRead(path_), 0);
  EXPECT_EQ(filesThatTookIt(), 1);
  PeerFile missing;
  EXPECT_NE(missing.openRead(folder_.file("none.rxf")), 0);
  PeerFile second;
  ASSERT_EQ(second.openRead(path_), 0);
  EXPECT_EQ(filesThatTookIt(), 2);
  std::thread([] { EXPECT_EQ(filesThatTookIt(), 0); }).join();
  setLimit(5);
  EXPECT_EQ(filesThatTookIt(), 0);
}

TEST_F(Limit, doesNotHoldWhatGoesOnIntoAnotherFile) {
  setLimit(1);
  PeerFile source;
  ASSERT_EQ(source.openRead(path_), 0);
  PeerFile target;
  ASSERT_EQ(target.openWrite(folder_.file("y.rxf")), 0);
  EXPECT_EQ(start(source, 1), -1);
  ASSERT_TRUE(target.startWriting("p", "", 1, kParameter, 0));
  EXPECT_EQ(start(source, 1), 1000);
  ASSERT_TRUE(target.finishWriting());
  EXPECT_EQ(start(source, 1), -1);
  ASSERT_TRUE(target.startWriting("q", "", 1, kParameter, 0));
  target.free();
  EXPECT_EQ(start(source, 1), -1);
}

}  // namespace
}  // namespace rxftest
