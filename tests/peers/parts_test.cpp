// The small parts of the loader: composed texts and locks.

#include <gtest/gtest.h>

#include "peers/bounded_text.h"
#include "peers/platform.h"
#include "tests/peers/child_process.h"
#include "tests/peers/contender.h"

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

// Enters a lock that is held, unless the lock fails to keep it out, and leaves it again.
void visit(platform::Lock& lock) {
  lock.enter();
  lock.leave();
}

TEST(PlatformLock, KeepsOtherThreadsOut) {
  peertest::expectPassesInChild([] {
    platform::Lock lock;
    lock.enter();
    peertest::expectWaitsFor(lock, [&] { visit(lock); });
  });
}

TEST(PlatformLock, ItsHolderMayEnterAgain) {
  peertest::expectPassesInChild([] {
    platform::Lock lock;
    const peertest::Contender again([&] {
      lock.enter();
      visit(lock);
      lock.leave();
    });
    EXPECT_TRUE(again.ends()) << "waits for itself";
  });
}

TEST(PlatformLock, KeepsOtherThreadsOutUntilItIsLeftAsOftenAsItWasEntered) {
  peertest::expectPassesInChild([] {
    platform::Lock lock;
    lock.enter();
    visit(lock);
    peertest::expectWaitsFor(lock, [&] { visit(lock); });
  });
}

}  // namespace
}  // namespace ztb::peers
