// How solves end: statuses told apart, refusals with their reasons, limits, terminate, the log;
// through a database and without one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/solver.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <ztb/model.hpp>

#include "tests/solve/transport.h"
#include "tests/support/library_name.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr double kInf = std::numeric_limits<double>::infinity();

// min x + y with x + y >= need, x <= 1.5, of the kind asked for.
ztb::Model small(double need, int kind = ztbColumnContinuous, double lowerOfY = 0,
                 double upperOfY = 10) {
  ztb::Model model;
  model.setObjective("total");
  const int x = model.addColumn("x", 0, 1.5, kind);
  const int y = model.addColumn("y", lowerOfY, upperOfY, kind);
  const int row = model.addRow("need", ztbRowGreaterOrEqual, need);
  for (const int column : {x, y}) model.addTerm(0, column, 1), model.addTerm(row, column, 1);
  return model;
}

// The text of a solve that fails; a model is solved through a database first, then without one, and
// both say the same and find the same.
std::string failure(ztb::Model& model, const char* solver) {
  const auto textOf = [](const auto& solve) -> std::string {
    try {
      solve();
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  };
  const auto found = [&] {
    return std::tuple(model.status(), model.solveStatus(),
                      model.hasSolution() ? std::llround(1e6 * model.objective()) : 0);
  };
  ztb::Database database;
  const std::string text = textOf([&] { ztb::ModelTie(database, model).solve(solver); });
  const auto foundByDatabase = found();
  EXPECT_EQ(textOf([&] { model.solve(solver); }), text);
  EXPECT_EQ(found(), foundByDatabase);
  return text;
}

class Solvers : public testing::TestWithParam<const char*> {};

TEST_P(Solvers, TellStatusesApart) {
  ztb::Model fine = small(2);
  EXPECT_EQ(failure(fine, GetParam()), "");
  EXPECT_EQ(fine.status(), ztbModelOptimal);
  EXPECT_EQ(fine.solveStatus(), ztbSolveNormal);
  EXPECT_NEAR(fine.objective(), 2, 1e-7);

  ztb::Model none = small(200);
  EXPECT_EQ(failure(none, GetParam()), "");
  EXPECT_EQ(none.status(), ztbModelInfeasible);
  EXPECT_FALSE(none.hasSolution());
}

TEST_P(Solvers, CrossedBoundsAreInfeasible) {
  ztb::Model model = small(2, ztbColumnContinuous, 5, 4);
  EXPECT_EQ(failure(model, GetParam()), "");
  EXPECT_EQ(model.status(), ztbModelInfeasible);
}

INSTANTIATE_TEST_SUITE_P(All, Solvers, testing::Values("clp", "cbc", "glpk", "ipopt", "bonmin"),
                         [](const auto& test) { return std::string(test.param); });

class LinearSolvers : public testing::TestWithParam<const char*> {};

TEST_P(LinearSolvers, TellUnboundedModels) {
  ztb::Model model;
  model.setObjective("total", true);
  model.addTerm(0, model.addColumn("x", 0, kInf), 1);
  const int row = model.addRow("least", ztbRowGreaterOrEqual, 1);
  model.addTerm(row, 0, 1);
  EXPECT_EQ(failure(model, GetParam()), "");
  EXPECT_EQ(model.status(), ztbModelUnbounded);
}

TEST_P(LinearSolvers, StopAtTheIterationLimit) {
  ztb::Model model = solvetest::Transport(20, 30).model();
  model.setOption("IterationLimit", "3");
  EXPECT_EQ(failure(model, GetParam()), "");
  EXPECT_EQ(model.solveStatus(), ztbSolveIterationLimit);
  EXPECT_NE(model.status(), ztbModelOptimal);
}

// Costs and shipments are at least 0, so at least that is proved; and nothing beyond the optimum.
TEST_P(LinearSolvers, TellAtALimitWhatTheMarginalsProve) {
  const solvetest::Transport transport(20, 30);
  const double best = transport.solvedAfresh().objective;
  for (const char* iterations : {"1", "5", "10", "20"}) {
    ztb::Model model = transport.model();
    model.setOption("IterationLimit", iterations);
    EXPECT_EQ(failure(model, GetParam()), "");
    ASSERT_EQ(model.solveStatus(), ztbSolveIterationLimit);
    EXPECT_GE(model.bound(), 0);
    EXPECT_LE(model.bound(), best + 1e-6 * best);
  }
}

// With greater demands the dual method begins at a basis whose marginals prove the optimum of
// before, for none of them is negative of a demand.
TEST_P(LinearSolvers, TellAtALimitTheBoundThatALiveSolveBeganWith) {
  solvetest::Transport transport(20, 30);
  ztb::Model model = transport.model();
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve(GetParam());
  ASSERT_EQ(model.status(), ztbModelOptimal);
  const double before = model.objective();
  ztb::Symbol demand = database.addParameter("demand", {"*"});
  for (int j = 0; j < transport.targets; ++j) {
    double& amount = transport.demand[static_cast<std::size_t>(j)];
    amount *= j % 3 == 0 ? 1.4 : 1.1;
    demand.add(solvetest::target(j)).setLevel(amount);
  }
  tie.update(database.symbol("demand_var"), ztb::Action::fix, demand, ztb::Missing::keep);
  model.setOption("IterationLimit", "1");
  tie.solve(GetParam());
  ASSERT_EQ(model.solveStatus(), ztbSolveIterationLimit);
  EXPECT_GE(model.bound(), before * (1 - 1e-6));
  EXPECT_LE(model.bound(), transport.solvedAfresh().objective * (1 + 1e-6));
}

INSTANTIATE_TEST_SUITE_P(All, LinearSolvers, testing::Values("clp", "glpk"),
                         [](const auto& test) { return std::string(test.param); });

TEST(Refusals, ASolverThatDoesNotTakeTheKindOfModel) {
  ztb::Model integers = small(2, ztbColumnInteger);
  EXPECT_EQ(failure(integers, "clp"),
            "solver clp did not solve the model: readyapi failed: solver \"clp\" solves LP; the "
            "model is MIP");
  ztb::Model products = small(2);
  products.addProduct(0, 0, 0, 1);
  EXPECT_EQ(failure(products, "cbc"),
            "solver cbc did not solve the model: solver \"cbc\" solves LP, MIP; the model is QP");
}

TEST(Refusals, ASolverThatTheCatalogueDoesNotHave) {
  ztb::Model model = small(2);
  EXPECT_EQ(failure(model, "nosuch"),
            "Invalid solver name: nosuch: the solvers are clp, cbc, glpk, ipopt and bonmin");
}

class Catalogues : public testing::Test {
 protected:
  void write(const std::string& text) {
    std::ofstream(folder_.file("vltcmpNT.txt")) << text;
    model_.setOption("NameSysDir", folder_.file(""));
  }

  ztbtest::TempFolder folder_;
  ztb::Model model_ = small(2);
};

TEST_F(Catalogues, WithoutASolverForTheKindOfModelIsTold) {
  write("clp LP yes " ZTB_LIBRARY_FOLDER "/" ZTB_LIBRARY_NAME("ztbclp") "\n");
  ztb::Model model;
  model.setOption("NameSysDir", folder_.file(""));
  model.addProduct(0, model.addColumn("x", 0, 9, ztbColumnInteger), 0, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  try {
    tie.solve();
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.what(),
                 "The model has integer columns and products of columns that can move. Invalid "
                 "solver name: bonmin: the only solver is clp");
    EXPECT_EQ(failure(model, "bonmin"), error.what());
  }
}

TEST_F(Catalogues, ASolverWithoutItsLibraryOnlyDropsItsRow) {
  const std::string libraries = ZTB_LIBRARY_FOLDER;
  write("gone LP yes libgone.so\nnosolver LP no " + libraries +
        "/" ZTB_LIBRARY_NAME("ztbcclib64") "\nclp LP yes " + libraries +
        "/" ZTB_LIBRARY_NAME("ztbclp") "\n");
  EXPECT_THAT(failure(model_, "gone"),
              AllOf(StartsWith("Invalid solver name: gone: the solver cannot be opened: "),
                    HasSubstr("libgone.so: cannot open shared object file")));
  EXPECT_THAT(failure(model_, "nosolver"),
              EndsWith(ZTB_LIBRARY_NAME("ztbcclib64") " is no solver library: it has no "
                                                      "ztbSolverLibrary"));
  EXPECT_EQ(failure(model_, "CLP"), "");
  EXPECT_EQ(model_.status(), ztbModelOptimal);
}

TEST_F(Catalogues, ALibraryOfAnotherVersionIsRefusedWithBothNamed) {
  const std::string libraries = ZTB_PLAIN_SOLVERS;
  for (const char* inPlace : {"yes", "no"}) {
    write("older LP " + std::string(inPlace) + " " + libraries +
          "/" ZTB_LIBRARY_NAME("plain_older") "\n");
    EXPECT_EQ(failure(model_, "older"),
              "solver older did not solve the model: " + libraries +
                  "/" ZTB_LIBRARY_NAME("plain_older") " has version 5 of the interface to solvers, expected "
                  "version " +
                  std::to_string(ztbSolverVersion));
  }
}

TEST_F(Catalogues, ARowThatCannotBeReadIsNamedWithItsLine) {
  write("# fine\nclp LP perhaps libztbclp.so\n");
  EXPECT_EQ(failure(model_, "clp"),
            "Could not read configuration file: " + folder_.file("vltcmpNT.txt") +
                ":2: in-place is \"yes\" or \"no\", not \"perhaps\"");
}

TEST(Log, GoesToTheFileThatTheOptionNames) {
  ztbtest::TempFolder folder;
  const std::string file = folder.file("solve.log");
  ztb::Model model = small(2);
  model.setOption("LogFile", file);
  ASSERT_EQ(failure(model, "clp"), "");
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  EXPECT_THAT(text.str(), StartsWith("clp: optimal, normal completion, objective 2, "));
}

TEST(Log, HasNoObjectiveWithoutAPoint) {
  ztbtest::TempFolder folder;
  const std::string file = folder.file("solve.log");
  ztb::Model model = small(200);
  model.setOption("LogFile", file);
  ASSERT_EQ(failure(model, "clp"), "");
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  EXPECT_THAT(text.str(), StartsWith("clp: infeasible, normal completion, "));
  EXPECT_THAT(text.str(), testing::Not(testing::HasSubstr("objective")));
}

}  // namespace
