// Why a model has no solution: the rows and bounds that are told cannot hold together, which GLPK
// says too, and do when any one of them is left out.
#include <glpk.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>
#include <ztb/model.hpp>

#include "tests/solve/heard_clp.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

// Rows of a_ij and sides, columns of bounds, as GLPK has them.
struct Plain {
  std::vector<std::vector<double>> value;
  std::vector<std::pair<double, double>> rows, columns;
  bool integer = false;

  static int typeOf(double low, double high) {
    if (low == high) return GLP_FX;
    if (std::isinf(low)) return std::isinf(high) ? GLP_FR : GLP_UP;
    return std::isinf(high) ? GLP_LO : GLP_DB;
  }

  // Whether there is a point, by GLPK.
  [[nodiscard]] bool feasible() const {
    glp_term_out(GLP_OFF);
    glp_prob* problem = glp_create_prob();
    glp_add_rows(problem, static_cast<int>(rows.size()));
    glp_add_cols(problem, static_cast<int>(columns.size()));
    for (std::size_t j = 0; j < columns.size(); ++j) {
      const auto [low, high] = columns[j];
      glp_set_col_bnds(problem, static_cast<int>(j) + 1, typeOf(low, high), low, high);
      if (integer) glp_set_col_kind(problem, static_cast<int>(j) + 1, GLP_IV);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
      std::vector<int> place{0};
      std::vector<double> values{0};
      for (std::size_t j = 0; j < columns.size(); ++j) {
        if (value[i][j] == 0) continue;
        place.push_back(static_cast<int>(j) + 1);
        values.push_back(value[i][j]);
      }
      glp_set_mat_row(problem, static_cast<int>(i) + 1, static_cast<int>(place.size()) - 1,
                      place.data(), values.data());
      const auto [low, high] = rows[i];
      glp_set_row_bnds(problem, static_cast<int>(i) + 1, typeOf(low, high), low, high);
    }
    glp_smcp parameters;
    glp_init_smcp(&parameters);
    const int result = glp_simplex(problem, &parameters);
    bool feasible = result == 0 && glp_get_status(problem) == GLP_OPT;
    if (feasible && integer) {
      glp_iocp search;
      glp_init_iocp(&search);
      feasible = glp_intopt(problem, &search) == 0 && glp_mip_status(problem) == GLP_OPT;
    }
    glp_delete_prob(problem);
    return feasible;
  }

  [[nodiscard]] ztb::Model model() const {
    ztb::Model model;
    for (std::size_t j = 0; j < columns.size(); ++j) {
      model.addColumn("x[" + std::to_string(j) + "]", columns[j].first, columns[j].second,
                      integer ? ztbColumnInteger : ztbColumnContinuous);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto [low, high] = rows[i];
      const int type = low == high        ? ztbRowEqual
                       : std::isinf(high) ? ztbRowGreaterOrEqual
                                          : ztbRowLessOrEqual;
      const double range = std::isinf(low) || std::isinf(high) ? 0 : high - low;
      const int row = model.addRow("r[" + std::to_string(i) + "]", type,
                                   type == ztbRowGreaterOrEqual ? low : high, range);
      for (std::size_t j = 0; j < columns.size(); ++j) {
        if (value[i][j] != 0) model.addTerm(row, static_cast<int>(j), value[i][j]);
      }
    }
    return model;
  }

  // The same with nothing but these members, and but for one of them, if it is told.
  [[nodiscard]] Plain only(const std::vector<ztb::Model::Conflict::Member>& members,
                           std::size_t without) const {
    constexpr double inf = std::numeric_limits<double>::infinity();
    Plain part = *this;
    for (auto& row : part.rows) row = {-inf, inf};
    for (auto& column : part.columns) column = {-inf, inf};
    for (std::size_t k = 0; k < members.size(); ++k) {
      if (k == without) continue;
      const auto n = static_cast<std::size_t>(members[k].number);
      const bool ofRow = members[k].part <= ztbPartRowUpper;
      const auto& own = ofRow ? rows[n - 1] : columns[n];
      auto& target = ofRow ? part.rows[n - 1] : part.columns[n];
      const int part3 = members[k].part % 3;
      if (part3 != 2) target.first = own.first;
      if (part3 != 1) target.second = own.second;
    }
    return part;
  }
};

