// The texts of a family that doesn't become ready, and how they are cut to the caller's buffer.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
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

using peertest::lomudFile;
using peertest::nmtmdFile;
using peertest::openError;
using peertest::peerDirectory;
using peertest::rxfFile;
using peertest::symbolError;

constexpr int roomy = 4096;

std::string rxfFailure(const char* directory) {
  char msg[roomy] = "before";
  void* rxf = nullptr;
  EXPECT_FALSE(rxfCreateD(&rxf, directory, msg, roomy));
  EXPECT_EQ(rxf, nullptr);
  return msg;
}

std::string couldNotLoad(const std::string& fileName) {
  return "Could not load shared library " + fileName + ": " + openError(fileName);
}

TEST(PeerMessages, MissingLibraryIsNamedWithThePlatformsReason) {
  const std::string file = std::string("/nowhere/") + rxfFile;
  EXPECT_EQ(rxfFailure("/nowhere"), couldNotLoad(file));
  EXPECT_NE(rxfFailure("/nowhere").find("No such file or directory"), std::string::npos);
}

TEST(PeerMessages, EveryFamilyNamesItsOwnLibrary) {
  const std::string lomud = couldNotLoad(std::string("/nowhere/") + lomudFile);
  const std::string nmtmd = couldNotLoad(std::string("/nowhere/") + nmtmdFile);
  char msg[roomy];
  void* rgy = nullptr;
  EXPECT_FALSE(pbiGetReadyD("/nowhere", msg, roomy));
  EXPECT_EQ(msg, lomud);
  EXPECT_FALSE(snvGetReadyD("/nowhere", msg, roomy));
  EXPECT_EQ(msg, lomud);
  EXPECT_FALSE(rgyCreateD(&rgy, "/nowhere", msg, roomy));
  EXPECT_EQ(msg, lomud);
  EXPECT_FALSE(nmtGetReadyD("/nowhere", msg, roomy));
  EXPECT_EQ(msg, nmtmd);
}

TEST(PeerMessages, WithoutADirectoryTheBareFileNameIsTried) {
  static constexpr FamilyTable table{.libraryBaseName = "nosuchpeer",
                                     .apiVersion = 1,
                                     .createName = "nspXCreate",
                                     .createInDirectoryName = nullptr,
                                     .freeName = "nspXFree",
                                     .checkName = "CnspXCheck",
                                     .versionName = "CnspXAPIVersion",
                                     .setLoadPathName = nullptr,
                                     .getLoadPathName = nullptr,
                                     .readBlockStartName = nullptr,
                                     .readBlockName = nullptr};
  PeerFamily family(table);
  char msg[roomy];
  for (const char* directory : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_FALSE(family.makeReady(directory, msg, roomy));
    EXPECT_EQ(msg, couldNotLoad("libnosuchpeer64.so"));
  }
}

TEST(PeerMessages, DirectoryThatEndsInASeparatorGetsASecondOne) {
  EXPECT_EQ(rxfFailure("/nowhere/"), couldNotLoad(std::string("/nowhere//") + rxfFile));
  EXPECT_EQ(rxfFailure("/"), couldNotLoad(std::string("//") + rxfFile));
}

TEST(PeerMessages, FileThatIsNoLibraryIsNamedWithThePlatformsReason) {
  const std::filesystem::path directory =
      std::filesystem::path(testing::TempDir()) / "ztb_peer_messages";
  std::filesystem::create_directories(directory);
  const std::filesystem::path file = directory / rxfFile;
  std::ofstream(file) << "This is a text and no library.\n";
  EXPECT_EQ(rxfFailure(directory.c_str()), couldNotLoad(file.string()));
  std::filesystem::remove_all(directory);
}

TEST(PeerMessages, DirectoryOfMoreThan511CharsIsCutAt511) {
  const std::string directory = '/' + std::string(599, 'd');
  EXPECT_EQ(rxfFailure(directory.c_str()), couldNotLoad(directory.substr(0, 511)));
}

TEST(PeerMessages, FileNameIsCutAt511WhereverThatFalls) {
  const std::string whole = '/' + std::string(510, 'd') + '/' + rxfFile;
  EXPECT_EQ(rxfFailure(whole.substr(0, 511).c_str()), couldNotLoad(whole.substr(0, 511)));
  for (const std::size_t length : {510U, 509U, 505U, 495U, 494U, 493U}) {
    const std::string directory = whole.substr(0, length);
    const std::string file = directory + '/' + rxfFile;
    EXPECT_EQ(rxfFailure(directory.c_str()), couldNotLoad(file.substr(0, 511))) << length;
  }
}

