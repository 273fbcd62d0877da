// What a database gives back when it ends, and in which order.
#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

class Freeing : public BridgeTest {};

TEST_F(Freeing, aNewDatabaseCallsNoModelPeer) {
  EXPECT_EQ(Lines(), freeDatabase());
}

TEST_F(Freeing, ofARegisteredModelCallsNothing) {
  EXPECT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle()));
  EXPECT_EQ(Lines(), freeDatabase());
}

TEST_F(Freeing, endsTheCatalogue) {
  prepare();
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, endsALiveSolverBeforeItsCatalogue) {
  prepare();
  EXPECT_EQ(1, solve("primal"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgFree 3 alg1", "rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, endsTheSolverThatIsLiveAfterAChange) {
  prepare();
  EXPECT_EQ(1, solve("primal"));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgFree 1 alg2", "rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, hasNoSolverToEndAfterAFreshRun) {
  prepare();
  EXPECT_EQ(1, solve("primal"));
  EXPECT_EQ(1, solve("barrier"));
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, hasNoSolverToEndAfterAFallback) {
  prepare();
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgModifyProblem", 0, 1);
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, hasNoSolverToEndWhenItCouldNotBeMade) {
  prepare();
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgCreate", 0, 0);
  EXPECT_EQ(0, solve("primal"));
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, doesNotEndASolverTwiceWhenThePeerLeavesItsHandle) {
  prepare();
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgFree", 0, 0);
  model_.answer("rgyAlgCreate", 0, 0);
  log();
  EXPECT_EQ(0, solve("primal"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgCreate 3 null \"DIR\""}), log("rgyAlgCreate"));
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
}

TEST_F(Freeing, endsASolverThatWasNotReadyOrFailed) {
  for (const char* operation : {"rgyAlgReadyAPI", "rgyAlgCallSolver"}) {
    model_.reset();
    makeDiet();
    renew();
    prepare();
    model_.answer(operation, 0, 1);
    EXPECT_EQ(0, solve("dual"));
    EXPECT_EQ((Lines{"rgy1 rgyAlgFree 1 alg1", "rgy1 rgyXFree"}), freeDatabase());
  }
}

TEST_F(Freeing, doesNotCloseAFileThatTheDatabaseNoLongerReads) {
  rxf_.file("empty.rxf");
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "empty.rxf"));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db(), 0));
  ASSERT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle()));
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), nullptr));
  rxf_.clearLog();
  EXPECT_EQ((Lines{"rgy1 rgyXFree"}), freeDatabase());
  EXPECT_EQ(std::string::npos, std::string(rxf_.log()).find("rxfClose"));
}

}  // namespace
}  // namespace ztbtest
