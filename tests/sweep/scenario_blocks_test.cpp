// A chunk reads of the scenario file the blocks of its records, and no others: damage elsewhere is
// nothing to it.
#include <gmock/gmock.h>

#include <array>
#include <fstream>
#include <limits>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/sweep.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::HasSubstr;

// Scenarios with so many records each that most blocks of the file belong to two or three of them.
constexpr int kLargeScenarios = 12;
constexpr int kRecordsOfEach = 40'000;

class ScenarioBlocksTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }

  void SetUp() override {
    ztb::Database database;
    ztb::Symbol set = database.addSet("s", {"*"});
    std::vector<int> scenarios;
    for (int number = 0; number < kLargeScenarios; ++number) {
      set.add("s" + std::to_string(number));
      scenarios.push_back(database.mergeLabel("s" + std::to_string(number)));
    }
    std::vector<int> items{database.mergeLabel("i1")};
    for (int item = 1; item < kRecordsOfEach; ++item) {
      items.push_back(database.mergeLabel("n" + std::to_string(item)));
    }
    ztb::Symbol most = database.addParameter("most", {set, "*"});
    for (const int scenario : scenarios) {
      for (const int item : items) most.put(std::array{scenario, item}, 1 + scenario % 3);
    }
    database.write(path("sc.rxf"));
    std::ofstream model(path("m.lp"));
    model << "Maximize\n z: a(i1)\nSubject To\n c: a(i1) - most_var(i1) <= 0\n"
             "Bounds\n most_var(i1) = 3\nEnd\n";
  }

  // Turns the first byte behind the head of a block of the parameter around.
  void damage(int block) const {
    const ztb::RxfFile file(path("sc.rxf"));
    ztb::RxfRecords records(file, *file.findSymbol("most"));
    records.skip(block);
    ASSERT_TRUE(records.next());
    const auto at = static_cast<std::streamoff>(records.blockOffset()) + 40;
    std::fstream bytes(path("sc.rxf"), std::ios::in | std::ios::out | std::ios::binary);
    bytes.seekg(at);
    const int byte = bytes.get();
    bytes.seekp(at);
    bytes.put(static_cast<char>(~byte));
  }

  // "x" for each chunk of one scenario that cannot be solved, "." for the others, which are solved
  // in the order given.
  std::string solved(const std::vector<int>& order) const {
    ztb::Sweep sweep;
    sweep.option("model", path("m.lp")).option("scenarios", path("sc.rxf")).option("over", "s");
    sweep.option("chunk", "1").open();
    std::string found(order.size(), '?');
    for (const int chunk : order) {
      try {
        sweep.solve(path("parts"), chunk);
        sweep.publish(path("parts"));
        found[static_cast<std::size_t>(chunk)] = '.';
      } catch (const ztb::Error& error) {
        EXPECT_THAT(error.what(), testing::AllOf(HasSubstr("sc.rxf"), HasSubstr("block")));
        found[static_cast<std::size_t>(chunk)] = 'x';
      }
    }
    sweep.find(path("parts"));
    for (int number = 0; number < kLargeScenarios; ++number) {
      if (found[static_cast<std::size_t>(number)] != '.') continue;
      EXPECT_NEAR(*sweep.outcome(number)->objective, 1 + (number + 1) % 3, 1e-9);
    }
    sweep.remove(path("parts"));
    return found;
  }

  ztbtest::TempFolder folder_;
};

// Block 3 has the records 196,608 to 262,143: the end of scenario 4, 5, and most of 6.
TEST_F(ScenarioBlocksTest, AChunkReadsTheBlocksOfItsRecordsAlone) {
  damage(3);
  EXPECT_EQ(solved({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}), "....xxx.....");
  EXPECT_EQ(solved({11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}), "....xxx.....");
  EXPECT_EQ(solved({5, 11, 0, 8, 2, 9, 4, 10, 7, 1, 6, 3}), "....xxx.....");
}

// The first block ends in scenario 1, the last, number 7, begins at record 458,752 in scenario 11.
TEST_F(ScenarioBlocksTest, TheFirstAndTheLastBlockMatterToTheirChunksAlone) {
  damage(0);
  EXPECT_EQ(solved({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}), "xx..........");
  damage(7);
  EXPECT_EQ(solved({6, 3, 11, 0, 9, 1, 10, 4, 2, 8, 5, 7}), "xx.........x");
}

// What is missing in a block behind a damaged one is told ahead.
TEST_F(ScenarioBlocksTest, MissingNumbersAreToldInAllBlocksThatAreWhole) {
  ztb::Database database = ztb::Database::open(path("sc.rxf"));
  database.symbol("most").find("s11", "i1")->setLevel(std::numeric_limits<double>::quiet_NaN());
  database.write(path("sc.rxf"));
  damage(0);
  damage(3);
  ztb::Sweep sweep;
  sweep.option("model", path("m.lp")).option("scenarios", path("sc.rxf")).option("over", "s");
  try {
    sweep.open();
    FAIL() << "nothing was told";
  } catch (const ztb::Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("scenario s11, record most(i1) holds na, a number"));
  }
}

TEST_F(ScenarioBlocksTest, SeveralDamagedBlocksAreAllPassed) {
  damage(2);
  damage(3);
  damage(4);
  // Records 131,072 to 327,679.
  EXPECT_EQ(solved({9, 0, 5, 3, 8, 11, 2, 10, 1, 4, 7, 6}), "...xxxxxx...");
}

}  // namespace
