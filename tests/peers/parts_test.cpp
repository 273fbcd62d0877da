// The small parts of the loader: composed texts and locks.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "peers/bounded_text.h"
#include "peers/platform.h"

namespace ztb::peers {
namespace {

TEST(BoundedText, BeginsEmptyAndGrowsByItsPieces) {
  char buffer[16] = "before";
  BoundedText text(buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(text.length(), 0);
  text.append("peer").append("").append(" lost");
  EXPECT_STREQ(buffer, "peer lost");
  EXPECT_EQ(text.length(), 9);
}

TEST(BoundedText, CutsAPieceToTheRoomThatIsLeft) {
  char buffer[] = "########";
  BoundedText text(buffer, 6);
  text.append("abc").append("defg").append("h");
  EXPECT_STREQ(buffer, "abcde");
  EXPECT_EQ(text.length(), 5);
  EXPECT_EQ(buffer[6], '#');
}

TEST(BoundedText, SmallestBufferHoldsOnlyTheZero) {
  char buffer[] = "##";
  BoundedText(buffer, 1).append("abc");
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(buffer[1], '#');
}

TEST(BoundedText, WithoutRoomNothingIsWritten) {
  char buffer[] = "##";
  BoundedText(buffer, 0).append("abc");
  BoundedText(buffer, -5).append("abc");
  BoundedText(nullptr, 0).append("abc");
  EXPECT_STREQ(buffer, "##");
}

TEST(PlatformLock, KeepsOtherThreadsOut) {
  platform::Lock lock;
  long counter = 0;
  const auto count = [&] {
    for (int i = 0; i < 20000; ++i) {
      lock.enter();
      ++counter;
      lock.leave();
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(count);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(counter, 80000);
}

TEST(PlatformLock, ItsHolderMayEnterAgain) {
  platform::Lock lock;
  lock.enter();
  lock.enter();
  lock.leave();
  lock.leave();
  std::thread other([&] {
    lock.enter();
    lock.leave();
  });
  other.join();
}

}  // namespace
}  // namespace ztb::peers