TEST(PeerMessages, MissingEntryPointIsNamed) {
  for (const char* entry : {"XCreate", "XCreateD", "XFree", "C__XCheck", "C__XAPIVersion"}) {
    peertest::expectPassesInChild([entry] {
      const std::string kind = std::string("without_") + entry;
      EXPECT_EQ(rxfFailure(peerDirectory(kind).c_str()),
                std::string("Could not load symbol '") + entry +
                    "': " + symbolError(kind, rxfFile, entry));
      EXPECT_EQ(rxfFamily.state.libraryLoaded, 0);
    });
  }
}

TEST(PeerMessages, OfTwoMissingEntryPointsTheFirstOfTheTableIsNamed) {
  peertest::expectPassesInChild([] {
    EXPECT_EQ(
        rxfFailure(peerDirectory("without_two").c_str()),
        "Could not load symbol 'XCreateD': " + symbolError("without_two", rxfFile, "XCreateD"));
  });
}

TEST(PeerMessages, OperationThatTheCheckAcceptsButHasNoSymbolIsNamed) {
  peertest::expectPassesInChild([] {
    const std::string text = rxfFailure(peerDirectory("hidden_symbol").c_str());
    EXPECT_EQ(text, "Could not load symbol 'C__rxfClose': " +
                        symbolError("hidden_symbol", rxfFile, "C__rxfClose"));
    EXPECT_NE(text.find("undefined symbol: C__rxfClose"), std::string::npos);
    EXPECT_EQ(rxfFamily.state.libraryLoaded, 0);
  });
}

TEST(PeerMessages, OperationOfAnotherFamilyIsNamedByItsSymbol) {
  peertest::expectPassesInChild([] {
    char msg[roomy];
    EXPECT_FALSE(pbiGetReadyD(peerDirectory("hidden_symbol").c_str(), msg, roomy));
    EXPECT_EQ(msg, "Could not load symbol 'pbiModelType': " +
                       symbolError("hidden_symbol", lomudFile, "pbiModelType"));
    EXPECT_FALSE(snvGetReadyD(peerDirectory("hidden_symbol").c_str(), msg, roomy));
    EXPECT_EQ(msg, "Could not load symbol 'CsnvLog': " +
                       symbolError("hidden_symbol", lomudFile, "CsnvLog"));
  });
}

TEST(PeerMessages, RefusedVersionGivesThePeersOwnWords) {
  peertest::expectPassesInChild([] {
    EXPECT_EQ(rxfFailure(peerDirectory("refusing").c_str()), "this peer is older than you");
  });
}

// The text whole, then into buffers of every size up to it, with a mark behind their end.
template <typename Attempt>
void expectCutToEverySize(const Attempt& attempt) {
  char whole[roomy];
  attempt(whole, roomy);
  const std::string text = whole;
  ASSERT_FALSE(text.empty());
  for (int size = 1; size <= static_cast<int>(text.size()) + 1; ++size) {
    std::vector<char> buffer(static_cast<std::size_t>(size) + 1, '#');
    attempt(buffer.data(), size);
    ASSERT_EQ(std::string(buffer.data()), text.substr(0, static_cast<std::size_t>(size) - 1));
    ASSERT_EQ(buffer.back(), '#');
  }
}

TEST(PeerMessages, EveryTextIsCutToTheBufferAndEndsInAZero) {
  peertest::expectPassesInChild([] {
    for (const std::string& directory :
         {std::string("/nowhere"), peerDirectory("without_XFree"), peerDirectory("hidden_symbol"),
          peerDirectory("refusing")}) {
      SCOPED_TRACE(directory);
      expectCutToEverySize([&](char* msg, int size) {
        void* rxf = nullptr;
        EXPECT_FALSE(rxfCreateD(&rxf, directory.c_str(), msg, size));
      });
    }
    expectCutToEverySize([](char* msg, int size) {
      EXPECT_FALSE(rxfCreateD(nullptr, peerDirectory("complete").c_str(), msg, size));
    });
  });
}

TEST(PeerMessages, BufferOfNoSizeOnlyLosesItsFirstChar) {
  char msg[4] = "abc";
  void* rxf = nullptr;
  EXPECT_FALSE(rxfCreateD(&rxf, "/nowhere", msg, 0));
  EXPECT_STREQ(msg, "");
  EXPECT_STREQ(msg + 1, "bc");
}

}  // namespace
}  // namespace ztb::peers
