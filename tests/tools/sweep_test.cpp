// ztb sweep: scenarios of a file solved one after the other, by one process or several.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/matches.h"
#include "tests/tools/sweep_fixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ScenarioValues;
using tooltest::SweepTest;

TEST_F(SweepTest, EachScenarioHasItsOptimum) {
  makeScenarios(40);
  EXPECT_THAT(ztbFine(sweep({"--report", "SHIP", "--report", "need"})),
              ztbtest::Matches("40 scenarios: 40 optimal in [0-9.]+ s \\([0-9]+ a second\\)\n"
                               "objective: lowest [0-9.]+ \\(sc[0-9]+\\), "
                               "highest [0-9.]+ \\(sc[0-9]+\\)\n"));
  expectObjectives("out.rxf", 40);
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  for (int number = 1; number <= 40; ++number) {
    const ScenarioValues values = ScenarioValues::of(number);
    const std::string label = "sc" + std::to_string(number);
    EXPECT_EQ(out.symbol("sweep_status").find(label)->level(), 1);
    EXPECT_EQ(out.symbol("sweep_solve_status").find(label)->level(), 1);
    EXPECT_NEAR(out.symbol("ship_level").find(label, "a", "x")->level(), values.shipA(), 1e-9);
    EXPECT_NEAR(out.symbol("ship_level").find(label, "b", "x")->level(), values.shipB(), 1e-9);
    EXPECT_NEAR(out.symbol("need_marginal").find(label, "x")->level(), values.dearerRate(), 1e-9);
  }
  EXPECT_EQ(out.symbol("ship_level").recordCount(), 80) << "zeros are records too";
  EXPECT_EQ(out.symbol("ship_marginal").recordCount(), 80);
}

TEST_F(SweepTest, ItsChecksumsDoNotFillTheTableOfSymbols) {
  makeScenarios(2);
  ztbFine(sweep());
  EXPECT_THAT(ztbFine({"info", "out.rxf"}),
              AllOf(HasSubstr("  (checksums of what the sweep was made from)\n"),
                    Not(HasSubstr("scenarios="))));
  EXPECT_THAT(ztbFine({"info", "out.rxf", "--json"}), HasSubstr("scenarios="));
}

// -x x + rate x, x from -1 to 2: a local method that begins at 0 goes down the side that the rate
// tells, to 2 for -0.9 and to -1 for 0.9, and would stay at the 2 of the scenario before.
TEST_F(SweepTest, ALocalOptimumDoesNotDependOnTheScenarioBefore) {
  write("m.lp", R"(Minimize
 total: [ - 2 x ^ 2 + 2 rate_var * x ] / 2
Subject To
 free: x + rate_var >= -100
Bounds
 -1 <= x <= 2
 rate_var = 0
End
)");
  ztb::Database scenarios;
  ztb::Symbol set = scenarios.addSet("s", {"*"});
  ztb::Symbol rate = scenarios.addParameter("rate", {set});
  for (int number = 1; number <= 6; ++number) {
    const std::string label = "s" + std::to_string(number);
    set.add(label);
    rate.merge(label).setLevel(number % 2 == 1 ? -0.9 : 0.9);
  }
  scenarios.write(path("sc.rxf"));
  for (const char* jobs : {"1", "2"}) {
    ztbFine(sweep({"--solver", "ipopt", "--jobs", jobs}));
    const ztb::Database out = ztb::Database::open(path("out.rxf"));
    for (int number = 1; number <= 6; ++number) {
      const std::string label = "s" + std::to_string(number);
      EXPECT_EQ(out.symbol("sweep_status").find(label)->level(), 2) << jobs << label;
      EXPECT_NEAR(out.symbol("sweep_objective").find(label)->level(), number % 2 == 1 ? -5.8 : -1.9,
                  1e-6)
          << jobs << label;
    }
  }
}

