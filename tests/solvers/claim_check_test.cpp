// Proofs that hold, and those that nearly do.
#include "providers/model/solvers/claim_check.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::partsOfProof;
using lomu::provenBound;
using lomu::provesInfeasible;
using lomu::provesUnbounded;

// x + y >= 4 and x - y <= -1 with x from 0 to 1, y from 0 to `most`: without a point while most is
// below 3, for x + y is at most 1 + most.
SmallModel narrow(double most) {
  SmallModel model;
  model.column(1, 0, 1);
  model.column(1, 0, most);
  model.row({1, 1}, 4, kInf);
  model.row({1, -1}, -kInf, -1);
  return model;
}

TEST(ClaimCheck, aRayOfTheRowsProvesThatNoPointExists) {
  SmallModel model = narrow(2.5);
  EXPECT_TRUE(provesInfeasible(model.problem(), {1, 0}));
  EXPECT_TRUE(provesInfeasible(model.problem(), {-7, 0})) << "with the sign turned";
  EXPECT_FALSE(provesInfeasible(model.problem(), {0, 1}));
  EXPECT_FALSE(provesInfeasible(model.problem(), {0, 0}));
  EXPECT_FALSE(provesInfeasible(model.problem(), {1}));
  EXPECT_FALSE(provesInfeasible(model.problem(), {kInf, 0}));
  EXPECT_FALSE(provesInfeasible(model.problem(), {}));
}

// x + y >= 4 is out of reach for the upper bounds of both; the second row has no part in it.
TEST(ClaimCheck, aProofRestsOnSidesAndBounds) {
  SmallModel model = narrow(2.5);
  using Flags = std::vector<char>;
  for (const double sign : {1.0, -7.0}) {
    const auto parts = partsOfProof(model.problem(), {sign, 0});
    ASSERT_TRUE(parts.has_value());
    EXPECT_EQ(parts->rowLower, (Flags{1, 0}));
    EXPECT_EQ(parts->rowUpper, (Flags{0, 0}));
    EXPECT_EQ(parts->lower, (Flags{0, 0}));
    EXPECT_EQ(parts->upper, (Flags{1, 1}));
  }
  // 4 + 1 is below 2 y: without x.
  const auto ofOne = partsOfProof(model.problem(), {1, -1});
  EXPECT_FALSE(ofOne.has_value()) << "2 y may be 5";
  model.upper[1] = 2;
  const auto withoutX = partsOfProof(model.problem(), {1, -1});
  ASSERT_TRUE(withoutX.has_value());
  EXPECT_EQ(withoutX->rowLower, (Flags{1, 0}));
  EXPECT_EQ(withoutX->rowUpper, (Flags{0, 1}));
  EXPECT_EQ(withoutX->lower, (Flags{0, 0}));
  EXPECT_EQ(withoutX->upper, (Flags{0, 1}));
  EXPECT_FALSE(partsOfProof(model.problem(), {0, 1}).has_value());
  EXPECT_FALSE(partsOfProof(model.problem(), {}).has_value());
}

TEST(ClaimCheck, boundsThatCrossAreAProof) {
  using Flags = std::vector<char>;
  SmallModel model = narrow(5);
  model.lower[1] = 6;
  const auto ofColumn = partsOfProof(model.problem(), {});
  ASSERT_TRUE(ofColumn.has_value());
  EXPECT_EQ(ofColumn->rowLower, (Flags{0, 0}));
  EXPECT_EQ(ofColumn->lower, (Flags{0, 1}));
  EXPECT_EQ(ofColumn->upper, (Flags{0, 1}));
  model.rowLower[1] = 0;
  const auto ofRow = partsOfProof(model.problem(), {1, 1});
  ASSERT_TRUE(ofRow.has_value());
  EXPECT_EQ(ofRow->rowLower, (Flags{0, 1}));
  EXPECT_EQ(ofRow->rowUpper, (Flags{0, 1}));
  EXPECT_EQ(ofRow->upper, (Flags{0, 0}));
}

