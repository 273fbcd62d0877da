// The functions of ztb/sweep.h and their wrapper: where chunks begin and end, that a chunk is a
// function of its inputs, and what is told of parts.
#include <gmock/gmock.h>
#include <unistd.h>
#include <ztb/sweep.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/sweep.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class SweepLibraryTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }

  // Six items of one cost, of which any can meet what is wanted.
  void SetUp() override {
    std::ofstream model(path("m.lp"));
    model << "Minimize\n z: a(i1) + a(i2) + a(i3) + a(i4) + a(i5) + a(i6)\nSubject To\n"
             " c: a(i1) + a(i2) + a(i3) + a(i4) + a(i5) + a(i6) - wanted_var >= 0\n"
             " d: a(i2) + a(i4) + a(i6) - 0.5 wanted_var <= 0\n"
             "Bounds\n wanted_var = 3\n a(i1) <= 4\n a(i2) <= 3\n a(i3) <= 4\n a(i4) <= 3\n"
             " a(i5) <= 4\n a(i6) <= 3\nEnd\n";
  }

  void makeScenarios(int count) const {
    std::vector<std::string> labels;
    for (int number = 0; number < count; ++number) labels.push_back("s" + std::to_string(number));
    makeScenarios(labels);
  }
  void makeScenarios(const std::vector<std::string>& labels) const {
    ztb::Database database;
    ztb::Symbol set = database.addSet("s", {"*"});
    ztb::Symbol wanted = database.addParameter("wanted", {set});
    for (std::size_t number = 0; number < labels.size(); ++number) {
      set.add(labels[number]);
      wanted.add(labels[number]).setLevel(1 + static_cast<int>(number) * 5 % 9);
    }
    database.write(path("sc.rxf"));
  }

  void open(ztb::Sweep& sweep, const std::string& chunk = "") const {
    sweep.option("model", path("m.lp")).option("scenarios", path("sc.rxf")).option("over", "S");
    sweep.option("report", "a");
    if (!chunk.empty()) sweep.option("chunk", chunk);
    sweep.open();
  }

  // The bytes of each part by its name.
  std::map<std::string, std::string> parts(const std::string& folder) const {
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(path(folder))) {
      if (entry.path().extension() == ".rxf") {
        found[entry.path().filename().string()] = read(entry.path().string());
      }
    }
    return found;
  }

  ztbtest::TempFolder folder_;
};

TEST_F(SweepLibraryTest, ChunksAreASixtyFourthOfTheSweep) {
  struct Case {
    int scenarios;
    int ofChunk;
  };
  for (const Case& one : {Case{1, 1}, Case{64, 1}, Case{127, 1}, Case{128, 2}, Case{1000, 15}}) {
    makeScenarios(one.scenarios);
    ztb::Sweep sweep;
    open(sweep);
    EXPECT_EQ(sweep.scenarioCount(), one.scenarios);
    EXPECT_EQ(sweep.chunk(0).end, one.ofChunk) << one.scenarios;
    EXPECT_EQ(sweep.chunk(sweep.chunkCount() - 1).end, one.scenarios);
  }
}

TEST_F(SweepLibraryTest, TheSizeOfChunksCanBeGiven) {
  makeScenarios(10);
  ztb::Sweep sweep;
  open(sweep, "4");
  std::vector<int> ends;
  for (int chunk = 0; chunk < sweep.chunkCount(); ++chunk) ends.push_back(sweep.chunk(chunk).end);
  EXPECT_THAT(ends, ElementsAre(4, 8, 10));
  EXPECT_EQ(sweep.scenario(9), "s9");
  EXPECT_EQ(sweep.over(), "s");
  EXPECT_EQ(sweep.key().size(), 16U);
}

TEST_F(SweepLibraryTest, AChunkDoesNotDependOnTheOnesBefore) {
  makeScenarios(30);
  ztb::Sweep forward;
  open(forward, "6");
  for (int chunk = 0; chunk < 5; ++chunk) {
    EXPECT_TRUE(forward.solve(path("forward"), chunk));
    forward.publish(path("forward"));
  }
  ztb::Sweep backward;
  open(backward, "6");
  for (int chunk = 4; chunk >= 0; --chunk) {
    EXPECT_TRUE(backward.solve(path("backward"), chunk));
    backward.publish(path("backward"));
  }
  EXPECT_EQ(parts("forward").size(), 5U);
  EXPECT_EQ(parts("forward"), parts("backward"));
}

