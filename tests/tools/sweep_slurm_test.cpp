// ztb sweep --slurm: what it submits, told from the script, and what it does where Slurm is not
// there or refuses. Commands that say what Slurm's would say stand in for them.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/sweep_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tooltest::Outcome;

class SweepSlurmTest : public tooltest::SweepTest {
 protected:
  void SetUp() override {
    SweepTest::SetUp();
    path_ = std::getenv("PATH");
    std::filesystem::create_directory(path("bin"));
  }
  void TearDown() override { setenv("PATH", path_.c_str(), 1); }

  void command(const std::string& name, const std::string& script) const {
    write("bin/" + name, "#!/bin/sh\n" + script);
    ASSERT_EQ(chmod(path("bin/" + name).c_str(), 0755), 0);
  }
  void lookInto(const std::string& folders) const { setenv("PATH", folders.c_str(), 1); }
  void useCommands() const { lookInto(path("bin") + ":" + path_); }

  static std::vector<std::string> slurm(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = sweep({"--chunk", "1", "--slurm"});
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  std::string script(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words = slurm({"--dry-run"});
    words.insert(words.end(), more.begin(), more.end());
    return ztbFine(words);
  }

 private:
  std::string path_;
};

TEST_F(SweepSlurmTest, TheScriptHasOneTaskForFourChunks) {
  makeScenarios(9);
  const std::string text = script();
  EXPECT_THAT(text, StartsWith("#!/bin/sh\n#SBATCH --job-name=ztb-sweep\n#SBATCH --array=1-2\n"
                               "#SBATCH --ntasks=1\n#SBATCH --cpus-per-task=1\n"
                               "#SBATCH --signal=B:TERM@60\n#SBATCH --requeue\n"));
  EXPECT_THAT(text, HasSubstr(" --part \"$SLURM_ARRAY_TASK_ID/2\"\n"));
  EXPECT_FALSE(exists("out.rxf.parts"));
}

TEST_F(SweepSlurmTest, OptionsOfTheJobStandInTheScript) {
  makeScenarios(9);
  const std::string text =
      script({"--array", "7", "--time", "5", "--partition", "long", "--jobs", "3", "--stall", "9",
              "--max-memory", "2K", "--sbatch=--account=a b", "--sbatch=--mem=4G"});
  EXPECT_THAT(text, HasSubstr("#SBATCH --array=1-7\n"));
  EXPECT_THAT(text, HasSubstr("#SBATCH --cpus-per-task=3\n"));
  EXPECT_THAT(text, HasSubstr("#SBATCH --signal=B:TERM@30\n"));
  EXPECT_THAT(text, HasSubstr("#SBATCH --time=5\n#SBATCH --partition=long\n"
                              "#SBATCH --account=a\\ b\n#SBATCH --mem=4G\n"));
  EXPECT_THAT(text, HasSubstr(" --jobs 3 --stall 9 --max-memory 2048 --progress none "));
}

TEST_F(SweepSlurmTest, NamesAreWordsOfTheShellWhateverTheyHold) {
  makeScenarios(2);
  std::filesystem::rename(path("sc.rxf"), path("it's $(a) \"x\".rxf"));
  std::filesystem::create_directory(path("b c"));
  const std::string text = ztbFine({"sweep", "m.lp", "--scenarios", "it's $(a) \"x\".rxf", "--over",
                                    "s", "--out", "b c/o'.rxf", "--slurm", "--dry-run"});
  EXPECT_THAT(text,
              HasSubstr(" --scenarios '" + path("") + "it'\\''s $(a) \"x\".rxf' --over 's' "));
  EXPECT_THAT(text, HasSubstr(" --parts '" + path("b c") + "/o'\\''.rxf.parts' --part "));
}

TEST_F(SweepSlurmTest, WithoutSlurmItsPackageIsNamed) {
  makeScenarios(2);
  lookInto(path("bin"));
  expectFails(1,
              "ztb: sbatch: there is no such program; --slurm needs the commands of Slurm on this "
              "machine (Debian package slurm-client)\n",
              slurm());
}

TEST_F(SweepSlurmTest, WhatSlurmSaysAgainstTheJobIsTold) {
  makeScenarios(2);
  command("sbatch", "echo 'sbatch: error: Invalid partition name specified' >&2; exit 1\n");
  useCommands();
  expectFails(1, "ztb: sbatch: error: Invalid partition name specified\n", slurm());
  command("sbatch", "exit 3\n");
  expectFails(1, "ztb: sbatch: ended with 3\n", slurm());
}

TEST_F(SweepSlurmTest, OnlySharesWithMissingChunksAreSubmittedAgain) {
  makeScenarios(9);
  for (const char* share : {"2/9", "5/9"}) {
    ztbFine({"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--chunk", "1", "--part",
             share, "--parts", "parts"});
  }
  EXPECT_THAT(script({"--array", "9", "--resume", "--parts", "parts"}),
              HasSubstr("#SBATCH --array=1,3-4,6-9\n"));
  for (const char* share : {"1/3", "2/3", "3/3"}) {
    ztbFine({"sweep", "m.lp", "--scenarios", "sc.rxf", "--over", "s", "--chunk", "1", "--part",
             share, "--parts", "parts"});
  }
  const Outcome nothing = ztb(slurm({"--dry-run", "--resume", "--parts", "parts"}));
  EXPECT_EQ(nothing.errors, "ztb: nothing is left to solve, no job would be submitted\n");
  EXPECT_EQ(nothing.output, "");
}

TEST_F(SweepSlurmTest, AJobThatIsInTheQueueIsNotSubmittedTwice) {
  makeScenarios(4);
  command("sbatch", "cat >script; echo '41;cluster'\n");
  command("squeue", "echo 'PENDING|Resources'\n");
  useCommands();
  const std::string told = ztbFine(slurm({"--no-wait"}));
  EXPECT_EQ(told,
            "job 41: 1 task with 4 scenarios\n"
            "ztb sweep --collect --parts 'out.rxf.parts' --out 'out.rxf'\n");
  expectFails(1,
              "ztb: job 41 of this sweep is in the queue still: --resume waits for it, 'scancel "
              "41' ends it\n",
              slurm());
  // The job solves, and those that wait for it find what it left.
  command("sbatch", "echo 'sbatch: error: twice' >&2; exit 1\n");
  command("squeue", "[ -e looked ] || SLURM_ARRAY_TASK_ID=1 sh script; touch looked\n");
  const Outcome outcome = ztb(slurm({"--resume"}));
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.status, 0);
  expectObjectives("out.rxf", 4);
  EXPECT_FALSE(exists("out.rxf.parts"));
}