constexpr std::size_t kNone = 1000000;

// A random model of which most have no point.
Plain randomPlain(std::mt19937& random, std::size_t m, std::size_t n, bool integer) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  const auto whole = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  Plain plain;
  plain.integer = integer;
  for (std::size_t j = 0; j < n; ++j) {
    const double low = whole(-3, 2);
    plain.columns.emplace_back(random() % 4 == 0 ? -inf : low,
                               random() % 3 == 0 ? inf : low + whole(0, 6));
  }
  for (std::size_t i = 0; i < m; ++i) {
    std::vector<double> row(n, 0);
    for (int k = 0; k < 3; ++k) row[random() % n] = whole(-4, 4);
    plain.value.push_back(row);
    const double side = whole(-12, 12);
    switch (random() % 4) {
      case 0:
        plain.rows.emplace_back(side, side);
        break;
      case 1:
        plain.rows.emplace_back(side, inf);
        break;
      case 2:
        plain.rows.emplace_back(-inf, side);
        break;
      default:
        plain.rows.emplace_back(side, side + 2);
    }
  }
  return plain;
}

// Rows, whether columns are integers, and what Clp keeps to itself.
struct Way {
  const char* name;
  std::size_t rows;
  bool integer, marginals, proofs;
};

class Conflicts : public testing::TestWithParam<Way> {
 protected:
  Conflicts() {
    std::ofstream(folder_.file("vltcmpNT.txt"))
        << "clp LP yes " << ZTB_HEARD_CLP << "\ncbc LP,MIP no " << ZTB_CBC << "\n";
  }

  ztb::Model::Conflict explained(const Plain& plain) {
    ztb::Model model = plain.model();
    model.setOption("NameSysDir", folder_.file(""));
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    tie.solve(plain.integer ? "cbc" : "clp");
    EXPECT_EQ(model.status(), ztbModelInfeasible);
    heardClpKeeps(GetParam().marginals, GetParam().proofs);
    return model.explain();
  }

  ztbtest::TempFolder folder_;
};

TEST_P(Conflicts, AreIrreducible) {
  const Way& way = GetParam();
  std::mt19937 random(11);
  int found = 0;
  for (int number = 0; number < 200 && found < (way.rows > 500 ? 3 : 40); ++number) {
    const Plain plain = randomPlain(random, way.rows, way.rows, way.integer);
    if (plain.feasible()) continue;
    const ztb::Model::Conflict conflict = explained(plain);
    ++found;
    ASSERT_TRUE(conflict.irreducible);
    ASSERT_FALSE(conflict.members.empty());
    EXPECT_FALSE(plain.only(conflict.members, kNone).feasible()) << number;
    for (std::size_t k = 0; k < conflict.members.size(); ++k) {
      EXPECT_TRUE(plain.only(conflict.members, k).feasible())
          << number << " without " << conflict.members[k].text;
    }
  }
  EXPECT_GE(found, 3);
}

// Without marginals there is no elastic proof, without proofs halves are left out.
INSTANTIATE_TEST_SUITE_P(Ways, Conflicts,
                         testing::Values(Way{"Small", 8, false, false, false},
                                         Way{"SmallByRays", 8, false, true, false},
                                         Way{"SmallByHalves", 8, false, true, true},
                                         Way{"Middle", 40, false, false, false},
                                         Way{"MiddleByRays", 40, false, true, false},
                                         Way{"MiddleByHalves", 40, false, true, true},
                                         Way{"Large", 700, false, false, false}),
                         [](const auto& test) { return test.param.name; });

using ConflictOfMany = Conflicts;