// Scenarios with a solution and without one, one after the other on as many live solvers as there
// are jobs.
TEST_F(SweepTest, HasTheSameResultsWithAnyNumberOfJobs) {
  write("m.lp", R"(Minimize
 o: x + 2 y - z
Subject To
 need: x + y - need_var >= 0
 most: x + 3 y <= 12
 link: z - x - room_var <= 0
Bounds
 x <= 8
 y <= 3
 need_var = 0
 room_var = 0
End
)");
  ztb::Database scenarios;
  ztb::Symbol set = scenarios.addSet("s", {"*"});
  ztb::Symbol need = scenarios.addParameter("need", {set});
  constexpr int kScenarios = 8;
  for (int number = 0; number < kScenarios; ++number) {
    const std::string label = "s" + std::to_string(number);
    set.add(label);
    need.merge(label).setLevel(number * 7 % 12);
  }
  scenarios.write(path("sc.rxf"));
  for (const std::string& solver : tooltest::solvers()) {
    for (const char* jobs : {"1", "3"}) {
      ztb(sweep({"--solver", solver, "--jobs", jobs}));
      const ztb::Database out = ztb::Database::open(path("out.rxf"));
      for (int number = 0; number < kScenarios; ++number) {
        // x as far as it goes, then y: z is at x, so that x costs nothing and y 2. With x at 8
        // there is room for 4/3 of y.
        const std::string label = "s" + std::to_string(number);
        const double asked = number * 7 % 12;
        const bool solvable = asked <= 8 + 4.0 / 3;
        ASSERT_EQ(out.symbol("sweep_status").find(label)->level(), solvable ? 1 : 4)
            << solver << jobs << label;
        if (!solvable) continue;
        EXPECT_NEAR(out.symbol("sweep_objective").find(label)->level(),
                    2 * std::max(0.0, asked - 8), 1e-5)
            << solver << jobs << label;
      }
    }
  }
}

TEST_F(SweepTest, TellsTheExtremeObjectives) {
  makeScenarios(3);
  std::vector<double> objectives;
  for (int number = 1; number <= 3; ++number) {
    objectives.push_back(ScenarioValues::of(number).objective());
  }
  const auto [low, high] = std::ranges::minmax_element(objectives);
  const auto place = [&](auto at) { return std::to_string(at - objectives.begin() + 1); };
  EXPECT_THAT(ztbFine(sweep()), HasSubstr("(sc" + place(low) + "), highest "));
  EXPECT_THAT(ztbFine(sweep()), HasSubstr("(sc" + place(high) + ")\n"));
}

TEST_F(SweepTest, LabelsOfTheFirstPositionStandInForASet) {
  makeScenarios(3);
  ztbFine({"import", "sc.rxf", "--from", "rates.csv", "--parameter", "rate(s, source)", "--from",
           "needs.csv", "--parameter", "demand(s, target)"});
  EXPECT_EQ(ztbFine({"info", "sc.rxf"}).find("set"), std::string::npos);
  ztbFine(sweep({"--jobs", "2"}));
  expectObjectives("out.rxf", 3);
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("s").recordCount(), 3);
  EXPECT_TRUE(out.symbol("s").find("sc2"));
}

TEST_F(SweepTest, TheResultHasTheSetAsTheScenarioFileHasIt) {
  makeScenarios(5);
  std::vector<std::string> arguments = sweep();
  std::ranges::replace(arguments, std::string("S"), std::string("s"));
  ztbFine(arguments);
  EXPECT_EQ(ztbFine({"show", "out.rxf", "s", "--json"}),
            ztbFine({"show", "sc.rxf", "s", "--json"}));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("s").text(), "Scenarios");
  EXPECT_EQ(out.symbol("sweep_objective").domains()[0].set, out.symbol("s"));
}

TEST_F(SweepTest, AParameterThatIsNotSweptOverHoldsForAllScenarios) {
  makeScenarios(10, 2.5);
  ztbFine(sweep());
  expectObjectives("out.rxf", 10, 2.5);
}

TEST_F(SweepTest, AScenarioWithoutRecordsHasTheModelsOwnValues) {
  ztb::Database database;
  const ztb::Symbol s = database.addSet("s", {"*"});
  database.symbol("s").add("one");
  database.symbol("s").add("two");
  database.symbol("s").add("three");
  database.addParameter("rate", {s, "*"}).add("two", "a").setLevel(4);
  database.write(path("sc.rxf"));
  ztbFine(sweep());
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  // 6 at 3 and 4 at 5, and 6 at 4 and 4 at 5.
  EXPECT_NEAR(out.symbol("sweep_objective").find("one")->level(), 38, 1e-9);
  EXPECT_NEAR(out.symbol("sweep_objective").find("two")->level(), 44, 1e-9);
  EXPECT_NEAR(out.symbol("sweep_objective").find("three")->level(), 38, 1e-9);
}

