// Preparing a database for changing and solving its model.
#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

class InitUpdate : public BridgeTest {
 protected:
  InitUpdate() {
    EXPECT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle()));
    log();
  }

  int initUpdate() { return lib().c__ztbinitupdate(db(), model_.handle()); }
};

TEST_F(InitUpdate, readsCatalogueAndBaseValuesAndPinsParameters) {
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ(lines(R"(
rgy1 rgyXCreate
model pbiEnvironment
env snvGetStrOpt "NameSysDir"
rgy1 rgyReadConfigVUC "/velt/vltcmpNT.txt" "/velt/"
model pbiN
model pbiM
model pbiGetVarL
model pbiGetVarM
model pbiGetEquL
model pbiGetEquM
dict nmtNLSyms
dict nmtSymType 1
dict nmtSymType 2
dict nmtSymType 3
dict nmtSymName 3 64
dict nmtSymType 4
dict nmtSymName 4 64
dict nmtFindFirstRowCol 4 [0]
model pbiSetAltVarLowerOne 2 0.25
model pbiSetAltVarUpperOne 2 0.25
dict nmtFindNextRowCol search1
model pbiSetAltVarLowerOne 3 0.75
model pbiSetAltVarUpperOne 3 0.75
dict nmtFindNextRowCol search1
dict nmtFindClose search1
dict nmtSymType 5
dict nmtSymName 5 64)"),
            log());
  EXPECT_EQ(0, model_.alive("search"));
  EXPECT_EQ(0, db().info(ZTB_INFO_FILE_BACKED));
}

TEST_F(InitUpdate, pinsByTheEndOfLongerNamesOnly) {
  model_.reset();
  for (const char* name : {"_var", "a_var", "x_VAR", "_vary", "eq_var"}) {
    symbol(name, 0, name[0] == 'e' ? 6 : 5);
    if (name[0] == 'e') {
      row({}, {0, 0, 0, 1, 0});
    } else {
      column({}, {1, 0, 0, 5, 1});
    }
  }
  renew();
  prepare();
  EXPECT_EQ("column 0 1 0 0 5 0 5 0 0", state("column 0"));
  EXPECT_EQ("column 1 1 0 0 5 1 1 0 0", state("column 1"));
  EXPECT_EQ("column 2 1 0 0 5 0 5 0 0", state("column 2"));
  EXPECT_EQ("column 3 1 0 0 5 0 5 0 0", state("column 3"));
}

TEST_F(InitUpdate, closesTheWalkOfAParameterWithoutColumns) {
  model_.reset();
  symbol("a_var", 2, 5);
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle()));
  log();
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ((Lines{"dict nmtFindFirstRowCol 1 [0 0]", "dict nmtFindClose search1"}),
            log("nmtFind"));
}

TEST_F(InitUpdate, appendsTheFileNameToTheEnvironmentsDirectoryAsItStands) {
  model_.environmentDirectory("C:/velt");
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ((Lines{"rgy1 rgyReadConfigVUC \"C:/veltvltcmpNT.txt\" \"C:/velt\""}),
            log("rgyReadConfigVUC"));
}

TEST_F(InitUpdate, isDoneOnce) {
  EXPECT_EQ(1, initUpdate());
  log();
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ(Lines(), log());
}

TEST_F(InitUpdate, keepsTheFirstBaseValues) {
  EXPECT_EQ(1, initUpdate());
  void* const none = data("none", {});
  void* const nine = data("nine", {{"flour", 9}, {"milk", 9}});
  EXPECT_EQ(1, update(db().find("buy"), 4, nine, 2));
  EXPECT_EQ(1, initUpdate());
  EXPECT_EQ(1, update(db().find("buy"), 4, none, 1));
  EXPECT_EQ("column 0 5 0.5 0 inf 0 inf 1 2", state("column 0"));
  EXPECT_EQ("column 1 6 0.6 1 100 1 100 3 4", state("column 1"));
}

TEST_F(InitUpdate, doesNotReadItsModelArgument) {
  EXPECT_SUCCESS(db(), lib().c__ztbinitupdate(db(), nullptr));
  EXPECT_EQ((Lines{"model pbiEnvironment"}), log("pbiEnvironment"));
}

TEST_F(InitUpdate, refusesADatabaseWithoutAModelAndLeavesIt) {
  renew();
  EXPECT_FAILURE(db(), "No model registered, call ztbRegisterPBI or ztbInitFromDict first",
                 initUpdate());
  EXPECT_EQ(Lines(), log());
  EXPECT_SUCCESS(db(), lib().c__ztbinitfromdict(db(), model_.handle()));
}

TEST_F(InitUpdate, refusesADatabaseThatReadsAFileAndTakesOneThatHasRead) {
  rxf_.file("data.rxf");
  rxf_.addSymbol("p", 0, 1, 0, "");
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "data.rxf"));
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  log();
  EXPECT_FAILURE(db(), "Database initialized from RXF cannot sync with model", initUpdate());
  EXPECT_EQ(Lines(), log());
  EXPECT_EQ(1, db().info(ZTB_INFO_FILE_BACKED));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db(), 1));
  EXPECT_SUCCESS(db(), initUpdate());
}

TEST_F(InitUpdate, withABadConfigurationFileFailsOnceAndThenCountsAsDone) {
  model_.answer("rgyReadConfigVUC", 0, 3);
  EXPECT_FAILURE(db(), "Could not read configuration file", initUpdate());
  EXPECT_EQ(lines(R"(
rgy1 rgyXCreate
model pbiEnvironment
env snvGetStrOpt "NameSysDir"
rgy1 rgyReadConfigVUC "/velt/vltcmpNT.txt" "/velt/")"),
            log());
  EXPECT_SUCCESS(db(), initUpdate());
  EXPECT_EQ(Lines(), log());
  EXPECT_EQ(1, model_.alive("rgy"));
  EXPECT_EQ(2, db().recordCount(db().find("buy"))) << "symbols come from the model";
}

TEST_F(InitUpdate, withABadConfigurationFileLeavesNoBaseValues) {
  model_.answer("rgyReadConfigVUC", 0, 3);
  EXPECT_EQ(0, initUpdate());
  EXPECT_EQ(1, initUpdate());
  void* const one = data("one", {{"flour", 3}, {"milk", 4}});
  void* const none = data("none", {});
  log();
  // No base value is needed.
  EXPECT_SUCCESS(db(), update(db().find("buy"), 0, one, 1));
  EXPECT_EQ("column 0 3 0.5 0 inf 3 3 1 2", state("column 0"));
  for (const int action : {0, 4, 5}) {
    EXPECT_UNEXPECTED(db(), "ztbUpdateModelSymbol", update(db().find("buy"), action, none, 1));
    EXPECT_EQ(-1, noMatch_);
  }
  EXPECT_EQ(0, model_.alive("search"));
  // Own bounds need none.
  EXPECT_SUCCESS(db(), update(db().find("buy"), 1, none, 1));
}

TEST_F(InitUpdate, withABadConfigurationFileLeavesNothingToSolve) {
  model_.answer("rgyReadConfigVUC", 0, 3);
  EXPECT_EQ(0, initUpdate());
  EXPECT_EQ(1, initUpdate());
  EXPECT_FAILURE(db(), "Invalid solver name: dual", solve("dual"));
  // A catalogue that knows the solver all the same would write more than was made room for.
  model_.answer("rgyAlgNumber", 0, 1);
  log();
  EXPECT_UNEXPECTED(db(), "ztbCallSolver", solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgNumber \"dual\"", "model pbiModelType"}), log());
}

}  // namespace
}  // namespace ztbtest
