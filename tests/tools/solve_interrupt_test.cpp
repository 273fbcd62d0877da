// Signals during a solve: it ends, and what it found is told; and what a terminal is told
// meanwhile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

#include "tests/tools/background_program.h"
#include "tests/tools/knapsacks.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::BackgroundProgram;
using tooltest::ProgramTest;

std::string content(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// Whether the process has a handler for the signal.
bool handles(pid_t process, int signal) {
  const std::string status = content("/proc/" + std::to_string(process) + "/status");
  const std::size_t at = status.find("SigCgt:\t");
  if (at == std::string::npos) return false;
  const unsigned long long mask = std::stoull(status.substr(at + 8, 16), nullptr, 16);
  return (mask >> (signal - 1) & 1U) != 0;
}

// Clock ticks of the processor that it has used.
long ticks(pid_t process) {
  const std::string stat = content("/proc/" + std::to_string(process) + "/stat");
  std::istringstream fields(stat.substr(std::min(stat.size(), stat.find(')') + 2)));
  std::string field;
  for (int number = 3; number < 14; ++number) fields >> field;
  long used = 0;
  fields >> used;
  return used;
}

// Fifteen of thirty things, so that four sums are near to numbers at once: many choices are about
// equally good.
std::string closeSums() {
  constexpr int kThings = 30;
  const auto name = [](int thing) { return " x" + std::to_string(thing); };
  std::string linear;
  std::string squares;
  std::string names;
  std::string count;
  for (int i = 0; i < kThings; ++i) {
    double cost = 0;
    for (int j = 0; j < kThings; ++j) {
      double entry = 0;
      for (int sum = 0; sum < 4; ++sum) {
        const auto weight = [&](int k) {
          return 1 + std::fmod((k + 1) * std::sqrt(2.0 + 3 * sum), 1.0);
        };
        entry += weight(i) * weight(j);
        if (j == 0) cost += 45 * weight(i);
      }
      const std::string coefficient = " + " + std::to_string((i == j ? 2 : 4) * entry) + name(i);
      if (i == j) squares += coefficient + " ^ 2\n";
      if (i < j) squares += coefficient + " *" + name(j) + "\n";
    }
    linear += " - " + std::to_string(cost) + name(i) + "\n";
    names += name(i) + "\n";
    count += " +" + name(i) + "\n";
  }
  return "Minimize\n away:" + linear + " + [" + squares + " ] / 2\nSubject To\n half:" + count +
         " = 15\nBinaries\n" + names + "End\n";
}

class SolveInterrupt : public ProgramTest {
 protected:
  // What a solve of hard.lp prints that the signal ends.
  std::string interrupted(const std::string& solver, int signal) {
    write("output", "");
    BackgroundProgram run(path("."), {"solve", "hard.lp", "--solver", solver}, "errors", "output");
    const pid_t process = run.process();
    // Far more than reading the file takes.
    constexpr long kTicks = 50;
    while (!handles(process, signal) || ticks(process) < kTicks) {
      if (!run.goesOn()) return content(path("errors")) + content(path("output"));
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ::kill(process, signal);
    EXPECT_EQ(run.wait(), 0) << content(path("errors"));
    return content(path("output"));
  }
};

class SolveInterruptTest : public SolveInterrupt,
                           public testing::WithParamInterface<std::tuple<const char*, int>> {};

TEST_P(SolveInterruptTest, endsTheSolveAndTellsTheBestPointAndItsBound) {
  const auto [solver, signal] = GetParam();
  write("hard.lp", tooltest::knapsacks());
  const std::string output = interrupted(solver, signal);
  EXPECT_THAT(output, StartsWith("objective   "));
  EXPECT_THAT(output, HasSubstr("\nstatus      feasible, terminated\n"));
  EXPECT_THAT(output, HasSubstr("\nbound       "));
  EXPECT_THAT(output, HasSubstr("\ngap         "));
  const auto number = [&](const std::string& name) {
    return std::stod(output.substr(output.find(name) + name.size()));
  };
  // A maximum: the bound is above, and less than all things together.
  EXPECT_GT(number("bound       "), number("objective   "));
  EXPECT_LT(number("bound       "), 1.1 * number("objective   "));
}

INSTANTIATE_TEST_SUITE_P(Signals, SolveInterruptTest,
                         testing::Combine(testing::Values("cbc", "glpk"),
                                          testing::Values(SIGINT, SIGTERM)),
                         [](const auto& tested) {
                           return std::string(std::get<0>(tested.param)) +
                                  (std::get<1>(tested.param) == SIGINT ? "_SIGINT" : "_SIGTERM");
                         });

// A minimum, where the four squares are each no less than -22.5^2. SIGINT is the one that Bonmin
// would take for itself.
TEST_F(SolveInterrupt, EndsASearchByBonmin) {
  write("hard.lp", closeSums());
  for (const int signal : {SIGINT, SIGTERM}) {
    const std::string output = interrupted("bonmin", signal);
    EXPECT_THAT(output, StartsWith("objective   -"));
    EXPECT_THAT(output, HasSubstr("\nstatus      feasible, terminated\n"));
    EXPECT_THAT(output, HasSubstr("\nsolver      bonmin\n"));
  }
}

TEST_F(ProgramTest, ATerminalIsToldHowFarASolveIs) {
  write("hard.lp", tooltest::knapsacks());
  tooltest::Terminal terminal;
  const BackgroundProgram run(path("."), {"solve", "hard.lp", "--solver", "cbc"}, terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(
      terminal.waitFor("\\r[^\\r]*solving with cbc: best [0-9.]+, bound [0-9.]+, gap "
                       "[0-9.e-]+ %, [0-9]+ s"))
      << terminal.text().substr(0, 400);
}

// A line that went on in the next one, where the terminal is narrow, would not be wiped.
TEST_F(ProgramTest, ATerminalCutsTheLineThatTellsHowFarASolveIs) {
  write("hard.lp", tooltest::knapsacks());
  tooltest::Terminal terminal;
  const BackgroundProgram run(path("."), {"solve", "hard.lp", "--solver", "cbc"}, terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(
      terminal.waitFor("\\r\x1b\\[K\x1b\\[\\?7lsolving with cbc: best [^\x1b\\r]*\x1b\\[\\?7h"))
      << terminal.text().substr(0, 400);
}

// The line that tells how far it is makes room for what is printed while the run goes on.
TEST_F(ProgramTest, OnATerminalResultsBeginWhereProgressWas) {
  write("hard.lp", tooltest::knapsacks());
  tooltest::Terminal terminal;
  BackgroundProgram run(path("."), {"solve", "hard.lp", "--solver", "cbc"}, terminal.path(),
                        terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(terminal.waitFor("solving with cbc: best "));
  ::kill(run.process(), SIGINT);
  EXPECT_TRUE(terminal.waitFor("\nstatus "));
  EXPECT_THAT(terminal.text(), HasSubstr("\r\x1b[Kobjective   "));
  EXPECT_EQ(run.wait(), 0);
}

}  // namespace
