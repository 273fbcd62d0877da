// What a call of an operation does that the peer lacks.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "peers/pbi_family.h"
#include "peers/rxf_family.h"
#include "tests/peers/child_process.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

using peertest::ChildResult;
using peertest::expectPassesInChild;
using peertest::inChild;
using peertest::peerDirectory;

constexpr int neverReached = 77;

void makeLackingPeersReady() {
  char msg[256];
  void* rxf = nullptr;
  ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory("lacking").c_str(), msg, sizeof msg)) << msg;
  rxfFree(&rxf);
  ASSERT_TRUE(pbiGetReadyD(peerDirectory("lacking").c_str(), msg, sizeof msg)) << msg;
}

std::int32_t countSeen = 0;
std::string textSeen;

std::int32_t remember(std::int32_t errorCount, const char* text) {
  countSeen = errorCount;
  textSeen = text;
  return 0;
}

std::int32_t refuse(std::int32_t /*errorCount*/, const char* /*text*/) {
  return 1;
}

std::int32_t leaveAtOnce(std::int32_t /*errorCount*/, const char* /*text*/) {
  _exit(neverReached);
}

TEST(PeerStub, CallOfAMissingOperationPrintsThePeersReasonAndEndsTheProcessWith123) {
  const ChildResult result = inChild([] {
    makeLackingPeersReady();
    rxfClose(nullptr);
    std::exit(neverReached);
  });
  EXPECT_EQ(result.exitCode, 123);
  EXPECT_EQ(result.output, "rxfClose could not be loaded: too old a peer\n");
}

TEST(PeerStub, MissingOperationOfAnyResultTypeEndsTheProcess) {
  const std::array<std::pair<void (*)(), std::string>, 4> calls{{
      {[] { pbiN(nullptr); }, "pbiN"},
      {[] { pbiDict(nullptr); }, "pbiDict"},
      {[] { pbiGetVarLOne(nullptr, 1); }, "pbiGetVarLOne"},
      {[] { pbiPinfSet(nullptr, 1.0); }, "pbiPinfSet"},
  }};
  for (const auto& [call, name] : calls) {
    const ChildResult result = inChild([&, function = call] {
      makeLackingPeersReady();
      function();
      std::exit(neverReached);
    });
    EXPECT_EQ(result.exitCode, 123);
    EXPECT_EQ(result.output, name + " could not be loaded: too old a peer\n");
  }
}

TEST(PeerStub, TextIsFlushedBeforeTheCallbackIsAsked) {
  const ChildResult result = inChild([] {
    makeLackingPeersReady();
    rxfFamily.state.errorCallback = leaveAtOnce;
    rxfClose(nullptr);
  });
  EXPECT_EQ(result.exitCode, neverReached);
  EXPECT_EQ(result.output, "rxfClose could not be loaded: too old a peer\n");
}

TEST(PeerStub, NothingIsPrintedWithTheScreenIndicatorOff) {
  const ChildResult result = inChild([] {
    makeLackingPeersReady();
    rxfFamily.state.screenIndicator = 0;
    rxfClose(nullptr);
    std::exit(neverReached);
  });
  EXPECT_EQ(result.exitCode, 123);
  EXPECT_EQ(result.output, "");
}

TEST(PeerStub, LongReasonIsCutTo255CharsWithTheName) {
  const ChildResult result = inChild([] {
    makeLackingPeersReady();
    rxfUELRegisterRawStart(nullptr);
  });
  const std::string text = "rxfUELRegisterRawStart could not be loaded: " + std::string(255, 'r');
  EXPECT_EQ(result.exitCode, 123);
  EXPECT_EQ(result.output, text.substr(0, 255) + '\n');
}

TEST(PeerStub, CallbackThatAgreesLeavesTheEndToTheExitIndicator) {
  const ChildResult result = inChild([] {
    makeLackingPeersReady();
    rxfFamily.state.errorCallback = remember;
    rxfClose(nullptr);
    std::exit(neverReached);
  });
  EXPECT_EQ(result.exitCode, 123);
}

TEST(PeerStub, CallbackThatRefusesEndsTheProcessEvenWithTheExitIndicatorOff) {
  for (const std::int32_t mutexesEnabled : {0, 1}) {
    const ChildResult result = inChild([mutexesEnabled] {
      makeLackingPeersReady();
      rxfFamily.state.mutexesEnabled = mutexesEnabled;
      rxfFamily.state.errorCallback = refuse;
      rxfFamily.state.exitIndicator = 0;
      rxfClose(nullptr);
      std::exit(neverReached);
    });
    EXPECT_EQ(result.exitCode, 123);
  }
}

TEST(PeerStub, ErrorLockIsFreeWhenTheProcessEnds) {
  for (const std::int32_t exitIndicator : {0, 1}) {
    const ChildResult result = inChild([exitIndicator] {
      makeLackingPeersReady();
      std::atexit([] { peertest::enterAllLocksFromAnotherThread(rxfFamily); });
      rxfFamily.state.mutexesEnabled = 1;
      rxfFamily.state.errorCallback = exitIndicator != 0 ? remember : refuse;
      rxfFamily.state.exitIndicator = exitIndicator;
      rxfClose(nullptr);
      std::exit(neverReached);
    });
    EXPECT_EQ(result.exitCode, 123);
  }
}

TEST(PeerStub, CallbackGetsTheCountAndTheText) {
  expectPassesInChild([] {
    makeLackingPeersReady();
    rxfFamily.state.errorCallback = remember;
    rxfFamily.state.exitIndicator = 0;
    rxfFamily.state.screenIndicator = 0;
    rxfClose(nullptr);
    EXPECT_EQ(countSeen, 1);
    EXPECT_EQ(textSeen, "rxfClose could not be loaded: too old a peer");
    rxfClose(nullptr);
    EXPECT_EQ(countSeen, 2);
    EXPECT_EQ(rxfFamily.state.apiErrorCount, 2);
    EXPECT_EQ(pbiFamily.state.apiErrorCount, 0);
  });
}

TEST(PeerStub, WithTheExitIndicatorOffItAnswersZeroOfItsResultType) {
  for (const std::int32_t mutexesEnabled : {0, 1}) {
    expectPassesInChild([mutexesEnabled] {
      makeLackingPeersReady();
      pbiFamily.state.mutexesEnabled = mutexesEnabled;
      pbiFamily.state.exitIndicator = 0;
      EXPECT_EQ(pbiN(&countSeen), 0);
      EXPECT_EQ(pbiDict(&countSeen), nullptr);
      EXPECT_EQ(pbiGetVarLOne(&countSeen, 3), 0.0);
      pbiPinfSet(&countSeen, 3.0);
      EXPECT_EQ(pbiFamily.state.apiErrorCount, 4);
      peertest::enterAllLocksFromAnotherThread(pbiFamily);
    });
  }
}

}  // namespace
}  // namespace ztb::peers
