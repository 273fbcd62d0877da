#include "tests/solve/transport.h"

#include <numeric>
#include <random>

namespace solvetest {

std::string source(int i) {
  return "s" + std::to_string(i);
}

std::string target(int j) {
  return "t" + std::to_string(j);
}

Transport::Transport(int sourceCount, int targetCount)
    : sources(sourceCount), targets(targetCount) {
  std::mt19937 random(7);
  const auto uniform = [&](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  for (int j = 0; j < targets; ++j) demand.push_back(uniform(5, 15));
  const double all = std::accumulate(demand.begin(), demand.end(), 0.0);
  supply.assign(static_cast<std::size_t>(sources), 1.5 * all / sources);
  for (int k = 0; k < sources * targets; ++k) cost.push_back(uniform(1, 9));
}

ztb::Model Transport::model() const {
  ztb::Model model;
  model.setObjective("total");
  for (int i = 0; i < sources; ++i) {
    model.addRow("supply[" + source(i) + "]", ztbRowLessOrEqual,
                 supply[static_cast<std::size_t>(i)]);
  }
  for (int j = 0; j < targets; ++j) {
    const int row = model.addRow("need[" + target(j) + "]", ztbRowGreaterOrEqual, 0);
    const double amount = demand[static_cast<std::size_t>(j)];
    model.addTerm(row, model.addColumn("demand_var[" + target(j) + "]", amount, amount), -1);
  }
  for (int i = 0; i < sources; ++i) {
    for (int j = 0; j < targets; ++j) {
      const std::string element = "[" + source(i) + "," + target(j) + "]";
      const double price = cost[index(i, j)];
      const int ship = model.addColumn("ship" + element, 0, 1e30);
      const int costColumn = model.addColumn("cost_var" + element, price, price);
      model.addProduct(0, costColumn, ship, 1);
      model.addTerm(1 + i, ship, 1);
      model.addTerm(1 + sources + j, ship, 1);
    }
  }
  return model;
}

Transport::Fresh Transport::solvedAfresh() const {
  glp_term_out(GLP_OFF);
  glp_prob* lp = glp_create_prob();
  glp_add_rows(lp, sources + targets);
  for (int i = 0; i < sources; ++i) {
    glp_set_row_bnds(lp, 1 + i, GLP_UP, 0, supply[static_cast<std::size_t>(i)]);
  }
  for (int j = 0; j < targets; ++j) {
    glp_set_row_bnds(lp, 1 + sources + j, GLP_LO, demand[static_cast<std::size_t>(j)], 0);
  }
  glp_add_cols(lp, sources * targets);
  for (int i = 0; i < sources; ++i) {
    for (int j = 0; j < targets; ++j) {
      const int column = 1 + i * targets + j;
      const std::vector<int> rows{0, 1 + i, 1 + sources + j};
      const std::vector<double> ones{0, 1, 1};
      glp_set_mat_col(lp, column, 2, rows.data(), ones.data());
      glp_set_col_bnds(lp, column, GLP_LO, 0, 0);
      glp_set_obj_coef(lp, column, cost[index(i, j)]);
    }
  }
  glp_simplex(lp, nullptr);
  const Fresh fresh{glp_get_obj_val(lp), static_cast<double>(glp_get_it_cnt(lp))};
  glp_delete_prob(lp);
  return fresh;
}

}  // namespace solvetest
