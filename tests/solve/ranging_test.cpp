// Ranges of a solve, and bases from one process to the next, through the C++ wrapper.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <string>
#include <utility>
#include <vector>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kInf = std::numeric_limits<double>::infinity();

std::string errorOf(const auto& call) {
  try {
    call();
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "";
}

// max 5 x(a) + 4 x(b) + 7 with 6 x(a) + 4 x(b) <= 24 and x(a) + 2 x(b) <= need: best at (3, 1.5).
ztb::Model plan() {
  ztb::Model model;
  model.setObjective("total", true, 7);
  model.addColumn("x[a]", 0, kInf);
  model.addColumn("x[b]", 0, kInf);
  model.addTerm(0, 0, 5);
  model.addTerm(0, 1, 4);
  const int hours = model.addRow("hours", ztbRowLessOrEqual, 24, 100);
  model.addTerm(hours, 0, 6);
  model.addTerm(hours, 1, 4);
  const int room = model.addRow("room", ztbRowLessOrEqual, 6);
  model.addTerm(room, 0, 1);
  model.addTerm(room, 1, 2);
  const int few = model.addRow("few", ztbRowGreaterOrEqual, -2, 20);
  model.addTerm(few, 0, 1);
  return model;
}

class RangingTest : public testing::TestWithParam<const char*> {
 protected:
  ztbtest::TempFolder folder_;
  ztb::Model model_ = plan();
  ztb::Database database_;
};

TEST_P(RangingTest, TellsCostsAndRightHandSidesAsTheModelStatesThem) {
  ztb::ModelTie tie(database_, model_);
  tie.solve(GetParam());
  const ztb::Model::Ranging ranging = model_.ranging();
  ASSERT_EQ(ranging.costs.size(), 2);
  EXPECT_EQ(ranging.costs[0].symbol, "x");
  EXPECT_THAT(ranging.costs[0].labels, ElementsAre("a"));
  EXPECT_NEAR(ranging.costs[0].lower, 2, 1e-9);
  EXPECT_NEAR(ranging.costs[0].upper, 6, 1e-9);
  EXPECT_NEAR(ranging.costs[1].lower, 10.0 / 3, 1e-9);
  EXPECT_NEAR(ranging.costs[1].upper, 10, 1e-9);
  ASSERT_EQ(ranging.sides.size(), 4);
  EXPECT_EQ(ranging.sides[0].symbol, "total");
  EXPECT_EQ(ranging.sides[0].lower, -kInf);
  EXPECT_EQ(ranging.sides[0].upper, kInf);
  EXPECT_EQ(ranging.sides[1].symbol, "hours");
  EXPECT_NEAR(ranging.sides[1].lower, 12, 1e-9);
  EXPECT_NEAR(ranging.sides[1].upper, 36, 1e-9);
  EXPECT_NEAR(ranging.sides[2].lower, 4, 1e-9);
  EXPECT_NEAR(ranging.sides[2].upper, 12, 1e-9);
  // x(a) at 3 stays within r and r + 20.
  EXPECT_NEAR(ranging.sides[3].lower, -17, 1e-9);
  EXPECT_NEAR(ranging.sides[3].upper, 3, 1e-9);
}

// x at its lower bound while its cost is not negative, y at its upper one while it is not positive;
// z is anywhere, so that its cost cannot move.
// Costs of columns that stand at their rows may fall to 0; clp's own ends were some bits beside it.
TEST_P(RangingTest, AnEndThatIsZeroIsExactly) {
  ztb::Model model;
  const std::vector<double> costs{1, 2, 3, 4, 5, 6.1, 7, 8, 9, 10.3};
  for (std::size_t j = 0; j < costs.size(); ++j) {
    const std::string label = "['" + std::to_string(j) + "']";
    model.addTerm(0, model.addColumn("x" + label, 0, kInf), costs[j]);
    model.addTerm(model.addRow("r" + label, ztbRowGreaterOrEqual, 0.1 + static_cast<double>(j)),
                  static_cast<int>(j), 1);
  }
  model.solve(GetParam());
  const ztb::Model::Ranging ranging = model.ranging();
  ASSERT_EQ(ranging.costs.size(), costs.size());
  for (const auto& cost : ranging.costs) {
    EXPECT_EQ(cost.lower, 0);
    EXPECT_EQ(cost.upper, kInf);
  }
  for (std::size_t i = 1; i < ranging.sides.size(); ++i) EXPECT_EQ(ranging.sides[i].lower, 0);
}

TEST_P(RangingTest, WithoutCoefficientsACostKeepsItsSign) {
  for (const bool maximize : {false, true}) {
    const double sign = maximize ? -1 : 1;
    ztb::Model model;
    model.setObjective("o", maximize);
    model.addColumn("x", 1, 4);
    model.addColumn("y", -2, 5);
    model.addColumn("z", -kInf, kInf);
    model.addTerm(0, 0, sign * 3);
    model.addTerm(0, 1, -sign);
    model.addRow("free", ztbRowLessOrEqual, 7);
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    tie.solve(GetParam());
    const ztb::Model::Ranging ranging = model.ranging();
    const auto range = [&](std::size_t j) {
      const ztb::Model::Ranging::Range& cost = ranging.costs[j];
      return maximize ? std::pair(-cost.upper, -cost.lower) : std::pair(cost.lower, cost.upper);
    };
    EXPECT_EQ(range(0), std::pair(0.0, kInf));
    EXPECT_EQ(range(1), std::pair(-kInf, 0.0));
    EXPECT_EQ(range(2), std::pair(0.0, 0.0));
    EXPECT_EQ(ranging.sides[1].lower, 0);
    EXPECT_EQ(ranging.sides[1].upper, kInf);
  }
}

TEST_P(RangingTest, DrivenNumbersCountAndCarriersHaveNoEnd) {
  model_.drive("price(which) = cost of x");
  ztb::ModelTie tie(database_, model_);
  ztb::Symbol price = database_.addParameter("price", {"*"});
  price.merge("a").setLevel(1);  // x(b) alone: 3 of it, hours have room
  tie.update(database_.symbol("price_var"), ztb::Action::fix, price, ztb::Missing::base);
  tie.solve(GetParam());
  EXPECT_NEAR(model_.objective(), 19, 1e-9);
  const ztb::Model::Ranging ranging = model_.ranging();
  ASSERT_EQ(ranging.costs.size(), 4);
  EXPECT_EQ(ranging.costs[0].lower, -kInf);
  EXPECT_NEAR(ranging.costs[0].upper, 2, 1e-9);
  EXPECT_NEAR(ranging.costs[1].lower, 2, 1e-9);
  EXPECT_EQ(ranging.costs[1].upper, kInf);
  EXPECT_EQ(ranging.costs[2].symbol, "price_var");
  EXPECT_EQ(ranging.costs[2].lower, -kInf);
  EXPECT_EQ(ranging.costs[2].upper, kInf);
}

TEST_P(RangingTest, IsRefusedWithoutAnOptimumOrAfterAChange) {
  EXPECT_EQ(errorOf([&] { (void)model_.ranging(); }), "the model was not solved yet");
  ztb::ModelTie tie(database_, model_);
  EXPECT_EQ(errorOf([&] { (void)model_.ranging(); }), "the model was not solved yet");
  tie.solve(GetParam());
  ztb::Symbol least = database_.addParameter("least", {"*"});
  least.merge("a").setLevel(3.5);
  tie.update(database_.symbol("x"), ztb::Action::lower, least, ztb::Missing::base);
  tie.solve(GetParam());
  (void)model_.ranging();
  least.merge("a").setLevel(3.75);
  tie.update(database_.symbol("x"), ztb::Action::lower, least, ztb::Missing::base);
  EXPECT_EQ(errorOf([&] { (void)model_.ranging(); }),
            "the model was changed since its last solve; solve it once more");
  least.merge("a").setLevel(300);
  tie.update(database_.symbol("x"), ztb::Action::lower, least, ztb::Missing::base);
  tie.solve(GetParam());
  EXPECT_EQ(errorOf([&] { (void)model_.ranging(); }),
            "the last solve found no optimum that ranges would be of");
}

TEST_P(RangingTest, ABasisIsTakenByAnotherModelOfTheSameRowsAndColumns) {
  const std::string file = folder_.file("plan.basis");
  {
    ztb::ModelTie tie(database_, model_);
    EXPECT_EQ(errorOf([&] { model_.writeBasis(file); }),
              "the last solve left no basis, as clp and glpk leave one with the optimum of a "
              "linear model");
    tie.solve(GetParam());
    EXPECT_GT(model_.iterations(), 0);
    EXPECT_FALSE(model_.basisTaken());
    model_.writeBasis(file);
  }
  ztb::Model again = plan();
  ztb::Database database;
  ztb::ModelTie tie(database, again);
  again.readBasis(file);
  tie.solve(GetParam());
  EXPECT_TRUE(again.basisTaken());
  EXPECT_NEAR(again.objective(), 28, 1e-9);
  EXPECT_EQ(again.iterations(), 0);
  tie.solve(GetParam());
  EXPECT_FALSE(again.basisTaken()) << "once";

  ztb::Model other = plan();
  other.addColumn("y", 0, 1);
  ztb::Database itsDatabase;
  ztb::ModelTie itsTie(itsDatabase, other);
  other.readBasis(file);
  itsTie.solve(GetParam());
  EXPECT_FALSE(other.basisTaken());
  EXPECT_NEAR(other.objective(), 28, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Solvers, RangingTest, testing::Values("clp", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(Ranging, OfOtherSolversAndKindsIsRefused) {
  ztb::Model model = plan();
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("cbc");
  EXPECT_EQ(errorOf([&] { (void)model.ranging(); }),
            "solver \"cbc\" has no ranges for the model; clp and glpk have them for linear ones");
  ztb::Model integers;
  integers.addTerm(0, integers.addColumn("n", 1, 4, ztbColumnInteger), 1);
  ztb::Database another;
  ztb::ModelTie itsTie(another, integers);
  itsTie.solve("cbc");
  EXPECT_EQ(errorOf([&] { (void)integers.ranging(); }),
            "ranges are those of a linear model without integers; the model is MIP");
}

TEST(BasisFile, WhatIsNoneIsRefusedWithItsLine) {
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("b");
  ztb::Model model = plan();
  EXPECT_EQ(errorOf([&] { model.readBasis(file); }), file + ": cannot be opened");
  const auto refusal = [&](const std::string& text) {
    std::ofstream(file) << text;
    return errorOf([&] { model.readBasis(file); });
  };
  EXPECT_EQ(refusal("x"), file + ":1: is no saved basis: expected \"ztb basis 1\"");
  EXPECT_EQ(refusal("ztb basis 1\n2 columns\n"),
            file +
                ":2: is no saved basis: expected counts of columns and rows and a checksum of "
                "names");
  const std::string head = "ztb basis 1\n2 columns 3 rows 0123456789abcdef names\n";
  EXPECT_EQ(refusal(head + "LUX"), file + ":3: is no saved basis: expected letters of LUBS");
  EXPECT_EQ(refusal(head + "LUBB"), file + ":3: is no saved basis: expected 5 letters, found 4");
}

}  // namespace
