// ztb sweep: what it refuses.
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/sweep_fixture.h"

namespace {

using tooltest::SweepTest;

class SweepErrorTest : public SweepTest {
 protected:
  // Scenarios one and two of set s, with a parameter of this name and dimension over s.
  void makeFile(const std::string& name, int dimension) const {
    ztb::Database database;
    ztb::Symbol s = database.addSet("s", {"*"});
    s.add("one");
    s.add("two");
    std::vector<ztb::DomainArgument> domains(static_cast<std::size_t>(dimension), "*");
    domains.front() = s;
    database.addSymbol(name, ztb::Type::parameter, domains);
    database.addSet("empty", {"*"});
    database.addSet("pairs", {"*", "*"}).add("one", "two");
    database.addSet("idle", {"*"}).add("one");
    database.write(path("sc.rxf"));
  }

  void expectOverFails(const std::string& over, const std::string& errors) const {
    expectFails(1, errors,
                {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", over, "--out", "out.rxf"});
    EXPECT_FALSE(exists("out.rxf"));
    EXPECT_EQ(parts("out.rxf"), 0);
  }
};

TEST_F(SweepErrorTest, ASetThatCannotBeSweptOver) {
  makeFile("rate", 2);
  const std::string noParameter = ", nor a parameter with that name for its first position\n";
  expectOverFails("nosuch", "ztb: sc.rxf: has no set nosuch to sweep over" + noParameter);
  expectOverFails("*", "ztb: sc.rxf: has no set * to sweep over" + noParameter);
  expectOverFails("rate", "ztb: sc.rxf: rate is a parameter; --over wants a set\n");
  expectOverFails("pairs", "ztb: sc.rxf: set pairs has 2 positions; --over wants one\n");
  expectOverFails("empty", "ztb: sc.rxf: set empty is empty\n");
  expectOverFails("idle", "ztb: sc.rxf: no parameter has set idle as its first domain\n");
  write("none.csv", "t,source,rate\n");
  ztbFine({"import", "sc.rxf", "--from", "none.csv", "--parameter", "rate(t, source)"});
  expectOverFails("t", "ztb: sc.rxf: no parameter has a record of t to sweep over\n");
}

TEST_F(SweepErrorTest, AParameterThatDoesNotFitTheModel) {
  makeFile("weight", 2);
  expectOverFails("s",
                  "ztb: m.lp: the model has no columns weight_var; data drive rate, demand and "
                  "extra\n");
  makeFile("rate", 3);
  expectOverFails("s", "ztb: m.lp: the columns rate_var have 1 positions, parameter rate has 2\n");
}

TEST_F(SweepErrorTest, ASymbolThatCannotBeReported) {
  makeFile("rate", 2);
  expectFails(1,
              "ztb: m.lp: the model has no variable or equation nosuch; there is rate_var, ship, "
              "demand_var, extra_var, total and need\n",
              sweep({"--report", "nosuch", "--jobs", "2"}));
  const std::string name(57, 'v');
  std::string model = read("m.lp");
  model.insert(model.find("Bounds"), " more: " + name + "(a) >= 0\n");
  write("m.lp", model);
  expectFails(1, "ztb: " + name + "_marginal: the name has 66 bytes, at most 63 are allowed\n",
              sweep({"--report", name}));
  EXPECT_FALSE(exists("out.rxf"));
}

TEST_F(SweepErrorTest, ASolverThatIsNotInTheCatalogue) {
  makeFile("rate", 2);
  expectFails(
      1,
      "ztb: m.lp: Invalid solver name: nosuch: the solvers are " + tooltest::listOfSolvers() + "\n",
      sweep({"--solver", "nosuch", "--jobs", "2"}));
  EXPECT_FALSE(exists("out.rxf"));
  // Nothing was solved, and nothing is left to go on from.
  EXPECT_FALSE(exists("out.rxf.parts"));
}

TEST_F(SweepErrorTest, FilesThatCannotBeRead) {
  expectFails(1, "ztb: sc.rxf: cannot be read\n", sweep());
  makeFile("rate", 2);
  expectFails(1, "ztb: nosuch.lp: cannot be read\n",
              {"sweep", "nosuch.lp", "--scenarios", "sc.rxf", "--over", "s", "--out", "out.rxf"});
  expectFails(1, "ztb: No such file: the folder does not exist: nowhere/out.rxf\n",
              sweep({}, "nowhere/out.rxf"));
}

TEST_F(SweepErrorTest, AResultThatWouldReplaceAnInput) {
  makeFile("rate", 2);
  expectFails(2, "ztb: ./sc.rxf: would be replaced by the results; name another --out\n",
              sweep({}, "./sc.rxf"));
  expectFails(2, "ztb: m.lp: would be replaced by the results; name another --out\n",
              sweep({}, "m.lp"));
  // Also where the names stand in the folder of parts.
  ztbFine({"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--part", "1/1", "--parts",
           "parts"});
  for (const char* out : {"m.lp", "sc.rxf"}) {
    expectFails(
        1, "ztb: " + std::string(out) + ": would be replaced by the results; name another --out\n",
        {"sweep", "--collect", "--parts", "parts", "--out", out});
  }
  EXPECT_THAT(read("m.lp"), testing::HasSubstr("Minimize"));
}

TEST_F(SweepErrorTest, ANumberOfJobsOutOfRange) {
  makeFile("rate", 2);
  expectFails(2, "ztb: --jobs 0: 1 to 64 are allowed\n", sweep({"--jobs", "0"}));
  expectFails(2, "ztb: --jobs 65: 1 to 64 are allowed\n", sweep({"--jobs", "65"}));
  EXPECT_EQ(ztb(sweep({"--jobs", "two"})).status, 2);
  EXPECT_EQ(ztb({"sweep", "m.lp"}).status, 2);
}

}  // namespace
