// The library of a solver is opened when the solver is first asked for. In a program of its own:
// what another test opened would stay.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <ztb/model.hpp>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Which solver libraries of the catalogue are mapped into this process.
std::set<std::string> solversOpen() {
  std::set<std::string> open;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    for (const char* solver : {"clp", "cbc", "glpk", "ipopt", "bonmin"}) {
      if (line.ends_with("/libztb" + std::string(solver) + ".so")) open.insert(solver);
    }
  }
  return open;
}

TEST(SolverLoading, OpensASolverWhenItIsFirstAskedFor) {
  ztb::Model model;
  model.setObjective("total");
  const int buy = model.addColumn("buy", 0, 10);
  const int price = model.addColumn("price_var", 3, 3);
  const int need = model.addRow("need", ztbRowGreaterOrEqual, 2);
  model.addProduct(0, price, buy, 1);
  model.addTerm(need, buy, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol data = database.addParameter("price", {});
  data.add().setLevel(4);
  tie.update(data, ztb::Action::fix, data, ztb::Missing::base);
  EXPECT_THAT(solversOpen(), IsEmpty());

  tie.solve("clp");
  EXPECT_NEAR(model.objective(), 8, 1e-9);
  EXPECT_THAT(solversOpen(), ElementsAre("clp"));

  EXPECT_THROW(tie.solve("nosuch"), ztb::Error);
  EXPECT_THAT(solversOpen(), ElementsAre("clp"));

  tie.solve("glpk");
  EXPECT_NEAR(model.objective(), 8, 1e-9);
  EXPECT_THAT(solversOpen(), ElementsAre("clp", "glpk"));
}

}  // namespace
