// How a family becomes ready, and how its objects are made and freed.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "peers/nmt_family.h"
#include "peers/pbi_family.h"
#include "peers/rgy_family.h"
#include "peers/rxf_family.h"
#include "peers/snv_family.h"
#include "tests/peers/child_process.h"
#include "tests/peers/test_peers.h"

namespace ztb::peers {
namespace {

using peertest::countLines;
using peertest::expectPassesInChild;
using peertest::lomudFile;
using peertest::nmtmdFile;
using peertest::peerDirectory;
using peertest::peerLog;
using peertest::rxfFile;

bool rxfCreateFrom(const std::string& kind, void** object) {
  char msg[256];
  const bool made = rxfCreateD(object, peerDirectory(kind).c_str(), msg, sizeof msg);
  EXPECT_TRUE(made) << msg;
  return made;
}

TEST(PeerLoader, ReadyFamilyHasItsLibraryItsEntryPointsAndNoMessage) {
  expectPassesInChild([] {
    char msg[256] = "before";
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory("complete").c_str(), msg, sizeof msg));
    EXPECT_STREQ(msg, "");
    EXPECT_NE(rxf, nullptr);
    const FamilyState& state = rxfFamily.state;
    EXPECT_NE(state.libraryHandle, nullptr);
    EXPECT_EQ(state.libraryLoaded, 1);
    EXPECT_NE(state.XCreate, nullptr);
    EXPECT_NE(state.XCreateD, nullptr);
    EXPECT_NE(state.XFree, nullptr);
    EXPECT_NE(state.XCheck, nullptr);
    EXPECT_NE(state.XAPIVersion, nullptr);
    EXPECT_NE(state.SetLoadPath, nullptr);
    EXPECT_NE(state.GetLoadPath, nullptr);
    EXPECT_NE(state.ReadBlockStart, nullptr);
    EXPECT_NE(state.ReadBlock, nullptr);
    rxfFree(&rxf);
  });
}

// Which peers read is decided by both functions, which need not be there.
TEST(PeerLoader, TakesBothFunctionsThatReadBlocksOrNone) {
  for (const char* kind : {"half_blocks", "no_blocks"}) {
    expectPassesInChild([&] {
      char msg[256] = "before";
      void* rxf = nullptr;
      ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory(kind).c_str(), msg, sizeof msg));
      EXPECT_STREQ(msg, "");
      EXPECT_EQ(rxfFamily.state.ReadBlockStart, nullptr);
      EXPECT_EQ(rxfFamily.state.ReadBlock, nullptr);
      rxfFree(&rxf);
    });
  }
}

