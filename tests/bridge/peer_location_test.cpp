// Model peers that are not there, are too old or lack an operation. A family becomes ready once in
// a process, so each test body runs in one of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/bridge/bridge_fixture.h"
#include "tests/exchange/child_scenario.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

using ztb::exchangetest::expectPassesInChild;
using ztb::exchangetest::runAsChild;

// Puts one library of the scripted model peers into a folder.
void putInto(const TempFolder& folder, const char* library) {
  std::filesystem::create_symlink(scripted::ModelClient::directory() + '/' + library,
                                  folder.file(library));
}
constexpr const char* modelLibrary = "liblomudclib64.so";
constexpr const char* dictionaryLibrary = "libnmtmdclib64.so";

// A database that looks for its model peers in a folder.
class Site {
 public:
  explicit Site(const std::string& folder)
      : first_(SystemDirectory{scripted::Client::directory()}), db(SystemDirectory{folder}) {}

 private:
  Database first_;

 public:
  Database db;
};

std::string couldNotLoad(const TempFolder& folder, const char* library) {
  return "Could not load shared library " + folder.file(library) + ": ";
}

void expectErrorBegins(const Database& db, const std::string& text) {
  EXPECT_EQ(text, db.lastError().substr(0, text.size()));
}

TEST(ModelPeers, thatAreMissingAreNamedAndCanBePutThereLater) {
  expectPassesInChild([] {
    const TempFolder folder;
    const scripted::ModelClient model;
    Site site(folder.path().string());
    EXPECT_EQ(0, lib().c__ztbregisterpbi(site.db, model.handle()));
    expectErrorBegins(site.db, "Error in pbiGetReady: " + couldNotLoad(folder, modelLibrary));
    EXPECT_STREQ("", model.log());
    EXPECT_EQ(0, lib().c__ztbinitupdate(site.db, nullptr));
    EXPECT_EQ("No model registered, call ztbRegisterPBI or ztbInitFromDict first",
              site.db.lastError())
        << "the model was not stored";
    putInto(folder, modelLibrary);
    EXPECT_EQ(0, lib().c__ztbinitfromdict(site.db, model.handle()));
    expectErrorBegins(site.db, "Error in nmtGetReady: " + couldNotLoad(folder, dictionaryLibrary));
    EXPECT_STREQ("", model.log());
    putInto(folder, dictionaryLibrary);
    EXPECT_EQ(1, lib().c__ztbinitfromdict(site.db, model.handle())) << site.db.lastError();
    EXPECT_EQ(1, lib().c__ztbinitupdate(site.db, nullptr)) << site.db.lastError();
  });
}

TEST(ModelPeers, withALongNameAreToldAsFarAsThereIsRoom) {
  expectPassesInChild([] {
    const std::string folder = '/' + std::string(300, 'x');
    Site site(folder);
    EXPECT_EQ(0, lib().c__ztbregisterpbi(site.db, nullptr));
    // 233 chars of the peer's reason behind the 22 of the operation's.
    const std::string text = "Error in pbiGetReady: Could not load shared library " + folder;
    EXPECT_EQ(text.substr(0, 255), site.db.lastError());
  });
}

TEST(ModelPeers, ofARefusedVersionAreToldInTheirWords) {
  expectPassesInChild([] {
    const scripted::ModelClient model;
    model.refuseVersion("pbi", "older than you");
    Site site(scripted::ModelClient::directory());
    EXPECT_EQ(0, lib().c__ztbregisterpbi(site.db, model.handle()));
    EXPECT_EQ("Error in pbiGetReady: older than you", site.db.lastError());
    model.reset();
    model.refuseVersion("nmt", "newer than you");
    EXPECT_EQ(0, lib().c__ztbregisterpbi(site.db, model.handle()));
    EXPECT_EQ("Error in nmtGetReady: newer than you", site.db.lastError());
  });
}

TEST(ModelPeers, thatRefuseUpdatesCanBeTriedAgain) {
  expectPassesInChild([] {
    const scripted::ModelClient model;
    model.refuseVersion("snv", "no %s environment");
    Site site(scripted::ModelClient::directory());
    EXPECT_EQ(1, lib().c__ztbinitfromdict(site.db, model.handle()));
    EXPECT_EQ(0, lib().c__ztbinitupdate(site.db, nullptr));
    EXPECT_EQ("no %s environment", site.db.lastError());
    EXPECT_EQ(0, lib().c__ztbinitfromdict(site.db, model.handle()));
    EXPECT_EQ("Database incorrectly initialized.", site.db.lastError());
    model.reset();
    model.refuseVersion("rgy", "no catalogue");
    EXPECT_EQ(0, lib().c__ztbinitupdate(site.db, nullptr));
    EXPECT_EQ("no catalogue", site.db.lastError());
    EXPECT_STREQ("", model.log()) << "the environment was not asked for";
    EXPECT_EQ(0, lib().c__ztbcallsolver(site.db, "dual"));
    EXPECT_EQ("Model is not prepared for solving, call ztbInitUpdate first", site.db.lastError());
    model.reset();
    EXPECT_EQ(1, lib().c__ztbinitupdate(site.db, nullptr)) << site.db.lastError();
    EXPECT_EQ(1, model.alive("rgy"));
  });
}

TEST(ModelPeers, areLookedForOnce) {
  expectPassesInChild([] {
    const scripted::ModelClient model;
    {
      Site site(scripted::ModelClient::directory());
      EXPECT_EQ(1, lib().c__ztbregisterpbi(site.db, model.handle()));
    }
    Database elsewhere(SystemDirectory{"/nowhere"});
    EXPECT_EQ(1, lib().c__ztbregisterpbi(elsewhere, model.handle())) << elsewhere.lastError();
    Database plain;
    EXPECT_EQ(1, lib().c__ztbregisterpbi(plain, model.handle())) << plain.lastError();
  });
}

TEST(ModelPeers, thatLackAnOperationEndTheProcessWhenItIsCalled) {
  EXPECT_EXIT(runAsChild([] {
                const scripted::ModelClient model;
                model.lack("pbiViewStore", "an older kind of model");
                model.addSolver("dual", 1);
                Site site(scripted::ModelClient::directory());
                EXPECT_EQ(1, lib().c__ztbinitfromdict(site.db, model.handle()));
                EXPECT_EQ(1, lib().c__ztbinitupdate(site.db, nullptr));
                EXPECT_EQ(0, lib().c__ztbcallsolver(site.db, "other"));
                lib().c__ztbcallsolver(site.db, "dual");
              }),
              testing::ExitedWithCode(123),
              "pbiViewStore could not be loaded: an older kind of model");
}

}  // namespace
}  // namespace ztbtest
