// Levels and marginals of a parameter are written, by the exported function, to the row that has
// the number of its column; the base value of the number behind the last row is a zero, and further
// on there is none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <ztb/model.hpp>

namespace {

class BaseValue : public testing::TestWithParam<ztb::Action> {
 protected:
  // What an update to base values says where the parameter's column has that number; the objective
  // is the only row.
  static std::string update(int number) {
    ztb::Model model;
    for (int j = 0; j < number; ++j) model.addColumn("x" + std::to_string(j), 0, 1);
    model.addColumn("p_var", 3, 3);
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    const ztb::Symbol none = database.addParameter("p", {});
    int unmatched = 0;
    const int done =
        c__ztbupdatemodelsymbol(database.handle(), none.handle(), static_cast<int>(GetParam()),
                                none.handle(), static_cast<int>(ztb::Missing::base), &unmatched);
    return done != 0 ? "" : database.lastError().str();
  }
};

TEST_P(BaseValue, EndsBehindTheNumberAfterTheLastRow) {
  EXPECT_EQ(update(0), "");
  EXPECT_EQ(update(1), "");
  EXPECT_EQ(update(2),
            "Unexpected exception in ztbUpdateModelSymbol: the model has no base value for number "
            "2");
}

INSTANTIATE_TEST_SUITE_P(Actions, BaseValue,
                         testing::Values(ztb::Action::level, ztb::Action::marginal),
                         [](const auto& test) {
                           return test.param == ztb::Action::level ? "level" : "marginal";
                         });

// The exported function would take the number of the row for that of a column.
TEST(Update, BoundsOfAnEquationAndLevelsOfAParameterAreRefused) {
  ztb::Model model;
  model.addColumn("x", 0, 5);
  model.addColumn("rate_var", 2, 2);
  const int row = model.addRow("need", ztbRowGreaterOrEqual, 1);
  model.addTerm(0, 0, 1);
  model.addTerm(row, 0, 1);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol rate = database.addParameter("rate", {});
  rate.add().setLevel(3);
  const auto refusal = [&](const ztb::Symbol& symbol, ztb::Action action) -> std::string {
    try {
      tie.update(symbol, action, rate, ztb::Missing::keep);
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  };
  for (const ztb::Action action :
       {ztb::Action::fix, ztb::Action::upper, ztb::Action::lower, ztb::Action::bounds}) {
    EXPECT_EQ(refusal(database.symbol("need"), action),
              "need is an equation: level or marginal is expected");
    EXPECT_EQ(refusal(rate, action), "");
  }
  for (const ztb::Action action : {ztb::Action::level, ztb::Action::marginal}) {
    EXPECT_EQ(refusal(rate, action), "rate is a parameter: fix or a bound is expected");
    EXPECT_EQ(refusal(database.symbol("need"), action), "");
  }
}

}  // namespace
