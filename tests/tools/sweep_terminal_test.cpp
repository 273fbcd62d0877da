// ztb sweep: what it tells at a terminal.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>

#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"
#include "tests/tools/sweep_fixture.h"
#include "tests/tools/terminal.h"

namespace {

using tooltest::BackgroundProgram;
using tooltest::Terminal;
using SweepTerminalTest = tooltest::EndlessSweepTest;
using SweepChartTest = tooltest::SweepTest;

TEST_F(SweepTerminalTest, CountsTheScenariosThatAllWorkersHaveSolved) {
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

// Counts of the objectives that are worked out by hand, in the bins that it shows.
TEST_F(SweepChartTest, HasADistributionOnATerminal) {
  constexpr int scenarios = 40;
  makeScenarios(scenarios);
  Terminal terminal;
  BackgroundProgram program(path("."), sweep(), "errors", terminal.path());
  terminal.leaveToPrograms();
  EXPECT_FALSE(terminal.waitFor("what no sweep tells"));
  EXPECT_EQ(program.wait(), 0);
  const std::regex bin("([-+.e0-9]+) to (below )?([-+.e0-9]+) .* ([0-9]+)\\r?");
  std::istringstream lines(terminal.text());
  int seen = 0;
  for (std::string line; std::getline(lines, line);) {
    std::smatch parts;
    if (!std::regex_match(line, parts, bin)) continue;
    const double low = std::stod(parts[1]);
    const double high = std::stod(parts[3]);
    int within = 0;
    for (int number = 1; number <= scenarios; ++number) {
      const double objective = tooltest::ScenarioValues::of(number).objective();
      within += objective >= low && objective < high ? 1 : 0;
    }
    EXPECT_EQ(std::stoi(parts[4]), within) << line;
    seen += within;
  }
  EXPECT_EQ(seen, scenarios) << terminal.text();
}

}  // namespace
