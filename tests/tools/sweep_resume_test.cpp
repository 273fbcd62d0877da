// ztb sweep: what is left of a run that was interrupted, and going on with it.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"
#include "tests/tools/sweep_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::BackgroundProgram;
using tooltest::EndlessSweepTest;
using tooltest::Outcome;
using tooltest::ProcessorTimeLimit;
using tooltest::SweepTest;

class SweepResumeTest : public SweepTest {
 protected:
  // Leaves a part with the first half of the scenarios, as an interrupted run does, and no result
  // file.
  void leavePart(int count) const {
    makeScenarios(count);
    ztbFine({"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "S", "--report", "ship", "--part",
             "1/2", "--parts", "out.rxf.parts"});
  }

  // The first line of what a run prints, without time and rate.
  static std::string counts(const std::string& output) {
    return output.substr(0, output.find(" in "));
  }

  void expectRefused(const std::string& difference, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = more;
    arguments.emplace_back("--resume");
    const Outcome outcome = ztb(sweep(arguments));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("ztb: out.rxf"));
    EXPECT_THAT(outcome.errors, HasSubstr(": is from a sweep with " + difference +
                                          "; without --resume all is solved anew\n"));
  }
};

TEST_F(SweepResumeTest, SolvesOnlyWhatIsNotInTheParts) {
  leavePart(10);
  // A value that no solve gives tells that the scenario was kept.
  {
    const std::string file = path(onlyPart("out.rxf"));
    ztb::Database part = ztb::Database::open(file);
    part.symbol("sweep_objective").find("sc2")->setLevel(-1);
    part.write(file);
  }
  EXPECT_EQ(counts(ztbFine(sweep({"--report", "ship", "--resume"}))),
            "10 scenarios, 5 of them kept: 10 optimal");
  EXPECT_EQ(parts("out.rxf"), 0);
  ztb::Database out = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(out.symbol("sweep_objective").find("sc2")->level(), -1);
  EXPECT_EQ(out.symbol("ship_level").recordCount(), 20);
}

TEST_F(SweepResumeTest, WithoutResumeAllIsSolvedAnew) {
  leavePart(12);
  const std::string part = std::filesystem::path(onlyPart("out.rxf")).filename().string();
  write("out.rxf.parts/." + part + ".0.rxftmp", "left by a writer that was killed");
  EXPECT_EQ(counts(ztbFine(sweep())), "12 scenarios: 12 optimal");
  EXPECT_FALSE(exists("out.rxf.parts"));
}

TEST_F(SweepResumeTest, LeavesFilesAloneThatAreNoParts) {
  makeScenarios(3);
  std::filesystem::create_directory(path("out.rxf.parts"));
  const std::vector<std::string> others{"out.rxf.part1", "out.rxf.parts/notes.txt",
                                        "out.rxf.parts/0123456789abcdef"};
  for (const std::string& other : others) {
    write(other, "kept");
  }
  ztbFine(sweep());
  for (const std::string& other : others) {
    EXPECT_EQ(read(other), "kept") << other;
  }
}

TEST_F(SweepResumeTest, RefusesPartsOfOtherInputs) {
  leavePart(10);
  expectRefused("another --solver", {"--report", "ship", "--solver", "glpk"});
  expectRefused("another --report", {});
  expectRefused("another --report", {"--report", "need"});
  makeScenarios(10, 1);
  expectRefused("another scenario file", {"--report", "ship"});
  makeScenarios(10);
  const std::string model = read("m.lp");
  write("m.lp", model + "\\ a comment\n");
  expectRefused("another model file", {"--report", "ship"});
  write("m.lp", model);
  EXPECT_EQ(parts("out.rxf"), 1);
  EXPECT_EQ(counts(ztbFine(sweep({"--report", "SHIP", "--resume"}))),
            "10 scenarios, 5 of them kept: 10 optimal");
}

TEST_F(SweepResumeTest, LeavesWhatItWasToReplaceUntilItIsReplaced) {
  leavePart(10);
  write("out.rxf", "something else");
  EXPECT_EQ(counts(ztbFine(sweep({"--report", "ship", "--resume"}))),
            "10 scenarios, 5 of them kept: 10 optimal");
  expectObjectives("out.rxf", 10);
}

