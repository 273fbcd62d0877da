// Another model registered after a database was prepared for one: nothing of the first is used for
// the second. What the scripted peers hold at the one address that they know changes between.
#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

constexpr const char* replaced = "Another model was registered, call ztbInitUpdate first";

class ReplacedModel : public BridgeTest {
 protected:
  ReplacedModel() { prepare(); }

  int registerModel() { return lib().c__ztbregisterpbi(db(), model_.handle()); }
  int initUpdate() { return lib().c__ztbinitupdate(db(), nullptr); }
  int readCount(const char* name) {
    int count = -1;
    return lib().c__ztbsymbolinfo(db(), db().find(name), ZTB_SYMBOL_INFO_RECORD_COUNT, &count,
                                  nullptr, nullptr);
  }
  // The model gets a row and is registered again.
  void replace() {
    row({}, {0, 0, 3, 1, 0}, 1);
    EXPECT_SUCCESS(db(), registerModel());
    log();
  }

  void expectEveryUseRefused() {
    EXPECT_FAILURE(db(), replaced, solve("dual"));
    EXPECT_FAILURE(db(), replaced, solve("unknown"));
    EXPECT_FAILURE(db(), replaced, readCount("buy"));
    // The records are still to come, so a second touch fails as the first.
    EXPECT_FAILURE(db(), replaced, readCount("buy"));
    EXPECT_FAILURE(db(), replaced, lib().c__ztbwriterxf(db(), "out.rxf", 1));
  }
};

TEST_F(ReplacedModel, theSameModelAgainChangesNothing) {
  EXPECT_SUCCESS(db(), solve("dual"));
  log();
  EXPECT_SUCCESS(db(), registerModel());
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ(Lines(), log("pbiGetVarL"));
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgModifyProblem 1 alg1"}), log("rgyAlgModifyProblem"));
  EXPECT_EQ(2, db().recordCount(db().find("buy")));
}

TEST_F(ReplacedModel, refusesEveryUseUntilThePreparation) {
  void* const values = data("values", {{"flour", 3}});
  replace();
  EXPECT_FAILURE(db(), replaced, update(db().find("buy"), 0, values, 2));
  EXPECT_EQ(-1, noMatch_);
  expectEveryUseRefused();
  EXPECT_EQ(Lines(), log());
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_SUCCESS(db(), update(db().find("buy"), 0, values, 2));
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(2, db().recordCount(db().find("buy")));
}

TEST_F(ReplacedModel, isPreparedAsTheFirstOneWas) {
  replace();
  EXPECT_SUCCESS(db(), initUpdate());
  Lines calls = log("pbi");
  calls.resize(7);
  EXPECT_EQ((Lines{"model pbiEnvironment", "model pbiN", "model pbiM", "model pbiGetVarL",
                   "model pbiGetVarM", "model pbiGetEquL", "model pbiGetEquM"}),
            calls);
}

TEST_F(ReplacedModel, endsTheLiveSolverAtOnce) {
  EXPECT_SUCCESS(db(), solve("dual"));
  log();
  row({}, {0, 0, 3, 1, 0}, 1);
  EXPECT_SUCCESS(db(), registerModel());
  EXPECT_EQ((Lines{"rgy1 rgyAlgFree 1 alg1"}), log("rgy"));
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ((Lines{}), log("rgyXCreate")) << "the catalogue stays";
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgReadyAPI 1 alg2 model"}), log("rgyAlgReadyAPI"));
}

TEST_F(ReplacedModel, aNullModelIsRefusedByEveryUse) {
  EXPECT_SUCCESS(db(), solve("dual"));
  model_.answer("pbiDict", 0, 0);
  EXPECT_FAILURE(db(), "No dictionary available", lib().c__ztbregisterpbi(db(), nullptr));
  expectEveryUseRefused();
  EXPECT_FAILURE(db(), "No model registered, call ztbRegisterPBI or ztbInitFromDict first",
                 initUpdate());
  EXPECT_FAILURE(db(), "No model registered, call ztbRegisterPBI or ztbInitFromDict first",
                 update(db().find("buy"), 0, data("values", {}), 2));
}

TEST_F(ReplacedModel, aPreparationThatFailsLeavesItToBePrepared) {
  replace();
  // The solver environment's library is ready already: what can fail is the catalogue file.
  model_.answer("rgyReadConfigVUC", 0, 1);
  EXPECT_FAILURE(db(), "Could not read configuration file", initUpdate());
  EXPECT_UNEXPECTED(db(), "ztbCallSolver", solve("dual"));
}

TEST_F(ReplacedModel, anotherDimensionIsNoRecord) {
  model_.answer("nmtSymDim", 0, 2);
  void* record = nullptr;
  EXPECT_UNEXPECTED(db(), "ztbFindFirstRecord",
                    lib().c__ztbfindfirstrecord(db(), db().find("buy"), &record));
  EXPECT_NE(std::string::npos, db().lastError().find("symbol buy has 1 positions, 2 in the model"));
  EXPECT_EQ(0, model_.alive("search"));
}

}  // namespace
}  // namespace ztbtest
