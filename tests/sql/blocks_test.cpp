// Records by blocks, values where they lie, and the count of changes: what every handle of a
// database leads to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

using testing::ElementsAre;

class Blocks : public testing::TestWithParam<ztb::Store> {
 protected:
  Blocks() {
    database_.selectStore(GetParam());
    for (const char* label : {"a", "b", "c"}) database_.mergeLabel(label);
    symbol_ = database_.addParameter("p", {"*", "*"});
    symbol_->put(std::array{1, 1}, 11);
    symbol_->put(std::array{1, 3}, 13);
    symbol_->put(std::array{2, 1}, 21);
    symbol_->put(std::array{3, 3}, 33);
  }

  int read(void* record, int most) {
    keys_.assign(2, std::vector<int>(10, 0));
    values_.assign(10, 0);
    int* keys[] = {keys_[0].data(), keys_[1].data()};
    double* values[] = {values_.data()};
    const int count = ztbReadRecords(database_.handle(), record, most, keys, values);
    for (std::vector<int>& column : keys_) column.resize(static_cast<std::size_t>(count));
    values_.resize(static_cast<std::size_t>(count));
    return count;
  }

  ztb::Database database_;
  std::optional<ztb::Symbol> symbol_;
  std::vector<std::vector<int>> keys_;
  std::vector<double> values_;
};

TEST_P(Blocks, AreReadByColumnsAndTheHandleStandsOnTheLastRecord) {
  ztb::Record record = std::move(*symbol_->find("a", "a"));
  ASSERT_EQ(read(record.handle(), 3), 3);
  EXPECT_THAT(keys_[0], ElementsAre(1, 1, 2));
  EXPECT_THAT(keys_[1], ElementsAre(1, 3, 1));
  EXPECT_THAT(values_, ElementsAre(11, 13, 21));
  EXPECT_EQ(record.level(), 21);
  ASSERT_TRUE(record.moveNext());
  ASSERT_EQ(read(record.handle(), 3), 1);
  EXPECT_THAT(values_, ElementsAre(33));
  EXPECT_FALSE(record.moveNext());
}

TEST_P(Blocks, OfASliceHaveItsRecordsAlone) {
  void* record = nullptr;
  const char* keys[] = {" ", "C"};
  ASSERT_EQ(c__ztbfindfirstrecordslice(database_.handle(), symbol_->handle(), keys, &record), 1);
  ASSERT_EQ(read(record, 10), 2);
  EXPECT_THAT(keys_[0], ElementsAre(1, 3));
  EXPECT_THAT(values_, ElementsAre(13, 33));
  c__ztbfreesymboliterator(database_.handle(), record);
}

// Every slice of a variable, in blocks of every size, beside its records one by one.
TEST_P(Blocks, OfSlicesAreTheRecordsThatStepsMeet) {
  ztb::Symbol x = database_.addVariable("x", 5, {"*", "*", "*"});
  for (int place = 0; place < 27; ++place) {
    const std::array key{place / 9 + 1, place / 3 % 3 + 1, place % 3 + 1};
    // Some are missing, so that runs end in the middle of blocks.
    if (place * 7 % 5 != 0) x.put(key, std::array<double, 5>{1.0 * place, 2, 3, 4, 5.5 + place});
  }
  for (int slice = 0; slice < 64; ++slice) {
    const std::array<const char*, 4> labels{" ", "a", "b", "c"};
    std::array<const char*, 3> keys{labels[slice / 16], labels[slice / 4 % 4], labels[slice % 4]};
    std::vector<std::array<double, 5>> stepped;
    for (const ztb::Row row : x.sliceRows(std::vector<const char*>(keys.begin(), keys.end()))) {
      stepped.push_back(
          {1.0 * row.keys[0], 1.0 * row.keys[1], 1.0 * row.keys[2], row.values[0], row.values[4]});
    }
    for (int most = 1; most < 9 && !stepped.empty(); ++most) {
      void* record = nullptr;
      ASSERT_EQ(c__ztbfindfirstrecordslice(database_.handle(), x.handle(), keys.data(), &record),
                1);
      std::vector<std::array<double, 5>> inBlocks;
      do {
        std::array<std::array<int, 8>, 3> numbers{};
        std::array<std::array<double, 8>, 5> values{};
        std::array<int*, 3> into{numbers[0].data(), numbers[1].data(), numbers[2].data()};
        std::array<double*, 5> slots{};
        std::ranges::transform(values, slots.begin(), [](auto& slot) { return slot.data(); });
        const int count =
            ztbReadRecords(database_.handle(), record, most, into.data(), slots.data());
        ASSERT_GT(count, 0);
        for (std::size_t row = 0; row < static_cast<std::size_t>(count); ++row) {
          inBlocks.push_back({1.0 * numbers[0][row], 1.0 * numbers[1][row], 1.0 * numbers[2][row],
                              values[0][row], values[4][row]});
        }
      } while (c__ztbrecordmovenext(database_.handle(), record) == 1);
      EXPECT_EQ(inBlocks, stepped) << "slice " << slice << ", blocks of " << most;
      c__ztbfreesymboliterator(database_.handle(), record);
    }
  }
}