// A chain of balances whose demands are more than all that may be made, beside rows that have
// nothing to do with it. Each member is tried once: with the look at the whole, the elastic
// problem and the last look at the answer that is as many solves as members and three, and a
// fourth where the first proof was not the last.
TEST_P(ConflictOfMany, TakesASolveAMember) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr std::size_t periods = 60;
  Plain plain;
  for (std::size_t j = 0; j < 2 * periods; ++j) plain.columns.emplace_back(0, inf);
  const auto row = [&](double low, double high) -> std::vector<double>& {
    plain.rows.emplace_back(low, high);
    return plain.value.emplace_back(2 * periods, 0.0);
  };
  for (std::size_t t = 0; t < periods; ++t) {
    std::vector<double>& balance = row(3, 3);
    balance[t] = 1;
    balance[periods + t] = -1;
    if (t > 0) balance[periods + t - 1] = 1;
    row(-inf, 1000)[t] = 1;
    row(-inf, 1000)[periods + t] = 2;
  }
  std::vector<double>& all = row(-inf, 3 * periods - 1);
  for (std::size_t t = 0; t < periods; ++t) all[t] = 1;

  const ztb::Model::Conflict conflict = explained(plain);
  EXPECT_TRUE(conflict.irreducible);
  // All balances, the row of all, and that nothing is left over in the end.
  EXPECT_EQ(conflict.members.size(), periods + 2);
  EXPECT_LE(heardClpLoads(), static_cast<int>(periods) + 2 + 4);
}

INSTANTIATE_TEST_SUITE_P(Ways, ConflictOfMany,
                         testing::Values(Way{"ByElasticProof", 0, false, false, false},
                                         Way{"ByRays", 0, false, true, false}),
                         [](const auto& test) { return test.param.name; });

class Explained : public testing::Test {
 protected:
  // Solves what stands in the file and gives the texts of why it has no solution.
  std::vector<std::string> explained(const std::string& text,
                                     const std::vector<std::string>& drives = {}) {
    std::ofstream(folder_.file("m.lp")) << text;
    model_ = ztb::Model::open(folder_.file("m.lp"));
    for (const std::string& statement : drives) model_.drive(statement);
    ztb::Database database;
    ztb::ModelTie tie(database, model_);
    tie.solve(model_.kind() == ztbKindLinear ? "clp" : "cbc");
    conflict_ = model_.explain();
    std::vector<std::string> texts;
    for (const auto& member : conflict_.members) texts.push_back(member.text);
    return texts;
  }

  ztbtest::TempFolder folder_;
  ztb::Model model_;
  ztb::Model::Conflict conflict_;
};

TEST_F(Explained, InTheNamesOfTheUser) {
  EXPECT_THAT(
      explained("Minimize\n c: make(a) + make(b)\nSubject To\n need(oslo): make(a) + make(b) >= 9\n"
                " other: make(a) - make(b) <= 7\n even: make(a) - 2 spare = 0\nBounds\n"
                " make(a) <= 5\n make(b) <= 3\n spare <= 100\nEnd\n",
                {"most(plant) = upper of make", "demand(city) = rhs of need"}),
      UnorderedElementsAre("need(oslo) >= 9, driven by demand_var(oslo)",
                           "make(a) <= 5, driven by most_var(a)",
                           "make(b) <= 3, driven by most_var(b)"));
  EXPECT_TRUE(conflict_.irreducible);
  EXPECT_FALSE(conflict_.byIntegers);
  EXPECT_EQ(conflict_.condition, "");
}

TEST_F(Explained, ByEquationsRangesAndFixedColumns) {
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n sum: x + y = 7\n between: -3 <= x - z <= 2\n"
                        "Bounds\n x <= 3\n y <= 3\n z = 1\nEnd\n"),
              UnorderedElementsAre("sum = 7", "x <= 3", "y <= 3"));
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n between: -3 <= x - z <= 2\nBounds\n x >= 4\n"
                        " z = 1\nEnd\n"),
              UnorderedElementsAre("between <= 2", "x >= 4", "z = 1"));
}

TEST_F(Explained, ByIntegers) {
  EXPECT_THAT(explained("Minimize\n c: x + w\nSubject To\n odd: 2 x + 2 y = 5\n w: w >= 1\nBounds\n"
                        " x <= 9\n y <= 9\nGenerals\n x\n y\nEnd\n"),
              ElementsAre("odd = 5"));
  EXPECT_TRUE(conflict_.byIntegers);
  EXPECT_EQ(conflict_.condition, "columns that have to be integers");
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n low: x >= 5\nBounds\n x <= 3\nGenerals\n x\n"
                        "End\n"),
              UnorderedElementsAre("low >= 5", "x <= 3"));
  EXPECT_FALSE(conflict_.byIntegers);
}