TEST_F(SweepLibraryTest, PartsOfSeveralChunksGiveTheSameResult) {
  makeScenarios(30);
  ztb::Sweep sweep;
  open(sweep, "6");
  for (int chunk = 0; chunk < 5; ++chunk) {
    ASSERT_TRUE(sweep.solve(path("one"), chunk));
    sweep.publish(path("one"));
  }
  for (int chunk = 0; chunk < 5; ++chunk) {
    ASSERT_TRUE(sweep.solve(path("two"), chunk));
    if (chunk >= 2) sweep.publish(path("two"));
  }
  EXPECT_EQ(parts("one").size(), 5U);
  EXPECT_EQ(parts("two").size(), 3U);
  EXPECT_EQ(read(path("one/" + sweep.key() + ".basis")),
            read(path("two/" + sweep.key() + ".basis")));
  for (const char* folder : {"one", "two"}) {
    sweep.find(path(folder));
    sweep.collect(path(std::string(folder) + ".rxf"));
  }
  EXPECT_EQ(read(path("one.rxf")), read(path("two.rxf")));
  const ztb::Database result = ztb::Database::open(path("one.rxf"));
  for (int number = 0; number < 30; ++number) {
    const std::string label = "s" + std::to_string(number);
    EXPECT_NEAR(result.symbol("sweep_objective").find(label)->level(), 1 + number * 5 % 9, 1e-9);
  }
  EXPECT_EQ(result.symbol("a_level").recordCount(), 180);
}

// The labels of the items come into a part with the solution of its first scenario.
TEST_F(SweepLibraryTest, AScenarioMayBeCalledAsALabelOfTheModel) {
  const std::vector<std::string> labels{"s", "i5", "I2", "t", "i1"};
  makeScenarios(labels);
  for (const char* chunk : {"1", "3", "5"}) {
    ztb::Sweep sweep;
    open(sweep, chunk);
    const std::string folder = path(std::string("parts") + chunk);
    for (int number = 0; number < sweep.chunkCount(); ++number) {
      ASSERT_TRUE(sweep.solve(folder, number));
    }
    sweep.publish(folder);
    sweep.find(folder);
    sweep.collect(path("out.rxf"));
    const ztb::Database result = ztb::Database::open(path("out.rxf"));
    std::map<std::string, double> bought;
    for (ztb::Record& record : result["a_level"].records()) {
      bought[record.key(0).str()] += record.level();
    }
    EXPECT_THAT(bought, testing::UnorderedElementsAre(testing::Pair("s", 1), testing::Pair("i5", 6),
                                                      testing::Pair("I2", 2), testing::Pair("t", 7),
                                                      testing::Pair("i1", 3)))
        << chunk;
  }
}

TEST_F(SweepLibraryTest, TellsWhatIsMissing) {
  makeScenarios(9);
  ztb::Sweep sweep;
  open(sweep, "3");
  sweep.solve(path("parts"), 1);
  sweep.publish(path("parts"));
  sweep.find(path("parts"));
  EXPECT_EQ(sweep.state(0).missing, 3);
  EXPECT_EQ(sweep.state(1).missing, 0);
  EXPECT_FALSE(sweep.outcome(2));
  ASSERT_TRUE(sweep.outcome(3));
  EXPECT_NEAR(*sweep.outcome(3)->objective, 7, 1e-9);
}

TEST_F(SweepLibraryTest, AScenarioThatIsSkippedHasFailedForTheReasonGiven) {
  makeScenarios(4);
  ztb::Sweep sweep;
  open(sweep, "4");
  sweep.skip(2, "it took two processes with it");
  sweep.solve(path("parts"), 0);
  sweep.publish(path("parts"));
  sweep.find(path("parts"));
  EXPECT_EQ(sweep.state(0).failed, 1);
  EXPECT_EQ(sweep.outcome(2)->solveStatus, 13);
  EXPECT_EQ(sweep.reason(2), "it took two processes with it");
  EXPECT_EQ(sweep.reason(1), "");
}

TEST_F(SweepLibraryTest, AStoppedSweepKeepsWhatIsSolved) {
  makeScenarios(5);
  ztb::Sweep sweep;
  open(sweep, "5");
  sweep.setWatch([&](int event, int scenario, const char*) {
    if (event == ZTB_SWEEP_SOLVED && scenario == 1) sweep.stop();
  });
  EXPECT_FALSE(sweep.solve(path("parts"), 0));
  sweep.publish(path("parts"));
  sweep.find(path("parts"));
  EXPECT_EQ(sweep.state(0).missing, 3);
  EXPECT_TRUE(sweep.outcome(1));
  EXPECT_FALSE(sweep.outcome(2));
}

// Which one it would be depends on when the end came.
TEST_F(SweepLibraryTest, ASolveOfTheModelThatWasEndedLeavesNoBasis) {
  makeScenarios(2);
  ztb::Sweep ended;
  open(ended);
  ended.stop();
  EXPECT_FALSE(ended.solve(path("parts"), 0));
  EXPECT_TRUE(std::filesystem::is_empty(path("parts")));
  ztb::Sweep sweep;
  open(sweep);
  EXPECT_TRUE(sweep.solve(path("parts"), 0));
  EXPECT_FALSE(std::filesystem::is_empty(path("parts")));
}

