// ztb sweep: signals to it and to its workers.
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/matches.h"
#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"

namespace {

using tooltest::BackgroundProgram;
using tooltest::Outcome;
using tooltest::ProcessorTimeLimit;
using SweepSignalTest = tooltest::EndlessSweepTest;

TEST_F(SweepSignalTest, AShareThatIsAskedToEndPublishesWhatItHasSolved) {
  makeScenarios(6, {3});
  const ProcessorTimeLimit limit(60);
  const std::vector<std::string> one{
      "sweep",    "m.lp",          "--scenarios", "sc.rxf", "--over",  "s",
      "--solver", "glpk",          "--part",      "1/1",    "--chunk", "6",
      "--parts",  "out.rxf.parts", "--stall",     "50"};
  for (const int signal : {SIGTERM, SIGINT}) {
    SCOPED_TRACE(signal);
    std::filesystem::remove_all(path("out.rxf.parts"));
    std::filesystem::create_directory(path("out.rxf.parts"));
    BackgroundProgram run(path("."), one, "errors");
    // The endless scenario is the one that is ended, whenever that is.
    ASSERT_TRUE(run.waitForFile(".basis"));
    ASSERT_NE(run.waitForChildBut(0), 0);
    ::kill(run.process(), signal);
    EXPECT_EQ(run.wait(), 1);
    EXPECT_THAT(read("errors"), ztbtest::Matches("ztb: was asked to end; [4-6] of 6 scenarios are "
                                                 "not solved yet, what is solved stands in "
                                                 "out.rxf.parts\n"));
  }
}

TEST_F(SweepSignalTest, AScenarioThatTakesTwoWorkersWithItHasFailedAndTheOthersAreSolved) {
  makeScenarios(9, {4});
  // The workers that come to the endless scenario are ended by the system.
  const ProcessorTimeLimit limit(4);
  const Outcome outcome = ztb(sweep());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "ztb: scenario sc4: its worker process was ended by signal 24; it is solved again\n"
            "ztb: scenario sc4: failed: its worker process was ended by signal 24\n");
  EXPECT_THAT(outcome.output, testing::StartsWith("9 scenarios: 8 optimal, 1 failed in "));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  for (int number = 1; number <= 9; ++number) {
    const std::string label = "sc" + std::to_string(number);
    EXPECT_EQ(out.symbol("sweep_objective").find(label).has_value(), number != 4) << label;
  }
}

}  // namespace
