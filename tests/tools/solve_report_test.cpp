// ztb solve --json and --csv: what a solve left, for programs.
#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/knapsacks.h"
#include "tests/tools/program.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ProgramTest;

// 6 from a at 3 and 4 from b at 5 make 38. A unit more of the need costs 5, one more of a saves 2.
constexpr const char* kShip = R"(Minimize
 total: 3 ship(a) + 5 ship(b)
Subject To
 need: ship(a) + ship(b) >= 10
Bounds
 ship(a) <= 6
End
)";

class SolveReportTest : public ProgramTest {
 protected:
  void SetUp() override { write("t.lp", kShip); }
};

TEST_F(SolveReportTest, TellsEverythingAsJson) {
  json told = json::parse(ztbFine({"solve", "t.lp", "--json", "--show", "ship", "--show", "need"}));
  EXPECT_GE(told["seconds"], 0);
  EXPECT_GE(told["processor_seconds"], 0);
  EXPECT_GE(told["iterations"], 0);
  for (const char* changing : {"seconds", "processor_seconds", "iterations"}) told.erase(changing);
  EXPECT_EQ(told, json::parse(R"({
    "file": "t.lp", "status": "optimal", "solve_status": "normal completion",
    "objective": 38.0, "bound": 38.0, "gap": 0.0, "solver": "clp", "notes": [],
    "symbols": [
      {"name": "ship", "type": "variable", "dimension": 1, "records": [
        {"keys": ["a"], "level": 6.0, "marginal": -2.0, "lower": 0.0, "upper": 6.0, "scale": 1.0},
        {"keys": ["b"], "level": 4.0, "marginal": 0.0, "lower": 0.0, "upper": "inf", "scale": 1.0}
      ]},
      {"name": "need", "type": "equation", "dimension": 0, "records": [
        {"keys": [], "level": 10.0, "marginal": 5.0, "lower": 10.0, "upper": "inf", "scale": 1.0}
      ]}
    ]})"));
}

