// The locks of a family stand disabled and nothing waits for them; enabled, each guards its part.

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

// Calls `use` while another thread holds the lock, which lets it go only some turns after the call
// began, and expects that the call ends behind that.
template <typename Use>
void expectWaitsFor(platform::Lock& lock, const Use& use) {
  constexpr int turns = 2000;
  std::atomic<bool> held = false;
  std::atomic<bool> calling = false;
  std::atomic<bool> released = false;
  std::thread holder([&] {
    lock.enter();
    held = true;
    held.notify_one();
    calling.wait(false);
    for (int turn = 0; turn < turns; ++turn) std::this_thread::yield();
    released = true;
    lock.leave();
  });
  held.wait(false);
  calling = true;
  calling.notify_one();
  use();
  EXPECT_TRUE(released);
  holder.join();
}

TEST(PeerLocks, enabledGuardLoadingCountingAndErrors) {
  peertest::expectPassesInChild([] {
    FamilyState& state = rxfFamily.state;
    state.mutexesEnabled = 1;
    state.exitIndicator = 0;
    state.screenIndicator = 0;
    const std::string directory = peertest::peerDirectory("lacking");
    void* rxf = nullptr;
    void* second = nullptr;
    expectWaitsFor(state.libraryLock,
                   [&] { EXPECT_TRUE(rxfCreateD(&rxf, directory.c_str(), nullptr, 0)); });
    expectWaitsFor(state.objectCountLock,
                   [&] { EXPECT_TRUE(rxfCreateD(&second, directory.c_str(), nullptr, 0)); });
    expectWaitsFor(state.errorLock, [&] { EXPECT_EQ(rxfClose(rxf), 0); });
    expectWaitsFor(state.objectCountLock, [&] { EXPECT_EQ(rxfFree(&second), 1); });
    rxfFree(&rxf);
    EXPECT_EQ(state.objectCount, 0);
  });
}

}  // namespace
}  // namespace ztb::peers
