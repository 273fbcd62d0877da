// Cuts of our own, each checked against all points of its problem.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "providers/model/solvers/cover_cuts.h"
#include "providers/model/solvers/cut_problem.h"
#include "providers/model/solvers/knapsack_cover.h"
#include "providers/model/solvers/rounding_cuts.h"
#include "tests/solvers/cut_cases.h"

namespace ztbtest {
namespace {

using lomu::Cut;
using lomu::CutProblem;

constexpr double kEndless = std::numeric_limits<double>::infinity();

using Find = void (*)(const CutProblem& problem, const double* point, std::vector<Cut>& cuts);

struct Kind {
  const char* name;
  Find find;
  int least;  // cuts that the cases below give, for a test that checks something
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

class CutsOf : public testing::TestWithParam<Kind> {};

// What a cut takes away no choice of integers has a point in: at optima with costs at random, also
// of the problems with the cuts of before, and at any other points.
TEST_P(CutsOf, leaveEveryPointOfIntegers) {
  int cuts = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    CutCase each(seed);
    const CutProblem problem(each.form);
    std::vector<double> point;
    for (int k = 0; k < 4; ++k) {
      if (!each.nextPoint(point)) continue;
      std::vector<Cut> found;
      GetParam().find(problem, point.data(), found);
      for (const Cut& cut : found) {
        double size = std::max(1.0, std::abs(cut.right));
        double sum = 0;
        for (std::size_t e = 0; e < cut.value.size(); ++e) {
          size = std::max(size, std::abs(cut.value[e]));
          sum += cut.value[e] * point[static_cast<std::size_t>(cut.column[e])];
        }
        ASSERT_GT(sum, cut.right) << "seed " << seed << "\n" << each.text(cut);
        ASSERT_LE(each.excess(cut), 1e-9 * size) << "seed " << seed << "\n" << each.text(cut);
        each.add(cut);
        ++cuts;
      }
    }
  }
  EXPECT_GE(cuts, GetParam().least);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CutsOf,
                         testing::Values(Kind{"rounding", lomu::findRoundingCuts, 1000},
                                         Kind{"covers", lomu::findCoverCuts, 200}),
                         [](const auto& each) { return std::string(each.param.name); });

// A problem written down by rows.
struct Written {
  lomu::LinearForm form;

  Written(std::vector<double> lower, std::vector<double> upper, std::vector<char> isInteger,
          const std::vector<std::vector<double>>& rows, std::vector<double> rowLower,
          std::vector<double> rowUpper) {
    form.columnCount = static_cast<int>(lower.size());
    form.rowCount = static_cast<int>(rows.size());
    form.lower = std::move(lower);
    form.upper = std::move(upper);
    form.isInteger = std::move(isInteger);
    form.rowLower = std::move(rowLower);
    form.rowUpper = std::move(rowUpper);
    for (std::size_t j = 0; j < form.lower.size(); ++j) {
      form.start.push_back(static_cast<int>(form.value.size()));
      for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i][j] == 0) continue;
        form.rowOf.push_back(static_cast<int>(i));
        form.value.push_back(rows[i][j]);
      }
    }
    form.start.push_back(static_cast<int>(form.value.size()));
  }

  [[nodiscard]] std::vector<Cut> cuts(Find find, const std::vector<double>& point) const {
    std::vector<Cut> found;
    find(CutProblem(form), point.data(), found);
    return found;
  }
};

// The value of a column in a cut.
double valueOf(const Cut& cut, int column) {
  for (std::size_t k = 0; k < cut.column.size(); ++k) {
    if (cut.column[k] == column) return cut.value[k];
  }
  return 0;
}

// 2 x + 2 y <= 3 of integers: x + y <= 1.
TEST(Cuts, roundARowOfIntegers) {
  const Written written({0, 0}, {5, 5}, {1, 1}, {{2, 2}}, {-kEndless}, {3});
  const std::vector<Cut> cuts = written.cuts(lomu::findRoundingCuts, {1.5, 0});
  ASSERT_EQ(cuts.size(), 1U);
  EXPECT_EQ(valueOf(cuts[0], 0), 1);
  EXPECT_EQ(valueOf(cuts[0], 1), 1);
  EXPECT_EQ(cuts[0].right, 1);
}

// The textbook's x - s <= 2.5 with s >= 0: x - 2 s <= 2, here times a half.
TEST(Cuts, roundARowWithAContinuousColumn) {
  const Written written({0, 0}, {9, kEndless}, {1, 0}, {{2, -2}}, {-kEndless}, {5});
  const std::vector<Cut> cuts = written.cuts(lomu::findRoundingCuts, {2.5, 0});
  ASSERT_EQ(cuts.size(), 1U);
  const double x = valueOf(cuts[0], 0);
  ASSERT_GT(x, 0);
  EXPECT_NEAR(valueOf(cuts[0], 1) / x, -2, 1e-12);
  EXPECT_NEAR(cuts[0].right / x, 2, 1e-6);
}

// A demand of 5, met by a lot x <= 10 y or from a stock s: x + s = 5 and x <= 10 y give s >= 5 (1 -
// y), the inequality that describes a lot of one period.
TEST(Cuts, takeLotsByWhatSetsThemUp) {
  const Written written({0, 0, 0}, {kEndless, kEndless, 1}, {0, 0, 1}, {{1, 1, 0}, {1, 0, -10}},
                        {5, -kEndless}, {5, 0});
  const std::vector<Cut> cuts = written.cuts(lomu::findRoundingCuts, {5, 0, 0.5});
  ASSERT_FALSE(cuts.empty());
  const double s = -valueOf(cuts[0], 1);
  const double x = valueOf(cuts[0], 0);
  const double y = -valueOf(cuts[0], 2);
  // With x = 5 - s from the first row: -(s + x) s - y y <= right - 5 x.
  ASSERT_GT(s + x, 0);
  EXPECT_NEAR(y / (s + x), 5, 1e-12);
  EXPECT_NEAR((5 * x - cuts[0].right) / (s + x), 5, 1e-6);
}

