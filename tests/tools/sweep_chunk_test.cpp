// ztb sweep: chunks, the shares that machines take of them, and how their parts are put together.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"
#include "tests/tools/sweep_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::Outcome;
using tooltest::ProcessorTimeLimit;
using tooltest::SweepTest;

class SweepChunkTest : public SweepTest {
 protected:
  // Items that cost the same, each with a most: any of them meet what is wanted, and which do
  // depends on where a solver comes from.
  void makeDegenerate(int count) const {
    std::string objective = " total:";
    std::string sum;
    std::string bounds;
    for (int item = 1; item <= 12; ++item) {
      const std::string name = "buy(i" + std::to_string(item) + ")";
      objective += " + " + name + "\n";
      sum += " + " + name + "\n";
      bounds += " " + name + " <= " + std::to_string(2 + item % 3) + "\n";
    }
    write("m.lp", "Minimize\n" + objective + "Subject To\n enough:" + sum +
                      " - wanted_var >= 0\n other: buy(i1) + buy(i7) + buy(i12) - wanted_var <= 0\n"
                      "Bounds\n wanted_var = 4\n" +
                      bounds + "End\n");
    std::string table = "s,wanted\n";
    for (int number = 1; number <= count; ++number) {
      table += "sc" + std::to_string(number) + "," + std::to_string(1 + number * 7 % 29) + "\n";
    }
    write("wanted.csv", table);
    ztbFine({"import", "sc.rxf", "--from", "wanted.csv", "--set", "s", "--parameter", "wanted(s)"});
  }

  // The part of the folder whose name ends so.
  std::string fileOfPart(const std::string& ending) const {
    for (const auto& entry : std::filesystem::directory_iterator(path("parts"))) {
      const std::string name = entry.path().filename().string();
      if (name.ends_with(ending)) return "parts/" + name;
    }
    return "";
  }

  // As sweep(), without a result.
  static std::vector<std::string> share(const std::string& part,
                                        const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"sweep",  "m.lp",     "--scenarios", "sc.rxf",  "--over",
                                       "S",      "--report", "buy",         "--chunk", "7",
                                       "--part", part,       "--parts",     "parts"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  Outcome collect(const std::string& out) const {
    return ztb({"sweep", "--collect", "--parts", "parts", "--out", out});
  }
};

TEST_F(SweepChunkTest, ADegenerateModelHasTheSameBytesHoweverItIsSolved) {
  makeDegenerate(40);
  const std::vector<std::string> options{"--report", "buy", "--chunk", "7"};
  ztbFine(sweep(options));
  const std::string one = read("out.rxf");
  for (const char* jobs : {"2", "3"}) {
    std::vector<std::string> several = options;
    several.insert(several.end(), {"--jobs", jobs});
    ztbFine(sweep(several, "several.rxf"));
    EXPECT_EQ(read("several.rxf"), one) << jobs;
  }
  // Six chunks, in four shares and another order.
  for (const char* part : {"3/4", "1/4", "4/4", "2/4"}) ztbFine(share(part));
  EXPECT_EQ(collect("shares.rxf").errors, "");
  EXPECT_EQ(read("shares.rxf"), one);
  // A part is lost, and the sweep goes on with what is there.
  ASSERT_TRUE(std::filesystem::remove(path(fileOfPart("-7-21.rxf"))));
  ztbFine(share("1/1"));
  EXPECT_EQ(collect("again.rxf").errors, "");
  EXPECT_EQ(read("again.rxf"), one);
}

TEST_F(SweepChunkTest, EachPlanIsAsGoodAsTheWantedNumber) {
  makeDegenerate(12);
  ztbFine(sweep({"--chunk", "5"}));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  for (int number = 1; number <= 12; ++number) {
    EXPECT_NEAR(out.symbol("sweep_objective").find("sc" + std::to_string(number))->level(),
                1 + number * 7 % 29, 1e-9);
  }
}

TEST_F(SweepChunkTest, WhatIsMissingIsToldByName) {
  makeDegenerate(15);
  ztbFine(share("1/3"));
  ztbFine(share("3/3"));
  const Outcome outcome = collect("out.rxf");
  EXPECT_EQ(outcome.status, 1);
  std::string missing;
  for (int number = 8; number <= 14; ++number) {
    missing += "ztb: scenario sc" + std::to_string(number) + ": missing\n";
  }
  EXPECT_EQ(outcome.errors, missing);
  EXPECT_THAT(outcome.output, StartsWith("15 scenarios: 8 optimal, 7 missing in "));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("sweep_solve_status").find("sc8")->level(), 13);
  EXPECT_EQ(out.symbol("sweep_objective").recordCount(), 8);
}

TEST_F(SweepChunkTest, AFailureIsToldWhenPartsArePutTogether) {
  makeScenarios(10, 0, {{4, "1e305"}});
  const std::vector<std::string> one{"sweep", "m.lp",   "--scenarios", "sc.rxf",  "--over",
                                     "s",     "--part", "1/1",         "--parts", "parts"};
  EXPECT_EQ(ztb(one).status, 1);
  const Outcome outcome = collect("out.rxf");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: scenario sc4: failed: Bad value 1e+305 in demand(x)\n");
  expectObjectives("out.rxf", 10, 0, {4});
}

