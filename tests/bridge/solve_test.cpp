// Which calls a solve takes: first and later ones, in place and afresh, changes of solver.
#include <algorithm>

#include "tests/bridge/solve_calls.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class Solve : public BridgeTest {
 protected:
  Solve() { prepare(); }
};

TEST_F(Solve, makesALiveSolverTheFirstTime) {
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + lines(R"(
rgy1 rgyAlgAllowsModifyProblem 1
env snvTerminateClear)") +
                viewCalls() + lines(R"(
rgy1 rgyAlgCreate 1 null "DIR"
rgy1 rgyAlgReadyAPI 1 alg1 model
rgy1 rgyAlgCallSolver 1 alg1 model
model pbiViewRestore view1)") +
                endCalls(),
            log());
  EXPECT_EQ("switches 0 0 0 1 1", state("switches"));
  EXPECT_EQ(0, model_.alive("view"));
}

TEST_F(Solve, takesTheLiveSolverTheNextTimes) {
  EXPECT_EQ(1, solve("dual"));
  for (const std::string view : {"view2", "view3"}) {
    log();
    EXPECT_SUCCESS(db(), solve("dual"));
    EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + Lines{"env snvTerminateClear"} +
                  viewCalls() + lines(R"(
rgy1 rgyAlgModifyProblem 1 alg1
rgy1 rgyAlgCallSolver 1 alg1 model)") +
                  Lines{"model pbiViewRestore " + view} + endCalls(),
              log());
  }
}

TEST_F(Solve, runsASolverThatCannotChangeAfreshEachTime) {
  EXPECT_SUCCESS(db(), solve("barrier"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"barrier\""} + shiftCalls() + lines(R"(
rgy1 rgyAlgAllowsModifyProblem 2
env snvTerminateClear)") +
                warmCalls("barrier") + endCalls(),
            log());
  EXPECT_SUCCESS(db(), solve("barrier"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"barrier\""} + shiftCalls() + Lines{"env snvTerminateClear"} +
                warmCalls("barrier") + endCalls(),
            log());
}

TEST_F(Solve, givesTheOldSolverUpBeforeItAsksAboutANewOne) {
  EXPECT_EQ(1, solve("dual"));
  log();
  EXPECT_SUCCESS(db(), solve("primal"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"primal\""} + shiftCalls() + lines(R"(
rgy1 rgyAlgFree 1 alg1
rgy1 rgyAlgAllowsModifyProblem 3
env snvTerminateClear)") +
                viewCalls() + lines(R"(
rgy1 rgyAlgCreate 3 null "DIR"
rgy1 rgyAlgReadyAPI 3 alg2 model
rgy1 rgyAlgCallSolver 3 alg2 model
model pbiViewRestore view2)") +
                endCalls(),
            log());
  EXPECT_EQ(1, model_.alive("alg"));
}

TEST_F(Solve, changesFromInPlaceToAfreshAndBack) {
  EXPECT_EQ(1, solve("dual"));
  log();
  EXPECT_EQ(1, solve("barrier"));
  EXPECT_EQ(lines(R"(
rgy1 rgyAlgNumber "barrier"
rgy1 rgyAlgFree 1 alg1
rgy1 rgyAlgAllowsModifyProblem 2)"),
            log("rgy"));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(lines(R"(
rgy1 rgyAlgNumber "dual"
rgy1 rgyAlgAllowsModifyProblem 1
rgy1 rgyAlgCreate 1 null "DIR"
rgy1 rgyAlgReadyAPI 1 alg2 model
rgy1 rgyAlgCallSolver 1 alg2 model)"),
            log("rgy"));
}

TEST_F(Solve, fallsBackToAFreshRunWhenTheChangeIsRefusedAndStaysThere) {
  EXPECT_EQ(1, solve("dual"));
  log();
  model_.answer("rgyAlgModifyProblem", 0, -1);
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + Lines{"env snvTerminateClear"} +
                viewCalls() + lines(R"(
rgy1 rgyAlgModifyProblem 1 alg1
env snvLog "*** Hotstart failed! Falling back to warm start..."
rgy1 rgyAlgFree 1 alg1
model pbiViewRestore view2)") +
                warmCalls("dual") + endCalls(),
            log());
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + Lines{"env snvTerminateClear"} +
                warmCalls("dual") + endCalls(),
            log());
}

