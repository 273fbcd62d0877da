// ztb solve and sweep: which solver they take when none is named, and which results ztb solve
// refuses to write.
#include <gmock/gmock.h>

#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using testing::HasSubstr;
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
}

}  // namespace
