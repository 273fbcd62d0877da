// What survives from one solve to the next: live solvers that cannot go on, solves that failed,
// models that end before their database, parameters that go back to their base, requests to end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::HasSubstr;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr const char* kFallback = "*** Hotstart failed! Falling back to warm start...";

// min rate_var * x with x >= need_var, rate_var standing still at 2, need_var at 3.
ztb::Model priced() {
  ztb::Model model;
  model.setObjective("total");
  const int rate = model.addColumn("rate_var", 2, 2);
  const int need = model.addColumn("need_var", 3, 3);
  const int x = model.addColumn("x", 0, 10);
  model.addProduct(0, rate, x, 1);
  const int row = model.addRow("least", ztbRowGreaterOrEqual, 0);
  model.addTerm(row, x, 1);
  model.addTerm(row, need, -1);
  return model;
}

// Three things in a knapsack that holds `room_var`: max 3 a + 5 b + 4 c,
// 2 a + 4 b + 3 c <= room_var, all 0 or 1.
ztb::Model knapsack(double room) {
  ztb::Model model;
  model.setObjective("value", true);
  const int roomColumn = model.addColumn("room_var", room, room);
  const int row = model.addRow("weight", ztbRowLessOrEqual, 0);
  model.addTerm(row, roomColumn, -1);
  const double values[] = {3, 5, 4};
  const double weights[] = {2, 4, 3};
  for (int j = 0; j < 3; ++j) {
    const int take = model.addColumn("take[" + std::to_string(j) + "]", 0, 1, ztbColumnBinary);
    model.addTerm(0, take, values[j]);
    model.addTerm(row, take, weights[j]);
  }
  return model;
}

// Equal halves of many odd-sized things on several scales at once: a long search.
ztb::Model longSearch() {
  ztb::Model model;
  model.setObjective("distance");
  for (int j = 0; j < 40; ++j) {
    model.addColumn("use[" + std::to_string(j) + "]", 0, 1, ztbColumnBinary);
  }
  unsigned state = 12345;
  for (int i = 0; i < 5; ++i) {
    const std::string element = "[" + std::to_string(i) + "]";
    const int row = model.addRow("half" + element, ztbRowEqual, 990);
    for (int j = 0; j < 40; ++j) {
      state = state * 1103515245U + 12345U;
      model.addTerm(row, j, static_cast<double>(state / 65536U % 100U));
    }
    for (const double sign : {1.0, -1.0}) {
      const int side = model.addColumn((sign > 0 ? "under" : "over") + element, 0, kInf);
      model.addTerm(0, side, 1);
      model.addTerm(row, side, sign);
    }
  }
  return model;
}

