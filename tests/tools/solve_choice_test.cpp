// ztb solve and sweep: which solver they take when none is named, and which results ztb solve
// refuses to write.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using tooltest::Outcome;
using tooltest::ProgramTest;

// max rate_var * x with rate_var + x <= 8.
constexpr const char* kProduct = R"(Maximize
 total: [ 2 rate_var * x ] / 2
Subject To
 room: rate_var + x <= 8
Bounds
 1 <= rate_var <= 10
 1 <= x <= 10
)";

class SolveChoiceTest : public ProgramTest {
 protected:
  void SetUp() override {
    write("q.lp", std::string(kProduct) + "End\n");
    write("i.lp", std::string(kProduct) + "General\n x\nEnd\n");
    std::string fixed = kProduct;
    fixed.replace(fixed.find("1 <= rate_var <= 10"), 19, "rate_var = 2");
    write("f.lp", fixed + "End\n");
  }

  std::string solved(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "solve");
    const std::string text = ztbFine(arguments);
    const std::size_t solver = text.find("solver");
    return text.substr(0, text.find('\n')) + ", " +
           text.substr(solver, text.find('\n', solver) - solver);
  }
};

TEST_F(SolveChoiceTest, GoesByTheBoundsOfTheModel) {
  EXPECT_EQ(solved({"f.lp"}), "objective   12, solver      clp");
  EXPECT_THAT(solved({"q.lp"}), HasSubstr("solver      ipopt"));
}

TEST_F(SolveChoiceTest, GoesByWhatTheCommandLineFixed) {
  EXPECT_EQ(solved({"q.lp", "--set", "rate=2"}), "objective   12, solver      clp");
  EXPECT_EQ(solved({"i.lp", "--set", "rate=2.5"}), "objective   12.5, solver      cbc");
}

TEST_F(SolveChoiceTest, GoesByTheBoundsOfTheData) {
  ztb::Database database;
  ztb::Record rate = database.addVariable("rate_var", 5, {}).add();
  rate.setLower(1);
  rate.setUpper(5);
  database.write(path("d.rxf"));
  EXPECT_THAT(solved({"f.lp", "--data", "d.rxf"}), HasSubstr("solver      ipopt"));
}

// A sweep fixes the parameters of every scenario, so that their products are linear.
TEST_F(SolveChoiceTest, OfASweepGoesByFixedParameters) {
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*"});
  ztb::Symbol rate = database.addParameter("rate", {s});
  for (const char* label : {"low", "high"}) s.add(label);
  rate.add("low").setLevel(2);
  rate.add("high").setLevel(2.5);
  database.write(path("sc.rxf"));
  const std::string text =
      ztbFine({"sweep", "i.lp", "--scenarios", "sc.rxf", "--over", "s", "--out", "out.rxf"});
  EXPECT_THAT(text, HasSubstr("2 scenarios: 2 optimal"));
  EXPECT_THAT(text, HasSubstr("lowest 12 (low), highest 12.5 (high)"));
}

// The file is read before anything is solved, and would be gone behind it.
TEST_F(SolveChoiceTest, RefusesToReplaceWhatItReads) {
  ztb::Database database;
  database.addParameter("rate", {}).add().setLevel(2);
  database.write(path("d.rxf"));
  const std::string model = read("q.lp");
  expectFails(2, "ztb: ./q.lp: would be replaced by the results; name another --out\n",
              {"solve", "q.lp", "--out", "./q.lp"});
  EXPECT_EQ(read("q.lp"), model);
  const std::string data = read("d.rxf");
  expectFails(2, "ztb: d.rxf: would be replaced by the results; name another --out\n",
              {"solve", "q.lp", "--data", "d.rxf", "--out", "d.rxf"});
  EXPECT_EQ(read("d.rxf"), data);
  // The basis is read and written; neither file is there yet.
  expectFails(2, "ztb: b.rxf: would be replaced by the results; name another --out\n",
              {"solve", "q.lp", "--basis", "b.rxf", "--out", "b.rxf"});
  EXPECT_FALSE(std::filesystem::exists(path("b.rxf")));
}

// Rounding a level just below 0 gives -0.
constexpr const char* kLevelsOfZero =
    "Maximize\n o: 2 b(1) - b(2) - i\nSubject To\n c: b(1) + b(2) + i <= 10\nGenerals\n i\n"
    "Binaries\n b(1) b(2)\nEnd\n";

TEST_F(SolveChoiceTest, NothingIsMinusZero) {
  write("z.lp", kLevelsOfZero);
  for (const char* solver : {"cbc", "glpk"}) {
    EXPECT_EQ(ztbFine({"solve", "z.lp", "--solver", solver, "--show", "b", "--csv"}),
              "label,level,marginal,lower,upper,scale\n1,1,2,0,1,1\n2,0,-1,0,1,1\n")
        << solver;
  }
}

TEST_F(SolveChoiceTest, NothingIsMinusZeroByBonmin) {
  write("z.lp", kLevelsOfZero);
  EXPECT_EQ(ztbFine({"solve", "z.lp", "--solver", "bonmin", "--show", "b", "--csv"}),
            "label,level,marginal,lower,upper,scale\n1,1,2,0,1,1\n2,0,-1,0,1,1\n");
}