TEST_F(SweepSlurmTest, ATaskThatDidNotEndWellIsToldWithItsLastWord) {
  makeScenarios(8);
  command("sbatch", "cat >script; SLURM_ARRAY_TASK_ID=2 sh script; echo 7\n");
  command("squeue", "echo 'slurm_load_jobs error: Invalid job id specified' >&2; exit 1\n");
  useCommands();
  const Outcome outcome = ztb(slurm());
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("ztb: task 1: left no word in " + path("out.rxf.parts/")));
  EXPECT_THAT(
      outcome.errors,
      HasSubstr(".1.log: the machine does not see that folder, or no command\n"
                "ztb: 1 task of job 7 did not end well, --resume submits them again; 4 of "
                "8 scenarios are not solved yet, what is solved stands in out.rxf.parts\n"));
  EXPECT_FALSE(exists("out.rxf"));
}

TEST_F(SweepSlurmTest, WrongUsageIsTold) {
  makeScenarios(2);
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"--array", "3"}, "--array without --slurm"},
      {{"--no-wait"}, "--no-wait without --slurm"},
      {{"--slurm", "--array", "0"}, "--array 0: 1 to 100000 are allowed"},
      {{"--slurm", "--time", "soon"},
       "--time soon: minutes are expected, or as in 1:30:00 for hours, 2-12 for days and hours"},
      {{"--slurm", "--dask", "tcp://h:1"}, "--slurm and --dask: one of them"},
      {{"--slurm", "--sbatch", "mem"},
       "--sbatch 'mem': an option of sbatch is expected, as in --sbatch=--mem=4G"},
      {{"--dask", "tcp://h:1", "--jobs", "2"},
       "--dask and --jobs: workers of the cluster solve, no processes of this machine"},
      {{"--dask", "tcp://h:1", "--max-memory", "1G"},
       "--dask and --max-memory: workers are limited where they are started"},
      {{"--progress", "loud"}, "--progress 'loud': terminal, json or none is expected"}};
  for (const auto& [more, text] : cases) {
    const Outcome outcome = ztb(sweep(more));
    EXPECT_EQ(outcome.status, 2) << text;
    EXPECT_THAT(outcome.errors, StartsWith("ztb: " + text + "\n"));
  }
}

}  // namespace