std::string contents(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

int countOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

std::string failureOf(ztb::ModelTie& tie, const char* solver) {
  try {
    tie.solve(solver);
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "";
}

class Live : public testing::TestWithParam<const char*> {
 protected:
  Live()
      : log_(folder_.file("log.txt")),
        rate_(database_.addParameter("rate", {})),
        need_(database_.addParameter("need", {})) {
    model_.setOption("LogFile", log_);
    tie_.emplace(makeTie());
  }
  ztb::ModelTie makeTie() { return {database_, model_}; }

  void update(ztb::Symbol& parameter, double value, ztb::Action action = ztb::Action::fix) {
    parameter.merge().setLevel(value);
    EXPECT_EQ(tie_->update(parameter, action, parameter, ztb::Missing::base), 0);
  }

  ztbtest::TempFolder folder_;
  std::string log_;
  ztb::Model model_ = priced();
  ztb::Database database_;
  ztb::Symbol rate_;
  ztb::Symbol need_;
  std::optional<ztb::ModelTie> tie_;
};

// min y with 3 y + z >= -2, 2 x - y <= 6, -2 x - 3 y + 3 z >= -3. Bounds of x that an update takes
// away while it is at one of them, and gives back, ended the process in an assertion of Clp.
TEST_P(Live, BoundsThatAreTakenAwayAndComeBack) {
  ztb::Model model;
  int number = 0;
  for (const double low : {0.0, 2.0, -2.0, 1.0}) {
    const double high = number == 1 ? 4 : number == 3 ? 5 : kInf;
    model.addColumn("x[" + std::to_string(number + 1) + "]", low, high);
    ++number;
  }
  model.addTerm(0, 1, 1);
  int rows = 0;
  const auto addRow = [&](int type, double rhs, std::array<double, 4> terms) {
    const int row = model.addRow("r" + std::to_string(++rows), type, rhs);
    for (int j = 0; j < 4; ++j) {
      if (terms.at(static_cast<std::size_t>(j)) != 0) {
        model.addTerm(row, j, terms.at(static_cast<std::size_t>(j)));
      }
    }
  };
  addRow(ztbRowGreaterOrEqual, -2, {0, 3, 1, 0});
  addRow(ztbRowLessOrEqual, 6, {2, -1, 0, 0});
  addRow(ztbRowFree, 0, {0, 0, 0, 0});
  addRow(ztbRowGreaterOrEqual, -3, {-2, -3, 3, 0});
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol low = database.addParameter("low", {"*"});
  ztb::Symbol high = database.addParameter("high", {"*"});
  const auto optimum = [&](std::array<double, 2> x, std::array<double, 2> y) {
    low.merge("1").setLevel(x[0]);
    high.merge("1").setLevel(x[1]);
    low.merge("2").setLevel(y[0]);
    high.merge("2").setLevel(y[1]);
    tie.update(database.symbol("x"), ztb::Action::lower, low, ztb::Missing::base);
    tie.update(database.symbol("x"), ztb::Action::upper, high, ztb::Missing::base);
    tie.solve(GetParam());
    EXPECT_EQ(model.status(), ztbModelOptimal);
    return model.objective();
  };
  EXPECT_NEAR(optimum({0, kInf}, {2, 4}), 2, 1e-9);
  EXPECT_NEAR(optimum({-kInf, kInf}, {2, kInf}), 2, 1e-9);
  EXPECT_NEAR(optimum({0, kInf}, {-2, 0}), -2, 1e-9);
}

TEST_P(Live, AKindThatItDoesNotSolveIsReportedByTheFreshRunAndLeftBehind) {
  tie_->solve(GetParam());
  EXPECT_NEAR(model_.objective(), 6, 1e-9);
  update(rate_, 1, ztb::Action::lower);
  EXPECT_THAT(failureOf(*tie_, GetParam()), HasSubstr("; the model is QP"));
  EXPECT_EQ(countOf(contents(log_), kFallback), 1);
  update(rate_, 5);
  update(need_, 4);
  EXPECT_EQ(failureOf(*tie_, GetParam()), "");
  EXPECT_NEAR(model_.objective(), 20, 1e-9);
  EXPECT_NEAR(database_.symbol("x").find()->level(), 4, 1e-9);
  EXPECT_EQ(countOf(contents(log_), kFallback), 1) << "fresh runs from now on";
}

TEST_P(Live, AValueThatIsNoNumberFailsAndTheNextSolveIsRight) {
  tie_->solve(GetParam());
  update(rate_, kInf);
  EXPECT_NE(failureOf(*tie_, GetParam()), "");
  EXPECT_NE(model_.status(), ztbModelOptimal);
  update(rate_, 3);
  EXPECT_EQ(failureOf(*tie_, GetParam()), "");
  EXPECT_NEAR(model_.objective(), 9, 1e-9);
}

TEST_P(Live, AChangeOfSolverAndBackStartsAnotherLiveSolver) {
  tie_->solve(GetParam());
  update(need_, 4);
  tie_->solve("cbc");
  EXPECT_NEAR(model_.objective(), 8, 1e-9);
  update(need_, 5);
  tie_->solve(GetParam());
  update(rate_, 7);
  tie_->solve(GetParam());
  EXPECT_NEAR(model_.objective(), 35, 1e-9);
  EXPECT_EQ(countOf(contents(log_), kFallback), 0);
}

TEST_P(Live, ARefusedValueLeavesTheWalkOpenAndTheModelUsable) {
  tie_->solve(GetParam());
  rate_.merge().setLevel(std::numeric_limits<double>::max());
  EXPECT_THROW(tie_->update(rate_, ztb::Action::fix, rate_, ztb::Missing::base), ztb::Error);
  update(rate_, 4);
  tie_->solve(GetParam());
  EXPECT_NEAR(model_.objective(), 12, 1e-9);
}

TEST_P(Live, AnInfeasibleSolveInBetweenIsNoFailure) {
  tie_->solve(GetParam());
  update(need_, 11);
  tie_->solve(GetParam());
  EXPECT_EQ(model_.status(), ztbModelInfeasible);
  update(need_, 10);
  tie_->solve(GetParam());
  EXPECT_EQ(model_.status(), ztbModelOptimal);
  EXPECT_NEAR(model_.objective(), 20, 1e-9);
}

// The failure leaves linearity forced, which must not make a product that moves now linear.
TEST_P(Live, AFailedSolveLeavesNothingBehindForAModelThatMoves) {
  update(rate_, kInf);
  EXPECT_NE(failureOf(*tie_, GetParam()), "");
  update(rate_, 1, ztb::Action::lower);
  update(rate_, 5, ztb::Action::upper);
  EXPECT_THAT(failureOf(*tie_, GetParam()), HasSubstr("; the model is QP"));
  tie_->solve("ipopt");
  EXPECT_NEAR(model_.objective(), 3, 1e-6) << "x at 3 and its rate at 1";
}

TEST_P(Live, ARefusalBehindAFailedSolveIsTheLastReason) {
  update(rate_, kInf);
  EXPECT_NE(failureOf(*tie_, GetParam()), "");
  EXPECT_THROW(model_.setOption("TimeLimit", "-3"), ztb::Error);
  EXPECT_THAT(model_.message(), HasSubstr("TimeLimit"));
}

TEST_P(Live, AReasonOfAnOlderFailureIsNotTold) {
  update(rate_, kInf);
  EXPECT_NE(failureOf(*tie_, GetParam()), "");
  EXPECT_EQ(failureOf(*tie_, "nosuch"),
            "Invalid solver name: nosuch: the solvers are clp, cbc, glpk, ipopt and bonmin");
  update(rate_, 2);
  EXPECT_EQ(failureOf(*tie_, GetParam()), "");
  EXPECT_EQ(model_.message(), "");
}

// A coefficient that becomes 0 is the last that a solver sees where all other columns stand still.
TEST_P(Live, ARowThatNothingMovesAnyMore) {
  ztb::Model model;
  const int share = model.addColumn("share_var", 2, 2);
  const int room = model.addColumn("room_var", 5, 5);
  const int x = model.addColumn("x", 0, 10);
  model.addTerm(0, x, -1);
  const int row = model.addRow("fits", ztbRowLessOrEqual, 0);
  model.addProduct(row, share, x, 1);
  model.addTerm(row, room, -1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol value = database.addParameter("share", {});
  const double best[][2] = {{2, -2.5}, {0, -10}, {1, -5}, {0, -10}, {4, -1.25}};
  for (const auto& [size, objective] : best) {
    value.merge().setLevel(size);
    tie.update(value, ztb::Action::fix, value, ztb::Missing::base);
    tie.solve(GetParam());
    EXPECT_EQ(model.status(), ztbModelOptimal);
    EXPECT_NEAR(model.objective(), objective, 1e-9) << "share " << size;
  }
}

INSTANTIATE_TEST_SUITE_P(Solvers, Live, testing::Values("clp", "glpk"),
                         [](const auto& test) { return std::string(test.param); });

TEST(LiveIntegers, AreSolvedInPlaceByGlpk) {
  // All subsets weighed by hand: the best value for each room.
  const double best[] = {0, 0, 3, 4, 5, 7, 8, 9, 9, 12};
  ztb::Model model = knapsack(9);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol room = database.addParameter("room", {});
  for (const int size : {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 5, 9}) {
    room.merge().setLevel(size);
    tie.update(room, ztb::Action::fix, room, ztb::Missing::base);
    tie.solve("glpk");
    EXPECT_EQ(model.status(), ztbModelOptimal) << size;
    EXPECT_NEAR(model.objective(), best[size], 1e-9) << size;
  }
}

TEST(FailedSolve, OfASolverThatRefusedTheModelShiftsNothingTwice) {
  ztb::Model model = knapsack(5);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  for (int attempt = 0; attempt < 3; ++attempt) {
    EXPECT_THAT(failureOf(tie, "clp"), HasSubstr("the model is MIP"));
  }
  tie.solve("cbc");
  EXPECT_NEAR(model.objective(), 7, 1e-9);
  EXPECT_NEAR(database.symbol("weight").find()->level(), 0, 1e-9);
}

TEST(FailedSolve, OfProductsShiftsNothingTwice) {
  // least: rate_var * x >= 6 with rate_var = 2, x whole, so that clp refuses the linear form, too.
  ztb::Model model;
  model.setObjective("total");
  const int rate = model.addColumn("rate_var", 2, 2);
  const int x = model.addColumn("x", 1, 10, ztbColumnInteger);
  model.addTerm(0, x, 1);
  model.addProduct(model.addRow("least", ztbRowGreaterOrEqual, 6), rate, x, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  for (int attempt = 0; attempt < 3; ++attempt) EXPECT_NE(failureOf(tie, "clp"), "");
  tie.solve("glpk");
  EXPECT_NEAR(model.objective(), 3, 1e-9);
  EXPECT_NEAR(database.symbol("least").find()->level(), 6, 1e-9);
  EXPECT_EQ(database.symbol("least").find()->lower(), 6);
}

TEST(ModelsEnd, BeforeTheirDatabaseWithALiveSolver) {
  for (const char* solver : {"clp", "glpk"}) {
    ztb::Database database;
    {
      ztb::Model model = priced();
      ztb::ModelTie tie(database, model);
      tie.solve(solver);
      EXPECT_NEAR(database.symbol("total").find()->level(), 6, 1e-9) << solver;
    }
    EXPECT_NEAR(database.symbol("total").find()->level(), 6, 1e-9) << "it was read before";
  }
}

TEST(NullModel, HasNoDictionary) {
  ztb::Database database;
  EXPECT_EQ(c__ztbinitfromdict(database.handle(), nullptr), 0);
  EXPECT_EQ(database.lastError().str(), "No dictionary available");
  ztb::Database other;
  EXPECT_EQ(c__ztbregisterpbi(other.handle(), nullptr), 0);
  EXPECT_EQ(other.lastError().str(), "No dictionary available");
  EXPECT_EQ(c__ztbinitupdate(other.handle(), nullptr), 0);
}

TEST(Parameters, AreFreeUntilAnUpdateAndGoBackToTheirBaseAfterAnyNumberOfSolves) {
  // max y with y <= limit_var, which the model leaves free between 1 and 10.
  ztb::Model model;
  model.setObjective("most", true);
  const int limit = model.addColumn("limit_var", 1, 10);
  const int y = model.addColumn("y", 0, kInf);
  model.addTerm(0, y, 1);
  const int row = model.addRow("below", ztbRowLessOrEqual, 0);
  model.addTerm(row, y, 1);
  model.addTerm(row, limit, -1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol data = database.addParameter("limit", {});
  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 10, 1e-9) << "alternative bounds are off until an update";
  data.merge().setLevel(4);
  tie.update(data, ztb::Action::fix, data, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 4, 1e-9);
  ztb::Symbol none = database.addParameter("none", {});
  tie.update(data, ztb::Action::fix, none, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 1, 1e-9) << "the level at the beginning";
  tie.update(data, ztb::Action::bounds, none, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 10, 1e-9) << "the model's own bounds";
}

TEST(Limits, OfTimeEndASearch) {
  for (const char* solver : {"cbc", "glpk"}) {
    ztb::Model model = longSearch();
    model.setOption("TimeLimit", "1e-9");
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    tie.solve(solver);
    EXPECT_EQ(model.solveStatus(), ztbSolveTimeLimit) << solver;
    EXPECT_FALSE(model.status() == ztbModelOptimal) << solver;
  }
}

TEST(Terminate, FromAnotherThreadEndsASearch) {
  for (const char* solver : {"cbc", "glpk"}) {
    ztb::Model model = longSearch();
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    std::atomic<bool> solved{false};
    // The request is repeated since the solve clears those that came before it.
    std::thread other([&] {
      while (!solved) ztbModelTerminate(model.handle());
    });
    const std::string failure = failureOf(tie, solver);
    solved = true;
    other.join();
    EXPECT_EQ(failure, "") << solver;
    EXPECT_EQ(model.solveStatus(), ztbSolveTerminated) << solver;
  }
}

}  // namespace