TEST(PeerLoader, EveryFamilyAsksForItsOwnVersion) {
  expectPassesInChild([] {
    const std::string directory = peerDirectory("complete");
    char msg[256];
    void* rxf = nullptr;
    void* rgy = nullptr;
    EXPECT_TRUE(rxfCreateD(&rxf, directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_TRUE(rgyCreateD(&rgy, directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_TRUE(pbiGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_TRUE(snvGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_TRUE(nmtGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_EQ(countLines(peerLog("complete", rxfFile), "rxfXAPIVersion 9"), 1);
    EXPECT_EQ(peerLog("complete", lomudFile),
              (std::vector<std::string>{"rgyXAPIVersion 4", "rgyXCreate", "pbiXAPIVersion 26",
                                        "snvXAPIVersion 7"}));
    EXPECT_EQ(peerLog("complete", nmtmdFile), std::vector<std::string>{"nmtXAPIVersion 2"});
    rxfFree(&rxf);
    rgyFree(&rgy);
  });
}

TEST(PeerLoader, ThreeFamiliesShareOneLibrary) {
  expectPassesInChild([] {
    const std::string directory = peerDirectory("complete");
    ASSERT_TRUE(pbiGetReadyD(directory.c_str(), nullptr, 0));
    EXPECT_EQ(snvFamily.state.libraryLoaded, 0);
    ASSERT_TRUE(snvGetReadyD(directory.c_str(), nullptr, 0));
    void* rgy = nullptr;
    ASSERT_TRUE(rgyCreateD(&rgy, directory.c_str(), nullptr, 0));
    EXPECT_EQ(pbiFamily.state.libraryHandle, snvFamily.state.libraryHandle);
    EXPECT_EQ(pbiFamily.state.libraryHandle, rgyFamily.state.libraryHandle);
    rgyFree(&rgy);
  });
}

TEST(PeerLoader, SecondGetReadyDoesNothingAndIsTrue) {
  expectPassesInChild([] {
    const std::string directory = peerDirectory("complete");
    char msg[256];
    ASSERT_TRUE(pbiGetReadyD(directory.c_str(), msg, sizeof msg)) << msg;
    const std::vector<std::string> log = peerLog("complete", lomudFile);
    std::strcpy(msg, "before");
    EXPECT_TRUE(pbiGetReady(msg, sizeof msg));
    EXPECT_STREQ(msg, "");
    EXPECT_TRUE(pbiGetReadyD("/nowhere", nullptr, 0));
    EXPECT_EQ(peerLog("complete", lomudFile), log);
  });
}

TEST(PeerLoader, SecondCreateWithAnotherDirectoryTakesTheLibraryThatIsThere) {
  expectPassesInChild([] {
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_TRUE(rxfCreateFrom("complete", &first));
    ASSERT_TRUE(rxfCreateFrom("lacking", &second));
    EXPECT_EQ(
        peerLog("complete", rxfFile),
        (std::vector<std::string>{"rxfXAPIVersion 9", "SetLoadPath " + peerDirectory("complete"),
                                  "rxfXCreate", "rxfXCreate"}));
    EXPECT_FALSE(rxfClose.holdsStub());
    EXPECT_EQ(rxfFamily.state.objectCount, 2);
    rxfFree(&first);
    rxfFree(&second);
  });
}

TEST(PeerLoader, ObjectsAreCountedAndFreedByTheFamily) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    EXPECT_EQ(rxfFamily.state.objectCount, 1);
    EXPECT_EQ(rxfFree(&rxf), 1);
    EXPECT_EQ(rxf, nullptr);
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 1);
    EXPECT_EQ(peerLog("complete", rxfFile).back(), "rxfXFree");
  });
}

TEST(PeerLoader, CreateInDirectoryUsesThePlainEntryPoint) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    EXPECT_EQ(peerLog("complete", rxfFile).back(), "rxfXCreate");
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, CatalogueFamilyHasNoCreateInDirectory) {
  expectPassesInChild([] {
    void* rgy = nullptr;
    ASSERT_TRUE(rgyCreateD(&rgy, peerDirectory("complete").c_str(), nullptr, 0));
    EXPECT_EQ(rgyFamily.state.XCreateD, nullptr);
    EXPECT_EQ(rgyFamily.state.SetLoadPath, nullptr);
    EXPECT_EQ(rgyFamily.state.objectCount, 1);
    EXPECT_EQ(rgyFree(&rgy), 1);
    EXPECT_EQ(rgyFamily.state.objectCount, 0);
  });
}

TEST(PeerLoader, LoadPathIsSetOnceAfterTheLoadFromADirectory) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    rxfFree(&rxf);
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    rxfFree(&rxf);
    EXPECT_EQ(countLines(peerLog("complete", rxfFile), "SetLoadPath " + peerDirectory("complete")),
              1);
  });
}

TEST(PeerLoader, PeerWithoutLoadPathIsFine) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("no_load_path", &rxf));
    EXPECT_EQ(rxfFamily.state.SetLoadPath, nullptr);
    EXPECT_EQ(rxfFamily.state.GetLoadPath, nullptr);
    rxfFree(&rxf);
  });
}

// Opens a peer, so that from now on its bare name leads to it whatever the search path is.
void* openAhead(const char* fileName) {
  const std::string path = peerDirectory("complete") + '/' + fileName;
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  EXPECT_NE(library, nullptr) << dlerror();
  return library;
}

