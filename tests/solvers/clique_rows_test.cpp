// Rows of cliques, by hand and with every point of small problems at random.
#include "providers/model/solvers/clique_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <ostream>
#include <vector>

#include "tests/solvers/cut_cases.h"

namespace ztbtest {
namespace {

using lomu::CutProblem;
using lomu::LinearForm;

constexpr double kNoEnd = std::numeric_limits<double>::infinity();

struct DenseRow {
  std::vector<double> value;
  double lower, upper;
};

bool operator==(const DenseRow& a, const DenseRow& b) {
  return a.value == b.value && a.lower == b.lower && a.upper == b.upper;
}

void PrintTo(const DenseRow& row, std::ostream* out) {
  *out << row.lower << " <=";
  for (const double value : row.value) *out << " " << value;
  *out << " <= " << row.upper;
}

// Of binary columns.
LinearForm formOf(const std::vector<DenseRow>& rows) {
  LinearForm form;
  form.columnCount = static_cast<int>(rows[0].value.size());
  form.rowCount = static_cast<int>(rows.size());
  const auto n = rows[0].value.size();
  form.cost.assign(n, 1);
  form.lower.assign(n, 0);
  form.upper.assign(n, 1);
  form.isInteger.assign(n, 1);
  form.hasIntegers = true;
  for (std::size_t j = 0; j < n; ++j) {
    form.start.push_back(static_cast<int>(form.value.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].value[j] == 0) continue;
      form.rowOf.push_back(static_cast<int>(i));
      form.value.push_back(rows[i].value[j]);
    }
  }
  form.start.push_back(static_cast<int>(form.value.size()));
  for (const DenseRow& row : rows) {
    form.rowLower.push_back(row.lower);
    form.rowUpper.push_back(row.upper);
  }
  return form;
}

std::vector<DenseRow> rowsOf(const LinearForm& form) {
  std::vector<DenseRow> rows;
  for (std::size_t i = 0; i < form.rowLower.size(); ++i) {
    rows.push_back({std::vector<double>(form.lower.size()), form.rowLower[i], form.rowUpper[i]});
  }
  for (std::size_t j = 0; j < form.lower.size(); ++j) {
    for (int e = form.start[j]; e < form.start[j + 1]; ++e) {
      const auto place = static_cast<std::size_t>(e);
      rows[static_cast<std::size_t>(form.rowOf[place])].value[j] = form.value[place];
    }
  }
  return rows;
}

// The rows after merging; none where nothing changes.
std::vector<DenseRow> mergedRows(const std::vector<DenseRow>& rows) {
  const LinearForm form = formOf(rows);
  LinearForm merged;
  if (!lomu::mergeCliques(CutProblem(form), form, merged)) return {};
  EXPECT_EQ(merged.rowCount, static_cast<int>(merged.rowLower.size()));
  EXPECT_EQ(merged.cost, form.cost);
  EXPECT_EQ(merged.isInteger, form.isInteger);
  return rowsOf(merged);
}

// At most one of each two of three: at most one of them.
TEST(CliqueRows, makeOneOfPairs) {
  const std::vector<DenseRow> one{{{1, 1, 1}, -kNoEnd, 1}};
  EXPECT_EQ(
      mergedRows({{{1, 1, 0}, -kNoEnd, 1}, {{0, 2, 2}, -kNoEnd, 3}, {{-1, 0, -1}, -1, kNoEnd}}),
      one);
}

// Two nodes of each edge of a triangle of a colour that the fourth column allows: x + y <= c, each.
TEST(CliqueRows, takeColumnsAtZeroToo) {
  const std::vector<DenseRow> one{{{1, 1, 1, -1}, -kNoEnd, 0}};
  EXPECT_EQ(
      mergedRows(
          {{{1, 1, 0, -1}, -kNoEnd, 0}, {{0, 1, 1, -1}, -kNoEnd, 0}, {{1, 0, 1, -1}, -kNoEnd, 0}}),
      one);
}

// A row that one of a knapsack's says as well goes: of 5, 4 and 3 in 6 each two are too much.
TEST(CliqueRows, seeCliquesInKnapsacks) {
  const std::vector<DenseRow> left{{{5, 4, 3, 1}, -kNoEnd, 6}};
  EXPECT_EQ(mergedRows({{{5, 4, 3, 1}, -kNoEnd, 6}, {{0, 1, 1, 0}, -kNoEnd, 1}}),
            (std::vector<DenseRow>{left[0], {{1, 1, 1, 0}, -kNoEnd, 1}}));
}

// Rows with two sides stay, and those that an equality says as well go.
TEST(CliqueRows, leaveEqualities) {
  const DenseRow each{{1, 1, 1}, 1, 1};
  const DenseRow range{{1, 1, 0}, 0.5, 1};
  EXPECT_EQ(mergedRows({each, {{0, 1, 1}, -kNoEnd, 1}, range}),
            (std::vector<DenseRow>{each, range}));
}

// Two triangles with a common edge, whose row becomes that of the one and is no part of the
// other's.
TEST(CliqueRows, keepWhatTheyWereExtendedBy) {
  const std::vector<DenseRow> merged = mergedRows({{{1, 1, 0, 0}, -kNoEnd, 1},
                                                   {{1, 0, 0, 1}, -kNoEnd, 1},
                                                   {{0, 1, 0, 1}, -kNoEnd, 1},
                                                   {{1, 0, 1, 0}, -kNoEnd, 1},
                                                   {{0, 1, 1, 0}, -kNoEnd, 1}});
  const std::vector<DenseRow> two{{{1, 1, 1, 0}, -kNoEnd, 1}, {{1, 1, 0, 1}, -kNoEnd, 1}};
  EXPECT_TRUE(std::ranges::is_permutation(merged, two)) << testing::PrintToString(merged);
}

TEST(CliqueRows, changeNothingWhereNothingIsInConflict) {
  EXPECT_TRUE(
      mergedRows({{{1, 1, 0}, -kNoEnd, 1}, {{1, 0, 1}, -kNoEnd, 1}, {{0, 2, 2}, -kNoEnd, 4}})
          .empty());
  EXPECT_TRUE(mergedRows({{{1, 1, 1}, -kNoEnd, 2}, {{1, 1, 0}, 1, kNoEnd}}).empty());
  EXPECT_TRUE(mergedRows({{{1, 1, 1}, -kNoEnd, 1}, {{1, 1, 1}, 1, kNoEnd}}).empty());
}

bool holds(const std::vector<DenseRow>& rows, const std::vector<double>& point) {
  for (const DenseRow& row : rows) {
    const double sum = std::inner_product(point.begin(), point.end(), row.value.begin(), 0.0);
    if (sum < row.lower - 1e-9 || sum > row.upper + 1e-9) return false;
  }
  return true;
}

// Of problems in integers alone, and with other columns at a few levels.
TEST(CliqueRows, keepEveryPointAndAddNone) {
  int changed = 0;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    const CutCase each(seed);
    const LinearForm& form = each.form;
    LinearForm merged;
    if (!lomu::mergeCliques(CutProblem(form), form, merged)) continue;
    const std::vector<DenseRow> before = rowsOf(form);
    const std::vector<DenseRow> after = rowsOf(merged);
    std::vector<double> point = form.lower;
    bool isSmall = true;
    for (std::size_t j = 0; j < point.size(); ++j) {
      isSmall = isSmall && std::isfinite(form.lower[j]) && std::isfinite(form.upper[j]);
    }
    if (!isSmall) continue;
    ++changed;
    for (std::size_t j = 0; j < point.size();) {
      ASSERT_EQ(holds(before, point), holds(after, point)) << "seed " << seed;
      for (j = 0; j < point.size(); ++j) {
        if (point[j] < form.upper[j]) {
          point[j] += form.isInteger[j] != 0 ? 1 : form.upper[j] - form.lower[j];
          break;
        }
        point[j] = form.lower[j];
      }
    }
  }
  EXPECT_GE(changed, 200);
}

}  // namespace
}  // namespace ztbtest