// The highest y at x = 3.5 on a line through (0, 0), (2, 5), (5, 4) and (9, 10).
TEST_F(SolveChoiceTest, OrderedSetsAreSolvedByCbc) {
  write("line.lp", R"(Maximize
 y: 5 b + 4 c + 10 d
Subject To
 sum: a + b + c + d = 1
 x: 2 b + 5 c + 9 d = 3.5
Bounds
 a <= 1
 b <= 1
 c <= 1
 d <= 1
SOS
 line: S2 :: a : 1 b : 2 c : 3 d : 4
End
)");
  EXPECT_EQ(solved({"line.lp"}), "objective   4.5, solver      cbc");
  EXPECT_THAT(ztb({"solve", "line.lp", "--solver", "glpk"}).errors,
              HasSubstr("solver \"glpk\" refused the model: glpk solves linear models: the model "
                        "has semi-continuous columns or special ordered sets, which cbc solves"));
  EXPECT_THAT(ztb({"solve", "line.lp", "--solver", "clp"}).errors,
              HasSubstr("solver \"clp\" solves LP; the model is MIP: it has semi-continuous "
                        "columns or special ordered sets, which cbc solves\n"));
}

// 3 x + 2 y, x is 0 or from 5 to 10, y at most 3, x + y at least 4: x at 5.
TEST_F(SolveChoiceTest, SemiContinuousColumnsAreSolvedByCbc) {
  write("semi.mps", R"(NAME semi
ROWS
 N cost
 G need
COLUMNS
 x cost 3 need 1
 y cost 2 need 1
RHS
 RHS need 4
BOUNDS
 SC BND x 10
 LO BND x 5
 UP BND y 3
ENDATA
)");
  EXPECT_EQ(solved({"semi.mps"}), "objective   15, solver      cbc");
}

// x is 0 or at least 2, without end; x + y at least 1: 2 of x cost less than 1 of y.
TEST_F(SolveChoiceTest, SemiContinuousColumnsNeedNoUpperBound) {
  write("open.lp",
        "Minimize\n o: x + 3 y\nSubject To\n c: x + y >= 1\nBounds\n x >= 2\n y <= 10\n"
        "Semi-Continuous\n x\nEnd\n");
  EXPECT_EQ(solved({"open.lp"}), "objective   2, solver      cbc");
  write("open.mps",
        "NAME open\nROWS\n N o\n G c\nCOLUMNS\n x o 1 c 1\n y o 3 c 1\nRHS\n RHS c 1\nBOUNDS\n"
        " LO BND x 2\n SC BND x\n UP BND y 10\nENDATA\n");
  EXPECT_EQ(solved({"open.mps"}), "objective   2, solver      cbc");
}

// At least 1 both, of which one has to be 0: row a alone bounds them, and is not needed.
TEST_F(SolveChoiceTest, ExplainsSetsWhoseColumnsHaveNoBounds) {
  write("both.lp",
        "Minimize\n o: x + y\nSubject To\n a: x + y <= 10\n b: x >= 1\n c: y >= 1\n"
        " d: x + y >= 1\nSOS\n s: S1 :: x:1 y:2\nEnd\n");
  EXPECT_THAT(ztb({"solve", "both.lp", "--explain"}).output,
              EndsWith("these cannot hold together:\n  b >= 1\n  c >= 1\n"
                       "  with special ordered sets\n"));
}

// The same by the bounds of the columns.
TEST_F(SolveChoiceTest, ExplainsSetsByTheBoundsOfTheirColumns) {
  write("both.lp",
        "Minimize\n o: x + y\nSubject To\n d: x + y <= 50\nBounds\n 1 <= x <= 10\n"
        " 1 <= y <= 10\nSOS\n s: S1 :: x:1 y:2\nEnd\n");
  EXPECT_THAT(ztb({"solve", "both.lp", "--explain"}).output,
              EndsWith("these cannot hold together:\n  x >= 1\n  y >= 1\n"
                       "  with special ordered sets\n"));
}

// x(a) to 3 or x(b) alone, both 4 at least: x(b) = 4.
TEST_F(SolveChoiceTest, ColumnsOfASetNeedNoBounds) {
  write("open.lp",
        "Minimize\n o: x(a) + x(b)\nSubject To\n c: x(a) + x(b) >= 4\nBounds\n x(a) <= 3\nSOS\n"
        " s: S1:: x(a):1 x(b):2\nEnd\n");
  EXPECT_EQ(solved({"open.lp"}), "objective   4, solver      cbc");
}

// 3 x + 2 y with x + y at least 4: y at 4, unless x is fixed.
TEST_F(SolveChoiceTest, ASemiContinuousColumnThatIsFixedIsNotZero) {
  write("semi.lp",
        "Minimize\n o: 3 x + 2 y\nSubject To\n c: x + y >= 4\nBounds\n 5 <= x <= 10\n"
        "Semi-Continuous\n x\nEnd\n");
  EXPECT_EQ(solved({"semi.lp"}), "objective   8, solver      cbc");
  EXPECT_EQ(solved({"semi.lp", "--set", "x=6"}), "objective   18, solver      cbc");
}

