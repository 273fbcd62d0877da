#include "formats/tables/row_sorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "formats/sets/groups.h"
#include "formats/sets/key_packing.h"
#include "tests/support/temp_folder.h"
#include "tools/text/failure.h"

namespace {

using formats::RowSorter;
using Row = std::array<std::uint64_t, 3>;

// Rows of a key of two words, most of them standing many times, and their number.
std::vector<Row> someRows(std::size_t count) {
  std::mt19937_64 random(7);
  std::vector<Row> rows;
  for (std::size_t row = 0; row < count; ++row) {
    rows.push_back({random() % 40, random() % 40, row});
  }
  return rows;
}

std::vector<Row> sorted(const std::vector<Row>& rows, RowSorter::Limits limits) {
  const ztbtest::TempFolder folder;
  RowSorter sorter(2, 3, folder.file(""), limits);
  for (const Row& row : rows) sorter.add(row.data());
  std::vector<Row> result;
  while (sorter.next()) result.push_back({sorter.row()[0], sorter.row()[1], sorter.row()[2]});
  EXPECT_FALSE(sorter.next());
  return result;
}

TEST(RowSorter, KeepsTheOrderOfRowsWithOneKeyInMemoryAndBeyond) {
  const std::vector<Row> rows = someRows(5000);
  std::vector<Row> expected = rows;
  std::stable_sort(expected.begin(), expected.end(), [](const Row& left, const Row& right) {
    return std::pair(left[0], left[1]) < std::pair(right[0], right[1]);
  });
  constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(sorted(rows, {.bytes = 1U << 20U, .rows = all}), expected);
  EXPECT_EQ(sorted(rows, {.bytes = 4000, .rows = all}), expected);
  EXPECT_EQ(sorted(rows, {.bytes = 1, .rows = all}), expected);
  for (const std::size_t most : {0U, 1U, 100U, 4999U, 6000U}) {
    const std::vector<Row> first(expected.begin(),
                                 expected.begin() + std::min<std::ptrdiff_t>(most, 5000));
    EXPECT_EQ(sorted(rows, {.bytes = 1U << 20U, .rows = most}), first);
    EXPECT_EQ(sorted(rows, {.bytes = 4000, .rows = most}), first);
  }
  EXPECT_EQ(sorted({}, {.bytes = 4000, .rows = all}), std::vector<Row>{});
}

TEST(RowSorter, TellsWhereATemporaryFileCannotBeMade) {
  RowSorter sorter(1, 1, "/no/such/folder", {.bytes = 1, .rows = 100});
  const std::uint64_t row = 3;
  sorter.add(&row);
  try {
    sorter.add(&row);
    FAIL() << "nothing is thrown";
  } catch (const tool::Failure& failure) {
    EXPECT_STREQ(failure.what(),
                 "/no/such/folder: a temporary file for sorting cannot be made: No such file or "
                 "directory");
  }
}

TEST(KeyPacking, ComparesAsKeysDo) {
  // Four labels of 17 bits do not fit in one word.
  const formats::KeyPacking packing(4, 100000);
  EXPECT_EQ(packing.words(), 2U);
  std::array<std::uint64_t, 2> low{};
  std::array<std::uint64_t, 2> high{};
  packing.pack(std::array{3, 100000, 100000, 100000}, low.data());
  packing.pack(std::array{4, 1, 1, 1}, high.data());
  EXPECT_LT(low, high);
  packing.pack(std::array{4, 1, 1, 2}, low.data());
  EXPECT_GT(low, high);
  EXPECT_EQ(packing.label(low.data(), 0), 4);
  EXPECT_EQ(packing.label(low.data(), 3), 2);
  EXPECT_EQ(formats::KeyPacking(0, 5).words(), 0U);
  EXPECT_EQ(formats::KeyPacking(20, 2147483647).words(), 10U);
}

TEST(Groups, AreThoseOfAllRecordsWhereMemoryHoldsFew) {
  const ztbtest::TempFolder folder;
  formats::Groups groups(1, folder.file(""), 3);
  std::map<std::uint64_t, double> expected;
  for (std::uint64_t record = 0; record < 1000; ++record) {
    const std::uint64_t key = record * 7919 % 11;
    groups.add(&key, static_cast<double>(record));
    expected[key] += static_cast<double>(record);
  }
  std::map<std::uint64_t, double> found;
  groups.walk([&](const std::uint64_t* key, const formats::Amount& amount) {
    EXPECT_TRUE(found.empty() || found.rbegin()->first < *key);
    found[*key] = amount.result(formats::Statistic::sum);
  });
  EXPECT_EQ(found, expected);
}

}  // namespace
