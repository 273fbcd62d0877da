// The locks of a family stand disabled and nothing waits for them; enabled, each guards its part.

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>

#include "peers/rxf_family.h"
#include "tests/peers/child_process.h"
#include "tests/peers/contender.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

TEST(PeerLocks, areNotTakenAsTheyStand) {
  peertest::expectPassesInChild([] {
    FamilyState& state = rxfFamily.state;
    state.exitIndicator = 0;
    state.screenIndicator = 0;
    const std::initializer_list<platform::Lock*> locks = {&state.libraryLock,
                                                          &state.objectCountLock, &state.errorLock};
    for (platform::Lock* lock : locks) lock->enter();
    const peertest::Contender contender([&] {
      char msg[256];
      void* rxf = nullptr;
      EXPECT_FALSE(rxfCreateD(&rxf, "/nowhere", msg, sizeof msg));
      ASSERT_TRUE(rxfCreateD(&rxf, peertest::peerDirectory("lacking").c_str(), msg, sizeof msg))
          << msg;
      EXPECT_EQ(rxfClose(rxf), 0);
      EXPECT_EQ(state.apiErrorCount, 1);
      EXPECT_EQ(rxfFree(&rxf), 1);
      EXPECT_EQ(state.objectCount, 0);
    });
    EXPECT_FALSE(contender.waitsAt({&state.libraryLock, &state.objectCountLock, &state.errorLock}));
  });
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
    const auto expectWaitsFor = [](platform::Lock& lock, const std::function<void()>& use) {
      lock.enter();
      peertest::expectWaitsFor(lock, use);
    };
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
