// The ztb command on Windows: names and arguments, standard streams, sweeps, and what is not there.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/endless_sweep.h"
#include "tests/tools/program.h"
#include "tests/tools/run_program_windows.h"

namespace {

using testing::HasSubstr;
using tooltest::Outcome;
using tooltest::Program;
using tooltest::ProgramTest;

// U+017E, U+6570, U+1F600.
const std::string kName = "\xC5\xBE\xE6\x95\xB0\xF0\x9F\x98\x80";

class CommandOnWindows : public ProgramTest {
 protected:
  void makeFile(const std::string& name) const {
    ztb::Database database;
    ztb::Symbol set = database.addSet("s", {"*"});
    set.add(kName);
    set.add("b");
    ztb::Symbol parameter = database.addParameter("p", {set});
    parameter.add(kName).setLevel(3);
    parameter.add("b").setLevel(26);
    database.write(path(name));
  }
};

TEST_F(CommandOnWindows, NamesAndArgumentsAreUtf8) {
  makeFile(kName + ".rxf");
  EXPECT_THAT(ztbFine({"info", kName + ".rxf"}), HasSubstr(kName + ".rxf: 2 symbols"));
  // The three characters take five places.
  EXPECT_EQ("parameter p(s)\n\ns      value\n-----  -----\n" + kName + "      3\n\n1 record\n",
            ztbFine({"show", kName + ".rxf", "p", "--slice", kName}));
  ztbFine({"copy", kName + ".rxf", "p", "copy" + kName + ".rxf"});
  EXPECT_TRUE(exists("copy" + kName + ".rxf"));
}

TEST_F(CommandOnWindows, ArgumentsStayAsTheyAre) {
  makeFile("p.rxf");
  // No names of files take the place of the star, and a slash begins no option.
  EXPECT_THAT(ztbFine({"show", "p.rxf", "p", "--slice", "*"}), HasSubstr("b  "));
  expectFails(1, "ztb: No such file: /h\n", {"info", "/h"});
}

// Bytes that a text would lose: ends of lines, and the one that ends texts.
TEST_F(CommandOnWindows, StandardStreamsAreBinary) {
  makeFile("p.rxf");
  const Outcome copied = ztb({"copy", "p.rxf", "p", "-"});
  EXPECT_EQ("standard output: 2 symbols, 2 labels, 4 records\n", copied.errors);
  ztbFine({"copy", "p.rxf", "p", "copy.rxf"});
  EXPECT_EQ(read("copy.rxf"), copied.output);
  const Outcome shown = ztb({"show", "-", "p", "--csv"}, copied.output);
  EXPECT_EQ("", shown.errors);
  EXPECT_EQ("s,value\n" + kName + ",3\nb,26\n", shown.output);
}

TEST_F(CommandOnWindows, WhatIsNotThereIsToldSo) {
  makeFile("p.rxf");
  write("m.lp", "Minimize\n cost: x\nEnd\n");
  expectFails(1, "ztb: the viewer is not built for Windows; 'ztb show' prints what a file has\n",
              {"view", "p.rxf"});
  expectFails(1, "ztb: PNG pictures are made on Linux alone; write SVG\n",
              {"plot", "p.rxf", "p", "--x", "1", "--out", "p.png"});
  for (const std::vector<std::string>& engine :
       {std::vector<std::string>{"--slurm"}, {"--dask", "tcp://host:8786"}}) {
    std::vector<std::string> words{"sweep",  "m.lp", "--scenarios", "p.rxf",
                                   "--over", "s",    "--out",       "out.rxf"};
    words.insert(words.end(), engine.begin(), engine.end());
    expectFails(2, "ztb: --slurm and --dask: clusters are worked with from Linux\n", words);
  }
}

bool goesOn(const Program& run) {
  return WaitForSingleObject(run.process(), 0) == WAIT_TIMEOUT;
}

class SweepOnWindows : public tooltest::EndlessSweepTest {
 protected:
  void SetUp() override {
    EndlessSweepTest::SetUp();
    std::ofstream(streams_.file("in")).close();
  }

