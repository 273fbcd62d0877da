// Limits of time and iterations, and the caller's wish to end.
#include <gtest/gtest.h>

#include <string>

#include "providers/model/solvers/watch.h"
#include "tests/solvers/random_model.h"

namespace ztbtest {
namespace {

using lomu::Outcome;
using lomu::SolverLimits;
using lomu::SolverResult;

// Agrees with going on for a number of times.
struct Patience {
  int times;
  static std::int32_t ended(void* context) {
    return static_cast<Patience*>(context)->times-- <= 0 ? 1 : 0;
  }
};

class Limit : public testing::TestWithParam<const char*> {
 protected:
  RandomModel random_{7, 60, 50, 0.4};
  SolverLimits limits_;
};

TEST_P(Limit, ofIterations) {
  limits_.iterations = 2;
  const SolverResult result = solveFresh(GetParam(), random_.model, limits_);
  EXPECT_EQ(result.outcome, Outcome::iterationLimit) << result.reason;
  EXPECT_LE(result.iterations, 3);
}

TEST_P(Limit, ofTime) {
  limits_.seconds = 1e-9;
  const SolverResult result = solveFresh(GetParam(), random_.model, limits_);
  EXPECT_EQ(result.outcome, Outcome::timeLimit) << result.reason;
}

TEST_P(Limit, byTheCallerBeforeTheFirstIteration) {
  Patience patience{0};
  limits_.terminated = &Patience::ended;
  limits_.context = &patience;
  const SolverResult result = solveFresh(GetParam(), random_.model, limits_);
  EXPECT_EQ(result.outcome, Outcome::terminated) << result.reason;
  EXPECT_FALSE(result.hasPoint);
}

TEST(Watch, endsWhatCannotBeAskedBeforeTheTimeIsOver) {
  SolverLimits limits;
  limits.seconds = 1000;
  lomu::Watch watch(limits);
  EXPECT_FALSE(watch.mustStop());
  EXPECT_FALSE(watch.mustStopWithin(1));
  EXPECT_TRUE(watch.mustStopWithin(1001));
  EXPECT_TRUE(watch.mustStop());
  EXPECT_EQ(watch.reason(), Outcome::timeLimit);
}

TEST_P(Limit, leavesNoLessThanASolverThatGoesOn) {
  const auto live = openSolver(GetParam());
  std::string reason;
  ASSERT_TRUE(live->load(random_.model.problem(), reason)) << reason;
  limits_.iterations = 2;
  ASSERT_EQ(solveLive(*live, random_.model, limits_).outcome, Outcome::iterationLimit);
  const SolverResult result = solveLive(*live, random_.model);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  const SolverResult fresh = solveFresh("glpk", random_.model);
  EXPECT_NEAR(random_.model.objective(result.level), random_.model.objective(fresh.level), 1e-5);
}

// Says that the solve may go on, and counts how often it was asked.
struct Count {
  int times = 0;
  static std::int32_t ended(void* context) {
    ++static_cast<Count*>(context)->times;
    return 0;
  }
};

// An iteration over many rows takes long: 1,400 of them are asked about in hundreds.
TEST(GlpkLimit, isAskedForMoreOftenTheMoreRowsThereAre) {
  constexpr int kRows = 1400;
  SmallModel model;
  for (int j = 0; j < kRows; ++j) model.column(1, 0, 5);
  for (std::size_t i = 0; i < kRows; ++i) {
    std::vector<double> row(kRows, 0.0);
    row[i] = 1;
    row[(i + 1) % kRows] = 0.25;
    model.row(std::move(row), 1, kInf);
  }
  const auto live = openSolver("glpk");
  std::string reason;
  ASSERT_TRUE(live->load(model.problem(), reason)) << reason;
  solveLive(*live, model);
  for (double& cost : model.cost) cost = -1;
  ASSERT_TRUE(live->update(model.problem()));
  Count count;
  SolverLimits limits;
  limits.terminated = &Count::ended;
  limits.context = &count;
  const SolverResult result = solveLive(*live, model, limits);
  ASSERT_EQ(result.outcome, Outcome::optimal) << result.reason;
  ASSERT_GT(result.iterations, 1000);
  EXPECT_GE(count.times, result.iterations / 102);
}

// Whole numbers alone, which GLPK would presolve and solve without a limit first.
TEST(GlpkLimit, ofIterationsHoldsAheadOfASearchOverIntegers) {
  constexpr int kColumns = 31;
  SmallModel model;
  for (int j = 0; j < kColumns; ++j) model.column(1 + j % 3, 0, 1, true);
  for (std::size_t i = 0; i < kColumns; ++i) {
    std::vector<double> row(kColumns, 0.0);
    row[i] = row[(i + 1) % kColumns] = row[(i + 5) % kColumns] = 1;
    model.row(std::move(row), 1, kInf);
  }
  SolverLimits limits;
  limits.iterations = 2;
  const SolverResult result = solveFresh("glpk", model, limits);
  EXPECT_EQ(result.outcome, Outcome::iterationLimit) << result.reason;
  EXPECT_LE(result.iterations, 3);
}

INSTANTIATE_TEST_SUITE_P(Solvers, Limit, testing::Values("clp", "cbc", "glpk", "ipopt", "bonmin"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(LimitOfClp, byTheCallerInBetween) {
  RandomModel random(7, 60, 50, 0.4);
  Patience patience{8};
  SolverLimits limits;
  limits.terminated = &Patience::ended;
  limits.context = &patience;
  EXPECT_EQ(solveFresh("clp", random.model, limits).outcome, Outcome::terminated);
}

class EndedSearch : public testing::TestWithParam<const char*> {};

// The cheapest things of which one at least is in each of 40 triples. The other solver tells what
// they cost.
TEST_P(EndedSearch, tellsNoBoundAboveTheBest) {
  SmallModel model;
  unsigned state = 777;
  const auto next = [&](unsigned below) {
    state = state * 1103515245U + 12345U;
    return state / 65536U % below;
  };
  constexpr int kThings = 24;
  for (int j = 0; j < kThings; ++j) model.column(5.0 + next(20), 0, 1, true);
  for (int i = 0; i < 40; ++i) {
    std::vector<double> triple(kThings);
    for (int k = 0; k < 3; ++k) triple[next(kThings)] = 1;
    model.row(triple, 1, kInf);
  }
  const char* const other = std::string(GetParam()) == "cbc" ? "glpk" : "cbc";
  const SolverResult whole = solveFresh(other, model);
  ASSERT_EQ(whole.outcome, Outcome::optimal) << whole.reason;
  const double best = model.objective(whole.level);
  int ended = 0;
  for (int times = 0; times < 60; ++times) {
    SCOPED_TRACE(times);
    Patience patience{times};
    SolverLimits limits;
    limits.terminated = &Patience::ended;
    limits.context = &patience;
    const SolverResult result = solveFresh(GetParam(), model, limits);
    if (result.outcome == Outcome::optimal) continue;
    EXPECT_EQ(result.outcome, Outcome::terminated) << result.reason;
    ++ended;
    EXPECT_LE(result.bound, best + 1e-6);
    if (result.hasPoint) {
      EXPECT_GE(model.objective(result.level), best - 1e-6);
    }
  }
  EXPECT_GT(ended, 5);
}

INSTANTIATE_TEST_SUITE_P(Solvers, EndedSearch, testing::Values("cbc", "glpk", "bonmin"),
                         [](const auto& tested) { return std::string(tested.param); });

// Equal halves of many odd-sized things on several scales at once: a long search.
class LongSearch : public testing::TestWithParam<const char*> {
 protected:
  LongSearch() {
    for (int j = 0; j < 40; ++j) model_.column(0, 0, 1, true);
    unsigned state = 12345;
    for (int i = 0; i < 5; ++i) {
      std::vector<double> sizes;
      double sum = 0;
      for (int j = 0; j < 40; ++j) {
        state = state * 1103515245U + 12345U;
        sizes.push_back(static_cast<double>(state / 65536U % 100U));
        sum += sizes.back();
      }
      const double half = static_cast<double>(static_cast<int>(sum) / 2);
      model_.column(1, 0, kInf);
      model_.column(1, 0, kInf);
      sizes.resize(40 + 10, 0.0);
      sizes[static_cast<std::size_t>(40 + 2 * i)] = 1;
      sizes[static_cast<std::size_t>(41 + 2 * i)] = -1;
      sizes_.push_back(sizes);
      halves_.push_back(half);
    }
    for (std::size_t i = 0; i < sizes_.size(); ++i) model_.row(sizes_[i], halves_[i], halves_[i]);
  }

  SmallModel model_;
  std::vector<std::vector<double>> sizes_;
  std::vector<double> halves_;
};

TEST_P(LongSearch, endsByTheCaller) {
  Patience patience{200};
  SolverLimits limits;
  limits.terminated = &Patience::ended;
  limits.context = &patience;
  const SolverResult result = solveFresh(GetParam(), model_, limits);
  EXPECT_EQ(result.outcome, Outcome::terminated) << result.reason;
}

TEST_P(LongSearch, endsByIterations) {
  SolverLimits limits;
  limits.iterations = 3000;
  const SolverResult result = solveFresh(GetParam(), model_, limits);
  EXPECT_EQ(result.outcome, Outcome::iterationLimit) << result.reason;
  // What was found until then is a solution, if not the best.
  if (result.hasPoint) {
    for (std::size_t i = 0; i < halves_.size(); ++i) {
      EXPECT_NEAR(model_.activity(i, result.level), halves_[i], 1e-6);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Solvers, LongSearch, testing::Values("cbc", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace ztbtest