// More records than a store hands over at a time, put in order and, where the store takes them,
// not: in blocks whose ends fall everywhere, all of them and those of a slice.
TEST_P(Blocks, OfManyRecordsAreTheRecordsThatStepsMeet) {
  constexpr int wide = 90;
  for (int label = 4; label <= wide; ++label) database_.mergeLabel("n" + std::to_string(label));
  for (const int stride : {1, 37}) {
    if (stride != 1 && GetParam() == ztb::Store::vector) continue;
    ztb::Symbol q = database_.addParameter("q" + std::to_string(stride), {"*", "*"});
    for (int step = 0; step < 3 * wide; ++step) {
      const int place = step * stride % (3 * wide);
      q.put(std::array{place / wide + 1, place % wide + 1}, place);
    }
    for (const char* first : {" ", "b"}) {
      std::vector<int> places(static_cast<std::size_t>(*first == ' ' ? 3 * wide : wide));
      std::iota(places.begin(), places.end(), *first == ' ' ? 0 : wide);
      for (const int most : {1, 63, 64, 65, 89, 90, 91, 128, 129, 269, 270, 271}) {
        void* record = nullptr;
        std::array<const char*, 2> slice{first, " "};
        ASSERT_EQ(c__ztbfindfirstrecordslice(database_.handle(), q.handle(), slice.data(), &record),
                  1);
        std::vector<int> met;
        do {
          std::array<std::vector<int>, 2> numbers;
          for (std::vector<int>& column : numbers) column.resize(static_cast<std::size_t>(most));
          std::vector<double> values(static_cast<std::size_t>(most));
          std::array<int*, 2> keys{numbers[0].data(), numbers[1].data()};
          std::array<double*, 1> slots{values.data()};
          const int count =
              ztbReadRecords(database_.handle(), record, most, keys.data(), slots.data());
          ASSERT_GT(count, 0);
          for (std::size_t row = 0; row < static_cast<std::size_t>(count); ++row) {
            met.push_back((numbers[0][row] - 1) * wide + numbers[1][row] - 1);
            EXPECT_EQ(values[row], met.back());
          }
        } while (c__ztbrecordmovenext(database_.handle(), record) == 1);
        EXPECT_EQ(met, places) << "stride " << stride << ", blocks of " << most;
        c__ztbfreesymboliterator(database_.handle(), record);
      }
    }
  }
}

TEST_P(Blocks, HaveSpecialValuesInTheSpellingOfTheCaller) {
  symbol_->find("a", "c")->setLevel(database_.specialValues()[ZTB_PLUS_INFINITY]);
  database_.setSpecialValues({1, 2, 3e30, 4, 5});
  ASSERT_EQ(read(symbol_->find("a", "a")->handle(), 2), 2);
  EXPECT_THAT(values_, ElementsAre(11, 3e30));
}

TEST_P(Blocks, OfTheUniverseAreLabelNumbers) {
  void* record = nullptr;
  ASSERT_EQ(c__ztbfindfirstrecord(database_.handle(), database_.universe().handle(), &record), 1);
  ASSERT_EQ(read(record, 2), 2);
  EXPECT_THAT(keys_[0], ElementsAre(1, 2));
  ASSERT_EQ(c__ztbrecordmovenext(database_.handle(), record), 1);
  ASSERT_EQ(read(record, 5), 1);
  EXPECT_THAT(keys_[0], ElementsAre(3));
  c__ztbfreesymboliterator(database_.handle(), record);
}