TEST_F(SweepResumeTest, PartsServeUnderAnotherName) {
  leavePart(10);
  std::filesystem::rename(path("out.rxf.parts"), path("free.rxf.parts"));
  EXPECT_EQ(counts(ztbFine(sweep({"--report", "ship", "--resume"}, "free.rxf"))),
            "10 scenarios, 5 of them kept: 10 optimal");
  expectObjectives("free.rxf", 10);
}

TEST_F(SweepResumeTest, APlaceWhereNoFileCanBeIsToldBeforeAnythingIsSolved) {
  makeScenarios(3);
  std::filesystem::create_directory(path("taken"));
  expectFails(1, "ztb: Is a folder: taken\n", sweep({}, "taken"));
  EXPECT_FALSE(exists("taken.parts"));
  expectFails(1, std::string("ztb: Not a regular file: ") + tooltest::kDevice + "\n",
              sweep({}, tooltest::kDevice));
  expectFails(1, "ztb: No such file: the folder does not exist: none/o.rxf\n",
              sweep({}, "none/o.rxf"));
  EXPECT_EQ(ztb(sweep({}, "")).status, 2);
}

// Its statuses are whole, so that it is kept at first.
TEST_F(SweepResumeTest, APartWithDamagedLevelsIsToBeRemoved) {
  leavePart(10);
  const std::string part = path(onlyPart("out.rxf"));
  {
    const ztb::RxfFile whole(part);
    ztb::RxfRecords levels(whole, whole.symbol("ship_level"));
    ASSERT_TRUE(levels.next());
    std::fstream file(part, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(levels.blockOffset()) + 40);
    file.put('#').flush();
  }
  const Outcome outcome = ztb(sweep({"--report", "ship", "--resume"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("File is damaged: block 1 of 1 of symbol ship_level in "));
  EXPECT_THAT(outcome.errors, HasSubstr("; remove this file, and what it held is solved again; "));
  std::filesystem::remove(part);
  EXPECT_EQ(counts(ztbFine(sweep({"--report", "ship", "--resume"}))),
            "10 scenarios, 5 of them kept: 10 optimal");
}

using SweepWithoutPlaceTest = EndlessSweepTest;

TEST_F(SweepWithoutPlaceTest, KeepsThePartsOfAResultThatCannotBeWrittenInTheEnd) {
  makeScenarios(2, {2});
  const ProcessorTimeLimit limit(60);
  BackgroundProgram run(path("."), sweep({"--stall", "1"}), "errors");
  ASSERT_NE(run.waitForChildBut(0), 0) << "the sweep ended without a worker";
  std::filesystem::create_directory(path("out.rxf"));
  EXPECT_EQ(run.wait(), 1);
  EXPECT_THAT(
      read("errors"),
      HasSubstr(
          "ztb: out.rxf: Is a folder; what was solved stays in out.rxf.parts: --collect --parts "
          "out.rxf.parts with another --out takes it\n"));
  std::filesystem::remove(path("out.rxf"));
  const Outcome collected =
      ztb({"sweep", "--collect", "--parts", "out.rxf.parts", "--out", "c.rxf"});
  EXPECT_EQ(collected.status, 1);
  EXPECT_THAT(collected.output, StartsWith("2 scenarios: 1 optimal, 1 failed in "));
}

TEST_F(SweepResumeTest, RefusesAnotherSetAndFilesThatAreNoResults) {
  makeScenarios(10);
  ztbFine(sweep());
  ztb::Database database = ztb::Database::open(path("sc.rxf"));
  const ztb::Symbol t = database.addSet("t", {"*"});
  database.symbol("t").add("only");
  database.addParameter("ship", {t, "*"});
  database.write(path("sc.rxf"));
  expectRefused("another scenario file", {});
  ztbFine(sweep({}, "new.rxf"));
  const Outcome outcome = ztb(
      {"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "t", "--out", "new.rxf", "--resume"});
  EXPECT_EQ(outcome.errors,
            "ztb: new.rxf: is from a sweep with another --over; without --resume all is solved "
            "anew\n");
  database.write(path("other.rxf"));
  expectFails(1, "ztb: other.rxf: is no result of a sweep\n", sweep({"--resume"}, "other.rxf"));
}

TEST_F(SweepResumeTest, KeepsACompleteResultButTriesFailedScenariosAgain) {
  makeScenarios(10, 0, {{4, "1e305"}, {5, "1000"}});
  EXPECT_EQ(ztb(sweep({"--resume"})).status, 1) << "nothing to go on with is no error";
  const Outcome outcome = ztb(sweep({"--resume"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      outcome.errors,
      "ztb: scenario sc4: failed: Bad value 1e+305 in demand(x)\nztb: scenario sc5: infeasible\n");
  EXPECT_EQ(counts(outcome.output),
            "10 scenarios, 9 of them kept: 8 optimal, 1 infeasible, 1 failed");
  expectObjectives("out.rxf", 10, 0, {4, 5});
}

// Runs that cannot end before they are interrupted, as their first scenario has no end.
class InterruptedSweepTest : public EndlessSweepTest {
 protected:
  // Kills the one worker, and the one that takes over, both of which have the endless scenario
  // before them: it has failed then, and a third one goes on with the rest.
  static void killTwoWorkers(const BackgroundProgram& run) {
    pid_t killed = 0;
    for (int time = 0; time < 2; ++time) {
      killed = run.waitForChildBut(killed);
      ASSERT_NE(killed, 0) << "the run has ended";
      tooltest::killChild(killed);
    }
  }

  // All chose nothing, which costs nothing, but for the first one, which failed.
  void expectAllButTheFirst(int count) const {
    const ztb::Database out = ztb::Database::open(path("out.rxf"));
    EXPECT_EQ(out.symbol("sweep_status").recordCount(), count);
    EXPECT_EQ(out.symbol("sweep_solve_status").find("sc1")->level(), 13);
    EXPECT_FALSE(out.symbol("sweep_objective").find("sc1"));
    for (int number = 2; number <= count; ++number) {
      const std::string label = "sc" + std::to_string(number);
      EXPECT_EQ(out.symbol("sweep_solve_status").find(label)->level(), 1) << label;
      EXPECT_EQ(out.symbol("sweep_objective").find(label)->level(), 0) << label;
    }
  }

  static std::string twoDeaths() {
    const std::string death = std::string("its worker process ") + tooltest::kKilledChild;
    return "ztb: scenario sc1: " + death + "; it is solved again\n" +
           "ztb: scenario sc1: failed: " + death + "\n";
  }

  const ProcessorTimeLimit limit_{60};
};

TEST_F(InterruptedSweepTest, AfterAKillTheRestIsSolved) {
  makeScenarios(10, {1});
  {
    // The second worker publishes sc6 to sc10, the first one nothing.
    std::filesystem::create_directory(path("out.rxf.parts"));
    write("out.rxf.parts/notes", "it keeps the folder, which is watched");
    BackgroundProgram run(path("."), sweep({"--jobs", "2"}), "errors");
    ASSERT_TRUE(run.waitForFile("-5-10.rxf"));
    std::filesystem::remove(path("out.rxf.parts/notes"));
    run.kill();
    ASSERT_EQ(run.wait(), tooltest::kKilled);
  }
  ASSERT_FALSE(exists("out.rxf"));
  write("output", "");
  BackgroundProgram rest(path("."), sweep({"--resume"}), "errors", "output");
  killTwoWorkers(rest);
  EXPECT_EQ(rest.wait(), 1);
  EXPECT_THAT(read("output"), StartsWith("10 scenarios, 5 of them kept: 9 optimal, 1 failed in "));
  EXPECT_EQ(read("errors"), twoDeaths());
  EXPECT_FALSE(exists("out.rxf.parts"));
  expectAllButTheFirst(10);
}

TEST_F(InterruptedSweepTest, WhatAWorkerThatIsKilledHadLeftToDoIsDoneByAnother) {
  makeScenarios(5, {1});
  BackgroundProgram run(path("."), sweep(), "errors");
  killTwoWorkers(run);
  EXPECT_EQ(run.wait(), 1);
  EXPECT_EQ(read("errors"), twoDeaths());
  expectAllButTheFirst(5);
}

}  // namespace
