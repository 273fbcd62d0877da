// The locks of a family stand disabled: nothing waits for them.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "peers/rxf_family.h"
#include "tests/peers/child_process.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

// Has another thread hold every lock of a family while it lives.
class HeldLocks {
 public:
  explicit HeldLocks(FamilyState& state)
      : locks_{&state.libraryLock, &state.objectCountLock, &state.errorLock} {
    gate_.enter();
    thread_ = std::thread([this] {
      for (platform::Lock* lock : locks_) lock->enter();
      held_ = true;
      held_.notify_one();
      gate_.enter();
      gate_.leave();
      for (platform::Lock* lock : locks_) lock->leave();
    });
    held_.wait(false);
  }
  HeldLocks(const HeldLocks&) = delete;
  HeldLocks& operator=(const HeldLocks&) = delete;
  ~HeldLocks() {
    gate_.leave();
    thread_.join();
  }

 private:
  std::array<platform::Lock*, 3> locks_;
  platform::Lock gate_;
  std::atomic<bool> held_ = false;
  std::thread thread_;
};

TEST(PeerLocks, areNotTakenAsTheyStand) {
  peertest::expectPassesInChild([] {
    const HeldLocks held(rxfFamily.state);
    rxfFamily.state.exitIndicator = 0;
    rxfFamily.state.screenIndicator = 0;
    char msg[256];
    void* rxf = nullptr;
    EXPECT_FALSE(rxfCreateD(&rxf, "/nowhere", msg, sizeof msg));
    ASSERT_TRUE(rxfCreateD(&rxf, peertest::peerDirectory("lacking").c_str(), msg, sizeof msg))
        << msg;
    EXPECT_EQ(rxfClose(rxf), 0);
    EXPECT_EQ(rxfFamily.state.apiErrorCount, 1);
    EXPECT_EQ(rxfFree(&rxf), 1);
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
  });
}

}  // namespace
}  // namespace ztb::peers