TEST_F(SweepTest, ResultsDoNotDependOnTheNumberOfWorkers) {
  makeScenarios(40);
  ztbFine(sweep({"--report", "ship", "--jobs", "1"}));
  ztbFine(sweep({"--report", "ship", "--jobs", "3"}, "three.rxf"));
  ztbFine(sweep({"--report", "ship", "--jobs", "64"}, "many.rxf"));
  EXPECT_EQ(ztb({"diff", "out.rxf", "three.rxf", "--tolerance", "1e-9"}).status, 0);
  EXPECT_EQ(ztb({"diff", "out.rxf", "many.rxf", "--tolerance", "1e-9"}).status, 0);
  EXPECT_EQ(parts("three.rxf") + parts("many.rxf"), 0);
}

TEST_F(SweepTest, AnotherSolverFindsTheSame) {
  makeScenarios(20);
  ztbFine(sweep({"--solver", "glpk"}));
  expectObjectives("out.rxf", 20);
}

TEST_F(SweepTest, AnInfeasibleScenarioIsReportedAndTheOthersKept) {
  makeScenarios(10, 0, {{4, "1000"}});
  const Outcome outcome = ztb(sweep({"--report", "ship", "--jobs", "2"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: scenario sc4: infeasible\n");
  EXPECT_THAT(outcome.output, StartsWith("10 scenarios: 9 optimal, 1 infeasible in "));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("sweep_status").find("sc4")->level(), 4);
  EXPECT_EQ(out.symbol("sweep_solve_status").find("sc4")->level(), 1);
  EXPECT_FALSE(out.symbol("sweep_objective").find("sc4"));
  EXPECT_FALSE(out.symbol("ship_level").find("sc4", "a", "x"));
  expectObjectives("out.rxf", 10, 0, {4});
  EXPECT_EQ(parts("out.rxf"), 0);
}

TEST_F(SweepTest, AScenarioThatCannotBeSolvedIsReportedAndTheOthersKept) {
  makeScenarios(10, 0, {{4, "1e305"}, {7, "inf"}});
  const Outcome outcome = ztb(sweep());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors,
              StartsWith("ztb: scenario sc4: failed: Bad value 1e+305 in demand(x)\n"
                         "ztb: scenario sc7: "));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("sweep_status").find("sc4")->level(), 13);
  EXPECT_EQ(out.symbol("sweep_solve_status").find("sc4")->level(), 13);
  expectObjectives("out.rxf", 10, 0, {4, 7});
}

TEST_F(SweepTest, AMissingNumberIsRefusedAhead) {
  makeScenarios(10, 0, {{4, "na"}, {7, "undef"}});
  const auto refusal = [](const std::string& scenario, const std::string& value) {
    return "ztb: sc.rxf: scenario " + scenario + ", record demand(x) holds " + value +
           ", a number is expected; what a scenario has no record for stays as the model has it\n";
  };
  for (const char* jobs : {"1", "2"}) {
    expectFails(1, refusal("sc4", "na"), sweep({"--jobs", jobs}));
  }
  expectFails(1, refusal("sc4", "na"),
              {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--part", "2/2", "--parts",
               "parts"});
  EXPECT_FALSE(exists("out.rxf") || exists("out.rxf.parts") || exists("parts"));
  makeScenarios(10, 0, {{7, "undef"}});
  expectFails(1, refusal("sc7", "undef"), sweep());
}

TEST_F(SweepTest, ShowsTheFirstTwentyScenariosWithoutASolution) {
  std::map<int, std::string> demands;
  for (int number = 1; number <= 22; ++number) {
    demands[number] = "1000";
  }
  makeScenarios(23, 0, demands);
  const Outcome outcome = ztb(sweep());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 21);
  EXPECT_THAT(outcome.errors, HasSubstr("scenario sc20: infeasible\n"
                                        "ztb: 22 scenarios without a solution, of which 20 are "
                                        "shown\n"));
}

TEST_F(SweepTest, TellsOfRecordsThatMeetNoColumn) {
  makeScenarios(4);
  ztb::Database database = ztb::Database::open(path("sc.rxf"));
  database.symbol("rate").add("sc2", "elsewhere").setLevel(1);
  database.write(path("sc.rxf"));
  const Outcome outcome = ztb(sweep({"--jobs", "2"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors,
            "ztb: sc.rxf: rate has records that meet no column rate_var of the model\n");
}

}  // namespace
