// Tying a database to a model.
#include "tests/bridge/bridge_fixture.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

class Registration : public BridgeTest {
 protected:
  // What a call prints while the trace is on.
  template <class Call>
  std::string printed(const Call& call) {
    lib().c__ztbsetdebug(db(), 1);
    StdoutCapture capture;
    call();
    std::string text = capture.text();
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(db(), 0);
    return text;
  }

  int registerModel() { return lib().c__ztbregisterpbi(db(), model_.handle()); }
};

TEST_F(Registration, reachesTheDictionaryAndSetsTheInfinities) {
  EXPECT_SUCCESS(db(), registerModel());
  EXPECT_EQ(lines(R"(
model pbiDict
model pbiPinfSet inf
model pbiMinfSet -inf)"),
            log());
  EXPECT_EQ(0, db().info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(0, db().info(ZTB_INFO_UEL_COUNT));
}

TEST_F(Registration, leavesADatabaseWithContentAsItIs) {
  data("p", {{"flour", 2.0}});
  EXPECT_SUCCESS(db(), registerModel());
  EXPECT_EQ((std::vector<Row>{{{"flour"}, 2.0}}), db().rows(db().find("p")));
}

TEST_F(Registration, ofAModelWithoutADictionaryFailsAndKeepsTheModel) {
  model_.answer("pbiDict", 0, 0);
  EXPECT_FAILURE(db(), "No dictionary available", registerModel());
  EXPECT_EQ(lines(R"(
model pbiDict
model pbiPinfSet inf
model pbiMinfSet -inf)"),
            log());
  EXPECT_SUCCESS(db(), lib().c__ztbinitupdate(db(), nullptr));
  EXPECT_EQ((Lines{"model pbiEnvironment"}), log("pbiEnvironment"));
}

TEST_F(Registration, withoutADictionaryASolveLeavesAllSymbols) {
  model_.answer("pbiDict", 0, 0);
  registerModel();
  lib().c__ztbinitupdate(db(), nullptr);
  data("buy", {{"flour", 2.0}});
  log();
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines(), log("nmt"));
  EXPECT_EQ(1, db().recordCount(db().find("buy")));
}

TEST_F(Registration, canBeDoneAgain) {
  registerModel();
  log();
  EXPECT_SUCCESS(db(), registerModel());
  EXPECT_EQ(3U, log().size());
}

TEST_F(Registration, failuresArePrintedWhileTheTraceIsOn) {
  EXPECT_EQ("ztbRegisterPBI\n", printed([&] { registerModel(); }));
  model_.answer("pbiDict", 0, 0);
  EXPECT_EQ("ztbRegisterPBI\nNo dictionary available\n", printed([&] { registerModel(); }));
  model_.answer("pbiDict", 0, 0);
  EXPECT_EQ("ztbInitFromDict\n---- Entering InitFromDict ----\nNo dictionary available\n",
            printed([&] { lib().c__ztbinitfromdict(db(), model_.handle()); }));
  EXPECT_EQ("ztbInitFromDict\n---- Entering InitFromDict ----\n",
            printed([&] { lib().c__ztbinitfromdict(db(), model_.handle()); }));
  EXPECT_EQ(
      "ztbInitFromDict\n---- Entering InitFromDict ----\n"
      "Uels present. Cannot load Uels from dictionary.\n",
      printed([&] { lib().c__ztbinitfromdict(db(), model_.handle()); }));
}

TEST_F(Registration, aFailureWithoutATextPrintsNoOlderOne) {
  void* symbol = nullptr;
  lib().c__ztbfindsymbol(db(), "nowhere", &symbol);
  const std::string older = db().lastError();
  ASSERT_NE("", older);
  model_.reset();
  model_.addLabel("with\ta control char");
  int result = 1;
  EXPECT_EQ("ztbInitFromDict\n---- Entering InitFromDict ----\n",
            printed([&] { result = lib().c__ztbinitfromdict(db(), model_.handle()); }));
  EXPECT_EQ(0, result);
  EXPECT_EQ(older, db().lastError());
}

TEST_F(Registration, failuresOfPreparationAreNotPrinted) {
  registerModel();
  model_.answer("rgyReadConfigVUC", 0, 1);
  EXPECT_EQ("ztbInitUpdate\n", printed([&] { lib().c__ztbinitupdate(db(), nullptr); }));
}

}  // namespace
}  // namespace ztbtest