TEST(PeerLoader, WithoutADirectoryTheBareFileNameIsOpened) {
  expectPassesInChild([] {
    void* const rxfLibrary = openAhead(rxfFile);
    void* const lomudLibrary = openAhead(lomudFile);
    void* const nmtmdLibrary = openAhead(nmtmdFile);
    void* rxf = nullptr;
    void* rgy = nullptr;
    char msg[256];
    ASSERT_TRUE(rxfCreate(&rxf, msg, sizeof msg)) << msg;
    ASSERT_TRUE(rgyCreate(&rgy, msg, sizeof msg)) << msg;
    ASSERT_TRUE(pbiGetReady(msg, sizeof msg)) << msg;
    ASSERT_TRUE(snvGetReady(msg, sizeof msg)) << msg;
    ASSERT_TRUE(nmtGetReady(msg, sizeof msg)) << msg;
    EXPECT_EQ(rxfFamily.state.libraryHandle, rxfLibrary);
    EXPECT_EQ(rgyFamily.state.libraryHandle, lomudLibrary);
    EXPECT_EQ(pbiFamily.state.libraryHandle, lomudLibrary);
    EXPECT_EQ(snvFamily.state.libraryHandle, lomudLibrary);
    EXPECT_EQ(nmtFamily.state.libraryHandle, nmtmdLibrary);
    EXPECT_EQ(peerLog("complete", rxfFile),
              (std::vector<std::string>{"rxfXAPIVersion 9", "rxfXCreate"}));
    rxfFree(&rxf);
    rgyFree(&rgy);
  });
}

TEST(PeerLoader, EmptyDirectoryIsNoDirectoryAndSetsNoLoadPath) {
  expectPassesInChild([] {
    void* const library = openAhead(rxfFile);
    void* rxf = nullptr;
    char msg[256];
    ASSERT_TRUE(rxfCreateD(&rxf, "", msg, sizeof msg)) << msg;
    EXPECT_EQ(rxfFamily.state.libraryHandle, library);
    EXPECT_EQ(peerLog("complete", rxfFile),
              (std::vector<std::string>{"rxfXAPIVersion 9", "rxfXCreate"}));
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, DirectoryThatEndsInASeparatorWorks) {
  expectPassesInChild([] {
    const std::string directory = peerDirectory("complete") + '/';
    void* rxf = nullptr;
    char msg[256];
    ASSERT_TRUE(rxfCreateD(&rxf, directory.c_str(), msg, sizeof msg)) << msg;
    EXPECT_EQ(countLines(peerLog("complete", rxfFile), "SetLoadPath " + directory), 1);
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, SymbolIsTakenInLowerCaseThenAsItStandsThenInUpperCase) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("spelling", &rxf));
    EXPECT_EQ(rxfClose(rxf), 1);
    EXPECT_EQ(rxfErrorCount(rxf), 2);
    EXPECT_EQ(rxfGetLastError(rxf), 3);
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, PeerThatLacksAnOperationLoadsAndTheOthersWork) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateFrom("lacking", &rxf));
    EXPECT_TRUE(rxfClose.holdsStub());
    EXPECT_FALSE(rxfErrorCount.holdsStub());
    EXPECT_EQ(rxfErrorCount(rxf), 13);
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, RefusedVersionLeavesTheFamilyNotReadyAndTheNextAttemptRunsAnew) {
  expectPassesInChild([] {
    const std::string refusing = peerDirectory("refusing");
    char msg[256];
    void* rxf = nullptr;
    EXPECT_FALSE(rxfCreateD(&rxf, refusing.c_str(), msg, sizeof msg));
    EXPECT_EQ(rxf, nullptr);
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 0);
    EXPECT_NE(rxfFamily.state.libraryHandle, nullptr);
    EXPECT_EQ(rxfFamily.state.XCreate, nullptr);
    EXPECT_TRUE(rxfClose.isNull());
    EXPECT_FALSE(rxfCreateD(&rxf, refusing.c_str(), msg, sizeof msg));
    EXPECT_EQ(countLines(peerLog("refusing", rxfFile), "rxfXAPIVersion 9"), 2);

    void* const refusingLibrary = rxfFamily.state.libraryHandle;
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 1);
    EXPECT_NE(rxfFamily.state.libraryHandle, refusingLibrary);
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, FailedCreateMakesNoObject) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    EXPECT_FALSE(rxfCreateD(&rxf, peerDirectory("refusing").c_str(), nullptr, 0));
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
    EXPECT_EQ(countLines(peerLog("refusing", rxfFile), "rxfXCreate"), 0);
  });
}

