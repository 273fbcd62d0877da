// Every slot, bound to a peer that writes down its calls: the arguments arrive in their places and
// the result comes back.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "peers/nmt_family.h"
#include "peers/pbi_family.h"
#include "peers/rgy_family.h"
#include "peers/rxf_family.h"
#include "peers/snv_family.h"
#include "tests/peers/call_text.h"
#include "tests/peers/child_process.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

using peertest::lomudFile;
using peertest::nmtmdFile;
using peertest::rxfFile;

// An argument of any type that differs from those at other positions. Pointers aren't followed.
template <typename T>
T sample(std::size_t position) {
  static char storage[32] = {};
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(&storage[position]);
  } else if constexpr (std::is_same_v<T, double>) {
    return static_cast<double>(position) + 0.25;
  } else {
    return static_cast<T>(100 + position);
  }
}

template <typename SlotType, typename Result, typename... Args>
void expectCallArrives(const SlotType& slot, Result (*)(Args...), const char* fileName) {
  SCOPED_TRACE(slot.name());
  const auto call = [&]<std::size_t... I>(std::index_sequence<I...>) {
    const std::string expected = peertest::callText(slot.name(), sample<Args>(I)...);
    if constexpr (std::is_void_v<Result>) {
      slot(sample<Args>(I)...);
    } else {
      const Result result = slot(sample<Args>(I)...);
      if constexpr (std::is_pointer_v<Result>) {
        EXPECT_EQ(static_cast<void*>(result), sample<void*>(0));
      } else {
        EXPECT_EQ(result, static_cast<Result>(std::strlen(slot.name())));
      }
    }
    EXPECT_EQ(peertest::peerLog("complete", fileName).back(), expected);
  };
  call(std::index_sequence_for<Args...>());
}

TEST(PeerCalls, EveryOperationOfEveryFamilyReachesThePeer) {
  peertest::expectPassesInChild([] {
    const std::string directory = peertest::peerDirectory("complete");
    char msg[256];
    void* rxf = nullptr;
    void* rgy = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, directory.c_str(), msg, sizeof msg)) << msg;
    ASSERT_TRUE(rgyCreateD(&rgy, directory.c_str(), msg, sizeof msg)) << msg;
    ASSERT_TRUE(pbiGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    ASSERT_TRUE(snvGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    ASSERT_TRUE(nmtGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;

    const char* const rxfPeer = rxfFile;
    const char* const pbiPeer = lomudFile;
    const char* const snvPeer = lomudFile;
    const char* const nmtPeer = nmtmdFile;
    const char* const rgyPeer = lomudFile;
#define ROW(family, result, name, symbol, parameters, arguments, ...) \
  EXPECT_FALSE(name.holdsStub()) << #name;                            \
  expectCallArrives(name, static_cast<result(*) parameters>(nullptr), family##Peer);
#include "tests/peers/expected_rows.inc"
#undef ROW

    EXPECT_EQ(rxfFree(&rxf), 1);
    EXPECT_EQ(rgyFree(&rgy), 1);
  });
}

}  // namespace
}  // namespace ztb::peers