TEST_F(SolveReportTest, TellsJsonOfASolveWithoutASolution) {
  const Outcome outcome =
      ztb({"solve", "t.lp", "--set", "ship[b]=1", "--json", "--explain", "--show", "ship"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: t.lp: no solution: infeasible\n");
  const json told = json::parse(outcome.output);
  EXPECT_EQ(told["status"], "infeasible");
  EXPECT_EQ(told["objective"], nullptr);
  EXPECT_EQ(told["gap"], nullptr);
  EXPECT_EQ(told["symbols"], json::array());
  EXPECT_EQ(told["conflict"]["irreducible"], true);
  EXPECT_EQ(told["conflict"]["by_integers"], false);
  EXPECT_THAT(told["conflict"]["members"].get<std::vector<std::string>>(),
              testing::UnorderedElementsAre("need >= 10", "ship(a) <= 6", "ship(b) = 1"));
}

TEST_F(SolveReportTest, JsonHasTheNotesAndWhetherAStartWasTaken) {
  write("i.lp",
        "Maximize\n v: 2 x.1 + y\nSubject To\n c: 3 x.1 + 2 y <= 8\nGenerals\n x.1 y\nEnd\n");
  ztb({"solve", "i.lp", "--out", "start.rxf"});
  const Outcome outcome = ztb({"solve", "i.lp", "--start", "start.rxf", "--json"});
  EXPECT_EQ(outcome.status, 0);
  const json told = json::parse(outcome.output);
  EXPECT_EQ(told["objective"], 5.0) << "x = 2 and y = 1";
  EXPECT_EQ(told["start_taken"], true);
  EXPECT_EQ(told["notes"], json::array({"variable \"x.1\" of dimension 0 is called \"x_1\""}));
}

TEST_F(SolveReportTest, TellsALineOfCsv) {
  const std::string text = ztbFine({"solve", "t.lp", "--csv"});
  EXPECT_THAT(text, StartsWith("file,status,solve_status,objective,bound,gap,solver,seconds,"
                               "processor_seconds,iterations\n"
                               "t.lp,optimal,normal completion,38,38,0,clp,"));
  const Outcome none = ztb({"solve", "t.lp", "--set", "ship[b]=1", "--csv"});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.output, HasSubstr("\nt.lp,infeasible,normal completion,,,,clp,"));
}

TEST_F(SolveReportTest, CsvLeavesTheExplanationToStandardError) {
  const Outcome none = ztb({"solve", "t.lp", "--set", "ship[b]=1", "--csv", "--explain"});
  EXPECT_THAT(none.output, HasSubstr("\nt.lp,infeasible,normal completion,,,,clp,"));
  EXPECT_THAT(none.errors, StartsWith("ztb: t.lp: these cannot hold together: "));
  for (const char* member : {"need >= 10", "ship(a) <= 6", "ship(b) = 1"}) {
    EXPECT_THAT(none.errors, HasSubstr(member));
  }
}

// Without an iteration nothing is known but that x and y are at least 2 and 1 of 3 x + 5 y; and of
// a column without an end nothing at all.
TEST_F(SolveReportTest, TellsWhatIsProvedWhenALimitCameFirst) {
  const std::vector<std::string> solve = {"solve", "l.lp",     "--solver",
                                          "clp",   "--option", "IterationLimit=0"};
  const std::string rows =
      "Minimize\n o: 3 x + 5 y\nSubject To\n c: x + y >= 9\n d: x - y >= -2\n"
      "Bounds\n";
  write("l.lp", rows + " x >= 2\n y >= 1\nEnd\n");
  EXPECT_THAT(ztb(solve).output, HasSubstr("iteration limit\nbound       11\n"));
  write("l.lp", rows + " x free\n y free\nEnd\n");
  EXPECT_THAT(ztb(solve).output,
              HasSubstr("iteration limit\nbound       none: nothing is proved of better points\n"));
}

// 2 x = 3 has no integer, though a bound of the objective.
TEST_F(SolveReportTest, NothingBoundsWhatHasNoPoint) {
  write("i.lp", "Minimize\n o: x + y\nSubject To\n c: x + y >= 6\n d: 2 x = 3\nGeneral\n x\nEnd\n");
  const Outcome none = ztb({"solve", "i.lp"});
  EXPECT_THAT(none.output, AllOf(StartsWith("status      infeasible"), Not(HasSubstr("bound"))));
  EXPECT_EQ(json::parse(ztb({"solve", "i.lp", "--json"}).output)["bound"], nullptr);
}

TEST_F(SolveReportTest, APlaceWhereNoFileCanBeIsToldBeforeTheSolve) {
  std::filesystem::create_directory(path("folder"));
  for (const char* option : {"--out", "--basis"}) {
    expectFails(1, "ztb: Is a folder: folder\n", {"solve", "t.lp", option, "folder"});
    expectFails(1, std::string("ztb: Not a regular file: ") + tooltest::kDevice + "\n",
                {"solve", "t.lp", option, tooltest::kDevice});
    expectFails(1, "ztb: No such file: the folder does not exist: none/o.rxf\n",
                {"solve", "t.lp", option, "none/o.rxf"});
  }
}

TEST_F(SolveReportTest, TellsTheRecordsOfASymbolAsShowDoes) {
  const std::string expected =
      "label,level,marginal,lower,upper,scale\na,6,-2,0,6,1\nb,4,0,0,inf,1\n";
  EXPECT_EQ(ztbFine({"solve", "t.lp", "--csv", "--show", "ship", "--out", "o.rxf"}), expected);
  EXPECT_EQ(ztbFine({"show", "o.rxf", "ship", "--csv"}), expected);
  const Outcome none = ztb({"solve", "t.lp", "--set", "ship[b]=1", "--csv", "--show", "ship"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.output, "");
  EXPECT_EQ(none.errors, "ztb: t.lp: no solution: infeasible\n");
}

TEST_F(SolveReportTest, RefusesTwoFormsAndTwoTables) {
  expectFails(2, "ztb: --csv prints one table: name one symbol with --show, or none\n",
              {"solve", "t.lp", "--csv", "--show", "ship", "--show", "need"});
  const Outcome both = ztb({"solve", "t.lp", "--csv", "--json"});
  EXPECT_EQ(both.status, 2);
  EXPECT_THAT(both.errors, HasSubstr("--csv and --json exclude each other"));
}

TEST_F(SolveReportTest, ALimitOfTimeTellsTheBestPointAndItsBound) {
  write("hard.lp", tooltest::knapsacks());
  const std::string output = ztbFine({"solve", "hard.lp", "--option", "TimeLimit=2"});
  EXPECT_THAT(output, HasSubstr("\nstatus      feasible, time limit\n"));
  EXPECT_THAT(output, HasSubstr("\nbound       "));
  EXPECT_THAT(output, HasSubstr("\nprocessor   "));
}

}  // namespace
