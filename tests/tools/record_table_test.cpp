#include "formats/tables/record_table.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using formats::RecordTable;

TEST(RecordTable, OrdersByKeysAndKeepsEqualOnesInTheirOrder) {
  RecordTable table(2, 1);
  const std::array<double, 1> value{1};
  const std::array<std::array<int, 2>, 4> keys{{{2, 1}, {1, 9}, {2, 1}, {1, 2}}};
  for (const std::array<int, 2>& key : keys) {
    table.add(key, value, {});
  }
  EXPECT_EQ(table.order(), (std::vector<std::size_t>{3, 1, 0, 2}));
}

TEST(RecordTable, HandsOutWhatWasAdded) {
  RecordTable table(1, 2);
  const std::array<int, 1> first{4};
  const std::array<int, 1> second{5};
  const std::array<double, 2> values{1.5, -2};
  const std::array<std::size_t, 1> columns{7};
  table.add(first, values, "one", {.line = 3, .columns = columns});
  table.add(second, values, "", {.line = 4, .columns = columns});
  ASSERT_EQ(table.size(), 2U);
  EXPECT_EQ(table.keys(1)[0], 5);
  EXPECT_EQ(table.values(0)[1], -2);
  EXPECT_EQ(table.text(0), "one");
  EXPECT_EQ(table.text(0).data()[3], '\0');
  EXPECT_EQ(table.text(1), "");
  EXPECT_EQ(table.place(1, 0).line, 4U);
  EXPECT_EQ(table.place(1, 0).column, 7U);
}

TEST(RecordTable, HoldsRecordsWithoutKeys) {
  RecordTable table(0, 1);
  const std::array<double, 1> value{8};
  table.add({}, value, {}, {.line = 2, .columns = {}});
  table.add({}, value, {}, {.line = 3, .columns = {}});
  EXPECT_EQ(table.order(), (std::vector<std::size_t>{0, 1}));
  EXPECT_NE(table.keys(0).data(), nullptr);
  EXPECT_EQ(table.place(1, 0).line, 3U);
  EXPECT_EQ(table.place(1, 0).column, 1U);
}

}  // namespace
