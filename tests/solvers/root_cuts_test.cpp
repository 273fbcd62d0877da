// Cuts at the root, all ways together: what they find, and when they are left out.
#include "providers/model/solvers/root_cuts.h"

#include <gtest/gtest.h>

#include <CglTreeInfo.hpp>
#include <CoinPackedMatrix.hpp>
#include <OsiClpSolverInterface.hpp>
#include <OsiCuts.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "providers/model/solvers/cut_generator.h"
#include "providers/model/solvers/dive.h"
#include "providers/model/solvers/rounding_cuts.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Cut;
using lomu::CutProblem;
using lomu::RootCuts;

// x + y <= 1, where the point has more.
void cutPair(const CutProblem& /*problem*/, const double* point, std::vector<Cut>& cuts) {
  if (point[0] + point[1] > 1.01) cuts.push_back({{0, 1}, {1, 1}, 1});
}

// z >= 1.
void cutThird(const CutProblem& /*problem*/, const double* point, std::vector<Cut>& cuts) {
  if (point[2] < 0.99) cuts.push_back({{2}, {-1}, -1});
}

// 2 x + 2 y <= 3 and 10 z >= 3 of integers up to 1, where x and y earn 1 and z costs 100: at best
// 28.5 without integers, with x + y <= 1 it is 29, and 99 with integers.
class AtRoot : public testing::Test {
 protected:
  AtRoot() {
    SmallModel model;
    model.column(-1, 0, 1, true);
    model.column(-1, 0, 1, true);
    model.column(100, 0, 1, true);
    model.row({2, 2, 0}, -kInf, 3);
    model.row({0, 0, 10}, 3, kInf);
    load(model);
  }

  void load(SmallModel& model) {
    lomu::LinearForm form;
    std::string reason;
    EXPECT_TRUE(form.take(model.problem(), reason)) << reason;
    solver_.messageHandler()->setLogLevel(0);
    solver_.loadProblem(
        CoinPackedMatrix(true, form.rowCount, form.columnCount, static_cast<int>(form.value.size()),
                         form.value.data(), form.rowOf.data(), form.start.data(), nullptr),
        form.lower.data(), form.upper.data(), form.cost.data(), form.rowLower.data(),
        form.rowUpper.data());
    for (int j = 0; j < form.columnCount; ++j) {
      if (form.isInteger[static_cast<std::size_t>(j)] != 0) solver_.setInteger(j);
    }
    solver_.initialSolve();
    problem_ = std::make_shared<const CutProblem>(form);
  }

  std::shared_ptr<RootCuts> run(std::vector<RootCuts::Find> ways, int iterations = 1000) {
    auto cuts = std::make_shared<RootCuts>(problem_, std::move(ways), watch_, iterations);
    cuts->run(solver_);
    return cuts;
  }

  OsiClpSolverInterface solver_;
  std::shared_ptr<const CutProblem> problem_;
  lomu::Watch watch_{lomu::SolverLimits{}};
};

TEST_F(AtRoot, cutsAreUsefulThatCloseTheGap) {
  const auto cuts = run({cutPair, cutThird});
  EXPECT_TRUE(cuts->hasRun());
  EXPECT_TRUE(cuts->areUseful());
  const std::vector<Cut> pair = cuts->take(0);
  ASSERT_EQ(pair.size(), 1U);
  EXPECT_EQ(pair[0].column, (std::vector<int>{0, 1}));
  EXPECT_EQ(cuts->take(0).size(), 0U) << "once";
  EXPECT_EQ(cuts->take(1).size(), 1U);
}

// Of a gap of 70.5 a half.
TEST_F(AtRoot, cutsAreNoneThatCloseLittleOfIt) {
  const auto cuts = run({cutPair});
  EXPECT_FALSE(cuts->areUseful());
  EXPECT_EQ(cuts->take(0).size(), 0U);
}

TEST_F(AtRoot, diveEndsAtTheBestPoint) {
  const auto cuts = run({cutPair});
  std::vector<double> point(3, -1);
  double objective = 99;
  EXPECT_FALSE(cuts->takePoint(objective, point.data())) << "no better one";
  EXPECT_EQ(point[2], -1);
  objective = 1e50;
  ASSERT_TRUE(cuts->takePoint(objective, point.data()));
  EXPECT_DOUBLE_EQ(objective, 99);
  EXPECT_EQ(point[0] + point[1], 1);
  EXPECT_EQ(point[2], 1);
  objective = 1e50;
  EXPECT_FALSE(cuts->takePoint(objective, point.data())) << "once";
}

