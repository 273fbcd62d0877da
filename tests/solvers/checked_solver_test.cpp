// A solver whose warm answers are right and wrong, with proofs and without.
#include "providers/model/checked_solver.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverResult;

// Gives `warm` after an update and `cold` after a load.
struct Script {
  SolverResult warm;
  SolverResult cold;
  bool refusesLoads = false;
  int loads = 0;
  int solves = 0;
  std::vector<lomu::SolverLimits> limits;  // of each solve
};

class ScriptedSolver : public lomu::Solver {
 public:
  explicit ScriptedSolver(Script& script) : script_(script) {}
  bool load(const lomu::SolverProblem& /*problem*/, std::string& reason) override {
    if (script_.refusesLoads) reason = "not today";
    ++script_.loads;
    isUpdated_ = false;
    return !script_.refusesLoads;
  }
  bool update(const lomu::SolverProblem& /*problem*/) override {
    isUpdated_ = true;
    return true;
  }
  void solve(const lomu::SolverLimits& limits, SolverResult& result) override {
    script_.limits.push_back(limits);
    ++script_.solves;
    result = isUpdated_ ? script_.warm : script_.cold;
  }

 private:
  Script& script_;
  bool isUpdated_ = false;
};

// min x + 2 y with x + y >= 2, x to 1.5: best at (1.5, 0.5), the row worth 2.
class Checked : public testing::Test {
 protected:
  Checked() {
    model_.column(1, 0, 1.5);
    model_.column(2, 0, kInf);
    model_.row({1, 1}, 2, kInf);
    best_ = resultFor(model_);
    best_.outcome = Outcome::optimal;
    best_.hasPoint = true;
    best_.level = {1.5, 0.5};
    best_.position = {lomu::Position::atUpper, lomu::Position::basic};
    best_.rowMarginal = {2};
    best_.rowPosition = {lomu::Position::atLower};
    best_.iterations = 2;
    script_.cold = best_;
  }

  // The answer of a warm solve that the solver itself answers with `warm`.
  SolverResult answer(const SolverResult& warm) {
    script_.warm = warm;
    std::string reason;
    EXPECT_TRUE(solver_.load(model_.problem(), reason));
    SolverResult result = resultFor(model_);
    solver_.solve({}, result);
    EXPECT_EQ(solver_.doubt(), "") << "a first solve";
    EXPECT_TRUE(solver_.update(model_.problem()));
    result = resultFor(model_);
    solver_.solve({}, result);
    return result;
  }
  SolverResult claim(Outcome outcome) {
    SolverResult result = resultFor(model_);
    result.outcome = outcome;
    result.iterations = 5;
    return result;
  }
  void expectBelieved() const {
    EXPECT_EQ(solver_.doubt(), "");
    EXPECT_EQ(script_.loads, 1);
    EXPECT_EQ(script_.solves, 2);
  }
  void expectCold(const std::string& doubt) const {
    EXPECT_EQ(solver_.doubt(), doubt);
    EXPECT_EQ(script_.loads, 2);
    EXPECT_EQ(script_.solves, 3);
  }

  SmallModel model_;
  Script script_;
  lomu::CheckedSolver solver_{std::make_unique<ScriptedSolver>(script_)};
  SolverResult best_;
};

TEST_F(Checked, anOptimumWithItsMarginalsIsBelieved) {
  const SolverResult result = answer(best_);
  EXPECT_EQ(result.level, best_.level);
  expectBelieved();
}

TEST_F(Checked, aWarmSolveThatTakesTooLongIsEndedForAColdOneByTheBarrier) {
  const SolverResult result = answer(claim(Outcome::timeLimit));
  EXPECT_EQ(result.outcome, Outcome::optimal);
  expectCold("it took far longer than a fresh solve");
  ASSERT_EQ(script_.limits.size(), 3);
  EXPECT_EQ(script_.limits[0].seconds, lomu::SolverLimits().seconds);
  EXPECT_EQ(script_.limits[1].seconds, lomu::CheckedSolver::kLeastWarmSeconds);
  EXPECT_GT(script_.limits[2].seconds, 1e9);
  EXPECT_EQ(script_.limits[1].barrier, 0);
  EXPECT_EQ(script_.limits[2].barrier, 1);
}

TEST_F(Checked, aLimitOfTheCallerIsOneAndNoReasonForAColdSolve) {
  script_.warm = claim(Outcome::timeLimit);
  std::string reason;
  EXPECT_TRUE(solver_.load(model_.problem(), reason));
  SolverResult result = resultFor(model_);
  solver_.solve({}, result);
  EXPECT_TRUE(solver_.update(model_.problem()));
  lomu::SolverLimits limits;
  limits.seconds = 1;
  solver_.solve(limits, result);
  EXPECT_EQ(result.outcome, Outcome::timeLimit);
  expectBelieved();
}

