// Several threads that need a family at the same time, with the family's own locks as they stand.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "peers/nmt_family.h"
#include "peers/pbi_family.h"
#include "peers/rxf_family.h"
#include "peers/snv_family.h"
#include "tests/peers/child_process.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

constexpr int threadCount = 8;

void together(const std::function<void(int thread)>& work) {
  std::latch start(threadCount);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      work(thread);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(PeerThreads, OneLoadsAFamilyAndTheOthersWaitForIt) {
  peertest::expectPassesInChild([] {
    const std::string directory = peertest::peerDirectory("complete");
    together([&](int thread) {
      char msg[256];
      // Two of these families are in one library.
      EXPECT_TRUE(nmtGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
      if (thread % 2 == 0) {
        EXPECT_TRUE(pbiGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
      }
      EXPECT_TRUE(snvGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
      for (const PeerFamily* family : {&nmtFamily, &snvFamily}) {
        for (const SlotBase* slot = family->firstSlot(); slot != nullptr; slot = slot->next()) {
          EXPECT_FALSE(slot->isNull()) << slot->name();
        }
      }
    });
    EXPECT_EQ(peertest::countLines(peertest::peerLog("complete", peertest::nmtmdFile),
                                   "nmtXAPIVersion 2"),
              1);
    const auto log = peertest::peerLog("complete", peertest::lomudFile);
    EXPECT_EQ(peertest::countLines(log, "pbiXAPIVersion 26"), 1);
    EXPECT_EQ(peertest::countLines(log, "snvXAPIVersion 7"), 1);
  });
}

TEST(PeerThreads, EachFailsWithItsOwnMessage) {
  peertest::expectPassesInChild([] {
    together([](int thread) {
      const std::string directory = "/nowhere/" + std::to_string(thread);
      const std::string file = directory + '/' + peertest::nmtmdFile;
      char msg[256];
      for (int time = 0; time < 50; ++time) {
        EXPECT_FALSE(nmtGetReadyD(directory.c_str(), msg, sizeof msg));
        EXPECT_EQ(msg, "Could not load shared library " + file + ": " + file +
                           ": cannot open shared object file: No such file or directory");
      }
    });
    char msg[256];
    EXPECT_TRUE(nmtGetReadyD(peertest::peerDirectory("complete").c_str(), msg, sizeof msg)) << msg;
  });
}

TEST(PeerThreads, ObjectsAreCountedInAllOfThem) {
  peertest::expectPassesInChild([] {
    char msg[256];
    void* first = nullptr;
    ASSERT_TRUE(rxfCreateD(&first, peertest::peerDirectory("spelling").c_str(), msg, sizeof msg));
    together([](int /*thread*/) {
      for (int time = 0; time < 2000; ++time) {
        void* rxf = nullptr;
        EXPECT_TRUE(rxfCreate(&rxf, nullptr, 0));
        EXPECT_EQ(rxfFree(&rxf), 1);
      }
    });
    EXPECT_EQ(rxfFamily.state.objectCount, 1);
    rxfFree(&first);
  });
}

// What is left to do at the end of a process is done once and to its end.
TEST(PeerThreads, TheFirstCallOfAMissingOperationEndsTheProcess) {
  const peertest::ChildResult result = peertest::inChild([] {
    char msg[256];
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, peertest::peerDirectory("lacking").c_str(), msg, sizeof msg));
    rxfFamily.state.screenIndicator = 0;
    std::atexit([] {
      for (int turn = 0; turn < 2000; ++turn) std::this_thread::yield();
      std::puts("ended");
      std::fflush(stdout);
    });
    together([&](int /*thread*/) { rxfClose(rxf); });
  });
  EXPECT_EQ(result.exitCode, 123);
  EXPECT_EQ(result.output, "ended\n");
}

}  // namespace
}  // namespace ztb::peers