TEST(PeerLoader, NullHandlePointerReachesThePeerBeforeTheFailure) {
  expectPassesInChild([] {
    char msg[256];
    EXPECT_FALSE(rxfCreateD(nullptr, peerDirectory("complete").c_str(), msg, sizeof msg));
    EXPECT_STREQ(msg, "Error while creating object");
    EXPECT_EQ(peerLog("complete", rxfFile).back(), "rxfXCreate");
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 1);
    EXPECT_FALSE(rxfCreate(nullptr, nullptr, 0));
  });
}

TEST(PeerLoader, EnabledLocksAreGivenBackAfterEachUse) {
  expectPassesInChild([] {
    rxfFamily.state.mutexesEnabled = 1;
    void* rxf = nullptr;
    EXPECT_FALSE(rxfCreateD(&rxf, "/nowhere", nullptr, 0));
    peertest::enterAllLocksFromAnotherThread(rxfFamily);
    ASSERT_TRUE(rxfCreateFrom("complete", &rxf));
    peertest::enterAllLocksFromAnotherThread(rxfFamily);
    rxfFree(&rxf);
    peertest::enterAllLocksFromAnotherThread(rxfFamily);
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
  });
}

// Without a message buffer a library that isn't there is a failure all the same, ...
TEST(PeerLoader, WithoutAMessageAMissingLibraryIsAFailure) {
  void* rxf = nullptr;
  EXPECT_FALSE(rxfCreateD(&rxf, "/nowhere", nullptr, 0));
  EXPECT_FALSE(nmtGetReadyD("/nowhere", nullptr, 0));
  EXPECT_EQ(rxfFamily.state.libraryLoaded, 0);
}

// ... but a symbol that isn't there is not.
TEST(PeerLoader, WithoutAMessageAMissingSymbolCountsAsLoadedAndLeavesItsSlotEmpty) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory("hidden_symbol").c_str(), nullptr, 256));
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 1);
    EXPECT_FALSE(rxfOpenWrite.isNull());
    EXPECT_TRUE(rxfClose.isNull());
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, WithoutRoomForAMessageAMissingSymbolCountsAsLoaded) {
  expectPassesInChild([] {
    char msg[4] = "abc";
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory("hidden_symbol").c_str(), msg, 0));
    EXPECT_TRUE(rxfClose.isNull());
    EXPECT_STREQ(msg, "");
    EXPECT_STREQ(msg + 1, "bc");
    rxfFree(&rxf);
  });
}

TEST(PeerLoader, WithoutAMessageAMissingCreateShowsAtTheFirstObject) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    EXPECT_THROW(rxfCreateD(&rxf, peerDirectory("without_XCreate").c_str(), nullptr, 0),
                 std::logic_error);
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 1);
    EXPECT_EQ(rxfFamily.state.objectCount, 0);
  });
}

TEST(PeerLoader, WithoutAMessageAMissingFreeShowsWhenTheObjectIsFreed) {
  expectPassesInChild([] {
    void* rxf = nullptr;
    ASSERT_TRUE(rxfCreateD(&rxf, peerDirectory("without_XFree").c_str(), nullptr, 0));
    EXPECT_THROW(rxfFree(&rxf), std::logic_error);
    EXPECT_EQ(rxfFamily.state.objectCount, 1);
    delete static_cast<int*>(rxf);
  });
}

TEST(PeerLoader, NothingOfAFailedAttemptIsLeftInTheSlots) {
  expectPassesInChild([] {
    char msg[256];
    void* rxf = nullptr;
    EXPECT_FALSE(rxfCreateD(&rxf, peerDirectory("hidden_symbol").c_str(), msg, sizeof msg));
    EXPECT_TRUE(rxfOpenRead.isNull());
    EXPECT_EQ(rxfFamily.state.XCheck, nullptr);
    EXPECT_EQ(rxfFamily.state.SetLoadPath, nullptr);
  });
}

}  // namespace
}  // namespace ztb::peers
