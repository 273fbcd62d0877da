// More columns than the checks take at a time: none is passed over, wherever it stands.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "providers/model/solvers/claim_check.h"
#include "providers/model/solvers/point_check.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

constexpr int kCount = 600;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
// First and last ones, and those around the ends of a block.
constexpr int kPlaces[] = {0, 1, 127, 128, 255, 256, 257, 511, 512, 513, kCount - 1};

std::size_t at(int j) {
  return static_cast<std::size_t>(j);
}

// The sum of all columns, from 0 to 10 at a cost of 1 each, is at least 600: all at 1 are best, as
// a row's marginal of 1 proves. A second row has the first and the last column alone.
class ManyColumns : public testing::Test {
 protected:
  ManyColumns() {
    for (int j = 0; j < kCount; ++j) model_.column(1, 0, 10);
    model_.row(std::vector<double>(kCount, 1.0), kCount, kInf);
    std::vector<double> ends(kCount, 0.0);
    ends.front() = 2;
    ends.back() = 3;
    model_.row(ends, -kInf, kInf);
  }

  // What is found at the point of ones, but for one column.
  std::string violationWith(int place, double level) {
    std::vector<double> levels(kCount, 1.0);
    levels[at(place)] = level;
    return lomu::violation(model_.problem(), levels);
  }
  SolverResult optimum() {
    SolverResult result = resultFor(model_);
    result.outcome = Outcome::optimal;
    result.hasPoint = true;
    result.level.assign(kCount, 1.0);
    result.rowMarginal = {1, 0};
    result.rowPosition = {lomu::Position::atLower, lomu::Position::basic};
    return result;
  }
  std::string doubt(SolverResult result) { return lomu::optimumDoubt(model_.problem(), result); }

  SmallModel model_;
  const std::string room_ = "its marginals leave room for a better point";
};

TEST_F(ManyColumns, noneIsOutsideOfItsBoundsUnseen) {
  EXPECT_EQ(violationWith(0, 1), "");
  for (const int place : kPlaces) {
    const std::string name = "column #" + std::to_string(place);
    EXPECT_EQ(violationWith(place, 10.5),
              name + " at 10.500000 is outside of 0.000000 to 10.000000");
    EXPECT_EQ(violationWith(place, -1), name + " at -1.000000 is outside of 0.000000 to 10.000000");
    EXPECT_EQ(violationWith(place, kNan), name + " at nan is outside of 0.000000 to 10.000000");
    EXPECT_EQ(violationWith(place, 10 + 1e-7), "") << "within the tolerance";
    model_.upper[at(place)] = kInf;
    EXPECT_EQ(violationWith(place, kInf), name + " at inf is outside of 0.000000 to inf");
    model_.upper[at(place)] = 10;
    model_.isInteger[at(place)] = 1;
    EXPECT_EQ(violationWith(place, 1.5), name + " at 1.500000 is no integer");
    model_.isInteger[at(place)] = 0;
  }
}

TEST_F(ManyColumns, eachCountsInItsRows) {
  for (const int place : kPlaces) {
    EXPECT_EQ(violationWith(place, 0.5), "row #0 at 599.500000 is outside of 600.000000 to inf");
  }
  model_.rowLower[1] = 5.5;
  EXPECT_EQ(violationWith(5, 1), "row #1 at 5.000000 is outside of 5.500000 to inf");
  EXPECT_EQ(violationWith(kCount - 1, 1.5), "");
}

TEST_F(ManyColumns, aLookAtAnOptimumLeavesMarginalsAndRows) {
  for (int j = 0; j < kCount; ++j) model_.cost[at(j)] = 1 + 0.5 * (j % 7);
  SolverResult result = optimum();
  for (int j = 0; j < kCount; ++j) result.level[at(j)] = j % 7 == 0 ? j : 0;
  model_.upper.assign(kCount, kInf);
  result.rowMarginal = {1, 0.25};
  lomu::optimumDoubt(model_.problem(), result);
  double sum = 0;
  for (int j = 0; j < kCount; j += 7) sum += j;
  EXPECT_EQ(result.rowLevel, (std::vector<double>{sum, 0}));  // 599 is no multiple of 7
  EXPECT_EQ(result.cost, sum);
  std::vector<double> marginals;
  for (int j = 0; j < kCount; ++j) marginals.push_back(0.5 * (j % 7));
  marginals.front() -= 0.25 * 2;
  marginals.back() -= 0.25 * 3;
  EXPECT_EQ(result.columnMarginal, marginals);
}

TEST_F(ManyColumns, eachMarginalCounts) {
  EXPECT_EQ(doubt(optimum()), "");
  for (const int place : kPlaces) {
    const std::size_t j = at(place);
    SolverResult result = optimum();
    model_.cost[j] = 0.5;
    EXPECT_EQ(doubt(result), room_) << "it could go up";
    result.level[j] = 10;
    EXPECT_EQ(doubt(result), "") << "it is there";
    result.level[j] = 1;
    model_.lower[j] = model_.upper[j] = 1;
    EXPECT_EQ(doubt(result), "") << "it stands still";
    model_.lower[j] = 0;
    model_.upper[j] = kInf;
    EXPECT_EQ(doubt(result), room_) << "it has no end";
    model_.upper[j] = 10;
    model_.cost[j] = 2;
    EXPECT_EQ(doubt(result), room_) << "it could go down";
    result.level[j] = 0;
    EXPECT_EQ(doubt(result), "");
    model_.cost[j] = kNan;
    EXPECT_EQ(doubt(optimum()), room_);
    model_.cost[j] = 1;
    result.level[j] = kNan;
    model_.cost[j] = 2;
    EXPECT_EQ(doubt(result), room_);
    model_.cost[j] = 1;
  }
}

