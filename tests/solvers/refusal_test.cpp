// What a solver does not take is refused when it is loaded, with the reason.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

std::string refusal(const std::string& solver, SmallModel& model) {
  std::string reason;
  return openSolver(solver)->load(model.problem(), reason) ? "taken" : reason;
}

SmallModel withInteger() {
  SmallModel model;
  model.column(1, 0, 5, true);
  model.row({1}, 0.5, kInf);
  return model;
}

SmallModel withProduct() {
  SmallModel model;
  model.column(1, 0, 5);
  model.row({1}, 0.5, kInf);
  model.products = {{lomu::kObjectiveRow, 0, 0, 1.0}};
  return model;
}

TEST(Refusal, integers) {
  SmallModel model = withInteger();
  EXPECT_EQ(refusal("clp", model),
            "clp solves linear models without integers: the model has integer columns");
  EXPECT_EQ(refusal("ipopt", model),
            "ipopt solves continuous models: the model has integer columns");
  EXPECT_EQ(refusal("cbc", model), "taken");
  EXPECT_EQ(refusal("glpk", model), "taken");
  EXPECT_EQ(refusal("bonmin", model), "taken");
}

TEST(Refusal, products) {
  SmallModel model = withProduct();
  const std::string why = "the model has products of columns that are not fixed";
  EXPECT_EQ(refusal("clp", model), "clp solves linear models without integers: " + why);
  EXPECT_EQ(refusal("cbc", model), "cbc solves linear models: " + why);
  EXPECT_EQ(refusal("glpk", model), "glpk solves linear models: " + why);
  EXPECT_EQ(refusal("ipopt", model), "taken");
}

TEST(Refusal, numbersThatAreNone) {
  for (const char* solver : {"clp", "cbc", "glpk", "ipopt", "bonmin"}) {
    SmallModel model;
    model.column(1, 0, 5);
    model.row({std::numeric_limits<double>::quiet_NaN()}, 0.5, kInf);
    EXPECT_NE(refusal(solver, model).find("a coefficient that is not a finite number"),
              std::string::npos);
    model.rows[0][0] = 1;
    model.rowLower[0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NE(refusal(solver, model).find("a right-hand side that is not a number"),
              std::string::npos);
  }
}

// An assertion of Clp would end the process.
TEST(Refusal, costsThatClpDoesNotTake) {
  SmallModel model;
  model.column(1, 0, 5);
  model.column(-9.9e24, 0, 5);
  model.row({1, 1}, 0.5, kInf);
  for (const char* solver : {"clp", "cbc"}) {
    model.cost[1] = -9.9e24;
    const auto taken = openSolver(solver);
    std::string reason;
    ASSERT_TRUE(taken->load(model.problem(), reason)) << reason;
    model.cost[1] = -1e25;
    EXPECT_FALSE(taken->update(model.problem()));
    EXPECT_EQ(refusal(solver, model),
              "the cost of column #1 has the size 1e+25, expected one below 1e25");
  }
  EXPECT_EQ(refusal("glpk", model), "taken");
}

TEST(Refusal, changesThatTheLoadedModelCannotTake) {
  for (const char* solver : {"clp", "glpk"}) {
    SmallModel model;
    model.column(1, 2, 2);
    model.column(1, 0, 5);
    model.row({1, 1}, 3, kInf);
    model.products = {{0, 0, 1, 1.0}};
    const auto live = openSolver(solver);
    std::string reason;
    ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
    EXPECT_TRUE(live->update(model.problem()));
    model.upper[0] = 3;
    EXPECT_FALSE(live->update(model.problem()));
  }
}

// A factor that begins to move is seen though no coefficient changed, and so is a bound that is no
// number.
TEST(Refusal, changesOfBoundsThatTheLoadedModelCannotTake) {
  for (const char* solver : {"clp", "glpk"}) {
    SmallModel model;
    model.column(1, 2, 2);
    model.column(1, 0, 5);
    model.row({1, 1}, 3, kInf);
    model.coefficientsAsOf = 1;
    for (const bool hasProducts : {false, true}) {
      if (hasProducts) model.products = {{0, 0, 1, 1.0}};
      const auto live = openSolver(solver);
      std::string reason;
      ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
      model.upper[0] = 3;
      EXPECT_EQ(live->update(model.problem()), !hasProducts);
      model.upper[0] = 2;
      EXPECT_TRUE(live->update(model.problem()));
      for (std::vector<double>* side :
           {&model.lower, &model.upper, &model.rowLower, &model.rowUpper}) {
        const double before = (*side)[0];
        (*side)[0] = std::numeric_limits<double>::quiet_NaN();
        EXPECT_FALSE(live->update(model.problem()));
        (*side)[0] = before;
        EXPECT_TRUE(live->update(model.problem()));
      }
    }
  }
}

TEST(Refusal, costsOfTheSameMatrixThatAreNoNumbers) {
  for (const char* solver : {"clp", "glpk"}) {
    SmallModel model;
    model.column(1, 0, 5);
    model.column(2, 0, 5);
    model.row({1, 1}, 3, kInf);
    model.matrixAsOf = 1;
    const auto live = openSolver(solver);
    std::string reason;
    ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
    EXPECT_EQ(model.objective(solveLive(*live, model).level), 3);
    for (const double cost : {std::numeric_limits<double>::quiet_NaN(), kInf, -kInf}) {
      ++model.coefficientsAsOf;
      model.cost[1] = cost;
      EXPECT_FALSE(live->update(model.problem())) << solver << ' ' << cost;
    }
    ++model.coefficientsAsOf;
    model.cost[1] = 0.5;
    EXPECT_TRUE(live->update(model.problem()));
    EXPECT_EQ(model.objective(solveLive(*live, model).level), 1.5);
  }
}

// Whatever is refused leaves the solver with what it had, and the next update is whole.
TEST(Refusal, leavesNothingHalfDone) {
  for (const char* solver : {"clp", "glpk"}) {
    SmallModel model;
    model.column(1, 0, 10);
    model.column(1, 0, 10);
    model.column(0, 2, 2);
    model.row({1, 0, 0}, 3, kInf);
    model.row({0, 1, -1}, 0, kInf);
    model.row({0, 1, 0}, 0, kInf);
    model.coefficientsAsOf = 1;
    const auto live = openSolver(solver);
    std::string reason;
    ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
    EXPECT_EQ(model.objective(solveLive(*live, model).level), 5);
    model.rowLower[0] = 1;
    model.lower[2] = model.upper[2] = 7;
    model.rowLower[2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(live->update(model.problem()));
    model.rowLower[2] = 0;
    ASSERT_TRUE(live->update(model.problem()));
    EXPECT_EQ(model.objective(solveLive(*live, model).level), 8) << solver;
  }
}

TEST(Refusal, cbcAndIpoptAreMadeAfresh) {
  for (const char* solver : {"cbc", "ipopt", "bonmin"}) {
    SmallModel model;
    model.column(1, 0, 5);
    model.row({1}, 3, kInf);
    const auto live = openSolver(solver);
    std::string reason;
    ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
    EXPECT_FALSE(live->update(model.problem()));
  }
}

}  // namespace
}  // namespace ztbtest