// With weights w of x + y >= 4: 4 w and what is left of the costs, 1 - w a column, at their best
// end.
TEST(ClaimCheck, marginalsProveABound) {
  SmallModel model = narrow(5);
  EXPECT_EQ(provenBound(model.problem(), {1, 0}), 4);
  EXPECT_EQ(provenBound(model.problem(), {0.5, 0}), 2);
  EXPECT_EQ(provenBound(model.problem(), {2, 0}), 8 - 1 - 5);
  EXPECT_EQ(provenBound(model.problem(), {0, 0}), 0);
  EXPECT_EQ(provenBound(model.problem(), {-1, 0}), 0) << "the row has no side above";
  EXPECT_EQ(provenBound(model.problem(), {kInf, 0}), 0);
  // x - y <= -1 counts from above: 4 + 1 and (1 - 1 + 1) x at 0, (1 - 1 - 1) y at 5.
  EXPECT_EQ(provenBound(model.problem(), {1, -1}), 4 + 1 - 5);
  model.upper[1] = kInf;
  // The weights count by half, where y costs nothing more.
  EXPECT_EQ(provenBound(model.problem(), {2, 0}), 4);
  EXPECT_NEAR(provenBound(model.problem(), {1 + 1e-7, 0}), 4, 1e-9);
  model.cost[1] = -1;
  EXPECT_EQ(provenBound(model.problem(), {1, 0}), -kInf);
  EXPECT_EQ(provenBound(model.problem(), {0, 0}), -kInf);
  model.lower[0] = 2;  // and at most 1: what holds of no point proves nothing
  EXPECT_EQ(provenBound(model.problem(), {1, 0}), -kInf);
}

TEST(ClaimCheck, aRayProvesNothingWithinTheTolerance) {
  SmallModel model = narrow(3);
  EXPECT_FALSE(provesInfeasible(model.problem(), {1, 0}));
  model.upper[1] = 3 - 1e-7;
  EXPECT_FALSE(provesInfeasible(model.problem(), {1, 0}));
  model.upper[1] = 3 - 1e-4;
  EXPECT_TRUE(provesInfeasible(model.problem(), {1, 0}));
}

TEST(ClaimCheck, aColumnWithoutAnEndBreaksARay) {
  SmallModel model = narrow(kInf);
  EXPECT_FALSE(provesInfeasible(model.problem(), {1, 0}));
}

TEST(ClaimCheck, aRayOfTheColumnsProvesThatThereIsNoEnd) {
  SmallModel model;
  model.column(-1, 0, kInf);
  model.column(0.5, 0, kInf);
  model.row({1, -1}, -kInf, 3);
  EXPECT_TRUE(provesUnbounded(model.problem(), {3, 0}, {2, 2}));
  EXPECT_FALSE(provesUnbounded(model.problem(), {4, 0}, {2, 2})) << "from no point";
  EXPECT_FALSE(provesUnbounded(model.problem(), {3, 0}, {2, 1})) << "leaves the row";
  EXPECT_FALSE(provesUnbounded(model.problem(), {3, 0}, {0, 1})) << "raises the cost";
  EXPECT_FALSE(provesUnbounded(model.problem(), {3, 0}, {}));
  model.upper[1] = 1e9;
  EXPECT_FALSE(provesUnbounded(model.problem(), {3, 0}, {2, 2})) << "leaves a bound";
}

// The ray of the live solvers of ours, each found by their own last step.
class Rays : public testing::TestWithParam<const char*> {};

TEST_P(Rays, areLeftByALiveSolver) {
  SmallModel model = narrow(10);
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  ASSERT_EQ(solveLive(*live, model).outcome, lomu::Outcome::optimal);

  model.upper[1] = 2.5;
  ASSERT_TRUE(live->update(model.problem()));
  lomu::SolverResult result = solveLive(*live, model);
  EXPECT_EQ(result.outcome, lomu::Outcome::infeasible);
  EXPECT_TRUE(provesInfeasible(model.problem(), result.rowRay));

  model.upper[1] = kInf;
  model.cost[1] = -1;
  ASSERT_TRUE(live->update(model.problem()));
  result = solveLive(*live, model);
  EXPECT_EQ(result.outcome, lomu::Outcome::unbounded);
  EXPECT_TRUE(provesUnbounded(model.problem(), result.level, result.columnRay));
}

INSTANTIATE_TEST_SUITE_P(Solvers, Rays, testing::Values("clp", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace ztbtest