TEST_F(ManyColumns, noneRunsAwayUnseen) {
  model_.upper.assign(kCount, kInf);
  for (const int place : kPlaces) {
    SolverResult result = optimum();
    result.level[at(place)] = -3e12;
    EXPECT_EQ(lomu::optimumDoubt(model_.problem(), result),
              "column #" + std::to_string(place) + " is at -3000000000000.000000");
    EXPECT_TRUE(result.columnMarginal.empty());
    EXPECT_TRUE(result.rowLevel.empty());
    result.level[at(place)] = 3e8;  // explained by sides of 600
    EXPECT_EQ(lomu::optimumDoubt(model_.problem(), result), "");
  }
}

// A live solver, told that bounds alone may differ, against what can be worked out by hand.
class ManyBounds : public ManyColumns {
 protected:
  void SetUp() override {
    model_.coefficientsAsOf = 1;
    std::string reason;
    ASSERT_TRUE(live_->load(model_.problem(), reason)) << reason;
    ASSERT_EQ(solved(), kCount);
  }
  // Bounds that cross are no work for a solver, and need no ray.
  void expectCrossing(const char* why = "") {
    EXPECT_EQ(solved(), kInf) << why;
    EXPECT_EQ(last_.iterations, 0) << why;
    EXPECT_TRUE(last_.rowRay.empty()) << why;
  }
  // The objective of an optimum; infinite where there is no point.
  double solved() {
    EXPECT_TRUE(live_->update(model_.problem()));
    last_ = solveLive(*live_, model_);
    if (last_.outcome == Outcome::infeasible) return kInf;
    EXPECT_EQ(last_.outcome, Outcome::optimal) << last_.reason;
    return model_.objective(last_.level);
  }

  std::unique_ptr<lomu::Solver> live_ = openSolver("clp");
  SolverResult last_;
};

TEST_F(ManyBounds, aChangeIsSeenWhereverItIs) {
  for (const int place : kPlaces) {
    const std::size_t j = at(place);
    model_.lower[j] = 9;
    model_.rowLower[0] = 0;
    EXPECT_NEAR(solved(), 9, 1e-6) << "column " << place;
    model_.lower[j] = 0;
    EXPECT_NEAR(solved(), 0, 1e-6) << "taken back";
    model_.upper[j] = 4;
    model_.rowLower[0] = 10 * kCount - 6;
    EXPECT_NEAR(solved(), 10 * kCount - 6, 1e-6);
    model_.upper[j] = 3.5;
    EXPECT_EQ(solved(), kInf) << "no column makes up for it";
    EXPECT_EQ(solved(), kInf) << "and nothing changed";
    model_.upper[j] = 10;
    EXPECT_NEAR(solved(), 10 * kCount - 6, 1e-6);
  }
}

TEST_F(ManyBounds, thatCrossAreKnownUntilNoneDo) {
  for (const int place : kPlaces) {
    const std::size_t j = at(place);
    const std::size_t other = at((place + 300) % kCount);
    model_.lower[j] = 11;
    expectCrossing();
    expectCrossing("nothing changed");
    model_.upper[other] = -1;
    expectCrossing();
    model_.lower[j] = 0;
    expectCrossing("the other ones still do");
    model_.upper[other] = 10;
    EXPECT_NEAR(solved(), kCount, 1e-6);
  }
  model_.rowUpper[1] = -1;
  model_.rowLower[1] = 1;
  expectCrossing();
  model_.rowLower[1] = -kInf;
  EXPECT_EQ(solved(), kInf) << "2 and 3 times what is not below 0";
  model_.rowUpper[1] = kInf;
  EXPECT_NEAR(solved(), kCount, 1e-6);
}

// Coefficients from one half to two are solved as they stand, others scaled; a step with another
// matrix, then bounds alone again.
TEST_F(ManyBounds, otherCoefficientsBetweenThem) {
  for (const double coefficient : {1e4, 1.0, 1e-4, 2.0, 0.49, 0.5}) {
    model_.rows[0][0] = coefficient;
    ++model_.coefficientsAsOf;
    // The first column alone pays for itself; else all but it do.
    const double expected = coefficient > 1 ? std::max(kCount - 10 * coefficient, 0.0) +
                                                  std::min(10.0, kCount / coefficient)
                                            : kCount;
    EXPECT_NEAR(solved(), expected, 1e-6) << coefficient;
    model_.upper[0] = 0;
    EXPECT_NEAR(solved(), kCount, 1e-6) << "without it";
    model_.upper[0] = 10;
    EXPECT_NEAR(solved(), expected, 1e-6) << "the same bound again";
    model_.upper[0] = -1;
    EXPECT_EQ(solved(), kInf);
    model_.upper[0] = 10;
    EXPECT_NEAR(solved(), expected, 1e-6);
  }
}

}  // namespace
}  // namespace ztbtest
