// --data of ztb model and ztb sweep: the sets and parameters that a MathProg model declares itself.
#include <gmock/gmock.h>

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ProgramTest;

// What is needed of each item, at least, at its cost. Its own data know a alone, and 7 of it.
constexpr const char* kModel = R"(set Item; param need{Item}; param cost{Item};
var buy{i in Item} >= 0;
minimize total: sum{i in Item} cost[i] * buy[i];
s.t. least{i in Item}: buy[i] >= need[i];
data;
set Item := a;
param need := a 7;
param cost := a 1;
end;
)";

class FillTest : public ProgramTest {
 protected:
  // 2 of a at 1 and 3 of b at 10 are needed, which makes 32.
  void SetUp() override {
    write("m.mod", kModel);
    ztb::Database database;
    ztb::Symbol items = database.addSet("Item", {"*"});
    ztb::Symbol need = database.addParameter("need", {"*"});
    ztb::Symbol cost = database.addParameter("cost", {"*"});
    double value = 1;
    for (const char* const name : {"a", "b"}) {
      items.add(name);
      need.add(name).setLevel(value + 1);
      cost.add(name).setLevel(value == 1 ? 1 : 10);
      ++value;
    }
    database.addParameter("unknown", {}).add().setLevel(1);
    database.write(path("d.rxf"));
  }

  // Scenarios in which 5 and 6 of a are needed.
  void makeScenarios() const {
    ztb::Database database;
    ztb::Symbol over = database.addSet("s", {"*"});
    ztb::Symbol amount = database.addParameter("amount", {"s", "*"});
    over.add("s1");
    over.add("s2");
    amount.add("s1", "a").setLevel(5);
    amount.add("s2", "a").setLevel(6);
    database.write(path("sc.rxf"));
  }

  static std::vector<std::string> sweep(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{
        "sweep", "m.mod", "--scenarios", "sc.rxf",  "--over",
        "s",     "--out", "out.rxf",     "--drive", "amount(item) = rhs of least"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  double objective(const std::string& scenario) const {
    return ztb::Database::open(path("out.rxf")).symbol("sweep_objective").find(scenario)->level();
  }
};

constexpr const char* kLeft = "ztb: d.rxf: the model declares no parameter unknown\n";

TEST_F(FillTest, AModelIsShownAndWrittenAsItWasFilled) {
  EXPECT_THAT(ztbFine({"model", "m.mod"}), HasSubstr(": minimize, 1 column, "));
  const Outcome outcome = ztb({"model", "m.mod", "--data", "d.rxf", "--write", "w.lp"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, HasSubstr(": minimize, 2 columns, "));
  EXPECT_EQ(outcome.errors, kLeft);
  EXPECT_THAT(ztbFine({"solve", "w.lp"}), StartsWith("objective   32\n"));
}

TEST_F(FillTest, ASweepIsOfTheModelAsItWasFilled) {
  makeScenarios();
  const Outcome plain = ztb(sweep({}));
  EXPECT_EQ(plain.status, 0) << plain.errors;
  EXPECT_EQ(objective("s1"), 5);
  for (const char* const jobs : {"1", "2"}) {
    const Outcome outcome = ztb(sweep({"--data", "d.rxf", "--jobs", jobs}));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, kLeft);
    EXPECT_EQ(objective("s1"), 35) << "5 of a, 3 of b";
    EXPECT_EQ(objective("s2"), 36);
  }
}

TEST_F(FillTest, ASweepIsResumedWithTheSameDataAlone) {
  makeScenarios();
  EXPECT_EQ(ztb(sweep({"--data", "d.rxf"})).status, 0);
  EXPECT_EQ(ztb(sweep({"--data", "d.rxf", "--resume"})).status, 0);
  expectFails(1,
              "ztb: out.rxf: is from a sweep with another --data; without --resume all is solved "
              "anew\n",
              sweep({"--resume"}));
}

TEST_F(FillTest, DataOfOtherModelsAreRefused) {
  makeScenarios();
  write("m.lp", "Minimize\n v: x\nSubject To\n c: x >= 1\nEnd\n");
  const std::string text =
      "ztb: --data d.rxf: fills the sets and parameters of a .mod model, and m.lp is none\n";
  expectFails(2, text, {"model", "m.lp", "--data", "d.rxf"});
  expectFails(2, text,
              {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--out", "out.rxf",
               "--data", "d.rxf"});
  EXPECT_EQ(ztb(sweep({"--data", "gone.rxf"})).status, 1);
  const Outcome gone = ztb({"model", "m.mod", "--data", "gone.rxf"});
  EXPECT_EQ(gone.status, 1);
  EXPECT_EQ(gone.errors, "ztb: No such file: gone.rxf\n");
}

}  // namespace
