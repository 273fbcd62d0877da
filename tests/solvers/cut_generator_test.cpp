// Our cuts as Cbc gets them: in the form that its interface has, where they hold.
#include "providers/model/solvers/cut_generator.h"

#include <gtest/gtest.h>

#include <CglTreeInfo.hpp>
#include <CoinPackedMatrix.hpp>
#include <OsiClpSolverInterface.hpp>
#include <OsiCuts.hpp>
#include <memory>

#include "providers/model/solvers/rounding_cuts.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::CutGenerator;
using lomu::CutProblem;

// 2 x + 2 y <= 3 of integers up to 5, where x earns more: best at (1.5, 0) without integers, which
// x + y <= 1 takes away.
class Generator : public testing::Test {
 protected:
  Generator() {
    SmallModel model;
    model.column(-2, 0, 5, true);
    model.column(-1, 0, 5, true);
    model.row({2, 2}, -kInf, 3);
    lomu::LinearForm form;
    std::string reason;
    EXPECT_TRUE(form.take(model.problem(), reason)) << reason;
    solver_.messageHandler()->setLogLevel(0);
    solver_.loadProblem(
        CoinPackedMatrix(true, 1, 2, static_cast<int>(form.value.size()), form.value.data(),
                         form.rowOf.data(), form.start.data(), nullptr),
        form.lower.data(), form.upper.data(), form.cost.data(), form.rowLower.data(),
        form.rowUpper.data());
    solver_.initialSolve();
    generator_ = std::make_unique<CutGenerator>(std::make_shared<const CutProblem>(form),
                                                lomu::findRoundingCuts);
  }

  OsiCuts cuts(const CglTreeInfo& info = {}) {
    OsiCuts cuts;
    generator_->generateCuts(solver_, cuts, info);
    return cuts;
  }

  OsiClpSolverInterface solver_;
  std::unique_ptr<CutGenerator> generator_;
};

TEST_F(Generator, cutsThePointOfTheSolver) {
  ASSERT_DOUBLE_EQ(solver_.getColSolution()[0], 1.5);
  const OsiCuts found = cuts();
  ASSERT_EQ(found.sizeRowCuts(), 1);
  EXPECT_EQ(found.sizeColCuts(), 0);
  const OsiRowCut& cut = found.rowCut(0);
  ASSERT_EQ(cut.row().getNumElements(), 2);
  EXPECT_EQ(cut.row()[0], 1);
  EXPECT_EQ(cut.row()[1], 1);
  EXPECT_EQ(cut.ub(), 1);
  EXPECT_LE(cut.lb(), -1e20);

  solver_.applyCuts(found);
  solver_.resolve();
  EXPECT_DOUBLE_EQ(solver_.getObjValue(), -2) << "x alone";
  EXPECT_EQ(cuts().sizeRowCuts(), 0) << "of a point of integers";
}

TEST_F(Generator, isCopiedWithItsProblem) {
  generator_ = std::unique_ptr<CutGenerator>(static_cast<CutGenerator*>(generator_->clone()));
  EXPECT_EQ(cuts().sizeRowCuts(), 1);
}

TEST_F(Generator, addsNoCutTwice) {
  OsiCuts found;
  generator_->generateCuts(solver_, found, {});
  generator_->generateCuts(solver_, found, {});
  EXPECT_EQ(found.sizeRowCuts(), 1);
}

// Cbc asks for cuts of all of the search at the root, by an option of the generator, and there in
// the first round or in all.
TEST_F(Generator, cutsForAllOfTheSearchWhereCbcAsksForIt) {
  const auto isForAll = [this](bool inTree, int options, int pass) {
    CglTreeInfo info;
    info.inTree = inTree;
    info.options = options;
    info.pass = pass;
    const OsiCuts found = cuts(info);
    return found.sizeRowCuts() == 1 && found.rowCut(0).globallyValid();
  };
  EXPECT_FALSE(isForAll(false, 0, 0));
  EXPECT_TRUE(isForAll(false, 4, 3));
  EXPECT_TRUE(isForAll(false, 8, 0));
  EXPECT_FALSE(isForAll(false, 8, 1));
  EXPECT_FALSE(isForAll(true, 4, 0));
  EXPECT_TRUE(isForAll(true, 16, 1));
}

// A heuristic may search a problem with other bounds, of which our cuts say nothing, or with fewer
// columns.
TEST_F(Generator, knowsAProblemThatIsNotItsOwn) {
  solver_.setColUpper(0, 6);
  EXPECT_EQ(cuts().sizeRowCuts(), 0);
  solver_.setColUpper(0, 4);
  EXPECT_EQ(cuts().sizeRowCuts(), 1);
  solver_.setColLower(1, -1);
  EXPECT_EQ(cuts().sizeRowCuts(), 0);
  solver_.setColLower(1, 0);
  const int last = 1;
  solver_.deleteCols(1, &last);
  EXPECT_EQ(cuts().sizeRowCuts(), 0);
}

}  // namespace
}  // namespace ztbtest