TEST_F(Solve, asksTheCatalogueAnewAfterAFallbackWhenTheSolverChanges) {
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgModifyProblem", 0, 1);
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(1, solve("barrier"));
  log();
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgCreate 1 null \"DIR\""}), log("rgyAlgCreate"));
}

TEST_F(Solve, asksForTheTypeOfTheModelUpToThreeTimes) {
  const struct {
    int type;
    std::size_t questions;
    bool linear;
  } cases[] = {{1, 1, true},  {2, 2, true},  {3, 3, true},
               {0, 3, false}, {4, 3, false}, {-1, 3, false}};
  for (const auto& one : cases) {
    SCOPED_TRACE(one.type);
    model_.type(one.type);
    EXPECT_SUCCESS(db(), solve("barrier"));
    const Lines calls = log("pbi");
    const auto count = [&](const std::string& line) {
      return static_cast<std::size_t>(std::ranges::count(calls, line));
    };
    EXPECT_EQ(one.questions, count("model pbiModelType"));
    EXPECT_EQ(1U, count("model pbiEvalGradNLUpdate [0 0 0] 1 0"));
    EXPECT_EQ(one.linear ? 1U : 0U, count("model pbiSetAltRHSOne 2 7.5"));
    EXPECT_EQ(one.linear ? 1U : 0U, count("model pbiAltRHSSet 1"));
    EXPECT_EQ(one.linear ? 1U : 0U, count("model pbiForceLinearSet 1"));
    EXPECT_EQ(1U, count("model pbiAltRHSSet 0"));
    EXPECT_EQ(1U, count("model pbiForceLinearSet 0"));
  }
}

TEST_F(Solve, countsRowsAsAtPreparation) {
  model_.answer("pbiM", 0, 2);
  renew();
  prepare();
  EXPECT_EQ(1, solve("barrier"));
  EXPECT_EQ(lines(R"(
model pbiModelType
model pbiEvalGradNLUpdate [0 0] 1 0
model pbiGetRhsOne 0
model pbiSetAltRHSOne 0 -0.5
model pbiGetRhsOne 1
model pbiSetAltRHSOne 1 8
model pbiAltRHSSet 1
model pbiForceLinearSet 1
model pbiAltRHSSet 0
model pbiForceLinearSet 0)"),
            log("pbi"));
}

TEST_F(Solve, takesShortStrings) {
  EXPECT_SUCCESS(db(), lib().d__ztbcallsolver(db(), ShortString("dual")));
  EXPECT_EQ((Lines{"rgy1 rgyAlgNumber \"dual\""}), log("rgyAlgNumber"));
  double seconds = -1;
  EXPECT_SUCCESS(db(), lib().d__ztbcallsolvertimed(db(), ShortString("barrier"), &seconds));
  EXPECT_EQ(warmCalls("barrier"), log("snvCallSolver"));
}

TEST_F(Solve, keepsTheRecordsOfSymbolsThatAreNotInTheModel) {
  data("p", {{"flour", 2}});
  db().put(db().addVariable("v"), {"milk"}, 3);
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((std::vector<Row>{{{"flour"}, 2}}), db().rows(db().find("p")));
  EXPECT_EQ((std::vector<Row>{{{"milk"}, 3}}), db().rows(db().find("v")));
}

TEST_F(Solve, dropsRecordsThatACallerAddedToAModelSymbol) {
  void* const buy = db().find("buy");
  db().put(buy, {"bread"}, 9);
  EXPECT_EQ(3, db().recordCount(buy));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(2, db().recordCount(buy));
}

TEST_F(Solve, passesByDictionarySymbolsThatTheDatabaseLacks) {
  renew();
  void* const total = db().addVariable("total", 0);
  db().put(total, {}, 3);
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), nullptr));
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ((Lines{": -inf 1 -inf inf 1"}), records("total"));
}

TEST_F(Solve, passesByASymbolWithoutAStore) {
  void* buy = db().find("buy");
  lib().c__ztbselectrecordstorage(db(), &buy, 9);
  EXPECT_SUCCESS(db(), solve("dual"));
}

}  // namespace
}  // namespace ztbtest
