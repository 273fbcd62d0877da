// A random linear model, updated at random through the database, equals the same model built
// afresh.
#include <glpk.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace {

constexpr int kColumns = 6;
constexpr int kRows = 5;

// min c x, l <= x <= u, rows a x >= b(i) with b from a parameter; the coefficients of row 0 are
// parameters too. All x in [0, 10], so every model has an optimum or is infeasible.
struct Plain {
  std::vector<double> cost, upper;         // by column
  std::vector<double> rhs;                 // by row
  std::vector<std::vector<double>> value;  // by row and column

  // The optimum by GLPK; infinity when there is no feasible point.
  [[nodiscard]] double optimum() const {
    glp_term_out(GLP_OFF);
    glp_prob* lp = glp_create_prob();
    glp_add_rows(lp, kRows);
    glp_add_cols(lp, kColumns);
    for (int j = 0; j < kColumns; ++j) {
      const double top = upper[static_cast<std::size_t>(j)];
      glp_set_col_bnds(lp, j + 1, top > 0 ? GLP_DB : GLP_FX, 0, top);
      glp_set_obj_coef(lp, j + 1, cost[static_cast<std::size_t>(j)]);
    }
    for (int i = 0; i < kRows; ++i) {
      const auto& row = value[static_cast<std::size_t>(i)];
      std::vector<int> columns{0};
      std::vector<double> values{0};
      for (int j = 0; j < kColumns; ++j) {
        columns.push_back(j + 1);
        values.push_back(row[static_cast<std::size_t>(j)]);
      }
      glp_set_mat_row(lp, i + 1, kColumns, columns.data(), values.data());
      glp_set_row_bnds(lp, i + 1, GLP_LO, rhs[static_cast<std::size_t>(i)], 0);
    }
    glp_smcp parameters;
    glp_init_smcp(&parameters);
    parameters.presolve = GLP_ON;
    parameters.msg_lev = GLP_MSG_OFF;
    const int result = glp_simplex(lp, &parameters);
    const bool optimal = result == 0 && glp_get_status(lp) == GLP_OPT;
    const double objective =
        optimal ? glp_get_obj_val(lp) : std::numeric_limits<double>::infinity();
    glp_delete_prob(lp);
    return objective;
  }

  [[nodiscard]] ztb::Model model() const {
    ztb::Model model;
    model.setObjective("total");
    for (int i = 0; i < kRows; ++i) {
      const std::string label = "[r" + std::to_string(i) + "]";
      const double side = rhs[static_cast<std::size_t>(i)];
      const int row = model.addRow("need" + label, ztbRowGreaterOrEqual, 0);
      model.addTerm(row, model.addColumn("side_var" + label, side, side), -1);
    }
    for (int j = 0; j < kColumns; ++j) {
      const std::string label = "[c" + std::to_string(j) + "]";
      const auto column = static_cast<std::size_t>(j);
      const int x = model.addColumn("x" + label, 0, upper[column]);
      model.addTerm(0, x, cost[column]);
      const double rate = value[0][column];
      model.addProduct(1, model.addColumn("rate_var" + label, rate, rate), x, 1);
      for (int i = 1; i < kRows; ++i)
        model.addTerm(i + 1, x, value[static_cast<std::size_t>(i)][column]);
    }
    return model;
  }
};

double smallNumber(int low, int high) {
  return *rc::gen::inRange(low * 4, high * 4) / 4.0;
}

Plain randomPlain() {
  Plain plain;
  for (int j = 0; j < kColumns; ++j) {
    plain.cost.push_back(smallNumber(-3, 9));
    plain.upper.push_back(smallNumber(0, 10));
  }
  plain.value.resize(kRows);
  for (auto& row : plain.value) {
    for (int j = 0; j < kColumns; ++j) row.push_back(smallNumber(-2, 6));
  }
  for (int i = 0; i < kRows; ++i) plain.rhs.push_back(smallNumber(-5, 12));
  return plain;
}

void equalsFresh(const ztb::Model& model, const Plain& plain) {
  const double expected = plain.optimum();
  if (std::isinf(expected)) {
    RC_ASSERT(model.status() == int{ztbModelInfeasible});
    return;
  }
  RC_ASSERT(model.status() == int{ztbModelOptimal});
  RC_ASSERT(std::abs(model.objective() - expected) <= 1e-7 * std::max(1.0, std::abs(expected)));
}

void updatesEqualFreshModels(const char* solver) {
  Plain plain = randomPlain();
  ztb::Model model = plain.model();
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol side = database.addParameter("side", {"*"});
  ztb::Symbol rate = database.addParameter("rate", {"*"});
  ztb::Symbol top = database.addParameter("top", {"*"});
  const ztb::Symbol x = database.symbol("x");
  const int steps = *rc::gen::inRange(1, 12);
  for (int step = 0; step < steps; ++step) {
    const int what = *rc::gen::inRange(0, 3);
    if (what == 0) {
      const int i = *rc::gen::inRange(0, kRows);
      plain.rhs[static_cast<std::size_t>(i)] = smallNumber(-5, 12);
      side.merge("r" + std::to_string(i)).setLevel(plain.rhs[static_cast<std::size_t>(i)]);
      RC_ASSERT(tie.update(side, ztb::Action::fix, side, ztb::Missing::base) == 0);
    } else if (what == 1) {
      const auto j = static_cast<std::size_t>(*rc::gen::inRange(0, kColumns));
      plain.value[0][j] = smallNumber(-2, 6);
      rate.merge("c" + std::to_string(j)).setLevel(plain.value[0][j]);
      RC_ASSERT(tie.update(rate, ztb::Action::fix, rate, ztb::Missing::base) == 0);
    } else {
      const auto j = static_cast<std::size_t>(*rc::gen::inRange(0, kColumns));
      plain.upper[j] = smallNumber(0, 10);
      top.merge("c" + std::to_string(j)).setLevel(plain.upper[j]);
      RC_ASSERT(tie.update(x, ztb::Action::upper, top, ztb::Missing::base) == 0);
    }
    tie.solve(solver);
    equalsFresh(model, plain);
  }
}

RC_GTEST_PROP(RandomModel, UpdatedAndSolvedByClpEqualsAFreshOne, ()) {
  updatesEqualFreshModels("clp");
}

RC_GTEST_PROP(RandomModel, UpdatedAndSolvedByGlpkEqualsAFreshOne, ()) {
  updatesEqualFreshModels("glpk");
}

}  // namespace
