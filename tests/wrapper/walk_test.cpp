#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <ranges>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

static_assert(std::ranges::input_range<ztb::Records>);
static_assert(std::ranges::input_range<ztb::Rows>);

class WalkTest : public testing::Test {
 protected:
  void SetUp() override {
    p_.add("a", "x").setLevel(1);
    p_.add("a", "y").setLevel(2);
    p_.add("b", "x").setLevel(3);
    p_.add("b", "z").setLevel(4);
  }

  static std::vector<double> levels(ztb::Records records) {
    std::vector<double> result;
    for (const ztb::Record& record : records) {
      result.push_back(record.level());
    }
    return result;
  }
  static std::vector<double> levels(ztb::Rows rows) {
    std::vector<double> result;
    for (const auto [keys, values] : rows) {
      result.push_back(values[0]);
    }
    return result;
  }

  ztb::Database database_;
  ztb::Symbol p_ = database_.addParameter("p", {"*", "*"});
};

TEST_F(WalkTest, VisitsAllRecordsInOrder) {
  EXPECT_EQ(levels(p_.records()), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(levels(p_.rows()), (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(WalkTest, ShowsNumbersAndValues) {
  ztb::Rows rows = p_.rows();
  auto at = rows.begin();
  const ztb::Row first = *at;
  ASSERT_EQ(first.keys.size(), 2U);
  ASSERT_EQ(first.values.size(), 1U);
  EXPECT_EQ(database_.label(first.keys[0]), "a");
  EXPECT_EQ(database_.label(first.keys[1]), "x");
  ++at;
  EXPECT_EQ(at.record().key(1), "y");
}

TEST_F(WalkTest, VisitsASlice) {
  EXPECT_EQ(levels(p_.slice("a", ztb::anyLabel)), (std::vector<double>{1, 2}));
  EXPECT_EQ(levels(p_.slice(ztb::anyLabel, "X")), (std::vector<double>{1, 3}));
  EXPECT_EQ(levels(p_.sliceRows(ztb::anyLabel, std::string("z"))), (std::vector<double>{4}));
  EXPECT_EQ(levels(p_.sliceRows(ztb::anyLabel, ztb::anyLabel)), (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(WalkTest, VisitsNothingInASliceThatMatchesNothing) {
  EXPECT_TRUE(levels(p_.slice("a", "z")).empty());
  EXPECT_TRUE(levels(p_.slice("unknown", ztb::anyLabel)).empty());
  EXPECT_TRUE(levels(database_.addParameter("q", {"*"}).slice("a")).empty());
  EXPECT_EQ(database_.labelCount(), 5);
}

TEST_F(WalkTest, VisitsNothingWithoutRecords) {
  EXPECT_TRUE(levels(database_.addParameter("q", {"*"}).records()).empty());
  EXPECT_TRUE(levels(database_.addParameter("r", {}).rows()).empty());
}

TEST_F(WalkTest, LetsRecordsBeChangedOnTheWay) {
  for (ztb::Record& record : p_.records()) {
    record.setLevel(record.level() * 10);
  }
  EXPECT_EQ(levels(p_.rows()), (std::vector<double>{10, 20, 30, 40}));
}

TEST_F(WalkTest, VisitsTheLabelsOfTheUniverse) {
  std::string labels;
  for (const ztb::Record& record : database_.universe().records()) {
    labels += record.key(0).view();
  }
  EXPECT_EQ(labels, "axybz");
  for (const auto [keys, values] : database_.universe().rows()) {
    EXPECT_EQ(keys.size(), 1U);
    EXPECT_TRUE(values.empty());
  }
}

TEST_F(WalkTest, ShowsFiveValuesOfAVariable) {
  database_.addVariable("v", 1, {}).add();
  for (const auto [keys, values] : database_.symbol("v").rows()) {
    EXPECT_TRUE(keys.empty());
    EXPECT_TRUE(std::ranges::equal(values, std::vector<double>{0, 0, 0, 1, 1}));
  }
}

TEST_F(WalkTest, WorksWithRangeAlgorithms) {
  EXPECT_EQ(std::ranges::count_if(p_.rows(), [](const ztb::Row& row) { return row.values[0] > 1; }),
            3);
}

}  // namespace
