// ztb solve and ztb sweep with --drive: data move numbers of a model that was written without them.
#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/sweep_fixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ScenarioValues;
using tooltest::SweepTest;

// The model of the sweeps, with its data written in and no columns for them.
constexpr const char* kPlain = R"(Minimize
 total: 3 ship(a,x) + 5 ship(b,x)
Subject To
 demand(x): ship(a,x) + ship(b,x) >= 10
Bounds
 ship(a,x) <= 6
 ship(b,x) <= 20
End
)";

const std::vector<std::string> kDrives{"--drive", "rate(source) = cost of ship(source, *)",
                                       "--drive", "demand(target) = rhs of demand"};

class DriveTest : public SweepTest {
 protected:
  void SetUp() override { write("m.lp", kPlain); }

  // The first line that `ztb solve m.lp` prints.
  std::string objective(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"solve", "m.lp"});
    arguments.insert(arguments.end(), kDrives.begin(), kDrives.end());
    const std::string text = ztbFine(arguments);
    return text.substr(0, text.find('\n'));
  }
};

TEST_F(DriveTest, TakesDataFromTheCommandLine) {
  EXPECT_EQ(objective({}), "objective   38");  // 6 at 3, 4 at 5
  EXPECT_EQ(objective({"--set", "rate(b)=2"}), "objective   20");
  EXPECT_EQ(objective({"--set", "demand(x)=12", "--set", "rate(a)=1"}), "objective   36");
  EXPECT_EQ(objective({"--drive", "most(source) = upper of ship(source, 'x')", "--set",
                       "most(a)=1.5", "--set", "demand(x)=4"}),
            "objective   17");
  EXPECT_EQ(objective({"--drive", "most() = upper of ship('a', 'x')", "--set", "most=1.5", "--set",
                       "demand(x)=4"}),
            "objective   17");
}

TEST_F(DriveTest, TakesDataFromAFile) {
  ztb::Database data;
  data.addParameter("demand", {"*"}).add("x").setLevel(7);
  data.addParameter("rate", {"*"}).add("b").setLevel(6);
  data.write(path("d.rxf"));
  EXPECT_EQ(objective({"--data", "d.rxf", "--out", "r.rxf"}), "objective   24");
  const ztb::Database result = ztb::Database::open(path("r.rxf"));
  EXPECT_EQ(result.symbol("demand").type(), ztb::Type::equation);
  EXPECT_EQ(result.symbol("demand").find("x")->lower(), 7);
  EXPECT_EQ(result.symbol("demand_var").find("x")->level(), 7);
  EXPECT_EQ(result.symbol("rate").find("b")->level(), 6);
  EXPECT_EQ(result.symbol("rate_var").find("a")->level(), 3);
}

TEST_F(DriveTest, TellsRecordsThatStandForNothing) {
  ztb::Database data;
  data.addParameter("demand", {"*"}).add("y").setLevel(7);
  data.write(path("d.rxf"));
  std::vector<std::string> arguments{"solve", "m.lp", "--data", "d.rxf"};
  arguments.insert(arguments.end(), kDrives.begin(), kDrives.end());
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors,
            "ztb: d.rxf: 1 record of demand(*) stands for nothing in the model: y\n");
  EXPECT_THAT(outcome.output, StartsWith("objective   38\n"));
}

TEST_F(DriveTest, TellsASetOrAliasOfTheNameOfWhatDrives) {
  ztb::Database data;
  data.addSet("demand", {"*"}).add("x");
  data.addAlias("rate", data.symbol("demand"));
  data.write(path("d.rxf"));
  std::vector<std::string> arguments{"solve", "m.lp", "--data", "d.rxf"};
  arguments.insert(arguments.end(), kDrives.begin(), kDrives.end());
  EXPECT_EQ(ztb(arguments).errors,
            "ztb: d.rxf: demand is a set, and drives nothing: a parameter is expected\n"
            "ztb: d.rxf: rate is an alias, and drives nothing: a parameter is expected\n");
}

TEST_F(DriveTest, NamesTheRecordWhoseValueNoNumberCanHave) {
  ztb::Database data;
  ztb::Symbol rate = data.addParameter("rate", {"*"});
  rate.add("a").setLevel(4);
  rate.add("b").setLevel(std::nan(""));
  data.write(path("d.rxf"));
  std::vector<std::string> arguments{"solve", "m.lp", "--data", "d.rxf"};
  arguments.insert(arguments.end(), kDrives.begin(), kDrives.end());
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: d.rxf: rate(*): Bad value nan in rate(b)\n");
}

TEST_F(DriveTest, NamesWhatTheModelDoesNotHave) {
  for (const char* command : {"solve", "sweep"}) {
    makeScenarios(1);
    std::vector<std::string> arguments{command, "m.lp", "--drive", "rate(i, j) = cost of shop"};
    if (std::string(command) == "sweep") {
      arguments.insert(arguments.end(),
                       {"--scenarios", "sc.rxf", "--over", "s", "--out", "out.rxf"});
    }
    expectFails(1,
                "ztb: m.lp: drive \"rate(i, j) = cost of shop\": the model has no variable shop, "
                "is ship meant?; its variables are: ship\n",
                arguments);
  }
}

TEST_F(DriveTest, SweepsWithOneProcessOrSeveral) {
  makeScenarios(40);
  for (const char* jobs : {"1", "3"}) {
    std::vector<std::string> more = kDrives;
    more.insert(more.end(), {"--jobs", jobs, "--report", "ship"});
    const std::string out = std::string("out") + jobs + ".rxf";
    const Outcome outcome = ztb(sweep(more, out));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    expectObjectives(out, 40);
  }
}

TEST_F(DriveTest, ResumesOnlyWithTheSameStatements) {
  makeScenarios(5);
  std::vector<std::string> more = kDrives;
  EXPECT_EQ(ztb(sweep(more)).status, 0);
  more.push_back("--resume");
  EXPECT_THAT(ztb(sweep(more)).output, HasSubstr("5 of them kept"));
  more[1] = "rate(source) = cost of ship(source, 'x')";
  const Outcome outcome = ztb(sweep(more));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "ztb: out.rxf: is from a sweep with another --drive; without --resume all is solved "
            "anew\n");
}

TEST_F(DriveTest, ExplainsWhyThereIsNoSolution) {
  std::vector<std::string> arguments{"solve", "m.lp", "--set", "demand(x)=30", "--explain"};
  arguments.insert(arguments.end(), kDrives.begin(), kDrives.end());
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: m.lp: no solution: infeasible\n");
  EXPECT_THAT(outcome.output,
              EndsWith("these cannot hold together:\n  demand(x) >= 30, driven by demand_var(x)\n"
                       "  ship(a, x) <= 6\n  ship(b, x) <= 20\n"));
}

TEST_F(DriveTest, ExplainsScenarios) {
  makeScenarios(3, 0, {{2, "30"}});
  std::vector<std::string> more = kDrives;
  more.push_back("--explain");
  const Outcome outcome = ztb(sweep(more));
  EXPECT_EQ(outcome.status, 1);
  // Rates of the three are 8 and 6.5, 4 and 11.5, 11 and 3.5; demands 4.25, 30 and 10.25.
  EXPECT_EQ(outcome.errors,
            "ztb: scenario sc2: infeasible: demand(x) >= 30, driven by demand_var(x); ship(a, x) "
            "<= 6; ship(b, x) <= 20; scenario sc1, the nearest with a solution, differs in "
            "demand(x) 30 (there 4.25), rate(a) 4 (there 8), rate(b) 11.5 (there 6.5)\n");
}

}  // namespace
