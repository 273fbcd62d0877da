// Values of a database that other threads hold, read and let go while its own thread changes it.
#include <gtest/gtest.h>
#include <ztb/ztb.h>

#include <array>
#include <thread>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

constexpr int records = 1000;

// How many of the values are not what they were when they were held.
int others(ztbHeldValues* held, double expected) {
  int count = 0;
  for (int record = 0; record < held->count; ++record) {
    count += held->values[record] == expected ? 0 : 1;
  }
  ztbReleaseValues(held);
  return count;
}

TEST(HeldValuesOfOtherThreads, StayWhileTheDatabaseChanges) {
  std::vector<std::thread> threads;
  constexpr int rounds = 60;
  std::array<int, rounds> wrong{};
  {
    ztb::Database database;
    database.selectStore(ztb::Store::vector);
    ztb::Symbol p = database.addParameter("p", {"*"});
    for (int record = 0; record < records; ++record) {
      p.put(std::array{database.mergeLabel("l" + std::to_string(record))}, 0);
    }
    for (int round = 0; round < rounds; ++round) {
      for (ztb::Record& record : p.records()) record.setLevel(round);
      ztbHeldValues* held = nullptr;
      ASSERT_EQ(ztbHoldValues(database.handle(), p.handle(), &held), 1);
      threads.emplace_back(
          [held, round, &wrong] { wrong[static_cast<std::size_t>(round)] = others(held, round); });
    }
  }
  for (std::thread& thread : threads) thread.join();
  for (const int count : wrong) EXPECT_EQ(count, 0);
}

}  // namespace
