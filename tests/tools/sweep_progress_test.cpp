// ztb sweep: what it tells at a terminal while it goes on.
#include <sys/resource.h>

#include <array>
#include <random>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/background_program.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

using tooltest::BackgroundProgram;
using tooltest::Terminal;

constexpr std::size_t kRows = 6;
constexpr int kColumns = 50;

// Programs started in its life may use some seconds of processor time, so that one that is waited
// for in vain ends.
class ProcessorTimeLimit {
 public:
  ProcessorTimeLimit() {
    EXPECT_EQ(getrlimit(RLIMIT_CPU, &before_), 0);
    rlimit limit = before_;
    limit.rlim_cur = 20;
    EXPECT_EQ(setrlimit(RLIMIT_CPU, &limit), 0);
  }
  ProcessorTimeLimit(const ProcessorTimeLimit&) = delete;
  ProcessorTimeLimit& operator=(const ProcessorTimeLimit&) = delete;
  ~ProcessorTimeLimit() { setrlimit(RLIMIT_CPU, &before_); }

 private:
  rlimit before_{};
};

// Items to be chosen so that the weights of each of several kinds come to exactly what is wanted:
// nothing is chosen at once where nothing is wanted, while half of all takes a search without end.
class SweepProgressTest : public tooltest::ProgramTest {
 protected:
  void SetUp() override {
    std::mt19937 random(3);
    std::string rows;
    std::string items;
    std::string bounds;
    for (int item = 1; item <= kColumns; ++item) {
      items += " item(" + std::to_string(item) + ")\n";
    }
    for (std::size_t row = 1; row <= kRows; ++row) {
      const std::string label = std::to_string(row);
      rows += " exactly(" + label + "):";
      int all = 0;
      for (int item = 1; item <= kColumns; ++item) {
        const int weight = static_cast<int>(random() % 100);
        all += weight;
        rows += " + " + std::to_string(weight) + " item(" + std::to_string(item) + ")\n";
      }
      rows += " - wanted_var(" + label + ") = 0\n";
      bounds += " wanted_var(" + label + ") = 0\n";
      half_[row - 1] = all / 2;
    }
    write("m.lp", "Minimize\n first: item(1)\nSubject To\n" + rows + "Bounds\n" + bounds +
                      "Binaries\n" + items + "End\n");
  }

  // Scenarios of which the last one takes half of all and the others take nothing.
  void makeScenarios(int count) const {
    ztb::Database database;
    ztb::Symbol s = database.addSet("s", {"*"});
    ztb::Symbol wanted = database.addParameter("wanted", {s, "*"});
    for (int number = 1; number <= count; ++number) {
      const std::string label = "sc" + std::to_string(number);
      s.add(label);
      for (std::size_t row = 1; row <= kRows; ++row) {
        wanted.add(label, std::to_string(row)).setLevel(number == count ? half_[row - 1] : 0);
      }
    }
    database.write(path("sc.rxf"));
  }

 private:
  std::array<int, kRows> half_{};
};

TEST_F(SweepProgressTest, CountsTheScenariosThatAllWorkersHaveSolved) {
  makeScenarios(5);
  Terminal terminal;
  const ProcessorTimeLimit limit;
  BackgroundProgram program(path("."),
                            {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--out",
                             "out.rxf", "--solver", "glpk", "--jobs", "2"},
                            terminal.path());
  terminal.leaveToPrograms();
  EXPECT_TRUE(
      terminal.waitFor("\\r[^\\r]*4 of 5 scenarios solved, [0-9.]+ a second, [0-9]+ s left"))
      << terminal.text().substr(0, 400);
  // The last one goes on and on, and with it the rate falls.
  EXPECT_TRUE(terminal.waitFor("4 of 5 scenarios solved, [0-6]\\.[0-9] a second"))
      << terminal.text().substr(0, 400);
}

}  // namespace
