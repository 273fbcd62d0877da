// ztb sweep: what it tells at a terminal while it goes on.
#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/terminal.h"

namespace {

using tooltest::BackgroundProgram;
using tooltest::Terminal;
using SweepProgressTest = tooltest::EndlessSweepTest;

TEST_F(SweepProgressTest, CountsTheScenariosThatAllWorkersHaveSolved) {
  makeScenarios(5, {5});
  Terminal terminal;
  const tooltest::ProcessorTimeLimit limit(20);
  BackgroundProgram program(path("."), sweep({"--jobs", "2"}), terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(
      terminal.waitFor("\\r[^\\r]*4 of 5 scenarios solved, [0-9.]+ a second, [0-9]+ s left"))
      << terminal.text().substr(0, 400);
  // The last one goes on and on, and with it the rate falls.
  EXPECT_TRUE(terminal.waitFor("4 of 5 scenarios solved, [0-6]\\.[0-9] a second"))
      << terminal.text().substr(0, 400);
}

}  // namespace