// 5 are needed at the end of two arcs in a row, f1 <= 10 y1 and f2 <= 10 y2, each half open for its
// flow: both have to be open. The first is seen through the node between them alone.
TEST(Cuts, followFlowsThroughArcsThatAreOpenByAPart) {
  const Written written({0, 0, 0, 0}, {kEndless, kEndless, 1, 1}, {0, 0, 1, 1},
                        {{1, -1, 0, 0}, {0, 1, 0, 0}, {1, 0, -10, 0}, {0, 1, 0, -10}},
                        {0, 5, -kEndless, -kEndless}, {0, 5, 0, 0});
  for (const int y : {2, 3}) {
    bool isOpened = false;
    for (const Cut& cut : written.cuts(lomu::findRoundingCuts, {5, 5, 0.5, 0.5})) {
      isOpened |= cut.column == std::vector<int>{y} && cut.value[0] < 0 &&
                  std::abs(cut.right / cut.value[0] - 1) < 1e-6;
    }
    EXPECT_TRUE(isOpened) << y;
  }
}

// Of weights 3, 3, 3 and 5 in 8 not all of three 3s fit, and beside the 5 only one: x1 + x2 + x3 +
// x4 <= 2, where x4 counts for 2 - 1.
TEST(Cuts, countWhatIsOutsideOfACover) {
  const Written written({0, 0, 0, 0}, {1, 1, 1, 1}, {1, 1, 1, 1}, {{3, 3, 3, 5}}, {-kEndless}, {8});
  const std::vector<Cut> cuts = written.cuts(lomu::findCoverCuts, {8.0 / 9, 8.0 / 9, 8.0 / 9, 0});
  ASSERT_EQ(cuts.size(), 1U);
  for (int j = 0; j < 4; ++j) EXPECT_EQ(valueOf(cuts[0], j), 1) << j;
  EXPECT_EQ(cuts[0].right, 2);
}

// All inequalities of knapsacks against all of their packings, and none that allows the point.
TEST(Cuts, ofCoversHoldForEveryPacking) {
  std::mt19937 random(7);
  const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
  int found = 0;
  for (int round = 0; round < 2000; ++round) {
    lomu::Knapsack knapsack;
    const int n = 3 + below(8);
    double sum = 0;
    for (int k = 0; k < n; ++k) {
      knapsack.weight.push_back(1 + below(30));
      sum += knapsack.weight.back();
      knapsack.level.push_back(below(3) == 0 ? below(2) : below(11) / 10.0);
    }
    knapsack.capacity = std::floor(sum * (1 + below(8)) / 10);
    lomu::KnapsackCover cover;
    if (!lomu::findCover(knapsack, cover)) continue;
    ++found;
    double most = 0;
    for (unsigned packing = 0; packing < 1U << n; ++packing) {
      double weight = 0;
      double count = 0;
      for (int k = 0; k < n; ++k) {
        if ((packing >> k & 1U) == 0) continue;
        weight += knapsack.weight[static_cast<std::size_t>(k)];
        count += cover.count[static_cast<std::size_t>(k)];
      }
      if (weight <= knapsack.capacity) most = std::max(most, count);
    }
    ASSERT_LE(most, cover.most) << "round " << round;
  }
  EXPECT_GT(found, 200);
}

// x + 1e-9 y <= 0.5 where y is at least -1e6 is x <= 0.501, and nothing where y has no end. 4 x + 6
// y
// <= 9 of integers is 2 x + 3 y <= 4.
TEST(Cuts, areSettledOnTheSafeSide) {
  const std::vector<double> point{1, 1};
  Written written({0, -1e6}, {1, 1}, {0, 0}, {}, {}, {});
  Cut cut{{0, 1}, {1, 1e-9}, 0.5};
  ASSERT_TRUE(CutProblem(written.form).settle(cut, point.data()));
  EXPECT_EQ(cut.column, std::vector<int>{0});
  EXPECT_GE(cut.right, 0.501);
  EXPECT_LT(cut.right, 0.502);
  written.form.lower[1] = -kEndless;
  cut = {{0, 1}, {1, 1e-9}, 0.5};
  EXPECT_FALSE(CutProblem(written.form).settle(cut, point.data()));

  const Written whole({0, 0}, {9, 9}, {1, 1}, {}, {}, {});
  cut = {{0, 1}, {4, 6}, 9};
  ASSERT_TRUE(CutProblem(whole.form).settle(cut, point.data()));
  EXPECT_EQ(cut.value, (std::vector<double>{2, 3}));
  EXPECT_EQ(cut.right, 4);
}

// Without an end a column can be measured from nothing, and a problem without a tight row has
// nothing to say.
TEST(Cuts, areNoneWhereNothingBinds) {
  const Written free({-kEndless, 0}, {kEndless, 5}, {0, 1}, {{1, 2}}, {-kEndless}, {3});
  EXPECT_TRUE(free.cuts(lomu::findRoundingCuts, {0, 1.5}).empty());
  EXPECT_TRUE(free.cuts(lomu::findCoverCuts, {0, 1.5}).empty());
  const Written slack({0, 0}, {1, 1}, {1, 1}, {{3, 5}}, {-kEndless}, {7});
  EXPECT_TRUE(slack.cuts(lomu::findCoverCuts, {0.1, 0.2}).empty());
}

}  // namespace
}  // namespace ztbtest