TEST_F(SweepLibraryTest, AnotherProcessFindsTheSweepInItsFolder) {
  makeScenarios(4);
  ztb::Sweep sweep;
  open(sweep, "2");
  sweep.save(path("parts"));
  ztb::Sweep other;
  other.load(path("parts"));
  EXPECT_EQ(other.key(), sweep.key());
  EXPECT_EQ(other.inputs(), sweep.inputs());
  EXPECT_EQ(other.chunkCount(), 2);
}

TEST_F(SweepLibraryTest, AnInputThatHasChangedIsTold) {
  makeScenarios(4);
  ztb::Sweep sweep;
  open(sweep);
  EXPECT_EQ(sweep.difference(), "");
  std::ofstream(path("m.lp"), std::ios::app) << "\\ a comment\n";
  EXPECT_EQ(sweep.difference(), "another model file");
}

template <class Call>
std::string errorOf(const Call& call) {
  try {
    call();
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "no error";
}

TEST_F(SweepLibraryTest, WhatIsRefused) {
  makeScenarios(4);
  ztb::Sweep sweep;
  EXPECT_EQ(errorOf([&] { sweep.option("chunks", "4"); }), "a sweep has no option chunks");
  EXPECT_EQ(errorOf([&] { sweep.option("chunk", "4x"); }), "--chunk 4x: 1 to 1000000 are allowed");
  EXPECT_EQ(errorOf([&] { sweep.solve(path("parts"), 0); }), "the sweep is not open");
  EXPECT_EQ(sweep.scenarioCount(), 0);
  open(sweep, "2");
  EXPECT_EQ(errorOf([&] { sweep.open(); }), "the sweep is open already");
  EXPECT_EQ(errorOf([&] { sweep.option("over", "t"); }), "over: the sweep is open already");
  EXPECT_EQ(errorOf([&] { sweep.solve(path("parts"), 2); }),
            "there is no chunk 2: the sweep has 2");
  EXPECT_EQ(errorOf([&] { sweep.solve("", 0); }), "the folder of the parts has no name");
  EXPECT_EQ(errorOf([&] { sweep.skip(4, ""); }), "there is no scenario 4");
  EXPECT_EQ(errorOf([&] { (void)sweep.chunk(2); }), "there is no chunk 2");
  EXPECT_EQ(errorOf([&] { (void)sweep.state(2); }), "there is no chunk 2");
  EXPECT_EQ(errorOf([&] { (void)sweep.scenario(-1); }), "there is no scenario -1");
  sweep.solve(path("parts"), 1);
  EXPECT_EQ(errorOf([&] { sweep.solve(path("parts"), 0); }),
            "chunk 0 does not follow the one whose results are kept");
}

// Of scenarios that are there: a label outside the set is none. A file with others can be opened
// instead.
TEST_F(SweepLibraryTest, AMissingNumberIsRefusedAhead) {
  makeScenarios(4);
  ztb::Database database = ztb::Database::open(path("sc.rxf"));
  ztb::Symbol wanted = database.symbol("wanted");
  wanted.add("no scenario").setLevel(std::numeric_limits<double>::quiet_NaN());
  database.write(path("outside.rxf"));
  wanted.find("s2")->setLevel(std::numeric_limits<double>::quiet_NaN());
  database.write(path("sc.rxf"));
  ztb::Sweep sweep;
  EXPECT_EQ(errorOf([&] { open(sweep); }),
            path("sc.rxf") +
                ": scenario s2, record wanted holds na, a number is expected; what a "
                "scenario has no record for stays as the model has it");
  EXPECT_EQ(sweep.scenarioCount(), 0);
  EXPECT_EQ(ztbSweepOpen(sweep.handle()), 0);
  EXPECT_THAT(ztbSweepMessage(sweep.handle()), HasSubstr("scenario s2, record wanted holds na"));
  sweep.option("scenarios", path("outside.rxf")).open();
  EXPECT_EQ(sweep.scenarioCount(), 4);
}

TEST_F(SweepLibraryTest, ADamagedPartIsAnError) {
  makeScenarios(4);
  ztb::Sweep sweep;
  open(sweep, "4");
  sweep.solve(path("parts"), 0);
  sweep.publish(path("parts"));
  const std::string name = parts("parts").begin()->first;
  std::ofstream(path("parts/" + name)) << "no part";
  EXPECT_THAT(errorOf([&] { sweep.find(path("parts")); }), HasSubstr(name));
}

// The statuses are whole, so that no chunk is missing: levels that cannot be read are told.
TEST_F(SweepLibraryTest, AResultWithDamagedLevelsIsAnError) {
  makeScenarios(4);
  ztb::Sweep sweep;
  open(sweep, "4");
  sweep.solve(path("parts"), 0);
  sweep.publish(path("parts"));
  sweep.find(path("parts"));
  sweep.collect(path("out.rxf"));
  sweep.remove(path("parts"));
  const auto found = [&] { return errorOf([&] { sweep.find(path("parts"), path("out.rxf")); }); };
  EXPECT_EQ(found(), "no error");
  const ztb::RxfFile whole(path("out.rxf"));
  ztb::RxfRecords levels(whole, whole.symbol("a_level"));
  ASSERT_TRUE(levels.next());
  std::fstream file(path("out.rxf"), std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(levels.blockOffset()) + 40);
  file.put('#').flush();
  EXPECT_THAT(found(), HasSubstr("File is damaged: block 1 of 1 of symbol a_level in "));
}

TEST_F(SweepLibraryTest, APartHasTheScenariosThatItsNameTells) {
  makeScenarios(6);
  ztb::Sweep sweep;
  open(sweep, "2");
  for (int chunk = 0; chunk < 3; ++chunk) {
    sweep.solve(path("parts"), chunk);
    sweep.publish(path("parts"));
  }
  const auto part = [&](const char* range) {
    return path("parts/" + sweep.key() + "-" + range + ".rxf");
  };
  const auto found = [&] { return errorOf([&] { sweep.find(path("parts")); }); };
  // Under the name of another one, and of more than it has.
  std::filesystem::remove(part("0-2"));
  std::filesystem::copy_file(part("2-4"), part("0-2"));
  EXPECT_EQ(found(),
            part("0-2") +
                ": lacks scenario s0, which it is said to have; remove this file, and what "
                "it held is solved again");
  std::filesystem::remove(part("0-2"));
  EXPECT_EQ(found(), "no error");
  std::filesystem::rename(part("4-6"), part("4-7"));
  EXPECT_THAT(found(),
              HasSubstr("is said to have scenarios up to number 7, and the sweep has 6; remove"));
}

TEST_F(SweepLibraryTest, AResultTakesThePlaceOfNoInput) {
  makeScenarios(2);
  ztb::Sweep sweep;
  open(sweep);
  std::filesystem::create_symlink("m.lp", path("link.rxf"));
  for (const char* name : {"m.lp", "sc.rxf", "link.rxf"}) {
    const std::string text = path(name) + ": would be replaced by the results; name another --out";
    EXPECT_EQ(errorOf([&] { sweep.lock(path(name)); }), text);
    EXPECT_EQ(errorOf([&] { sweep.collect(path(name)); }), text);
  }
  EXPECT_THAT(read(path("m.lp")), testing::StartsWith("Minimize"));
}

TEST_F(SweepLibraryTest, AResultIsLockedAsLongAsItsSweepLives) {
  makeScenarios(2);
  std::filesystem::create_symlink("out.rxf", path("link.rxf"));
  auto first = std::make_unique<ztb::Sweep>();
  EXPECT_EQ(errorOf([&] { first->lock(path("out.rxf")); }), "the sweep is not open");
  open(*first);
  EXPECT_EQ(errorOf([&] { first->lock(""); }), "the result has no name");
  first->lock(path("out.rxf"));
  ztb::Sweep second;
  open(second);
  for (const char* name : {"out.rxf", "link.rxf"}) {
    EXPECT_EQ(errorOf([&] { second.lock(path(name)); }),
              path(name) + ": another sweep is writing this result (process " +
                  std::to_string(getpid()) + ")");
  }
  first->lock(path("other.rxf"));
  second.lock(path("link.rxf"));
  first.reset();
  second.lock(path("other.rxf"));
  EXPECT_FALSE(std::filesystem::exists(path(".out.rxf.lock")));
}

TEST_F(SweepLibraryTest, NoSweepIsNoCrash) {
  EXPECT_EQ(ztbSweepOpen(nullptr), 0);
  EXPECT_EQ(ztbSweepScenarioCount(nullptr), 0);
  EXPECT_STREQ(ztbSweepMessage(nullptr), "");
  EXPECT_EQ(ztbSweepScenario(nullptr, 0), nullptr);
  EXPECT_EQ(ztbSweepCreate(nullptr), 0);
  makeScenarios(2);
  ztb::Sweep sweep;
  open(sweep);
  EXPECT_EQ(ztbSweepChunk(sweep.handle(), 1, nullptr, nullptr), 1);
  EXPECT_EQ(ztbSweepChunkState(sweep.handle(), 1, nullptr, nullptr), 1);
  EXPECT_EQ(ztbSweepOutcome(sweep.handle(), 1, nullptr, nullptr, nullptr), 0);
  ztbSweepStop(nullptr);
  ztbSweepFree(nullptr);
}

}  // namespace
