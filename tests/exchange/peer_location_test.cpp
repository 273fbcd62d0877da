// Where the peer is looked for, by the database and by the object of a write.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/ztb.h"
#include "peers/rxf_family.h"
#include "tests/exchange/child_scenario.h"
#include "tests/support/scripted_rxf/scripted_rxf_client.h"
#include "tests/support/temp_folder.h"

namespace ztb::exchangetest {
namespace {

using Lines = std::vector<std::string>;
using ztbtest::TempFolder;

constexpr const char* peerFile = "librxfcclib64.so";

// Puts the scripted peer into a folder.
void putPeerInto(const TempFolder& folder) {
  std::filesystem::create_symlink(scripted::Client::directory() + '/' + peerFile,
                                  folder.file(peerFile));
}

std::string couldNotLoad(const std::string& file) {
  return "RXF create did not succeed: Could not load shared library " + file + ": ";
}

TEST(PeerLocation, isTheSystemDirectoryWhichThePeerIsToldOnce) {
  expectPassesInChild([] {
    const TempFolder folder;
    putPeerInto(folder);
    const scripted::Client peer;
    const ZTB first(folder.path().c_str());
    EXPECT_STREQ("", first.lastError);
    const ZTB second("/another folder");
    EXPECT_STREQ("", second.lastError);
    EXPECT_EQ((Lines{"SetLoadPath \"" + folder.path().string() + "\"", "1 XCreate", "2 XCreate"}),
              peer.lines());
    EXPECT_EQ(2, peers::rxfFamily.state.objectCount);
  });
}

TEST(PeerLocation, ofAWriteIsTheSystemDirectoryOfTheDatabase) {
  expectPassesInChild([] {
    const TempFolder folder;
    ZTB db(folder.path().c_str());
    EXPECT_EQ(nullptr, db.rxf);
    EXPECT_EQ(0U, std::string(db.lastError).find(couldNotLoad(folder.file(peerFile))));
    putPeerInto(folder);
    const scripted::Client peer;
    EXPECT_EQ(1, db.WriteRXF("out.rxf", 0)) << db.lastError;
    const Lines calls = peer.lines();
    EXPECT_EQ("SetLoadPath \"" + folder.path().string() + "\"", calls.at(0));
    EXPECT_EQ("1 XCreate", calls.at(1));
    EXPECT_EQ(0, peer.objects());
    EXPECT_EQ(0, db.InitFromRXF("out.rxf"));
  });
}

TEST(PeerLocation, withoutASystemDirectoryIsTheBareFileName) {
  expectPassesInChild([] {
    ZTB db;
    const std::string wanted = couldNotLoad(peerFile);
    EXPECT_EQ(wanted, std::string(db.lastError).substr(0, wanted.size()));
    db.fail("earlier");
    EXPECT_EQ(0, db.WriteRXF("out.rxf", 0));
    EXPECT_EQ(wanted, std::string(db.lastError).substr(0, wanted.size()));
    EXPECT_EQ(0, peers::rxfFamily.state.objectCount);
  });
}

TEST(PeerLocation, withAnEmptySystemDirectoryIsTheBareFileName) {
  expectPassesInChild([] {
    const ZTB db("");
    const std::string wanted = couldNotLoad(peerFile);
    EXPECT_EQ(wanted, std::string(db.lastError).substr(0, wanted.size()));
  });
}

TEST(PeerLocation, doesNotMatterOnceThePeerIsOpen) {
  expectPassesInChild([] {
    const scripted::Client peer;
    const ZTB first(scripted::Client::directory().c_str());
    peer.clearLog();
    ZTB plain;
    EXPECT_STREQ("", plain.lastError);
    EXPECT_EQ(1, plain.WriteRXF("out.rxf", 0));
    EXPECT_EQ("2 XCreate", peer.lines().at(0));
    EXPECT_EQ("3 XCreate", peer.lines().at(1));
  });
}

TEST(PeerVersion, thatIsRefusedIsToldInThePeersWordsAndCanBeTriedAgain) {
  expectPassesInChild([] {
    const scripted::Client peer;
    peer.refuseVersion("this peer is older than you");
    ZTB db(scripted::Client::directory().c_str());
    EXPECT_STREQ("RXF create did not succeed: this peer is older than you", db.lastError);
    EXPECT_STREQ("this peer is older than you", db.peerMessage);
    EXPECT_EQ(nullptr, db.rxf);
    EXPECT_EQ(0, db.WriteRXF("out.rxf", 0));
    EXPECT_STREQ("RXF create did not succeed: this peer is older than you", db.lastError);
    peer.refuseVersion(nullptr);
    EXPECT_EQ(1, db.WriteRXF("out.rxf", 0)) << db.lastError;
  });
}

}  // namespace
}  // namespace ztb::exchangetest
