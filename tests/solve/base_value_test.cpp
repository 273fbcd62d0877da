// Levels and marginals of a parameter are written to the row that has the number of its column; the
// base value of the number behind the last row is a zero, and further on there is none.
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
    try {
      tie.update(none, GetParam(), none, ztb::Missing::base);
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
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

}  // namespace
