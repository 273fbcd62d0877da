// ztb solve: models from files, data from a file and from the command line.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ProgramTest;

// min 3 ship(a,x) + 5 ship(b,x), ship(a,x) <= 6, sum = demand(x) = 10: 6 at 3 and 4 at 5 make 38.
constexpr const char* kTransport = R"(\ two sources, one target
Minimize
 total: [ 2 rate_var(a) * ship(a,x) + 2 rate_var(b) * ship(b,x) ] / 2
Subject To
 need(x): ship(a,x) + ship(b,x) - demand_var(x) >= 0
Bounds
 rate_var(a) = 3
 rate_var(b) = 5
 demand_var(x) = 10
 ship(a,x) <= 6
End
)";

class SolveTest : public ProgramTest {
 protected:
  void SetUp() override { write("t.lp", kTransport); }

  // The first line of a run that solves.
  std::string objective(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"solve", "t.lp"});
    const std::string text = ztbFine(arguments);
    return text.substr(0, text.find('\n'));
  }
};

TEST_F(SolveTest, TellsObjectiveStatusAndSolver) {
  const std::string text = ztbFine({"solve", "t.lp"});
  EXPECT_THAT(text, StartsWith("objective   38\n"
                               "status      optimal, normal completion\n"
                               "solver      clp\n"
                               "time        "));
  EXPECT_THAT(text, HasSubstr("\niterations  "));
}

TEST_F(SolveTest, SetsParametersAndVariables) {
  EXPECT_EQ(objective({"--set", "demand[x]=5"}), "objective   15");
  for (const char* const form : {"--json", "--csv"}) {
    expectFails(2,
                "ztb: --digits: goes with what people read; JSON and CSV have every number whole\n",
                {"solve", "t.lp", form, "--digits", "3"});
  }
  // 6 at 1.23456 and 4 at 5 make 27.40736.
  EXPECT_EQ(objective({"--set", "rate[a]=1.23456", "--digits", "3"}), "objective   27.4");
  EXPECT_EQ(objective({"--set", "rate(a)=1", "--set", " rate ['b'] =2"}), "objective   14");
  EXPECT_EQ(objective({"--set", "ship[a,x]=0"}), "objective   50");
}

TEST_F(SolveTest, WritesTheSolutionWhoeverReadsWhatIsPrinted) {
  std::vector<std::string> arguments{"solve", "t.lp", "--out", "o.rxf"};
  // Enough to be printed before the end.
  for (int i = 0; i < 100; ++i) arguments.insert(arguments.end(), {"--show", "ship"});
  const Outcome outcome = ztb(arguments, "", tooltest::OutputTo::deadPipe);
  EXPECT_EQ(outcome.status, tooltest::kEndAtDeadPipe);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(ztb::Database::open(path("o.rxf")).symbol("ship").find("a", "x")->level(), 6);
}

TEST_F(SolveTest, ShowsTheSolution) {
  const std::string text = ztbFine({"solve", "t.lp", "--show", "ship", "--show", "need"});
  EXPECT_THAT(text, HasSubstr("ship: 2 records\n"
                              "dim_1  dim_2  level  marginal  lower  upper\n"
                              "-----  -----  -----  --------  -----  -----\n"
                              "a      x          6        -2      0      6\n"
                              "b      x          4         0      0    inf\n"));
  EXPECT_THAT(text, HasSubstr("need: 1 record\n"));
}

