// The best objective of LP files as our reader takes them, beside what another solver finds for the
// file, or what is worked by hand where no other reader takes the form.

#include <glpk.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using lomu::kInfinity;

int boundsType(double lower, double upper) {
  if (lower == upper) return GLP_FX;
  if (lower == -kInfinity) return upper == kInfinity ? GLP_FR : GLP_UP;
  return upper == kInfinity ? GLP_LO : GLP_DB;
}

double optimum(const lomu::ModelData& model) {
  glp_term_out(GLP_OFF);
  glp_prob* const problem = glp_create_prob();
  glp_set_obj_dir(problem, model.maximize ? GLP_MAX : GLP_MIN);
  glp_set_obj_coef(problem, 0, model.objectiveConstant);
  glp_add_cols(problem, static_cast<int>(model.columns.size()));
  for (int j = 1; j <= glp_get_num_cols(problem); ++j) {
    const auto& column = model.columns.at(j - 1);
    glp_set_col_bnds(problem, j, boundsType(column.lower, column.upper), column.lower,
                     column.upper);
    if (column.kind != lomu::ColumnKind::continuous) glp_set_col_kind(problem, j, GLP_IV);
  }
  std::vector<std::vector<double>> dense(model.rows.size(),
                                         std::vector<double>(model.columns.size() + 1));
  for (const auto& term : model.terms) dense.at(term.row).at(term.column + 1) += term.value;
  for (int j = 1; j <= glp_get_num_cols(problem); ++j) {
    glp_set_obj_coef(problem, j, dense[0].at(j));
  }
  std::vector<int> all(model.columns.size() + 1);
  for (std::size_t j = 0; j < all.size(); ++j) all[j] = static_cast<int>(j);
  for (std::size_t i = 1; i < model.rows.size(); ++i) {
    const auto& row = model.rows[i];
    const int number = glp_add_rows(problem, 1);
    double lower = row.rhs;
    double upper = row.rhs;
    if (row.type == lomu::RowType::lessOrEqual) {
      lower = row.range > 0 ? row.rhs - row.range : -kInfinity;
    }
    if (row.type == lomu::RowType::greaterOrEqual) upper = kInfinity;
    glp_set_row_bnds(problem, number, boundsType(lower, upper), lower, upper);
    glp_set_mat_row(problem, number, static_cast<int>(model.columns.size()), all.data(),
                    dense[i].data());
  }
  EXPECT_EQ(0, glp_simplex(problem, nullptr));
  EXPECT_EQ(GLP_OPT, glp_get_status(problem));
  EXPECT_EQ(0, glp_intopt(problem, nullptr));
  const double value = glp_mip_obj_val(problem);
  glp_delete_prob(problem);
  glp_free_env();
  return value;
}

// The objective that cbc reports for an LP file.
double cbcOptimum(const std::string& text) {
  const ztbtest::TempFolder folder;
  modelfiles::writeFile(folder.file("m.lp"), text);
  const std::string log = modelfiles::outputOf(ZTB_CBC " '" + folder.file("m.lp") + "' solve 2>&1");
  for (const std::string words : {"Objective value:", "Optimal objective "}) {
    const std::size_t found = log.find(words);
    if (found != std::string::npos) return std::atof(log.c_str() + found + words.size());
  }
  ADD_FAILURE() << log;
  return 0;
}

class Optimum : public testing::TestWithParam<const char*> {};

TEST_P(Optimum, isTheOneThatCbcFinds) {
  EXPECT_NEAR(cbcOptimum(GetParam()), optimum(modelfiles::lp(GetParam())), 1e-6);
}

INSTANTIATE_TEST_SUITE_P(
    texts, Optimum,
    testing::Values("Maximize\n profit: 3 x + 2 y - 1.5 z + 12\nSubject To\n c1: x + 2 y <= 5\n"
                    " c2: x + z <= 4\n c3: x - y >= -2\nBounds\n -1 <= z <= 4\n y <= 2\nEnd\n",
                    "Minimize\n obj: 3 n + 2 m + 5 b - x\nSubject To\n c1: 2 n + 3 m + x >= 7.5\n"
                    " c2: x + 4 b <= 6\n c3: n + m + b >= 2\nBounds\n x <= 4.5\n m <= 1\n"
                    "Generals\n n m\nBinaries\n b\nEnd\n",
                    "Minimize\n cost: 3 x + 2 y + z\nSubject To\n c1: x + y >= 2\n"
                    " c2: 2 x - 3.5 z <= 4\n c3: x + y + z <= 7\n c4: x - y = -3\nBounds\n"
                    " -2 <= x <= 8\n y <= 4\n z >= -1\nEnd\n"));

// At most 5 by the range, x and y at 4 and 1.
TEST(OptimumByHand, ofADoubleSidedRowAndConstants) {
  const auto model = modelfiles::lp(
      "max 2 x + y + 3\nst\n c: -3 <= x + y <= 5\n d: x - 1 <= 3 + 0 y\nbounds\n y <= 4\nend\n");
  EXPECT_NEAR(12, optimum(model), 1e-9);
}

// The least x + y is the lower end of the range.
TEST(OptimumByHand, ofTheLowerEndOfADoubleSidedRow) {
  const auto model =
      modelfiles::lp("min x + y\nst\n -3 <= x + y <= 5\nbounds\n x free\n y free\nend\n");
  EXPECT_NEAR(-3, optimum(model), 1e-9);
}

}  // namespace
