// Fields of whole symbols out of a model: what the records of the symbols have, without them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kInf = std::numeric_limits<double>::infinity();

// min x(b) + 3 x(a) + y, x(b) + x(a) >= 4, x(b) <= 3, 1 <= y + x(a) <= 6: 3 and 1 at 1 and 3, and
// y = 0. A unit of y is worth 1, so one of x(a) costs 2 in the end, and one more of x(b) saves 1.
class FieldTest : public testing::Test {
 protected:
  void SetUp() override {
    model.setObjective("cost");
    model.addTerm(0, model.addColumn("x(b)", 0, 3), 1);
    model.addTerm(0, model.addColumn("x(a)", 0, kInf), 3);
    model.addTerm(0, model.addColumn("y", -kInf, kInf), 1);
    model.addRow("need(1)", ztbRowGreaterOrEqual, 4);
    model.addRow("need(2)", ztbRowLessOrEqual, 6, 5);
    model.addTerm(1, 0, 1);
    model.addTerm(1, 1, 1);
    model.addTerm(2, 1, 1);
    model.addTerm(2, 2, 1);
  }

  std::string refusal(const char* symbol, ztb::Field field = ztb::Field::level) {
    try {
      (void)model.values(symbol, field);
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  }

  ztb::Model model;
};

TEST_F(FieldTest, HaveTheOrderAndTheValuesOfTheRecords) {
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("clp");
  EXPECT_THAT(model.values("x"), ElementsAre(3, 1)) << "b comes first in the model";
  EXPECT_THAT(model.values("X", ztb::Field::marginal), ElementsAre(-1, 0));
  EXPECT_THAT(model.values("x", ztb::Field::upper), ElementsAre(3, kInf));
  EXPECT_THAT(model.values("y", ztb::Field::lower), ElementsAre(-kInf));
  EXPECT_THAT(model.values("y", ztb::Field::scale), ElementsAre(1));
  EXPECT_THAT(model.values("need"), ElementsAre(4, 1));
  EXPECT_THAT(model.values("cost"), ElementsAre(6));
  for (const char* symbol : {"x", "y", "need", "cost"}) {
    for (int field = ZTB_LEVEL; field <= ZTB_SCALE; ++field) {
      std::vector<double> expected;
      for (ztb::Record& record : database.symbol(symbol).records()) {
        const std::array<double, 5> values{record.level(), record.marginal(), record.lower(),
                                           record.upper(), record.scale()};
        expected.push_back(values.at(static_cast<std::size_t>(field)));
      }
      EXPECT_EQ(model.values(symbol, static_cast<ztb::Field>(field)), expected)
          << symbol << ", field " << field;
    }
  }
}

TEST_F(FieldTest, AreThoseOfTheLastSolve) {
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("clp");
  ztb::Symbol most = database.addParameter("most", {"*"});
  most.merge("b").setLevel(1);
  tie.update(database.symbol("x"), ztb::Action::upper, most, ztb::Missing::keep);
  tie.solve("clp");
  std::array<double, 2> cells{};
  model.copyValues("x", cells);
  EXPECT_THAT(cells, ElementsAre(1, 3));
}

TEST_F(FieldTest, TellWhatThereIsNot) {
  EXPECT_THAT(refusal("x"), HasSubstr("the model is tied to no database yet"));
  ztb::Database database;
  const ztb::ModelTie tie(database, model);
  EXPECT_THAT(refusal("z"), HasSubstr("the model has no variable or equation z"));
  EXPECT_THAT(refusal("x", static_cast<ztb::Field>(5)),
              HasSubstr("there is no field 5, expected 0 to 4"));
  std::array<double, 3> cells{};
  try {
    model.copyValues("x", cells);
    ADD_FAILURE() << "three numbers for two records";
  } catch (const ztb::Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("x has 2 records, and there are 3 numbers for them"));
  }
}

TEST_F(FieldTest, AreCopiedAsFarAsThereIsRoom) {
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("clp");
  std::array<double, 2> cells{7, 7};
  EXPECT_EQ(ztbModelGetField(model.handle(), "x", ZTB_LEVEL, cells.data(), 1), 2);
  EXPECT_THAT(cells, ElementsAre(3, 7));
  EXPECT_EQ(ztbModelGetField(model.handle(), "x", ZTB_LEVEL, nullptr, 9), 2);
  EXPECT_EQ(ztbModelGetField(model.handle(), nullptr, ZTB_LEVEL, cells.data(), 2), -1);
  EXPECT_EQ(ztbModelGetField(nullptr, "x", ZTB_LEVEL, cells.data(), 2), -1);
}

}  // namespace
