// The main job: change data, solve again on a live solver, read the solution back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <ztb/model.hpp>

#include "tests/solve/transport.h"

namespace {

using solvetest::source;
using solvetest::target;
using solvetest::Transport;

// A transport problem tied to a database, with parameters demand and cost to change.
class RepeatedSolve : public testing::TestWithParam<const char*> {
 protected:
  RepeatedSolve()
      : data_(8, 12),
        model_(data_.model()),
        tie_(database_, model_),
        demand_(database_.addParameter("demand", {"*"})),
        cost_(database_.addParameter("cost", {"*", "*"})) {}

  double change(double value) {
    return value * (0.5 + static_cast<double>(random_()) / 4294967296.0);
  }

  void solveAndCompare(int step) {
    tie_.solve(GetParam());
    ASSERT_EQ(model_.status(), ztbModelOptimal) << "step " << step;
    const Transport::Fresh fresh = data_.solvedAfresh();
    ASSERT_NEAR(model_.objective(), fresh.objective, 1e-8 * std::abs(fresh.objective))
        << "step " << step;
    ASSERT_EQ(database_.symbol("total").find()->level(), model_.objective());
    if (step > 0) {
      live_ += model_.iterations();
      fresh_ += fresh.iterations;
    }
  }

  std::mt19937 random_{11};
  Transport data_;
  ztb::Model model_;
  ztb::Database database_;
  ztb::ModelTie tie_;
  ztb::Symbol demand_;
  ztb::Symbol cost_;
  double live_ = 0;
  double fresh_ = 0;
};

TEST_P(RepeatedSolve, AThousandRightHandSidesEqualFreshSolves) {
  for (int step = 0; step <= 1000; ++step) {
    const int j = static_cast<int>(random_() % 12);
    double& amount = data_.demand[static_cast<std::size_t>(j)];
    amount = std::min(15.0, std::max(5.0, change(amount)));
    demand_.merge(target(j)).setLevel(amount);
    ASSERT_EQ(tie_.update(demand_, ztb::Action::fix, demand_, ztb::Missing::base), 0);
    ASSERT_NO_FATAL_FAILURE(solveAndCompare(step));
  }
  EXPECT_LT(live_, 0.25 * fresh_) << "the live solver does not start from its last basis";
}

TEST_P(RepeatedSolve, AThousandCoefficientsEqualFreshSolves) {
  for (int step = 0; step <= 1000; ++step) {
    const int i = static_cast<int>(random_() % 8);
    const int j = static_cast<int>(random_() % 12);
    double& price = data_.costOf(i, j);
    price = std::min(9.0, std::max(1.0, change(price)));
    cost_.merge(source(i), target(j)).setLevel(price);
    ASSERT_EQ(tie_.update(cost_, ztb::Action::fix, cost_, ztb::Missing::base), 0);
    ASSERT_NO_FATAL_FAILURE(solveAndCompare(step));
  }
  EXPECT_LT(live_, 0.25 * fresh_) << "the live solver does not start from its last basis";
}

TEST_P(RepeatedSolve, SymbolsHaveTheRecordsOfEachSolution) {
  for (const double factor : {1.0, 0.5}) {
    for (int j = 0; j < 12; ++j) {
      data_.demand[static_cast<std::size_t>(j)] *= factor;
      demand_.merge(target(j)).setLevel(data_.demand[static_cast<std::size_t>(j)]);
    }
    tie_.update(demand_, ztb::Action::fix, demand_, ztb::Missing::base);
    tie_.solve(GetParam());
    EXPECT_EQ(database_.symbol("ship").recordCount(), 8 * 12);
    double total = 0;
    for (ztb::Record& record : database_.symbol("ship").records()) {
      const int i = std::stoi(record.key(0).str().substr(1));
      const int j = std::stoi(record.key(1).str().substr(1));
      total += record.level() * data_.costOf(i, j);
    }
    EXPECT_NEAR(total, model_.objective(), 1e-9 * total);
    for (ztb::Record& record : database_.symbol("need").records()) {
      EXPECT_GE(record.level(), -1e-9) << record.key(0).str();
      EXPECT_GE(record.marginal(), 0) << "more demand cannot cost less";
    }
    for (ztb::Record& record : database_.symbol("supply").records()) {
      EXPECT_LE(record.level(), data_.supply[0] + 1e-9);
      EXPECT_EQ(record.upper(), data_.supply[0]);
      EXPECT_LE(record.marginal(), 0) << "more supply cannot cost more";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Solvers, RepeatedSolve, testing::Values("clp", "glpk"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
