// Problems with published optimal values, opened from their files and solved through the database.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <ztb/model.hpp>

namespace {

struct Problem {
  const char* name;
  double optimum;  // published with the collection
};

class Netlib : public testing::TestWithParam<std::tuple<Problem, const char*>> {
 protected:
  const Problem& problem() const { return std::get<0>(GetParam()); }
  const char* solver() const { return std::get<1>(GetParam()); }
};

TEST_P(Netlib, ReachesThePublishedOptimum) {
  ztb::Model model = ztb::Model::open(std::string(ZTB_NETLIB) + "/" + problem().name + ".mps");
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve(solver());
  ASSERT_EQ(model.status(), ztbModelOptimal);
  EXPECT_NEAR(model.objective(), problem().optimum, 1e-8 * std::abs(problem().optimum));

  // The dual objective, from the marginals that stand in the symbols, is the same number: the
  // objective of each problem has no constant.
  double dual = 0;
  double absolute = 1;
  for (int n = 0; n < database.symbolCount(); ++n) {
    const ztb::Symbol symbol = database.symbolAt(n);
    for (ztb::Record& record : symbol.records()) {
      if (record.marginal() == 0) continue;
      const double part = record.marginal() * record.level();
      dual += part;
      absolute += std::abs(part);
      const double room = 1e-6 * std::max(1.0, std::abs(record.level()));
      EXPECT_TRUE(record.level() <= record.lower() + room ||
                  record.level() >= record.upper() - room)
          << symbol.name().str() << " has a marginal between its bounds";
    }
  }
  EXPECT_NEAR(dual, problem().optimum, 1e-9 * absolute);
}

INSTANTIATE_TEST_SUITE_P(Published, Netlib,
                         testing::Combine(testing::Values(Problem{"adlittle", 225494.96316},
                                                          Problem{"afiro", -464.75314286},
                                                          Problem{"israel", -896644.82186},
                                                          Problem{"scrs8", 904.29695380},
                                                          Problem{"shell", 1208825346.0},
                                                          Problem{"stair", -251.26695119}),
                                          testing::Values("clp", "glpk")),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param).name) + "_" +
                                  std::get<1>(test.param);
                         });

}  // namespace
