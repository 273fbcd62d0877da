// Signals during a solve: it ends, and what it found is told; and what a terminal is told
// meanwhile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

#include "tests/tools/background_program.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::BackgroundProgram;
using tooltest::ProgramTest;

// Things of much the same worth a size in five knapsacks: a point is found at once, and the proof
// that one is best takes longer than anybody waits.
std::string knapsacks() {
  constexpr int kThings = 70;
  unsigned state = 12345;
  const auto next = [&] {
    state = state * 1664525U + 1013904223U;
    return 5 + static_cast<int>(state >> 8) % 995;
  };
  std::array<std::string, 5> rows;
  std::array<int, 5> sizes{};
  std::string worth;
  std::string names;
  for (int thing = 0; thing < kThings; ++thing) {
    const std::string name = " x" + std::to_string(thing);
    int sum = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const int size = next();
      rows.at(row) += " + " + std::to_string(size) + name + "\n";
      sizes.at(row) += size;
      sum += size;
    }
    worth += " + " + std::to_string(sum / 5 + next() % 100) + name + "\n";
    names += name + "\n";
  }
  std::string text = "Maximize\n worth: " + worth + "Subject To\n";
  for (std::size_t row = 0; row < rows.size(); ++row) {
    text += " r" + std::to_string(row) + ": " + rows.at(row) +
            " <= " + std::to_string(sizes.at(row) / 2) + "\n";
  }
  return text + "Binaries\n" + names + "End\n";
}

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

class SolveInterruptTest : public ProgramTest,
                           public testing::WithParamInterface<std::tuple<const char*, int>> {};

TEST_P(SolveInterruptTest, endsTheSolveAndTellsTheBestPointAndItsBound) {
  const auto [solver, signal] = GetParam();
  write("hard.lp", knapsacks());
  write("output", "");
  BackgroundProgram run(path(""), {"solve", "hard.lp", "--solver", solver}, "errors", "output");
  const pid_t process = run.process();
  // Far more than reading the file takes.
  constexpr long kTicks = 50;
  while (!handles(process, signal) || ticks(process) < kTicks) {
    ASSERT_TRUE(run.goesOn()) << content(path("errors")) << content(path("output"));
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ::kill(process, signal);
  EXPECT_EQ(run.wait(), 0) << content(path("errors"));
  const std::string output = content(path("output"));
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

TEST_F(ProgramTest, aLimitOfTimeTellsTheBestPointAndItsBound) {
  write("hard.lp", knapsacks());
  const std::string output = ztbFine({"solve", "hard.lp", "--option", "TimeLimit=2"});
  EXPECT_THAT(output, HasSubstr("\nstatus      feasible, time limit\n"));
  EXPECT_THAT(output, HasSubstr("\nbound       "));
  EXPECT_THAT(output, HasSubstr("\nprocessor   "));
}

TEST_F(ProgramTest, ATerminalIsToldHowFarASolveIs) {
  write("hard.lp", knapsacks());
  tooltest::Terminal terminal;
  const BackgroundProgram run(path("."), {"solve", "hard.lp", "--solver", "cbc"}, terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(
      terminal.waitFor("\\r[^\\r]*solving with cbc: best [0-9.]+, bound [0-9.]+, gap "
                       "[0-9.e-]+ %, [0-9]+ s"))
      << terminal.text().substr(0, 400);
}

}  // namespace