TEST_F(SolveTest, TakesParametersFromAFile) {
  ztb::Database database;
  database.addParameter("demand", {"*"}).add("x").setLevel(8);
  ztb::Symbol rate = database.addParameter("rate", {"*"});
  rate.add("b").setLevel(4);
  rate.add("nowhere").setLevel(9);
  database.addParameter("other", {"*"}).add("x").setLevel(1);
  database.addSet("unrelated", {"*"}).add("x");
  database.write(path("data.rxf"));
  const Outcome outcome = ztb({"solve", "t.lp", "--data", "data.rxf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("objective   26\n")) << "6 at 3 and 2 at 4";
  EXPECT_EQ(outcome.errors,
            "ztb: data.rxf: the model has no columns other_var for parameter other; data drive "
            "rate and demand\n"
            "ztb: data.rxf: 1 record of rate(*) stands for nothing in the model: nowhere\n");
}

TEST_F(SolveTest, TakesBoundsOfVariablesFromAFile) {
  ztb::Database database;
  ztb::Record record = database.addVariable("ship", 3, {"*", "*"}).add("a", "x");
  record.setUpper(2);
  database.write(path("data.rxf"));
  EXPECT_EQ(objective({"--data", "data.rxf"}), "objective   46") << "2 at 3 and 8 at 5";
}

TEST_F(SolveTest, TakesLowerBoundsOfVariablesFromAFile) {
  ztb::Database database;
  database.addVariable("ship", 3, {"*", "*"}).add("b", "x").setLower(7);
  database.write(path("data.rxf"));
  EXPECT_EQ(objective({"--data", "data.rxf"}), "objective   44") << "7 at 5 and 3 at 3";
}

// x at -10 makes -102.5 and x at 10 makes -97.5: each is the best of its side.
TEST_F(SolveTest, StartsFromLevelsOfVariablesFromAFile) {
  write("v.lp",
        "Minimize\n v: 0.25 x + [ - 2 x ^ 2 ] / 2\nSubject To\n c: x + y <= 100\n"
        "Bounds\n -10 <= x <= 10\nEnd\n");
  const auto solvedFrom = [this](double level) {
    ztb::Database database;
    ztb::Record record = database.addVariable("x", 5, {}).add();
    record.setLower(-10);
    record.setUpper(10);
    record.setLevel(level);
    database.write(path("data.rxf"));
    const std::string text = ztbFine({"solve", "v.lp", "--data", "data.rxf"});
    return text.substr(0, text.find('\n'));
  };
  EXPECT_EQ(solvedFrom(8), "objective   -97.5");
  EXPECT_EQ(solvedFrom(-8), "objective   -102.5");
}

TEST_F(SolveTest, TellsRecordsOfVariablesAndEquationsThatTheModelLacks) {
  ztb::Database database;
  database.addVariable("ship", 3, {"*", "*"}).add("x", "a").setLevel(1);
  ztb::Symbol need = database.addEquation("need", 1, {"*"});
  for (const char* label : {"a", "b", "x"}) need.add(label).setLevel(1);
  database.addEquation("other", 1, {"*"}).add("x");
  database.write(path("data.rxf"));
  const Outcome outcome = ztb({"solve", "t.lp", "--data", "data.rxf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("objective   38\n"));
  EXPECT_EQ(outcome.errors,
            "ztb: data.rxf: the model has no other(*) like it\n"
            "ztb: data.rxf: 2 records of need(*) stand for nothing in the model: a\n"
            "ztb: data.rxf: 1 record of ship(*, *) stands for nothing in the model: (x, a)\n");
}

// An update of an equation takes the bounds set before it out of force.
TEST_F(SolveTest, BoundsOfVariablesHoldWhenEquationsFollowThemInTheFile) {
  ztb::Database database;
  database.addVariable("ship", 3, {"*", "*"}).add("a", "x").setUpper(2);
  ztb::Record need = database.addEquation("need", 1, {"*"}).add("x");
  need.setLevel(10);
  need.setMarginal(5);
  database.write(path("data.rxf"));
  EXPECT_EQ(objective({"--data", "data.rxf"}), "objective   46") << "2 at 3 and 8 at 5";
}

TEST_F(SolveTest, TakesItsOwnSolutionAsData) {
  ztbFine({"solve", "t.lp", "--set", "ship[a,x]=1", "--out", "out.rxf"});
  EXPECT_EQ(objective({"--data", "out.rxf"}), "objective   48") << "1 at 3 and 9 at 5";
}

TEST_F(SolveTest, WritesDataAndSolution) {
  ztbFine({"solve", "t.lp", "--set", "demand[x]=8", "--out", "out.rxf"});
  ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("total").find()->level(), 28);
  EXPECT_EQ(out.symbol("demand").find("x")->level(), 8);
  EXPECT_EQ(out.symbol("demand_var").find("x")->level(), 8);
  EXPECT_EQ(out.symbol("ship").find("b", "x")->level(), 2);
  EXPECT_EQ(out.symbol("need").find("x")->marginal(), 5);
}

TEST_F(SolveTest, TakesTheSolverAndItsOptions) {
  EXPECT_THAT(ztbFine({"solve", "t.lp", "--solver", "glpk", "--option", "TimeLimit=60"}),
              HasSubstr("solver      glpk\n"));
}

TEST_F(SolveTest, SolvesMathProgWithItsData) {
  write("p.mod", "param need; var x >= 0; minimize cost: 2 * x + 1; s.t. least: x >= need; end;\n");
  write("p.dat", "data; param need := 4; end;\n");
  EXPECT_THAT(ztbFine({"solve", "p.mod", "--model-data", "p.dat"}), StartsWith("objective   9\n"));
}

TEST_F(SolveTest, PicksASolverForIntegersAndForProducts) {
  write("i.lp", "Maximize\n v: 2 x + y\nSubject To\n c: 3 x + 2 y <= 8\nGenerals\n x y\nEnd\n");
  EXPECT_THAT(ztbFine({"solve", "i.lp"}), HasSubstr("solver      cbc\n"));
  write("q.lp", "Minimize\n v: [ 2 x ^ 2 ] / 2\nSubject To\n c: x >= 3\nEnd\n");
  EXPECT_THAT(ztbFine({"solve", "q.lp"}), HasSubstr("solver      ipopt\n"));
}

TEST_F(SolveTest, TellsNamesThatHadToBeChanged) {
  write("n.lp", "Minimize\n v: x.1 + X.1\nSubject To\n c: x.1 + X.1 >= 3\nEnd\n");
  const Outcome outcome = ztb({"solve", "n.lp"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.errors,
      "ztb: n.lp: 2 names had to be changed for the database: variable \"x.1\" of dimension 0 "
      "is called \"x_1\", ...\n");
  EXPECT_EQ(ztb({"solve", "n.lp", "--notes"}).errors,
            "ztb: n.lp: variable \"x.1\" of dimension 0 is called \"x_1\"\n"
            "ztb: n.lp: variable \"X.1\" of dimension 0 is called \"X_1_2\"\n");
  write("o.lp", "Minimize\n v: x.1\nSubject To\n c: x.1 >= 3\nEnd\n");
  EXPECT_EQ(ztb({"solve", "o.lp"}).errors,
            "ztb: o.lp: variable \"x.1\" of dimension 0 is called \"x_1\"\n");
}

// Presolve leaves all of it, and no step is allowed.
TEST_F(SolveTest, SaysWhyThereIsNoSolutionOnce) {
  write("x.lp",
        "Maximize\n v: x + y\nSubject To\n c: 2 x + y <= 8\n d: x + 3 y <= 9\n"
        " e: x + y >= 1\nEnd\n");
  const Outcome outcome = ztb({"solve", "x.lp", "--option", "IterationLimit=0"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: x.lp: no solution, the solver ended with: iteration limit\n");
}

TEST_F(SolveTest, FailsWithoutASolution) {
  const Outcome outcome = ztb({"solve", "t.lp", "--set", "demand[x]=8", "--set", "ship[b,x]=0"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, StartsWith("status      infeasible, normal completion\n"));
  EXPECT_EQ(outcome.errors, "ztb: t.lp: no solution: infeasible\n");
}

TEST_F(SolveTest, NamesWhatIsWrong) {
  expectFails(
      1,
      "ztb: t.lp: Invalid solver name: nosuch: the solvers are " + tooltest::listOfSolvers() + "\n",
      {"solve", "t.lp", "--solver", "nosuch"});
  expectFails(1,
              "ztb: t.lp: the model has no variable or equation nosuch; there is rate_var, ship, "
              "demand_var, total and need\n",
              {"solve", "t.lp", "--show", "nosuch"});
  write("i.lp", "Maximize\n v: x\nSubject To\n c: x <= 8.5\nGenerals\n x\nEnd\n");
  expectFails(1,
              "ztb: i.lp: solver clp did not solve the model: readyapi failed: solver \"clp\" "
              "solves LP; the model is MIP\n",
              {"solve", "i.lp", "--solver", "clp"});
  expectFails(1,
              "ztb: t.lp: --set \"supply[a]=1\": the model has no columns supply or supply_var; "
              "there is rate, demand and ship\n",
              {"solve", "t.lp", "--set", "supply[a]=1"});
  expectFails(1,
              "ztb: t.lp: --set \"rate[c]=1\": the model has no such element of rate(*); there "
              "is a and b\n",
              {"solve", "t.lp", "--set", "rate[c]=1"});
  expectFails(1,
              "ztb: t.lp: --set \"ship[a]=1\": the model has no such element of ship(*, *); there "
              "is (a, x) and (b, x)\n",
              {"solve", "t.lp", "--set", "ship[a]=1"});
  expectFails(1,
              "ztb: t.lp: --set \"rate=1\": the model has no such element of rate(*); there "
              "is a and b\n",
              {"solve", "t.lp", "--set", "rate=1"});
  expectFails(2,
              "ztb: --set \"rate[a]\": an \"=\" and a number are missing; write it as "
              "\"demand[oslo]=30\"\n",
              {"solve", "t.lp", "--set", "rate[a]"});
  expectFails(2,
              "ztb: --set \"rate[a=1\": the labels have to end with ]; write it as "
              "\"demand[oslo]=30\"\n",
              {"solve", "t.lp", "--set", "rate[a=1"});
  expectFails(2, "ztb: --option \"TimeLimit\" has no value; write it as \"TimeLimit=60\"\n",
              {"solve", "t.lp", "--option", "TimeLimit"});
  const Outcome range = ztb({"solve", "t.lp", "--option", "RelativeGap=2"});
  EXPECT_EQ(range.status, 2);
  EXPECT_EQ(range.errors,
            "ztb: --option \"RelativeGap=2\": option \"RelativeGap\" takes a number from 0 to 1, "
            "not \"2\"\n");
}

TEST_F(SolveTest, TellsWhatOfADataFileDoesNotFit) {
  ztb::Database database;
  database.addParameter("rate", {"*", "*"}).add("a", "x").setLevel(1);
  database.addVariable("ship", 3, {"*"}).add("a").setLevel(1);
  database.write(path("data.rxf"));
  const Outcome outcome = ztb({"solve", "t.lp", "--data", "data.rxf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      outcome.errors,
      "ztb: data.rxf: the model has no ship(*) like it\n"
      "ztb: data.rxf: rate(*, *): t.lp: the columns rate_var have 1 positions, parameter rate "
      "has 2\n");
}

TEST_F(SolveTest, AParameterMayHaveTheNameOfARow) {
  write("r.lp", "Minimize\n v: x\nSubject To\n cap: x - cap_var >= 0\nBounds\n cap_var = 2\nEnd\n");
  EXPECT_THAT(ztbFine({"solve", "r.lp", "--set", "cap=3", "--out", "r.rxf"}),
              StartsWith("objective   3\n"));
  const ztb::Database result = ztb::Database::open(path("r.rxf"));
  EXPECT_EQ(result.symbol("cap").type(), ztb::Type::equation);
  EXPECT_EQ(result.symbol("cap_data").find()->level(), 3);
}

// x^2 - 3.5 x + y^2 - 4.5 y is (x - 1.75)^2 + (y - 2.25)^2 less 8.125: best at (1, 2) of the
// integers with x + 2 y <= 5.
constexpr const char* kClosestPoint =
    "Minimize\n o: - 3.5 x - 4.5 y + [ 2 x ^ 2 + 2 y ^ 2 ] / 2\nSubject To\n"
    " c: x + 2 y <= 5\nBounds\n x <= 9\n y <= 9\nGenerals\n x y\nEnd\n";

TEST_F(SolveTest, SolvesIntegersWithProductsByBonmin) {
  write("m.lp", kClosestPoint);
  const std::string printed = ztbFine({"solve", "m.lp", "--show", "x", "--show", "y"});
  EXPECT_THAT(printed, StartsWith("objective   -7.5\nstatus      optimal, normal completion\n"));
  EXPECT_THAT(printed, HasSubstr("solver      bonmin\n"));
  const nlohmann::json told =
      nlohmann::json::parse(ztbFine({"solve", "m.lp", "--json", "--solver", "BONMIN"}));
  EXPECT_EQ(told["status"], "optimal");
  EXPECT_NEAR(told["objective"].get<double>(), -7.5, 1e-9);
}

TEST_F(SolveTest, TellsThatAModelWithIntegersAndProductsIsInfeasible) {
  write("m.lp",
        "Minimize\n o: [ 2 x ^ 2 ] / 2\nSubject To\n c: 2 x + 2 y = 3\nBounds\n x <= 1000\n"
        " y <= 1000\nGenerals\n x y\nEnd\n");
  expectFails(1, "ztb: m.lp: no solution: infeasible\n", {"solve", "m.lp"});
}

TEST_F(SolveTest, SaysWhatToInstallForASolverWithoutItsLibrary) {
  write("m.lp", kClosestPoint);
  write("vltcmpNT.txt", "clp LP yes libztbclp.so\nbonmin MIQP no libztbbonmin.so\n");
  const std::string option = "NameSysDir=" + path("");
  expectFails(
      1,
      "ztb: m.lp: The model has integer columns and products of columns that can move. Invalid "
      "solver name: bonmin: the solver cannot be opened: " +
          path("libztbbonmin.so") +
          ": cannot open shared object file: No such file or directory (package "
          "ztb-solvers)\n",
      {"solve", "m.lp", "--option", option});
}

TEST_F(SolveTest, NamesTheFileThatCannotBeWritten) {
  const Outcome outcome = ztb({"solve", "t.lp", "--out", "no/such/out.rxf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("ztb: "));
  EXPECT_THAT(outcome.errors, HasSubstr("no/such/out.rxf"));
}

TEST_F(SolveTest, RefusesValuesThatAreNone) {
  expectFails(1, "ztb: --set \"rate[a]=na\": Bad value nan in rate(a)\n",
              {"solve", "t.lp", "--set", "rate[a]=na"});
}

// 2 units of a, 3 of b and 4 of c at 1, 10 and 100: 432. In the model's own data there is a alone.
TEST_F(SolveTest, FillsTheSetsAndParametersOfAMathProgModel) {
  write("m.mod",
        "set Item; param need{Item}; param cost{Item};\nvar buy{i in Item} >= need[i];\n"
        "minimize total: sum{i in Item} cost[i] * buy[i];\n"
        "data;\nset Item := a;\nparam need := a 7;\nparam cost := a 1 b 10 c 100;\nend;\n");
  ztb::Database database;
  ztb::Symbol items = database.addSet("item", {"*"});
  ztb::Symbol need = database.addParameter("Need", {"*"});
  double amount = 2;
  for (const char* const name : {"a", "b", "c"}) {
    items.add(name);
    need.add(name).setLevel(amount++);
  }
  database.addParameter("unknown", {}).add().setLevel(1);
  database.write(path("d.rxf"));
  const tooltest::Outcome outcome = ztb({"solve", "m.mod", "--data", "d.rxf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find("objective   432\n"), std::string::npos) << outcome.output;
  EXPECT_EQ(outcome.errors,
            "ztb: d.rxf: the model has no columns unknown_var for parameter unknown; data drive "
            "nothing in it: say what they do with --drive\n");
  // Its own data have costs of what its own set lacks.
  expectFails(1, "ztb: m.mod:3: cost[b] out of domain\n", {"solve", "m.mod"});
}

TEST_F(SolveTest, RefusesToFillWithWhatIsNoNumber) {
  write("m.mod", "param p;\nvar x >= p;\nminimize o: x;\nend;\n");
  ztb::Database database;
  database.addParameter("p", {}).add().setLevel(database.specialValues()[ZTB_NOT_AVAILABLE]);
  database.write(path("d.rxf"));
  expectFails(1,
              "ztb: m.mod: parameter \"p\" is to be filled with a value that is no finite number, "
              "expected one\n",
              {"solve", "m.mod", "--data", "d.rxf"});
}

// Three things, of which two go in: a and b are worth 9, a and c 7, b and c 6.
constexpr const char* kThings = R"(Maximize
 worth: 5 take(a) + 4 take(b) + 2 take(c)
Subject To
 room: take(a) + take(b) + take(c) <= 2
Binaries
 take(a) take(b) take(c)
End
)";

TEST_F(SolveTest, BeginsWithAStartAndTellsWhetherItWasTaken) {
  write("things.lp", kThings);
  ztbFine({"solve", "things.lp", "--set", "take(a)=0", "--out", "start.rxf"});  // b and c
  EXPECT_THAT(ztbFine({"solve", "things.lp", "--start", "start.rxf"}),
              testing::AllOf(StartsWith("objective   9\n"), HasSubstr("\nstart       taken\n")));

  // All three at once are no solution.
  write("all.lp",
        "Maximize\n worth: 5 take(a) + 4 take(b) + 2 take(c)\nSubject To\n"
        " room: take(a) + take(b) + take(c) <= 3\nBinaries\n take(a) take(b) take(c)\nEnd\n");
  ztbFine({"solve", "all.lp", "--out", "all.rxf"});
  EXPECT_THAT(
      ztbFine({"solve", "things.lp", "--start", "all.rxf"}),
      testing::AllOf(StartsWith("objective   9\n"), HasSubstr("\nstart       not taken\n")));
}

TEST_F(SolveTest, TellsThatASolverHasNoStart) {
  write("things.lp", kThings);
  ztbFine({"solve", "things.lp", "--set", "take(a)=0", "--out", "start.rxf"});
  for (const std::string& solver : tooltest::solvers()) {
    // Of those for integers.
    if (solver != "glpk" && solver != "bonmin") continue;
    EXPECT_THAT(
        ztbFine({"solve", "things.lp", "--start", "start.rxf", "--solver", solver}),
        testing::AllOf(StartsWith("objective   9\n"),
                       HasSubstr("\nstart       not taken: cbc alone begins with a point\n")));
  }
}

TEST_F(SolveTest, RefusesAStartOfAnotherModel) {
  write("things.lp", kThings);
  ztbFine({"solve", "t.lp", "--out", "other.rxf"});
  expectFails(1, "ztb: other.rxf: has no variable of the model to start from\n",
              {"solve", "things.lp", "--start", "other.rxf"});
}

}  // namespace
