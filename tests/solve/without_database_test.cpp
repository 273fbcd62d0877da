// Solves without a database: ztbModelSolve and ztb::Model::solve. What they say of failures, and
// that they end as solves through a database do, is in status_test.cpp.
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <limits>
#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

// max 3 x + 2 y + 7 with x + y <= 4, x + 3 y <= 6, x <= 3: (3, 1) with 9 + 2 + 7.
ztb::Model corner(int kind) {
  ztb::Model model;
  model.setObjective("gain", true, 7);
  const int x = model.addColumn("x", 0, 3, kind);
  const int y = model.addColumn("y", 0, kInf, kind);
  const int both = model.addRow("both", ztbRowLessOrEqual, 4);
  const int weighted = model.addRow("weighted", ztbRowLessOrEqual, 6);
  model.addTerm(0, x, 3), model.addTerm(0, y, 2);
  model.addTerm(both, x, 1), model.addTerm(both, y, 1);
  model.addTerm(weighted, x, 1), model.addTerm(weighted, y, 3);
  return model;
}

TEST(WithoutDatabase, TheSolverForTheKindOfModelSolves) {
  for (const int kind : {ztbColumnContinuous, ztbColumnInteger}) {
    ztb::Model model = corner(kind);
    EXPECT_GE(model.solve(), 0);
    EXPECT_EQ(model.status(), ztbModelOptimal);
    EXPECT_NEAR(model.objective(), 18, 1e-9);
    EXPECT_NEAR(model.values("x").at(0), 3, 1e-9);
    EXPECT_NEAR(model.values("y").at(0), 1, 1e-9);
  }
}

// max 5 a + b + 4 c, each 0 or 1: by the weights a and c are neighbours.
TEST(WithoutDatabase, AnOrderedSetLeavesNeighbours) {
  ztb::Model model;
  model.setObjective("gain", true);
  const std::vector<double> gains{5, 1, 4};
  std::vector<int> columns;
  for (const double gain : gains) {
    const std::string name(1, static_cast<char>('a' + columns.size()));
    columns.push_back(model.addColumn(name, 1, 1, ztbColumnSemiContinuous));
    model.addTerm(0, columns.back(), gain);
  }
  model.addSet("near", 2, columns, std::vector<double>{1, 3, 2});
  EXPECT_THROW(model.addSet("odd", 2, columns, std::vector<double>{1, 2}), ztb::Error);
  EXPECT_THROW(model.addSet("odd", 3, columns, std::vector<double>{1, 3, 2}), ztb::Error);
  EXPECT_GE(model.solve(), 0);
  EXPECT_NEAR(model.objective(), 9, 1e-9);
}

TEST(WithoutDatabase, NamesAndKindsOfFailuresInC) {
  ztb::Model model = corner(ztbColumnContinuous);
  EXPECT_EQ(ztbModelSolve(model.handle(), "glpk"), 1);
  EXPECT_NEAR(ztbModelObjective(model.handle()), 18, 1e-9);
  EXPECT_EQ(std::string(ztbModelMessage(model.handle())), "");
  EXPECT_EQ(ztbModelSolve(model.handle(), nullptr), 0);
  EXPECT_EQ(std::string(ztbModelMessage(model.handle())), "no solver was named");
  EXPECT_EQ(ztbModelErrorKind(), ZTB_ERROR_REFUSED);
  EXPECT_EQ(ztbModelSolve(model.handle(), "nosuch"), 0);
  EXPECT_EQ(ztbModelErrorKind(), ZTB_ERROR_NOT_FOUND);
  EXPECT_EQ(ztbModelSolve(model.handle(), "glpk"), 1);
  EXPECT_EQ(std::string(ztbModelMessage(model.handle())), "");
  ztb::Model integers = corner(ztbColumnInteger);
  EXPECT_EQ(ztbModelSolve(integers.handle(), "clp"), 0);
  EXPECT_EQ(ztbModelErrorKind(), ZTB_ERROR_SOLVER);
  EXPECT_EQ(ztbModelSolve(nullptr, "clp"), 0);
}

// min y + p x with x + y + q x >= 2, p at 0.25 and q at 0.5: a linear model, and 1.5 x >= 2 holds
// from x = 4/3 on, which costs 1/3; y costs 1 for what x gives for 1/6.
TEST(WithoutDatabase, ProductsWithAFactorThatStandsStillAreLinear) {
  ztb::Model model;
  model.setObjective("cost");
  const int x = model.addColumn("x", 0, 3);
  const int y = model.addColumn("y", 0, 9);
  const int p = model.addColumn("p", 0.25, 0.25);
  const int q = model.addColumn("q", 0.5, 0.5);
  const int row = model.addRow("least", ztbRowGreaterOrEqual, 2);
  model.addTerm(0, y, 1), model.addProduct(0, p, x, 1);
  model.addTerm(row, x, 1), model.addTerm(row, y, 1), model.addProduct(row, q, x, 1);
  for (int turn = 0; turn < 2; ++turn) {
    for (const char* solver : {"clp", "glpk", "cbc"}) {
      model.solve(solver);
      EXPECT_EQ(model.status(), ztbModelOptimal) << solver;
      EXPECT_NEAR(model.objective(), 1.0 / 3, 1e-9) << solver;
      EXPECT_NEAR(model.values("x").at(0), 4.0 / 3, 1e-9) << solver;
    }
  }
  EXPECT_EQ(model.kind(), ztbKindLinear);
}

// A tie reads what was solved before it, and what solves without it use is what the last solve with
// it used.
TEST(WithoutDatabase, BeforeAndAfterADatabase) {
  ztb::Model model = corner(ztbColumnContinuous);
  model.drive("room = rhs of both");
  model.solve("clp");
  EXPECT_NEAR(model.objective(), 18, 1e-9);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  EXPECT_NEAR(database.symbol("x").find()->level(), 3, 1e-9);
  EXPECT_NEAR(database.symbol("y").find()->level(), 1, 1e-9);
  ztb::Symbol room = database.addParameter("room", {});
  room.merge().setLevel(2);
  tie.update(database.symbol("room_var"), ztb::Action::fix, room, ztb::Missing::base);
  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 13, 1e-9);  // at (2, 0)
  model.solve("clp");
  EXPECT_NEAR(model.objective(), 13, 1e-9);
}

}  // namespace
