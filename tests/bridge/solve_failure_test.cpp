// Solves that fail: the text, where the calls end, and what the next solve meets.
#include "tests/bridge/solve_calls.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

// With both switches of a linear model on, before any solver has run.
constexpr const char* switchesOn = "switches 0 1 1 13 13";

class SolveFailure : public BridgeTest {
 protected:
  SolveFailure() { prepare(); }

  // Whether the symbol's records are read from the model when it is touched.
  bool readsAgain(const char* symbol) {
    log();
    db().recordCount(db().find(symbol));
    return !log().empty();
  }
};

TEST_F(SolveFailure, anUnknownNameChangesNothing) {
  for (const char* name : {"simplex", "", "%s%n"}) {
    log();
    EXPECT_FAILURE(db(), std::string("Invalid solver name: ") + name, solve(name));
    EXPECT_EQ((Lines{std::string("rgy1 rgyAlgNumber \"") + name + "\""}), log());
  }
  model_.answer("rgyAlgNumber", 0, -2);
  EXPECT_FAILURE(db(), "Invalid solver name: dual", solve("dual"));
  EXPECT_EQ("switches 0 0 0 0 0", state("switches"));
}

TEST_F(SolveFailure, anUnknownNameKeepsTheLiveSolver) {
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(0, solve("simplex"));
  log();
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgModifyProblem 1 alg1"}), log("rgyAlgModifyProblem"));
}

TEST_F(SolveFailure, aDatabaseThatWasNotPreparedGivesThePeerNoCatalogue) {
  renew();
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  log();
  EXPECT_FAILURE(db(), "Invalid solver name: dual", solve("dual"));
  EXPECT_EQ((Lines{"null rgyAlgNumber \"dual\""}), log());
}

TEST_F(SolveFailure, aSolverThatCannotBeMadeIsToldInThePeersWords) {
  db().recordCount(db().find("buy"));
  model_.message("no license, 100%d of them in use");
  model_.answer("rgyAlgCreate", 0, 0);
  log();
  EXPECT_FAILURE(db(), "no license, 100%d of them in use", solve("dual"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + lines(R"(
rgy1 rgyAlgAllowsModifyProblem 1
env snvTerminateClear)") +
                viewCalls() + Lines{"rgy1 rgyAlgCreate 1 null \"DIR\""},
            log());
  EXPECT_EQ(switchesOn, state("switches"));
  EXPECT_EQ(1, model_.alive("view"));
  EXPECT_FALSE(readsAgain("buy"));
}

TEST_F(SolveFailure, afterASolverThatCouldNotBeMadeTheNextSolveFallsBack) {
  model_.answer("rgyAlgCreate", 0, 0);
  EXPECT_EQ(0, solve("dual"));
  log();
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines{"rgy1 rgyAlgNumber \"dual\""} + shiftCalls() + Lines{"env snvTerminateClear"} +
                viewCalls() + lines(R"(
rgy1 rgyAlgModifyProblem 1 null
env snvLog "*** Hotstart failed! Falling back to warm start..."
rgy1 rgyAlgFree 1 null
model pbiViewRestore view2)") +
                warmCalls("dual") + endCalls(),
            log());
}

TEST_F(SolveFailure, aSecondSolverThatCannotBeMadeDoesNotBringBackTheFirst) {
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgCreate", 0, 0);
  EXPECT_EQ(0, solve("primal"));
  log();
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(lines(R"(
rgy1 rgyAlgNumber "dual"
rgy1 rgyAlgFree 3 null
rgy1 rgyAlgAllowsModifyProblem 1
rgy1 rgyAlgCreate 1 null "DIR"
rgy1 rgyAlgReadyAPI 1 alg2 model
rgy1 rgyAlgCallSolver 1 alg2 model)"),
            log("rgy"));
}

TEST_F(SolveFailure, aSolverThatIsNotReadyIsKept) {
  model_.answer("rgyAlgReadyAPI", 0, 1);
  EXPECT_FAILURE(db(), "readyapi failed", solve("dual"));
  EXPECT_EQ("rgy1 rgyAlgReadyAPI 1 alg1 model", log().back());
  EXPECT_EQ(switchesOn, state("switches"));
  EXPECT_EQ(1, model_.alive("view"));
  EXPECT_EQ(1, model_.alive("alg"));
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(lines(R"(
rgy1 rgyAlgNumber "dual"
rgy1 rgyAlgModifyProblem 1 alg1
rgy1 rgyAlgCallSolver 1 alg1 model)"),
            log("rgy"));
}

TEST_F(SolveFailure, aLiveSolverThatFailsIsKept) {
  db().recordCount(db().find("buy"));
  for (const int solvesBefore : {0, 1}) {
    model_.answer("rgyAlgCallSolver", 0, -5);
    log();
    EXPECT_FAILURE(db(), "callsolver failed", solve("dual"));
    EXPECT_EQ("rgy1 rgyAlgCallSolver 1 alg1 model", log().back());
    EXPECT_EQ(switchesOn, state("switches"));
    EXPECT_EQ(solvesBefore + 1, model_.alive("view"));
    EXPECT_EQ(1, model_.alive("alg"));
    EXPECT_FALSE(readsAgain("buy"));
  }
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ("switches 0 0 0 1 1", state("switches"));
  EXPECT_EQ((Lines{"rgy1 rgyAlgModifyProblem 1 alg1"}), log("rgyAlgModifyProblem"));
  EXPECT_TRUE(readsAgain("buy"));
}

TEST_F(SolveFailure, aFreshRunThatFailsIsToldInThePeersWords) {
  db().recordCount(db().find("buy"));
  const std::string longest(255, 'x');
  for (const std::string& text : {std::string("no memory: %s"), longest}) {
    model_.message(text.c_str());
    model_.answer("snvCallSolver", 0, 7);
    log();
    EXPECT_FAILURE(db(), text, solve("barrier"));
    EXPECT_EQ(warmCalls("barrier").front(), log().back());
    EXPECT_EQ("switches 0 1 1 0 0", state("switches"));
    EXPECT_FALSE(readsAgain("buy"));
  }
  EXPECT_SUCCESS(db(), solve("barrier"));
  EXPECT_EQ("switches 0 0 0 1 1", state("switches"));
  EXPECT_TRUE(readsAgain("buy"));
}

TEST_F(SolveFailure, aFallbackThatFailsHasRestoredTheViewAndGivenUpTheSolver) {
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgModifyProblem", 0, 1);
  model_.answer("snvCallSolver", 0, 1);
  model_.message("out of ideas");
  EXPECT_FAILURE(db(), "out of ideas", solve("dual"));
  EXPECT_EQ(0, model_.alive("view"));
  EXPECT_EQ(0, model_.alive("alg"));
  log();
  EXPECT_SUCCESS(db(), solve("dual"));
  EXPECT_EQ(Lines(), log("snvLog"));
}

TEST_F(SolveFailure, theNextSolveShiftsTheOwnRightHandSideAgain) {
  model_.answer("rgyAlgCallSolver", 0, 1);
  EXPECT_EQ(0, solve("dual"));
  EXPECT_EQ("row 2 11 0.2 9 7.5 7 8", state("row 2"));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ("row 2 7.5 1 9 7.5 7 8", state("row 2"));
}

}  // namespace
}  // namespace ztbtest