TEST_F(Explained, BySemiContinuousColumnsAndSets) {
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n low: x >= 1\n high: x <= 2\nBounds\n"
                        " 3 <= x <= 5\nSemi-Continuous\n x\nEnd\n"),
              UnorderedElementsAre("low >= 1", "high <= 2", "x >= 3"));
  EXPECT_TRUE(conflict_.byIntegers);
  EXPECT_EQ(conflict_.condition, "semi-continuous columns");
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n a: x >= 1\n b: y >= 1\nBounds\n"
                        " x <= 5\n y <= 5\n z <= 5\nGenerals\n z\nSOS\n s: S1:: x:1 y:2\nEnd\n"),
              UnorderedElementsAre("a >= 1", "b >= 1"));
  EXPECT_EQ(conflict_.condition, "columns that have to be integers and special ordered sets");
}

TEST_F(Explained, ByDataInTheModel) {
  EXPECT_THAT(explained("Minimize\n c: x\nSubject To\n need: x - [ 2 rate_var * y ] >= 0\n"
                        " least: y >= 4\nBounds\n rate_var = 3\n x <= 20\nEnd\n"),
              UnorderedElementsAre("need >= 0", "least >= 4", "x <= 20"));
}

TEST_F(Explained, NotWhereThereIsASolution) {
  try {
    explained("Minimize\n c: x\nSubject To\n need: x >= 4\nEnd\n");
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_THAT(error.what(),
                HasSubstr("there is a point that satisfies all rows and bounds: nothing is to be "
                          "explained"));
  }
  EXPECT_EQ(ztbModelConflictCount(model_.handle()), 0);
  EXPECT_STREQ(ztbModelConflictText(model_.handle(), 0), "");
  ztb::Model untied;
  EXPECT_THROW((void)untied.explain(), ztb::Error);
  EXPECT_EQ(untied.message(), "the model was not solved yet");
}

// Weights of which no choice adds up to the sides: a search over all.
TEST_F(Explained, NotWhenTheWatchEndsIt) {
  ztb::Model model;
  std::mt19937 random(3);
  for (int j = 0; j < 40; ++j) model.addColumn("x" + std::to_string(j), 0, 1, ztbColumnBinary);
  for (int i = 0; i < 5; ++i) {
    double all = 0;
    std::vector<double> weights;
    for (int j = 0; j < 40; ++j) all += weights.emplace_back(random() % 100);
    const int row = model.addRow("r" + std::to_string(i), ztbRowEqual, std::floor(all / 2));
    for (int j = 0; j < 40; ++j) model.addTerm(row, j, weights[static_cast<std::size_t>(j)]);
  }
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  int calls = 0;
  ztbModelSetWatch(
      model.handle(), [](void* count) { return ++*static_cast<int*>(count) >= 3 ? 1 : 0; }, &calls);
  tie.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveTerminated);
  EXPECT_GE(calls, 3);
  EXPECT_THROW((void)model.explain(100), ztb::Error);
  EXPECT_EQ(model.message(),
            "whether there is a point that satisfies all rows and bounds was not found out within "
            "the limits");
  ztbModelSetWatch(model.handle(), nullptr, nullptr);
  calls = 0;
  model.setOption("TimeLimit", "0.2");
  tie.solve("cbc");
  EXPECT_EQ(model.solveStatus(), ztbSolveTimeLimit);
  EXPECT_EQ(calls, 0);
}

TEST_F(Explained, NotWithoutTime) {
  std::ofstream(folder_.file("m.lp")) << "Minimize\n c: x\nSubject To\n need: x >= 4\nBounds\n"
                                         " x <= 3\nEnd\n";
  model_ = ztb::Model::open(folder_.file("m.lp"));
  ztb::Database database;
  ztb::ModelTie tie(database, model_);
  tie.solve("clp");
  EXPECT_THROW((void)model_.explain(0), ztb::Error);
  EXPECT_EQ(model_.message(),
            "whether there is a point that satisfies all rows and bounds was not found out within "
            "the limits");
}

}  // namespace
