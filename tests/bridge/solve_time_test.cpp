// The time of a solve, in seconds of the processor clock, which counts a million a second here.
#include <ctime>

#include "tests/bridge/bridge_fixture.h"
#include "tests/bridge/scripted_clock.h"

namespace ztbtest {
namespace {

static_assert(CLOCKS_PER_SEC == 1000000);

class SolveTime : public BridgeTest {
 protected:
  SolveTime() { prepare(); }

  int solveTimed(const char* solver) { return lib().c__ztbcallsolvertimed(db(), solver, &seconds); }

  double seconds = -1;
};

TEST_F(SolveTime, ofALiveSolver) {
  setClock({1000000, 3500000});
  EXPECT_SUCCESS(db(), solveTimed("dual"));
  EXPECT_EQ(2.5, seconds);
  EXPECT_EQ(2, clockReadings());
}

TEST_F(SolveTime, ofAFreshRun) {
  setClock({7, 250007});
  EXPECT_SUCCESS(db(), solveTimed("barrier"));
  EXPECT_EQ(0.25, seconds);
  EXPECT_EQ(2, clockReadings());
}

TEST_F(SolveTime, ofAFallbackIsThatOfTheFreshRun) {
  EXPECT_EQ(1, solve("dual"));
  model_.answer("rgyAlgModifyProblem", 0, 1);
  setClock({0, 4000000, 9000000});
  EXPECT_SUCCESS(db(), solveTimed("dual"));
  EXPECT_EQ(4.0, seconds);
  EXPECT_EQ(2, clockReadings());
}

TEST_F(SolveTime, isStoredWhenTheSolverFails) {
  model_.answer("rgyAlgCallSolver", 0, 1);
  setClock({0, 500000});
  EXPECT_EQ(0, solveTimed("dual"));
  EXPECT_EQ(0.5, seconds);
  model_.answer("snvCallSolver", 0, 1);
  setClock({0, 750000});
  EXPECT_EQ(0, solveTimed("barrier"));
  EXPECT_EQ(0.75, seconds);
}

TEST_F(SolveTime, isLeftAloneWhenNoSolverRan) {
  setClock({});
  EXPECT_EQ(0, solveTimed("simplex"));
  model_.answer("rgyAlgCreate", 0, 0);
  EXPECT_EQ(0, solveTimed("dual"));
  model_.answer("rgyAlgReadyAPI", 0, 1);
  EXPECT_EQ(0, solveTimed("primal"));
  EXPECT_EQ(-1, seconds);
  EXPECT_EQ(0, clockReadings());
}

TEST_F(SolveTime, isNotMeasuredWithoutAPlaceForIt) {
  setClock({});
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ(1, solve("barrier"));
  EXPECT_SUCCESS(db(), lib().c__ztbcallsolvertimed(db(), "dual", nullptr));
  EXPECT_EQ(0, clockReadings());
}

}  // namespace
}  // namespace ztbtest