// With a best point of 28.8 known there is none better, and the half is all of the gap.
TEST_F(AtRoot, knowsTheBestPointOfTheSearch) {
  solver_.setDblParam(OsiDualObjectiveLimit, 28.8);
  const auto cuts = run({cutPair});
  EXPECT_TRUE(cuts->areUseful());
  std::vector<double> point(3);
  double objective = 1e50;
  EXPECT_FALSE(cuts->takePoint(objective, point.data()));
}

TEST_F(AtRoot, nothingToCutIsNoVerdict) {
  solver_.setColLower(2, 1);
  solver_.setColUpper(0, 0);
  solver_.resolve();
  const auto cuts = run({cutPair, cutThird});
  EXPECT_TRUE(cuts->areUseful());
  EXPECT_EQ(cuts->take(0).size(), 0U);
  EXPECT_EQ(cuts->iterations(), 0);
}

TEST_F(AtRoot, leavesTheSolverAsItIs) {
  run({cutPair, cutThird});
  EXPECT_EQ(solver_.getNumRows(), 2);
  EXPECT_EQ(solver_.getColUpper()[2], 1);
  EXPECT_EQ(solver_.getColLower()[2], 0);
  EXPECT_DOUBLE_EQ(solver_.getObjValue(), 28.5);
}

TEST_F(AtRoot, keepsToLimits) {
  EXPECT_EQ(run({cutPair}, 0)->iterations(), 0);
  EXPECT_TRUE(run({cutPair}, 0)->areUseful());
  EXPECT_GT(run({cutPair})->iterations(), 0);
  lomu::SolverLimits limits;
  limits.seconds = 0;
  watch_ = lomu::Watch(limits);
  EXPECT_EQ(run({cutPair})->iterations(), 0);
}

// 2 x + 2 y = 1: nothing is left behind the cut, which the search is to find out with it.
TEST_F(AtRoot, givesTheCutsThatLeaveNoPoint) {
  SmallModel model;
  model.column(1, 0, 1, true);
  model.column(1, 0, 1, true);
  model.row({2, 2}, 3, 3);
  load(model);
  const auto cuts = run({cutPair});
  EXPECT_TRUE(cuts->areUseful());
  EXPECT_EQ(cuts->take(0).size(), 1U);
}

TEST_F(AtRoot, generatorsBeginWithThem) {
  const auto cuts = std::make_shared<RootCuts>(
      problem_, std::vector<RootCuts::Find>{cutPair, cutThird}, watch_, 1000);
  lomu::CutGenerator pair(problem_, cutPair, cuts, 0);
  lomu::CutGenerator third(problem_, cutThird, cuts, 1);
  CglTreeInfo inTree;
  inTree.inTree = true;
  OsiCuts found;
  pair.generateCuts(solver_, found, inTree);
  EXPECT_EQ(found.sizeRowCuts(), 1) << "without a run";
  EXPECT_FALSE(cuts->hasRun());
  third.generateCuts(solver_, found, {});
  EXPECT_TRUE(cuts->hasRun());
  EXPECT_EQ(found.sizeRowCuts(), 2);
  EXPECT_EQ(cuts->take(1).size(), 0U) << "taken";
  EXPECT_EQ(cuts->take(0).size(), 1U);
}

TEST_F(AtRoot, generatorsLeaveUselessOnesOut) {
  const auto cuts =
      std::make_shared<RootCuts>(problem_, std::vector<RootCuts::Find>{cutPair}, watch_, 1000);
  lomu::CutGenerator pair(problem_, cutPair, cuts, 0);
  OsiCuts found;
  pair.generateCuts(solver_, found, {});
  CglTreeInfo inTree;
  inTree.inTree = true;
  pair.generateCuts(solver_, found, inTree);
  EXPECT_EQ(found.sizeRowCuts(), 0);
}

// z is nearest to 0 and has to turn, x or y stays at 0.5 and turns as well.
TEST_F(AtRoot, diveTurnsWhereItHasTo) {
  EXPECT_EQ(lomu::undecided(solver_), 2);
  int iterations = 100;
  ASSERT_TRUE(lomu::dive(solver_, {0, 0}, watch_, iterations));
  EXPECT_EQ(lomu::undecided(solver_), 0);
  EXPECT_DOUBLE_EQ(solver_.getObjValue(), 99);
  EXPECT_LT(iterations, 100);
}

TEST_F(AtRoot, diveTellsThatItHasNoPoint) {
  solver_.setDblParam(OsiDualObjectiveLimit, 50);
  int iterations = 100;
  EXPECT_FALSE(lomu::dive(solver_, {0.5, 0}, watch_, iterations));
  iterations = 0;
  EXPECT_FALSE(lomu::dive(solver_, {0.5, 0}, watch_, iterations));
}

}  // namespace
}  // namespace ztbtest