TEST_F(SweepChunkTest, AShareThatIsThereIsNotSolvedAgain) {
  makeDegenerate(15);
  ztbFine(share("1/3"));
  EXPECT_THAT(ztbFine(share("1/3")), StartsWith("7 scenarios, 7 of them kept: 7 optimal in "));
}

TEST_F(SweepChunkTest, ADamagedPartIsNamedAsTheFileToRemove) {
  makeDegenerate(15);
  for (const char* part : {"1/3", "2/3", "3/3"}) ztbFine(share(part));
  const std::string damaged = fileOfPart("-7-14.rxf");
  write(damaged, "no part");
  const Outcome outcome = collect("out.rxf");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: Not an RXF file: " + damaged +
                                "; remove this file, and what it held is solved again\n");
  ASSERT_TRUE(std::filesystem::remove(path(damaged)));
  ztbFine(share("2/3"));
  EXPECT_EQ(collect("out.rxf").errors, "");
}

TEST_F(SweepChunkTest, ADamagedBasisIsNamedAsTheFileToRemove) {
  makeDegenerate(15);
  ztbFine(share("1/3"));
  const std::string damaged = fileOfPart(".basis");
  write(damaged, "NAME\n nothing that a basis says\n");
  const Outcome outcome = ztb(share("2/3"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: " + damaged +
                                ":1: is no saved basis: expected \"ztb basis 1\"; remove this "
                                "file, and it is made again\n");
  ASSERT_TRUE(std::filesystem::remove(path(damaged)));
  ztbFine(share("2/3"));
}

TEST_F(SweepChunkTest, ASweepThatIsNotTheOneOfTheFolderIsRefused) {
  makeDegenerate(15);
  expectFails(1, "ztb: parts: has the options of no sweep\n",
              {"sweep", "--collect", "--parts", "parts", "--out", "o.rxf"});
  ztbFine(share("1/3"));
  write("m.lp", read("m.lp") + "\\ a comment\n");
  EXPECT_THAT(collect("o.rxf").errors,
              HasSubstr(".sweep: is of a sweep with other files: they have changed\n"));
  ztbFine(share("1/3"));
  EXPECT_THAT(collect("o.rxf").errors, HasSubstr("parts: has the options of 2 sweeps: "));
  EXPECT_FALSE(exists("o.rxf"));
}

TEST_F(SweepChunkTest, AnotherSizeOfChunksIsAnotherSweep) {
  makeScenarios(10);
  ztbFine(sweep({"--chunk", "3"}));
  expectFails(1,
              "ztb: out.rxf: is from a sweep with another --chunk; without --resume all is solved "
              "anew\n",
              sweep({"--resume"}));
  EXPECT_THAT(ztbFine(sweep({"--resume", "--chunk", "3"})),
              StartsWith("10 scenarios, 10 of them "));
}

TEST_F(SweepChunkTest, WrongUse) {
  makeScenarios(2);
  for (const char* chunk : {"0", "1000001"}) {
    expectFails(2, "ztb: --chunk " + std::string(chunk) + ": 1 to 1000000 are allowed\n",
                sweep({"--chunk", chunk}));
  }
  EXPECT_THAT(ztb(sweep({"--time-limit", "soon"})).errors, StartsWith("ztb: --time-limit soon: "));
  expectFails(2, "ztb: --part: --parts is missing, the folder of the parts\n",
              {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--part", "1/2"});
  expectFails(2, "ztb: --collect: --parts is missing, the folder of the parts\n",
              sweep({"--collect"}));
  expectFails(2, "ztb: --part makes no result, --collect does; leave --out out\n",
              sweep({"--part", "1/2", "--parts", "parts"}));
  expectFails(2, "ztb: --collect and --part: one of them\n",
              sweep({"--part", "1/2", "--parts", "parts", "--collect"}));
  for (const char* part : {"1", "1/", "1/2/3", "a/b", " 1/2", "99999999999/99999999999"}) {
    expectFails(2,
                "ztb: --part '" + std::string(part) + "': two numbers are expected, as in 2/10\n",
                share(part));
  }
  for (const char* part : {"3/2", "0/2", "-1/2", "1/0"}) {
    expectFails(2,
                "ztb: --part " + std::string(part) +
                    ": the first number is that of a share, 1 to the second one\n",
                share(part));
  }
  expectFails(2, "ztb: --out is required\n",
              {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s"});
  expectFails(2, "ztb: MODEL is required\n", {"sweep", "--out", "o.rxf"});
  expectFails(2, "ztb: --over is required\n",
              {"sweep", "m.lp", "--scenarios", "sc.rxf", "--out", "o.rxf"});
}

using SweepEndTest = tooltest::EndlessSweepTest;

TEST_F(SweepEndTest, AScenarioEndsAtItsTimeLimit) {
  makeScenarios(3, {2});
  const ProcessorTimeLimit limit(60);
  const Outcome outcome = ztb(sweep({"--time-limit", "1"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("ztb: scenario sc2: "));
  EXPECT_THAT(outcome.errors, HasSubstr(", time limit\n"));
  const ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("sweep_solve_status").find("sc2")->level(), 3);
  EXPECT_EQ(out.symbol("sweep_objective").recordCount(), 2);
}

}  // namespace
