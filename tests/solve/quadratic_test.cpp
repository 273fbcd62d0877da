// Models with products of columns, worked by hand.
#include <gtest/gtest.h>

#include <limits>
#include <ztb/model.hpp>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Quadratic, TheNearestPointOfALine) {
  // min x^2 + y^2, x + 2 y = 5: (1, 2) with value 5, and the multiplier is 2.
  ztb::Model model;
  model.setObjective("distance");
  const int x = model.addColumn("x", -kInf, kInf);
  const int y = model.addColumn("y", -kInf, kInf);
  model.addProduct(0, x, x, 1);
  model.addProduct(0, y, y, 1);
  const int row = model.addRow("line", ztbRowEqual, 5);
  model.addTerm(row, x, 1);
  model.addTerm(row, y, 2);
  ztb::Database database;
  ztb::ModelTie(database, model).solve("ipopt");
  EXPECT_EQ(model.status(), ztbModelOptimal);
  EXPECT_NEAR(model.objective(), 5, 1e-6);
  EXPECT_NEAR(database.symbol("x").find()->level(), 1, 1e-6);
  EXPECT_NEAR(database.symbol("y").find()->level(), 2, 1e-6);
  EXPECT_NEAR(database.symbol("line").find()->marginal(), 2, 1e-5);
  EXPECT_NEAR(database.symbol("distance").find()->level(), 5, 1e-6);
}

// max x + y, x^2 + y^2 <= 10 over integers: 4, as in (1, 3); (2, 3) is outside.
TEST(Quadratic, IntegersWithinAConvexRow) {
  ztb::Model model;
  model.setObjective("sum", true);
  const int x = model.addColumn("x", 0, 9, ztbColumnInteger);
  const int y = model.addColumn("y", 0, 9, ztbColumnInteger);
  const int row = model.addRow("circle", ztbRowLessOrEqual, 10);
  for (const int column : {x, y}) {
    model.addTerm(0, column, 1);
    model.addProduct(row, column, column, 1);
  }
  model.solve("bonmin");
  EXPECT_EQ(model.status(), ztbModelOptimal);
  EXPECT_NEAR(model.objective(), 4, 1e-6);
  EXPECT_NEAR(model.bound(), 4, 1e-4);
}

// A product that counts nothing makes no model quadratic.
TEST(Quadratic, ProductsOfNothingLeaveALinearModel) {
  ztb::Model model;
  model.setObjective("cost");
  const int x = model.addColumn("x", 1, 9);
  const int y = model.addColumn("y", 1, 9);
  const int row = model.addRow("sum", ztbRowGreaterOrEqual, 5);
  model.addTerm(0, x, 2), model.addTerm(0, y, 1);
  model.addTerm(row, x, 1), model.addTerm(row, y, 1);
  model.addProduct(0, x, x, 0);
  model.addProduct(row, x, y, 3), model.addProduct(row, y, x, -3);
  EXPECT_EQ(model.kind(), ztbKindLinear);
  model.solve("clp");
  EXPECT_NEAR(model.objective(), 2 + 4, 1e-9);
  model.solve("glpk");
  EXPECT_NEAR(model.objective(), 2 + 4, 1e-9);
}

// min (x - 1.6)^2 + (y - 2.3)^2 over integers with x + 2 y <= 5: (2, 2) is out, (1, 2) is 0.45
// away, and nothing else as near.
TEST(Quadratic, TheNearestIntegerPoint) {
  ztb::Model model;
  model.setObjective("distance", false, 1.6 * 1.6 + 2.3 * 2.3);
  const int x = model.addColumn("x", 0, 9, ztbColumnInteger);
  const int y = model.addColumn("y", 0, 9, ztbColumnInteger);
  model.addProduct(0, x, x, 1);
  model.addProduct(0, y, y, 1);
  model.addTerm(0, x, -3.2);
  model.addTerm(0, y, -4.6);
  const int row = model.addRow("room", ztbRowLessOrEqual, 5);
  model.addTerm(row, x, 1);
  model.addTerm(row, y, 2);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve();
  EXPECT_EQ(model.status(), ztbModelOptimal);
  EXPECT_NEAR(model.objective(), 0.45, 1e-9);
  EXPECT_NEAR(model.bound(), 0.45, 1e-5);
  EXPECT_EQ(database.symbol("x").find()->level(), 1);
  EXPECT_EQ(database.symbol("y").find()->level(), 2);
  // The same by name, and once more.
  tie.solve("bonmin");
  EXPECT_NEAR(model.objective(), 0.45, 1e-9);
}

TEST(Quadratic, AProductInARowAndMaximization) {
  // max x + y, x y <= 4 with x in [1, 4] and y in [0.5, 3]: locally best are (4, 1), where 1 = m x
  // gives the row the marginal 1/4, and (4/3, 3), where 1 = m y gives 1/3.
  ztb::Model model;
  model.setObjective("total", true);
  const int x = model.addColumn("x", 1, 4);
  const int y = model.addColumn("y", 0.5, 3);
  model.addTerm(0, x, 1);
  model.addTerm(0, y, 1);
  const int row = model.addRow("area", ztbRowLessOrEqual, 4);
  model.addProduct(row, x, y, 1);
  ztb::Database database;
  ztb::ModelTie(database, model).solve("ipopt");
  EXPECT_EQ(model.status(), ztbModelLocallyOptimal);
  const double objective = model.objective();
  const bool first = objective > 4.9;
  EXPECT_NEAR(objective, first ? 5 : 13.0 / 3, 1e-5);
  EXPECT_NEAR(database.symbol("area").find()->level(), 4, 1e-5);
  EXPECT_NEAR(database.symbol("area").find()->marginal(), first ? 0.25 : 1.0 / 3, 1e-4);
}

TEST(Quadratic, AProductWithAFactorThatStandsStillIsLinear) {
  ztb::Model model;
  model.setObjective("total");
  const int rate = model.addColumn("rate_var", 2, 2);
  const int x = model.addColumn("x", 0, kInf);
  model.addTerm(0, x, 1);
  const int row = model.addRow("need", ztbRowGreaterOrEqual, 6);
  model.addProduct(row, rate, x, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("clp");
  EXPECT_EQ(model.objective(), 3);
  ztb::Symbol parameter = database.addParameter("rate", {});
  parameter.merge().setLevel(4);
  tie.update(parameter, ztb::Action::fix, parameter, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_EQ(model.objective(), 1.5);
  EXPECT_EQ(database.symbol("need").find()->level(), 6);
  EXPECT_EQ(database.symbol("rate_var").find()->level(), 4);
}

TEST(Quadratic, AParameterSetFreeMakesTheModelQuadraticAgain) {
  ztb::Model model;
  model.setObjective("total");
  const int rate = model.addColumn("rate_var", 2, 2);
  const int x = model.addColumn("x", 0, 10);
  model.addProduct(0, rate, x, 1);
  model.addTerm(model.addRow("need", ztbRowGreaterOrEqual, 3), x, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol parameter = database.addParameter("rate", {});
  parameter.merge().setLevel(5);
  tie.update(parameter, ztb::Action::upper, parameter, ztb::Missing::base);
  EXPECT_THROW(tie.solve("clp"), ztb::Error);
  EXPECT_EQ(model.message(), "solver \"clp\" solves LP; the model is QP");
  tie.solve("ipopt");
  EXPECT_NEAR(model.objective(), 6, 1e-5);
}

}  // namespace
