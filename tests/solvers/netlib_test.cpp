// Problems of the netlib collection against their published optimal values.
#include <glpk.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

struct Published {
  const char* name;
  double optimum;
};

// The file's problem; dense, for these are small.
SmallModel read(const std::string& file) {
  glp_term_out(GLP_OFF);
  glp_prob* problem = glp_create_prob();
  EXPECT_EQ(glp_read_mps(problem, GLP_MPS_DECK, nullptr, file.c_str()), 0) << file;
  SmallModel model;
  const auto low = [](double v) { return v <= -1e300 ? -kInf : v; };
  const auto high = [](double v) { return v >= 1e300 ? kInf : v; };
  const int rows = glp_get_num_rows(problem);
  const int columns = glp_get_num_cols(problem);
  for (int j = 1; j <= columns; ++j) {
    model.column(glp_get_obj_coef(problem, j), low(glp_get_col_lb(problem, j)),
                 high(glp_get_col_ub(problem, j)));
  }
  std::vector<int> indexes(static_cast<std::size_t>(columns) + 1);
  std::vector<double> values(indexes.size());
  for (int i = 1; i <= rows; ++i) {
    std::vector<double> dense(static_cast<std::size_t>(columns));
    const int count = glp_get_mat_row(problem, i, indexes.data(), values.data());
    for (std::size_t k = 1; k <= static_cast<std::size_t>(count); ++k) {
      dense[static_cast<std::size_t>(indexes[k]) - 1] = values[k];
    }
    model.row(dense, low(glp_get_row_lb(problem, i)), high(glp_get_row_ub(problem, i)));
  }
  glp_delete_prob(problem);
  return model;
}

class Netlib : public testing::TestWithParam<std::tuple<const char*, Published>> {};

TEST_P(Netlib, hasThePublishedOptimum) {
  const auto& [solver, published] = GetParam();
  SmallModel model = read(std::string(ZTB_NETLIB) + "/" + published.name + ".mps");
  const lomu::SolverResult result = solveFresh(solver, model);
  ASSERT_EQ(result.outcome, lomu::Outcome::optimal) << result.reason;
  EXPECT_TRUE(result.hasPoint);
  // The values are published to eleven or twelve digits.
  EXPECT_NEAR(model.objective(result.level), published.optimum, 1e-8 * std::abs(published.optimum));
}

INSTANTIATE_TEST_SUITE_P(Problems, Netlib,
                         testing::Combine(testing::Values("clp", "glpk", "cbc"),
                                          testing::Values(Published{"adlittle", 225494.96316},
                                                          Published{"afiro", -464.75314286},
                                                          Published{"israel", -896644.82186},
                                                          Published{"scrs8", 904.29695380},
                                                          Published{"shell", 1208825346.0},
                                                          Published{"stair", -251.26695119})),
                         [](const auto& tested) {
                           return std::string(std::get<0>(tested.param)) + "_" +
                                  std::get<1>(tested.param).name;
                         });

// An interior method, on a problem whose entries are scaled badly.
TEST(NetlibByIpopt, israel) {
  SmallModel model = read(std::string(ZTB_NETLIB) + "/israel.mps");
  const lomu::SolverResult result = solveFresh("ipopt", model);
  ASSERT_EQ(result.outcome, lomu::Outcome::optimal) << result.reason;
  EXPECT_NEAR(model.objective(result.level), -896644.82186, 1e-6 * 896644.82186);
}

}  // namespace
}  // namespace ztbtest
