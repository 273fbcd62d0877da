#include <bit>
#include <limits>
#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class ShowTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"}, "Things to eat");
    food.add("Wheat Flour").setText("10 lb.");
    food.add("Whole Wheat").setText("two\nlines");
    food.add("Ham, smoked");
    food.add("a*b");
    database.mergeLabel("");
    food.add("");
    database.addAlias("f", food);
    ztb::Symbol iron = database.addParameter("holds", {food, "*"}, "Per dollar");
    iron.add("Wheat Flour", "iron").setLevel(365);
    iron.add("Wheat Flour", "zinc").setLevel(0.1);
    iron.add("Whole Wheat", "iron").setLevel(-0.0);
    iron.add("Ham, smoked", "iron").setLevel(1e300);
    iron.add("a*b", "iron").setLevel(std::numeric_limits<double>::infinity());
    iron.add("", "zinc").setLevel(std::bit_cast<double>(0x7FF8000000000001ULL));
    ztb::Record record = database.addVariable("buy", 3, {food}).add("Wheat Flour");
    record.setLevel(2);
    record.setMarginal(std::bit_cast<double>(1ULL));
    ztb::Symbol pi = database.addParameter("pi", {});
    pi.add().setLevel(3.25);
    database.addParameter("empty", {"*"});
    database.write(path("a.rxf"));
  }

  std::string show(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"show", "a.rxf"});
    return ztbFine(arguments);
  }
};

TEST_F(ShowTest, AlignsLabelsAndNumbers) {
  EXPECT_EQ(show({"holds"}),
            "parameter holds(food, *): Per dollar\n"
            "\n"
            "food         dim_2                   value\n"
            "-----------  -----  ----------------------\n"
            "Wheat Flour  iron                      365\n"
            "Wheat Flour  zinc                      0.1\n"
            "Whole Wheat  iron                       -0\n"
            "Ham, smoked  iron                    undef\n"
            "a*b          iron                      inf\n"
            "             zinc   nan:0x7ff8000000000001\n"
            "\n"
            "6 records\n");
}

TEST_F(ShowTest, ShowsTextsOfASetWithControlCharsSpelledOut) {
  EXPECT_EQ(show({"food", "--slice", "wh*"}),
            "set food(*): Things to eat\n"
            "\n"
            "food         text\n"
            "-----------  ----------\n"
            "Wheat Flour  10 lb.\n"
            "Whole Wheat  two\\nlines\n"
            "\n"
            "2 records\n");
}

TEST_F(ShowTest, ShowsTheSetOfAnAlias) {
  EXPECT_EQ(show({"F", "--csv", "--head", "1"}), "food,text\nWheat Flour,10 lb.\n");
}

TEST_F(ShowTest, ShowsAllFieldsOfAVariable) {
  EXPECT_EQ(show({"buy", "--csv"}),
            "food,level,marginal,lower,upper,scale\nWheat Flour,2,eps,0,inf,1\n");
}

TEST_F(ShowTest, ShowsChosenFieldsInTheirOrder) {
  EXPECT_EQ(show({"buy", "--csv", "--field", "upper,Level"}),
            "food,upper,level\nWheat Flour,inf,2\n");
}

TEST_F(ShowTest, ShowsAScalar) {
  EXPECT_EQ(show({"pi"}), "parameter pi\n\nvalue\n-----\n 3.25\n\n1 record\n");
  EXPECT_EQ(show({"pi", "--csv"}), "value\n3.25\n");
}

TEST_F(ShowTest, ShowsASymbolWithoutRecords) {
  EXPECT_EQ(show({"empty"}), "parameter empty(*)\n\nlabel  value\n-----  -----\n\n0 records\n");
  EXPECT_EQ(show({"empty", "--csv"}), "label,value\n");
}

TEST_F(ShowTest, ShowsTheLabelsOfTheUniverse) {
  EXPECT_EQ(show({"*", "--slice", "*o*", "--csv"}),
            "label\nWheat Flour\nWhole Wheat\n\"Ham, smoked\"\niron\n");
}

TEST_F(ShowTest, WritesCsvThatQuotesWhatNeedsIt) {
  EXPECT_EQ(show({"holds", "--csv", "--slice", "*,zinc"}),
            "food,dim_2,value\nWheat Flour,zinc,0.1\n\"\",zinc,nan:0x7ff8000000000001\n");
}