TEST_P(Blocks, LeaveOutTheColumnsWithoutAnArray) {
  ztb::Symbol x = database_.addVariable("x", 5, {"*", "*", "*"});
  x.put(std::array{1, 2, 3}, std::array<double, 5>{1, 2, 3, 4, 5});
  x.put(std::array{2, 1, 3}, std::array<double, 5>{6, 7, database_.specialValues()[1], 9, 10});
  database_.setSpecialValues({1e40, 2e40, 3e40, 4e40, 5e40});
  for (const bool inSlice : {false, true}) {
    std::array<int, 2> second{};
    std::array<double, 2> lower{};
    std::array<int*, 3> keys{nullptr, second.data(), nullptr};
    std::array<double*, 5> values{nullptr, nullptr, lower.data(), nullptr, nullptr};
    void* record = nullptr;
    const char* slice[] = {" ", " ", "c"};
    const int found =
        inSlice ? c__ztbfindfirstrecordslice(database_.handle(), x.handle(), slice, &record)
                : c__ztbfindfirstrecord(database_.handle(), x.handle(), &record);
    ASSERT_EQ(found, 1);
    EXPECT_EQ(ztbReadRecords(database_.handle(), record, 2, keys.data(), values.data()), 2);
    EXPECT_THAT(second, ElementsAre(2, 1));
    EXPECT_THAT(lower, ElementsAre(3, 2e40));
    c__ztbfreesymboliterator(database_.handle(), record);
  }
  void* record = nullptr;
  ASSERT_EQ(c__ztbfindfirstrecord(database_.handle(), database_.universe().handle(), &record), 1);
  int* none = nullptr;
  EXPECT_EQ(ztbReadRecords(database_.handle(), record, 2, &none, nullptr), 2);
  c__ztbfreesymboliterator(database_.handle(), record);
}

TEST_P(Blocks, NeedAHandleAndACount) {
  EXPECT_EQ(read(nullptr, 1), 0);
  EXPECT_STREQ(database_.lastError().c_str(), "No symbol record handle specified");
  EXPECT_EQ(read(symbol_->find("a", "a")->handle(), 0), 0);
  EXPECT_STREQ(database_.lastError().c_str(), "0 records cannot be read");
}

TEST_P(Blocks, ValuesLieInPlaceOnTheVectorAlone) {
  const double* values = nullptr;
  ASSERT_EQ(ztbValuesInPlace(database_.handle(), symbol_->handle(), &values), 1);
  if (GetParam() != ztb::Store::vector) {
    EXPECT_EQ(values, nullptr);
    return;
  }
  ASSERT_NE(values, nullptr);
  EXPECT_THAT(std::vector<double>(values, values + 4), ElementsAre(11, 13, 21, 33));
  symbol_->clear();
  ASSERT_EQ(ztbValuesInPlace(database_.handle(), symbol_->handle(), &values), 1);
  EXPECT_EQ(values, nullptr);
  EXPECT_EQ(ztbValuesInPlace(database_.handle(), nullptr, &values), 0);
}

INSTANTIATE_TEST_SUITE_P(OnStores, Blocks,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie));

TEST(RecordChanges, CountWritesAndNothingElse) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  const auto changed = [&](const auto& work) {
    const unsigned before = ztbRecordChanges(database.handle());
    work();
    return ztbRecordChanges(database.handle()) != before;
  };
  EXPECT_TRUE(changed([&] { p.add("a").setLevel(1); }));
  EXPECT_TRUE(changed([&] { p.find("a")->setLevel(2); }));
  EXPECT_TRUE(changed([&] { p.put(std::array{1}, 3); }));
  EXPECT_FALSE(changed([&] { static_cast<void>(p.find("a")->level()); }));
  EXPECT_FALSE(changed([&] { database.mergeLabel("b"); }));
  EXPECT_TRUE(changed([&] { p.remove("a"); }));
  EXPECT_TRUE(changed([&] { p.clear(); }));
  EXPECT_TRUE(changed([&] { p = database.moveTo(p, ztb::Store::trie); }));
}

}  // namespace