  std::string errors() const {
    std::ifstream in(streams_.file("err"), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  // Waits until the basis that all scenarios start from is there, and a worker that is not `known`;
  // its process.
  HANDLE waitForWorker(const Program& run, DWORD known = 0) const {
    while (goesOn(run)) {
      for (const DWORD child : tooltest::childrenOf(run.number())) {
        if (child == known || !hasBasis() || !tooltest::hasLoaded(child, L"ztbsweep.dll")) continue;
        const HANDLE worker = OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, child);
        if (worker != nullptr) return worker;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ADD_FAILURE() << "the sweep has ended: " << errors();
    return nullptr;
  }

  bool hasBasis() const {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(path("out.rxf.parts"), error), end;
         !error && entry != end; entry.increment(error)) {
      const std::string name = entry->path().filename().string();
      if (name.ends_with(".basis") && !name.starts_with(".")) return true;
    }
    return false;
  }

  // Ends both workers that a sweep begins scenario sc1 with.
  void endWorkersTwice(DWORD code, const std::string& told) {
    makeScenarios(3, {1});
    Program run(ZTB_PROGRAM, sweep({"--chunk", "1"}), path("."), streams_);
    DWORD last = 0;
    for (int death = 0; death < 2; ++death) {
      const HANDLE worker = waitForWorker(run, last);
      ASSERT_NE(nullptr, worker) << errors();
      last = GetProcessId(worker);
      TerminateProcess(worker, code);
      WaitForSingleObject(worker, INFINITE);
      CloseHandle(worker);
    }
    EXPECT_EQ(1, run.wait());
    const std::string end = "its worker process ended with exit code " + told;
    EXPECT_EQ("ztb: scenario sc1: " + end +
                  "; it is solved again\nztb: scenario sc1: failed: " + end + "\n",
              errors());
    const ztb::Database out = ztb::Database::open(path("out.rxf"));
    EXPECT_EQ(2, out.symbol("sweep_objective").recordCount());
  }

  ztbtest::TempFolder streams_;
};

TEST_F(SweepOnWindows, HasTheSameBytesByOneProcessAndByTwo) {
  makeScenarios(30, {});
  ztbFine(sweep({"--chunk", "5", "--report", "item"}, "one.rxf"));
  ztbFine(sweep({"--chunk", "5", "--report", "item", "--jobs", "2"}, "two.rxf"));
  EXPECT_EQ(read("one.rxf"), read("two.rxf"));
  const ztb::Database out = ztb::Database::open(path("one.rxf"));
  EXPECT_EQ(30, out.symbol("sweep_objective").recordCount());
  for (const char* label : {"sc1", "sc30"}) {
    EXPECT_EQ(0, out.symbol("sweep_objective").find(label)->level());
  }
  EXPECT_FALSE(exists("one.rxf.parts"));
  EXPECT_FALSE(exists(".one.rxf.lock"));
}

TEST_F(SweepOnWindows, WorkersEndWithTheSweepHoweverThatEnds) {
  makeScenarios(2, {1, 2});
  Program run(ZTB_PROGRAM, sweep({"--chunk", "1"}), path("."), streams_);
  const HANDLE worker = waitForWorker(run);
  ASSERT_NE(nullptr, worker);
  TerminateProcess(run.process(), 3);
  EXPECT_EQ(3, run.wait());
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(worker, 60000));
  CloseHandle(worker);
  // What is left is in nobody's way.
  makeScenarios(2, {});
  ztbFine(sweep());
}

TEST_F(SweepOnWindows, AScenarioAtWhichTwoWorkersDiedHasFailed) {
  endWorkersTwice(0xC0000005, "0xc0000005");
}

// By a code that tells of no failure: the worker has not said that it is through.
TEST_F(SweepOnWindows, AWorkerThatEndsWithoutAWordHasDied) {
  endWorkersTwice(0, "0");
}

}  // namespace
