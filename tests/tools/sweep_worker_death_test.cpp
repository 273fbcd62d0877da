// ztb sweep: worker processes that die, stop, or come to no end.
#include <gmock/gmock.h>

#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using tooltest::BackgroundProgram;
using tooltest::Outcome;
using tooltest::ProcessorTimeLimit;

class SweepWorkerDeathTest : public tooltest::EndlessSweepTest {
 protected:
  // All scenarios but those named have the objective 0, and those have failed.
  void expectAllButFailed(int count, const std::set<int>& failed) const {
    const ztb::Database out = ztb::Database::open(path("out.rxf"));
    EXPECT_EQ(out.symbol("sweep_status").recordCount(), count);
    for (int number = 1; number <= count; ++number) {
      const std::string label = "sc" + std::to_string(number);
      const auto objective = out.symbol("sweep_objective").find(label);
      EXPECT_EQ(objective.has_value(), !failed.contains(number)) << label;
      if (objective) {
        EXPECT_EQ(objective->level(), 0) << label;
      }
      EXPECT_EQ(out.symbol("sweep_solve_status").find(label)->level(),
                failed.contains(number) ? 13 : 1)
          << label;
    }
  }
};

TEST_F(SweepWorkerDeathTest, AWorkerThatSolvesNothingForTooLongIsEnded) {
  makeScenarios(7, {6});
  const ProcessorTimeLimit limit(60);
  const Outcome outcome = ztb(sweep({"--stall", "5", "--jobs", "2"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "ztb: scenario sc6: its worker process solved nothing for 5 s (--stall) and was ended; "
            "it is solved again\n"
            "ztb: scenario sc6: failed: its worker process solved nothing for 5 s (--stall) and "
            "was ended\n");
  expectAllButFailed(7, {6});
}

TEST_F(SweepWorkerDeathTest, AStoppedWorkerDoesNotHoldTheSweep) {
  makeScenarios(3, {3});
  const ProcessorTimeLimit limit(60);
  // The worker of the endless scenario, stopped: nothing of it would ever end.
  BackgroundProgram run(path("."), sweep({"--stall", "5"}), "errors");
  const pid_t worker = run.waitForChildBut(0);
  ASSERT_NE(worker, 0) << "the sweep ended without a worker";
  tooltest::stopChild(worker);
  EXPECT_EQ(run.wait(), 1);
  EXPECT_THAT(read("errors"), HasSubstr("solved nothing for 5 s (--stall) and was ended"));
  expectAllButFailed(3, {3});
}

TEST_F(SweepWorkerDeathTest, AnEmptyTimeIsRefused) {
  makeScenarios(1, {});
  expectFails(2, "ztb: --stall 0: at least 1 is expected\n", sweep({"--stall", "0"}));
  EXPECT_THAT(ztb(sweep({"--stall", "soon"})).errors, HasSubstr("is no whole number"));
}

}  // namespace
