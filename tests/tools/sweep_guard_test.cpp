// ztb sweep: results never mix with those of another sweep.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <ztb/ztb.hpp>

#include "tests/support/matches.h"
#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"

namespace {

using testing::HasSubstr;
using tooltest::BackgroundProgram;
using tooltest::Outcome;
using tooltest::ProcessorTimeLimit;

class SweepGuardTest : public tooltest::EndlessSweepTest {
 protected:
  // Starts a sweep that goes on until it is ended, and waits until it has published what it could:
  // the first worker is at the endless scenario, the second one is through.
  std::unique_ptr<BackgroundProgram> startEndless(const std::vector<std::string>& more = {}) {
    makeScenarios(2, {1});
    std::vector<std::string> arguments = sweep({"--jobs", "2"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    std::filesystem::create_directory(path("out.rxf.parts"));
    write("out.rxf.parts/notes", "it keeps the folder, which is watched");
    auto run = std::make_unique<BackgroundProgram>(path("."), arguments, "errors");
    EXPECT_TRUE(run->waitForFile("-1-2.rxf"));
    std::filesystem::remove(path("out.rxf.parts/notes"));
    return run;
  }

  // The part that the second worker left; empty when there is none.
  std::string partOfSecond() const {
    if (!exists("out.rxf.parts")) return "";
    for (const auto& entry : std::filesystem::directory_iterator(path("out.rxf.parts"))) {
      const std::string name = entry.path().filename().string();
      if (name.ends_with("-1-2.rxf")) return "out.rxf.parts/" + name;
    }
    return "";
  }

  // Under another name as soon as the processes that had it open are gone: Windows asks for that.
  void moveWhenClosed(const std::string& from, const std::string& to) {
    std::error_code error;
    for (int attempt = 0; attempt < 200; ++attempt) {
      std::filesystem::rename(path(from), path(to), error);
      if (!error) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    FAIL() << from << ": " << error.message();
  }

  const ProcessorTimeLimit limit_{60};
};

TEST_F(SweepGuardTest, ASecondSweepIntoOneResultIsRefused) {
  const auto run = startEndless();
  for (const char* out : {"out.rxf", "./out.rxf"}) {
    const Outcome second = ztb({"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--out",
                                out, "--solver", "clp", "--resume"});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.errors, ztbtest::Matches("ztb: " + std::string(out) +
                                                ": another sweep is writing this result "
                                                "\\(process [0-9]+\\)\n"));
  }
  EXPECT_FALSE(partOfSecond().empty()) << "the first sweep's results are left alone";
  run->kill();
  run->wait();
  EXPECT_FALSE(exists("out.rxf"));
}

TEST_F(SweepGuardTest, TheLockOfASweepThatWasKilledIsInNobodysWay) {
  startEndless()->kill();
  EXPECT_TRUE(exists(".out.rxf.lock"));
  makeScenarios(2, {});
  EXPECT_THAT(ztbFine(sweep()), testing::StartsWith("2 scenarios: 2 optimal"));
  EXPECT_FALSE(exists(".out.rxf.lock"));
}

TEST_F(SweepGuardTest, ALockThatIsAnotherNameOfAFileIsNotWrittenTo) {
  makeScenarios(1, {});
  write("mine", "kept");
  std::filesystem::create_hard_link(path("mine"), path(".out.rxf.lock"));
  expectFails(1,
              "ztb: " + std::filesystem::canonical(path(".")).generic_string() +
                  "/.out.rxf.lock: is no lock of a sweep; move it away\n",
              sweep());
  EXPECT_EQ(read("mine"), "kept");
}

// The worker that takes over reads the files anew. That the right ones stand there when the sweep
// ends would not tell.
TEST_F(SweepGuardTest, ATableThatTheModelReadsIsAnInput) {
  write("m.mod",
        "set S;\nparam weight{S};\ntable t IN 'CSV' 'w.csv' : S <- [item], weight;\n"
        "var need_var;\nvar x{S} >= 0;\nminimize cost: sum{s in S} weight[s] * x[s];\n"
        "s.t. meet: sum{s in S} x[s] >= need_var;\nend;\n");
  write("w.csv", "item,weight\na,2\nb,3\n");
  write("needs.csv", "s,need\ns1,5\ns2,7\n");
  ztbFine({"import", "sc.rxf", "--from", "needs.csv", "--set", "s", "--parameter", "need(s)"});
  const std::vector<std::string> sweep = {"sweep", "m.mod",    "--scenarios", "sc.rxf", "--over",
                                          "s",     "--resume", "--out",       "out.rxf"};
  ztbFine(sweep);
  // The cheaper item, at 2 each.
  const auto objectives = [this] {
    return ztbFine({"show", "out.rxf", "sweep_objective", "--csv"});
  };
  EXPECT_THAT(objectives(), testing::EndsWith("\ns1,10\ns2,14\n"));
  write("w.csv", "item,weight\na,4\nb,3\n");
  expectFails(1,
              "ztb: out.rxf: is from a sweep with another table of the model; without --resume all "
              "is solved anew\n",
              sweep);
  EXPECT_THAT(objectives(), testing::EndsWith("\ns1,10\ns2,14\n"));
}

TEST_F(SweepGuardTest, AWorkerThatTakesOverReadsNoOtherFile) {
  makeScenarios(2, {});
  std::filesystem::rename(path("sc.rxf"), path("other"));
  makeScenarios(2, {1, 2});
  BackgroundProgram run(path("."), sweep({"--jobs", "2"}), "errors");
  ASSERT_TRUE(run.waitForChildren(2)) << "the sweep ended without two workers";
  std::filesystem::rename(path("other"), path("sc.rxf"));
  tooltest::killChild(run.children().front());
  EXPECT_EQ(run.wait(), 1);
  EXPECT_FALSE(exists("out.rxf"));
  EXPECT_THAT(read("errors"), HasSubstr("another scenario file stood in its place while the sweep "
                                        "ran"));
}

TEST_F(SweepGuardTest, APartOfOtherInputsThatAppearsOnTheWayIsNotCollected) {
  makeScenarios(1, {});
  ztbFine(sweep({}, "foreign.rxf"));
  write("out.rxf", "an older result");
  const auto run = startEndless({"--stall", "5"});
  moveWhenClosed("foreign.rxf", partOfSecond());
  EXPECT_EQ(run->wait(), 1);
  EXPECT_THAT(read("errors"), HasSubstr("-1-2.rxf: is from a sweep with another scenario file; "
                                        "without --resume all is solved anew; remove this file, "
                                        "and what it held is solved again\n"));
  EXPECT_EQ(read("out.rxf"), "an older result");
}

TEST_F(SweepGuardTest, AnInputThatChangesOnTheWayEndsTheSweepWithoutResult) {
  const auto run = startEndless({"--stall", "5"});
  write("m.lp", read("m.lp") + "\\ a comment\n");
  EXPECT_EQ(run->wait(), 1);
  EXPECT_THAT(read("errors"), HasSubstr("ztb: out.rxf: another model file stood in its place while "
                                        "the sweep ran; what this run solved is dropped\n"));
  EXPECT_FALSE(exists("out.rxf"));
  EXPECT_FALSE(exists("out.rxf.parts"));
}

TEST_F(SweepGuardTest, FilesThatAreNoPartsAreLeftAlone) {
  makeScenarios(1, {});
  std::filesystem::create_directory(path("out.rxf.parts"));
  for (const char* name : {"0123456789abcdef-01-2.rxf", "0123456789abcdef-2-2.rxf", "0123-0-1.rxf",
                           "0123456789abcdef-0-99999999999.rxf", "0123456789ABCDEF-0-1.rxf",
                           "0123456789abcdef-0-1.rxf~"}) {
    write("out.rxf.parts/" + std::string(name), "kept");
    EXPECT_THAT(ztbFine(sweep({"--resume"})), testing::StartsWith("1 scenario"));
    EXPECT_EQ(read("out.rxf.parts/" + std::string(name)), "kept") << name;
  }
}

}  // namespace
