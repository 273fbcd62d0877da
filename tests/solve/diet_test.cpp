// The cheapest diet of 1939 by every solver: its published cost and foods.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace {

class Diet : public testing::TestWithParam<const char*> {
 protected:
  // The foods that more than a thousandth of a cent a day is spent on.
  std::vector<std::string> bought() {
    std::vector<std::string> foods;
    for (ztb::Record& record : database_.symbol("buy").records()) {
      if (record.level() > 1e-5) foods.push_back(record.key(0).str());
    }
    return foods;
  }

  ztb::Model model_ = ztb::Model::open(ZTB_DIET_FOLDER "/diet.lp");
  ztb::Database database_;
  ztb::ModelTie tie_{database_, model_};
};

TEST_P(Diet, HasItsPublishedCostAndFoods) {
  tie_.solve(GetParam());
  ASSERT_TRUE(model_.hasSolution());
  EXPECT_NEAR(model_.objective(), 39.66, 0.005);
  EXPECT_NEAR(model_.objective() / 365, 0.10866, 0.000005);
  EXPECT_THAT(bought(), testing::UnorderedElementsAre("Wheat Flour (Enriched)", "Liver (Beef)",
                                                      "Cabbage", "Spinach", "Navy Beans, Dried"));
}

TEST_P(Diet, CostsTwiceAsMuchForTwiceAsManyPeopleOrWhenAllPricesDouble) {
  tie_.solve(GetParam());
  const double once = model_.objective();
  for (const char* name : {"price", "allowance"}) {
    ztb::Symbol data = database_.addParameter(name, {"*"});
    for (ztb::Record& record : database_.symbol(std::string(name) + "_var").records()) {
      data.merge(record.key(0).str()).setLevel(2 * record.level());
    }
    EXPECT_EQ(tie_.update(data, ztb::Action::fix, data, ztb::Missing::base), 0);
    const double before = model_.objective();
    tie_.solve(GetParam());
    EXPECT_NEAR(model_.objective(), 2 * before, 1e-5 * before) << name;
  }
  EXPECT_NEAR(model_.objective(), 4 * once, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Solvers, Diet, testing::Values("clp", "cbc", "glpk", "ipopt", "bonmin"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