TEST_F(ShowTest, TakesAQuotedLabelOfASliceAsItStands) {
  EXPECT_EQ(show({"holds", "--csv", "--slice", "\"Ham, smoked\",*"}),
            "food,dim_2,value\n\"Ham, smoked\",iron,undef\n");
  EXPECT_EQ(show({"holds", "--csv", "--slice", "\"a*b\",iron"}),
            "food,dim_2,value\na*b,iron,inf\n");
  EXPECT_EQ(show({"holds", "--csv", "--slice", "\"\",*"}),
            "food,dim_2,value\n\"\",zinc,nan:0x7ff8000000000001\n");
}

TEST_F(ShowTest, ShowsNothingForAPatternThatMatchesNothing) {
  EXPECT_EQ(show({"holds", "--csv", "--slice", "q*,*"}), "food,dim_2,value\n");
}

TEST_F(ShowTest, StopsAfterHeadRecords) {
  EXPECT_EQ(show({"holds", "--head", "2", "--slice", "*,iron"}),
            "parameter holds(food, *): Per dollar\n"
            "\n"
            "food         dim_2  value\n"
            "-----------  -----  -----\n"
            "Wheat Flour  iron     365\n"
            "Whole Wheat  iron      -0\n"
            "\n"
            "2 records shown, others follow\n");
  EXPECT_EQ(show({"holds", "--head", "0", "--csv"}), "food,dim_2,value\n");
}

TEST_F(ShowTest, PrintsJsonWithSpecialValuesAsWords) {
  const auto json = nlohmann::json::parse(show({"holds", "--json"}));
  EXPECT_EQ(json["name"], "holds");
  EXPECT_EQ(json["domains"], (nlohmann::json{"food", "*"}));
  ASSERT_EQ(json["records"].size(), 6U);
  EXPECT_EQ(json["records"][1]["keys"], (nlohmann::json{"Wheat Flour", "zinc"}));
  EXPECT_EQ(json["records"][1]["value"], 0.1);
  EXPECT_EQ(json["records"][3]["value"], "undef");
  EXPECT_EQ(json["records"][5]["value"], "nan:0x7ff8000000000001");
}

TEST_F(ShowTest, PrintsJsonOfSetsVariablesAndNothing) {
  EXPECT_EQ(nlohmann::json::parse(show({"food", "--json"}))["records"][1]["text"], "two\nlines");
  EXPECT_EQ(nlohmann::json::parse(show({"buy", "--json"}))["records"][0]["marginal"], "eps");
  EXPECT_TRUE(nlohmann::json::parse(show({"empty", "--json"}))["records"].empty());
}

TEST_F(ShowTest, PrintsJsonOfBytesThatAreNoUtf8) {
  ztb::Database database;
  database.addSet("s", {"*"}).add("\xE9t\xE9");
  database.write(path("b.rxf"));
  const auto json = nlohmann::json::parse(ztbFine({"show", "b.rxf", "s", "--json"}));
  EXPECT_EQ(json["records"][0]["keys"][0], "\xEF\xBF\xBDt\xEF\xBF\xBD");
}

TEST_F(ShowTest, RefusesAnUnknownSymbol) {
  expectFails(1, "ztb: a.rxf: Cannot find symbol nosuch\n", {"show", "a.rxf", "nosuch"});
}

TEST_F(ShowTest, RefusesAPlainLabelThatTheFileDoesNotHave) {
  expectFails(1, "ztb: a.rxf: no label 'rye' (position 1 of the slice)\n",
              {"show", "a.rxf", "holds", "--slice", "rye,*"});
}

TEST_F(ShowTest, RefusesASliceOfTheWrongLength) {
  expectFails(2, "ztb: --slice a: has 1 position, holds(food, *) has 2\n",
              {"show", "a.rxf", "holds", "--slice", "a"});
}

TEST_F(ShowTest, RefusesFieldsWhereThereAreNone) {
  expectFails(2,
              "ztb: --field level: pi is a parameter; only variables and equations have fields\n",
              {"show", "a.rxf", "pi", "--field", "level"});
  expectFails(2,
              "ztb: --field levle: 'levle' is no field, expected level, marginal, lower, upper or "
              "scale\n",
              {"show", "a.rxf", "buy", "--field", "levle"});
}

TEST_F(ShowTest, FailsWhenStandardOutputIsFull) {
  const tooltest::Outcome outcome =
      ztb({"show", "a.rxf", "holds"}, "", tooltest::OutputTo::fullDisk);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: standard output: cannot be written: No space left on device\n");
}

}  // namespace
