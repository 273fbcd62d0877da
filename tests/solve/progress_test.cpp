// How far a solve is, told while it runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#include <ztb/model.hpp>

namespace {

// The most worth of things that go into knapsacks, and 100 on top of it.
ztb::Model knapsacks(int kind) {
  ztb::Model model;
  model.setObjective("worth", true, 100);
  std::mt19937 random(5);
  std::uniform_int_distribution<int> size(5, 1000);
  constexpr int kRows = 5;
  constexpr int kThings = 60;
  for (int i = 0; i < kRows; ++i) {
    model.addRow("room(" + std::to_string(i) + ")", ztbRowLessOrEqual, 250 * kThings);
  }
  for (int j = 0; j < kThings; ++j) {
    model.addColumn("take(" + std::to_string(j) + ")", 0, 1, kind);
    int sum = 0;
    for (int i = 1; i <= kRows; ++i) {
      const int taken = size(random);
      sum += taken;
      model.addTerm(i, j, taken);
    }
    model.addTerm(0, j, sum / kRows + size(random) % 100);
  }
  return model;
}

class SearchProgress : public testing::TestWithParam<const char*> {};

TEST_P(SearchProgress, TellsTheBestPointAndTheBound) {
  ztb::Model relaxed = knapsacks(ztbColumnContinuous);
  ztb::Database relaxedDatabase;
  ztb::ModelTie(relaxedDatabase, relaxed).solve("clp");

  ztb::Model model = knapsacks(ztbColumnInteger);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  EXPECT_FALSE(model.progress().isKnown) << "before a solve";
  ztb::Model::Progress last;
  model.setWatch([&](const ztb::Model::Progress& progress) {
    if (progress.isKnown) last = progress;
    return !(std::isfinite(last.objective) && std::isfinite(last.bound) && last.isKnown);
  });
  tie.solve(GetParam());
  model.setWatch(nullptr);
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  EXPECT_GT(last.objective, 100);
  EXPECT_LT(last.objective, last.bound) << "a larger worth is better";
  EXPECT_LE(last.bound, relaxed.objective() + 1e-6);
  EXPECT_GE(model.objective(), last.objective - 1e-6) << "the point that was told of is left";
}

INSTANTIATE_TEST_SUITE_P(Solvers, SearchProgress, testing::Values("cbc", "glpk"));

// How near four weighted sums of half of 36 things come to 18 each, in squares: the sums of
// fractions of the things come there, so that 0 bounds it for long.
TEST(SearchWithProducts, TellsTheBestPointAndTheBound) {
  ztb::Model model;
  constexpr int kThings = 36;
  constexpr int kSums = 4;
  model.setObjective("distance", false, kSums * 18 * 18);
  model.addRow("half", ztbRowEqual, kThings / 2);
  for (int i = 0; i < kThings; ++i) {
    model.addColumn("take(" + std::to_string(i) + ")", 0, 1, ztbColumnInteger);
    model.addTerm(1, i, 1);
  }
  std::mt19937 random(3);
  std::uniform_real_distribution<double> size(0.2, 1.8);
  for (int sum = 0; sum < kSums; ++sum) {
    std::vector<double> weight(kThings);
    for (double& w : weight) w = size(random);
    for (int i = 0; i < kThings; ++i) {
      model.addTerm(0, i, -2 * 18 * weight[i]);
      for (int j = 0; j < kThings; ++j) model.addProduct(0, i, j, weight[i] * weight[j]);
    }
  }
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Model::Progress last;
  model.setWatch([&](const ztb::Model::Progress& progress) {
    if (progress.isKnown) last = progress;
    return !(last.isKnown && std::isfinite(last.objective) && std::isfinite(last.bound));
  });
  tie.solve("bonmin");
  model.setWatch(nullptr);
  ASSERT_EQ(model.solveStatus(), ztbSolveTerminated);
  EXPECT_NEAR(last.bound, 0, 1e-4);
  EXPECT_GT(last.objective, 1e-4);
  EXPECT_LT(last.objective, kSums * 18 * 18);
  EXPECT_NEAR(model.bound(), 0, 1e-4);
  EXPECT_LE(model.objective(), last.objective + 1e-6);
}

// What Clp tells is a bound or an objective, by its method; the part that stands still is in it.
TEST(LinearProgress, IsOnTheRightSideOfTheOptimum) {
  ztb::Model model;
  model.setObjective("cost", false, 1000);
  std::mt19937 random(7);
  std::uniform_int_distribution<int> cost(1, 500);
  constexpr int kSources = 30;
  constexpr int kTargets = 60;
  for (int s = 0; s < kSources; ++s) {
    model.addRow("supply(" + std::to_string(s) + ")", ztbRowLessOrEqual, 2 * kTargets);
  }
  for (int t = 0; t < kTargets; ++t) {
    model.addRow("demand(" + std::to_string(t) + ")", ztbRowGreaterOrEqual, 10 + t % 7);
  }
  for (int s = 0; s < kSources; ++s) {
    for (int t = 0; t < kTargets; ++t) {
      const int j = model.addColumn("ship(" + std::to_string(s) + "," + std::to_string(t) + ")", 0,
                                    std::numeric_limits<double>::infinity());
      model.addTerm(0, j, cost(random));
      model.addTerm(1 + s, j, 1);
      model.addTerm(1 + kSources + t, j, 1);
    }
  }
  model.addTerm(0, model.addColumn("still", 3, 3), 7000);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  std::vector<ztb::Model::Progress> all;
  model.setWatch([&](const ztb::Model::Progress& progress) {
    if (progress.isKnown) all.push_back(progress);
    return true;
  });
  tie.solve("clp");
  model.setWatch(nullptr);
  ASSERT_EQ(model.status(), ztbModelOptimal);
  const double optimum = model.objective();
  EXPECT_GT(optimum, 22000) << "1000, and 3 times 7000";
  ASSERT_FALSE(all.empty());
  // Clp moves costs and bounds a little while it works.
  for (const ztb::Model::Progress& progress : all) {
    EXPECT_GE(progress.objective, optimum * (1 - 1e-3));
    EXPECT_LE(progress.bound, optimum * (1 + 1e-3));
    EXPECT_GE(std::max(progress.bound, -progress.objective), -1e6) << "one of them is known";
  }
}

// The watch goes with the model, what it throws ends the solve and comes out of it, and the model
// can be solved again.
TEST(Watch, MayThrow) {
  ztb::Model first = knapsacks(ztbColumnInteger);
  first.setWatch([](const ztb::Model::Progress&) -> bool { throw std::out_of_range("enough"); });
  ztb::Model model = std::move(first);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  EXPECT_THROW(tie.solve("cbc"), std::out_of_range);
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  model.setWatch([&](const ztb::Model::Progress&) {
    model.terminate();
    return true;
  });
  tie.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  model.setWatch(nullptr);
  model.setOption("IterationLimit", "1");
  tie.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveIterationLimit);
}

// Also where no database is made, and where the watch solves another model on its way.
TEST(Watch, MayThrowOutOfASolveWithoutADatabase) {
  ztb::Model model = knapsacks(ztbColumnInteger);
  ztb::Model other = knapsacks(ztbColumnContinuous);
  other.setWatch([](const ztb::Model::Progress&) { return true; });
  model.setWatch([&](const ztb::Model::Progress&) -> bool {
    other.solve("clp");
    throw std::out_of_range("enough");
  });
  EXPECT_THROW(model.solve("cbc"), std::out_of_range);
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  EXPECT_EQ(other.status(), ztbModelOptimal);
  model.setWatch([&](const ztb::Model::Progress&) {
    model.terminate();
    return true;
  });
  model.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  model.setWatch(nullptr);
  model.setOption("IterationLimit", "1");
  model.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveIterationLimit);
}

}  // namespace