TEST_F(Checked, anOptimumThatItsMarginalsDoNotProveIsNot) {
  SolverResult wrong = best_;
  wrong.level = {0, 2};
  wrong.position = {lomu::Position::atLower, lomu::Position::basic};
  wrong.iterations = 5;
  const SolverResult result = answer(wrong);
  EXPECT_EQ(result.level, best_.level);
  EXPECT_EQ(result.iterations, 7) << "of both solves";
  expectCold("it claims an optimum, but its marginals leave room for a better point");
}

TEST_F(Checked, anOptimumFarOutIsNot) {
  model_.cost[1] = 0;
  SolverResult wrong = best_;
  wrong.level = {1.5, -1.8e21};
  wrong.rowMarginal = {0};
  wrong.rowPosition = {lomu::Position::basic};
  answer(wrong);
  expectCold("it claims an optimum, but column #1 is at -1800000000000000000000.000000");
}

// Against sides and bounds: 3e7 is farther than a side of 2 explains, and no distance beside 100.
TEST_F(Checked, anOptimumFarBeyondAllSidesIsNot) {
  model_.cost = {-1, 0};
  SolverResult wrong = best_;
  wrong.level = {1.5, 3e7};
  wrong.rowMarginal = {0};
  wrong.rowPosition = {lomu::Position::basic};
  answer(wrong);
  expectCold("it claims an optimum, but column #1 is at 30000000.000000");
}

TEST_F(Checked, anOptimumIsBelievedAsFarOutAsItsSidesAre) {
  model_.cost = {-1, 0};
  model_.lower[1] = -100;
  SolverResult far = best_;
  far.level = {1.5, 3e7};
  far.rowMarginal = {0};
  far.rowPosition = {lomu::Position::basic};
  EXPECT_EQ(answer(far).level, far.level);
  expectBelieved();
}

TEST_F(Checked, noPointIsBelievedWithARayOfTheRows) {
  model_.upper[1] = 0.25;
  SolverResult none = claim(Outcome::infeasible);
  none.rowRay = {-3};
  EXPECT_EQ(answer(none).outcome, Outcome::infeasible);
  expectBelieved();
}

TEST_F(Checked, noPointIsNotBelievedWithARayThatProvesNothing) {
  SolverResult none = claim(Outcome::infeasible);
  none.rowRay = {1};
  EXPECT_EQ(answer(none).outcome, Outcome::optimal);
  expectCold("it claims that no point exists, without a proof that holds");
}

TEST_F(Checked, noPointIsBelievedWhereBoundsCross) {
  model_.lower[0] = 3;
  EXPECT_EQ(answer(claim(Outcome::infeasible)).outcome, Outcome::infeasible);
  expectBelieved();
}

TEST_F(Checked, noEndIsBelievedWithAPointAndARay) {
  model_.cost[1] = -2;
  SolverResult endless = claim(Outcome::unbounded);
  endless.level = {0, 2};
  endless.columnRay = {0, 4};
  EXPECT_EQ(answer(endless).outcome, Outcome::unbounded);
  expectBelieved();
}

TEST_F(Checked, noEndIsNotBelievedWithoutARay) {
  SolverResult endless = claim(Outcome::unbounded);
  endless.level = {0, 2};
  EXPECT_EQ(answer(endless).outcome, Outcome::optimal);
  expectCold("it claims that the objective has no end, without a proof that holds");
}

TEST_F(Checked, aSolverThatGivesUpIsAskedOnceMore) {
  SolverResult failure = claim(Outcome::failed);
  failure.reason = "a singular basis";
  EXPECT_EQ(answer(failure).outcome, Outcome::optimal);
  expectCold("it gave up: a singular basis");
}

TEST_F(Checked, aColdSolveIsTheLast) {
  script_.cold = claim(Outcome::failed);
  script_.cold.reason = "no luck";
  const SolverResult result = answer(claim(Outcome::failed));
  EXPECT_EQ(result.outcome, Outcome::failed);
  EXPECT_EQ(result.reason, "no luck");
  expectCold("it gave up: ");
}

TEST_F(Checked, aLimitIsNoClaim) {
  EXPECT_EQ(answer(claim(Outcome::iterationLimit)).outcome, Outcome::iterationLimit);
  expectBelieved();
}

}  // namespace
}  // namespace ztbtest
