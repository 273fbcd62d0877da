// Marginals: the change of the objective per unit of right-hand side or bound, found by moving it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Row {
  std::string name;
  int type;
  double rhs;
  double range;
  std::vector<double> terms;
};

struct Column {
  std::string name;
  double lower;
  double upper;
  double cost;
};

struct Linear {
  bool maximize;
  std::vector<Column> columns;
  std::vector<Row> rows;

  [[nodiscard]] ztb::Model model() const {
    ztb::Model model;
    model.setObjective("total", maximize, 4);
    for (const Column& c : columns) {
      model.addTerm(0, model.addColumn(c.name, c.lower, c.upper), c.cost);
    }
    for (const Row& r : rows) {
      const int row = model.addRow(r.name, r.type, r.rhs, r.range);
      for (std::size_t j = 0; j < r.terms.size(); ++j) {
        model.addTerm(row, static_cast<int>(j), r.terms[j]);
      }
    }
    return model;
  }

  [[nodiscard]] double optimum(const char* solver) const {
    ztb::Model solved = model();
    ztb::Database database;
    ztb::ModelTie(database, solved).solve(solver);
    EXPECT_EQ(solved.status(), ztbModelOptimal);
    return solved.objective();
  }
};

// Every type of row binds, one row of each does not, and columns stand at either bound.
Linear everyRow(bool maximize) {
  const double sign = maximize ? -1 : 1;
  return {maximize,
          {{"a", 0, kInf, sign * 3},
           {"b", 0, kInf, sign * 2},
           {"c", 1, kInf, sign * 5},
           {"d", 0, 2, sign * -4},
           {"e", -kInf, kInf, sign * 1},
           {"f", 3, 3, sign * 2}},
          {{"same", ztbRowEqual, 10, 0, {1, 1, 0, 0, 0, 1}},
           {"least", ztbRowGreaterOrEqual, 4, 0, {1, 0, 1, 1, 0, 0}},
           {"most", ztbRowLessOrEqual, -2, 0, {0, -1, 0, 1, -1, 0}},
           {"between", ztbRowGreaterOrEqual, 1, 6, {1, 1, 0, 0, 1, 0}},
           {"loose", ztbRowLessOrEqual, 1000, 0, {1, 1, 1, 1, 1, 1}},
           {"noted", ztbRowFree, 0, 0, {1, 2, 3, 4, 5, 6}}}};
}

class Marginals : public testing::TestWithParam<std::tuple<const char*, bool>> {
 protected:
  const char* solver() const { return std::get<0>(GetParam()); }
  bool maximize() const { return std::get<1>(GetParam()); }
};

TEST_P(Marginals, OfRowsAreTheSlopeOfTheOptimum) {
  const double step = 1e-3;
  Linear problem = everyRow(maximize());
  ztb::Model model = problem.model();
  ztb::Database database;
  ztb::ModelTie(database, model).solve(solver());
  ASSERT_EQ(model.status(), ztbModelOptimal);
  int binding = 0;
  for (Row& row : problem.rows) {
    const double rhs = row.rhs;
    row.rhs = rhs + step;
    const double above = problem.optimum(solver());
    row.rhs = rhs - step;
    const double below = problem.optimum(solver());
    row.rhs = rhs;
    const double marginal = database.symbol(row.name).find()->marginal();
    EXPECT_NEAR(marginal, (above - below) / (2 * step), 1e-6) << row.name;
    binding += marginal != 0 ? 1 : 0;
  }
  EXPECT_GE(binding, 3) << "the problem tests too little";
}

TEST_P(Marginals, OfColumnsAreTheSlopeAtTheirBound) {
  const double step = 1e-3;
  Linear problem = everyRow(maximize());
  ztb::Model model = problem.model();
  ztb::Database database;
  ztb::ModelTie(database, model).solve(solver());
  for (Column& column : problem.columns) {
    const auto record = database.symbol(column.name).find();
    const double level = record->level();
    const Column before = column;
    // Move the bound that the column stands at.
    double change = 0;
    if (level == column.lower || level == column.upper) {
      for (const double sign : {1.0, -1.0}) {
        if (level == before.lower) column.lower = before.lower + sign * step;
        if (level == before.upper) column.upper = before.upper + sign * step;
        change += sign * problem.optimum(solver());
        column = before;
      }
    }
    EXPECT_NEAR(record->marginal(), change / (2 * step), 1e-6) << column.name;
  }
}

TEST_P(Marginals, AreComplementaryAndSignedByTheSideThatBinds) {
  Linear problem = everyRow(maximize());
  ztb::Model model = problem.model();
  ztb::Database database;
  ztb::ModelTie(database, model).solve(solver());
  const double sign = maximize() ? -1 : 1;
  for (const Row& row : problem.rows) {
    const auto record = database.symbol(row.name).find();
    const double marginal = sign * record->marginal();
    const double low = row.type == ztbRowLessOrEqual || row.type == ztbRowFree ? -kInf : row.rhs;
    double high = row.type == ztbRowGreaterOrEqual || row.type == ztbRowFree ? kInf : row.rhs;
    if (row.range > 0) high = row.rhs + row.range;
    if (marginal > 1e-9) {
      EXPECT_NEAR(record->level(), low, 1e-7) << row.name;
    } else if (marginal < -1e-9) {
      EXPECT_NEAR(record->level(), high, 1e-7) << row.name;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(SolversAndSenses, Marginals,
                         testing::Combine(testing::Values("clp", "glpk", "cbc"), testing::Bool()),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param)) +
                                  (std::get<1>(test.param) ? "Maximizes" : "Minimizes");
                         });

TEST(MarginalOfAParameter, IsItsWorthInTheObjective) {
  // min price * x, x >= 4: the optimum is 4 * price, so a unit of price costs 4.
  ztb::Model model;
  model.setObjective("total");
  const int price = model.addColumn("price_var", 3, 3);
  const int x = model.addColumn("x", 0, kInf);
  model.addProduct(0, price, x, 1);
  model.addTerm(model.addRow("need", ztbRowGreaterOrEqual, 4), x, 1);
  ztb::Database database;
  ztb::ModelTie(database, model).solve("clp");
  EXPECT_EQ(model.objective(), 12);
  EXPECT_EQ(database.symbol("price_var").find()->marginal(), 4);
  EXPECT_EQ(database.symbol("need").find()->marginal(), 3);
}

}  // namespace