// max 5 x(a) + 4 x(b) with 6 x(a) + 4 x(b) <= 24 and x(a) + 2 x(b) <= 6: best at (3, 1.5).
constexpr const char* kPlan = R"(Maximize
 total: 5 x(a) + 4 x(b)
Subject To
 hours: 6 x(a) + 4 x(b) <= 24
 room: x(a) + 2 x(b) <= 6
End
)";

TEST_F(SolveChoiceTest, RangesAreShownAndStandInTheResult) {
  write("plan.lp", kPlan);
  for (const char* solver : {"clp", "glpk"}) {
    const std::string text = ztbFine(
        {"solve", "plan.lp", "--solver", solver, "--ranging", "--digits", "6", "--out", "r.rxf"});
    EXPECT_THAT(text, HasSubstr("\ncost of     from  to\n"
                                "-------  -------  --\n"
                                "x(a)           2   6\n"
                                "x(b)     3.33333  10\n"
                                "\n"
                                "rhs of  from   to\n"
                                "------  ----  ---\n"
                                "total   -inf  inf\n"
                                "hours     12   36\n"
                                "room       4   12\n"));
    const ztb::Database out = ztb::Database::open(path("r.rxf"));
    EXPECT_NEAR(out.symbol("x_cost_lower").find("b")->level(), 10.0 / 3, 1e-9);
    EXPECT_NEAR(out.symbol("x_cost_upper").find("a")->level(), 6, 1e-9);
    EXPECT_NEAR(out.symbol("hours_rhs_lower").find()->level(), 12, 1e-9);
    EXPECT_NEAR(out.symbol("room_rhs_upper").find()->level(), 12, 1e-9);
  }
  EXPECT_THAT(ztbFine({"solve", "plan.lp", "--ranging", "--json"}),
              HasSubstr(R"({"symbol":"hours","keys":[],"from":12)"));
  EXPECT_THAT(ztbFine({"solve", "plan.lp", "--ranging", "--show", "x"}), Not(HasSubstr("rhs of")));
  // What the solve found is written and printed all the same.
  const Outcome none =
      ztb({"solve", "plan.lp", "--solver", "cbc", "--ranging", "--out", "none.rxf"});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.output, HasSubstr("objective   21\n"));
  EXPECT_NEAR(ztb::Database::open(path("none.rxf")).symbol("x").find("a")->level(), 3, 1e-9);
  EXPECT_THAT(none.errors,
              HasSubstr("plan.lp: --ranging: solver \"cbc\" has no ranges for the model"));
}

TEST_F(SolveChoiceTest, RangesAreATableOfCsv) {
  write("plan.lp", kPlan);
  EXPECT_EQ(ztbFine({"solve", "plan.lp", "--ranging", "--csv", "--show", "hours"}),
            "range,symbol,from,to\nrhs,hours,12,36\n");
  EXPECT_THAT(ztbFine({"solve", "plan.lp", "--ranging", "--csv"}),
              AllOf(testing::StartsWith("range,symbol,label,from,to\ncost,x,a,"),
                    HasSubstr("\nrhs,total,,-inf,inf\nrhs,hours,,12,36\nrhs,room,,")));
}

TEST_F(SolveChoiceTest, ABasisIsSavedAndTakenWhereItFits) {
  write("plan.lp", kPlan);
  for (const char* solver : {"clp", "glpk"}) {
    const std::string file = std::string(solver) + ".basis";
    const auto solve = [&](const char* model) {
      return ztbFine({"solve", model, "--solver", solver, "--basis", file});
    };
    EXPECT_THAT(solve("plan.lp"), HasSubstr("\nbasis       none yet\n"));
    EXPECT_THAT(solve("plan.lp"),
                AllOf(HasSubstr("objective   21\n"), HasSubstr("\nbasis       taken\n"),
                      HasSubstr("iterations  0\n")));
    EXPECT_THAT(solve("f.lp"), HasSubstr("\nbasis       not taken\n"));
    EXPECT_THAT(solve("f.lp"), HasSubstr("\nbasis       taken\n")) << "that of the solve before";
  }
  EXPECT_THAT(ztb({"solve", "plan.lp", "--basis", "f.lp"}).errors,
              HasSubstr("plan.lp: --basis: f.lp:1: is no saved basis: expected \"ztb basis 1\""));
  EXPECT_THAT(read("f.lp"), HasSubstr("Maximize")) << "nothing else is replaced";
  const tooltest::Outcome integers =
      ztb({"solve", "i.lp", "--set", "rate=2", "--basis", "new.basis"});
  EXPECT_THAT(integers.errors, HasSubstr("i.lp: --basis: the last solve left no basis"));
  EXPECT_THAT(integers.output, HasSubstr("objective   12\n")) << "all else is told";
}

}  // namespace
