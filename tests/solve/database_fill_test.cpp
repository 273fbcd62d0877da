// The sets and parameters of a MathProg model, filled from a database.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <ztb/model.hpp>
#include <ztb/model_fills.hpp>

#include "tests/support/temp_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// At least what is needed of each item, for each pair that there is, at its cost.
constexpr const char* kModel =
    R"(set Item; set Pair within {Item, Item}; param need{Pair}; param cost;
var x{(i, j) in Pair} >= need[i, j];
minimize total: cost * sum{(i, j) in Pair} x[i, j];
end;
)";

class DatabaseFillTest : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(folder.file("m.mod")) << kModel;
    items.add("a");
    items.add("b");
    pairs.add("a", "b");
    pairs.add("b", "a");
    need.add("a", "b").setLevel(2);
    need.add("b", "a").setLevel(3);
    cost.add().setLevel(10);
  }

  std::string refusal() {
    ztb::DatabaseFills fills(database);
    try {
      (void)ztb::Model::open(folder.file("m.mod"), "", fills.all());
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  }

  ztbtest::TempFolder folder;
  ztb::Database database;
  ztb::Symbol items = database.addSet("ITEM", {"*"});
  ztb::Symbol pairs = database.addSet("pair", {"*", "*"});
  ztb::Symbol need = database.addParameter("need", {"*", "*"});
  ztb::Symbol cost = database.addParameter("Cost", {});
};

TEST_F(DatabaseFillTest, GivesTheModelItsRecords) {
  database.addParameter("rent", {}).add().setLevel(1);
  database.addSet("more", {"*"}).add("a");
  ztb::DatabaseFills fills(database);
  ztb::Model model = ztb::Model::open(folder.file("m.mod"), "", fills.all());
  ztb::Database solved;
  ztb::ModelTie(solved, model).solve("clp");
  EXPECT_DOUBLE_EQ(model.objective(), 50);
  EXPECT_TRUE(fills.took("Need"));
  EXPECT_TRUE(fills.took("item"));
  EXPECT_FALSE(fills.took("more"));
  EXPECT_THAT(fills.parametersLeft(), ElementsAre("rent"));
}

TEST_F(DatabaseFillTest, TakesASpecialValueForNoNumber) {
  const ztb::SpecialValues special = database.specialValues();
  cost.find()->setLevel(special[ZTB_EPSILON]);
  EXPECT_EQ(refusal(), "") << "a zero";
  for (const int code : {ZTB_UNDEFINED, ZTB_NOT_AVAILABLE, ZTB_PLUS_INFINITY, ZTB_MINUS_INFINITY}) {
    cost.find()->setLevel(special[static_cast<std::size_t>(code)]);
    EXPECT_THAT(refusal(), HasSubstr("no finite number")) << code;
  }
}

}  // namespace
