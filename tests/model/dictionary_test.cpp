// Names of rows and columns as elements of symbols over labels.
#include "providers/model/dictionary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "providers/model/element_name.h"

namespace {

using lomu::Dictionary;
using lomu::ElementName;
using lomu::parseElementName;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct NameCase {
  std::string name;
  std::string symbol;
  std::vector<std::string> labels;
};

class ElementNames : public testing::TestWithParam<NameCase> {};

TEST_P(ElementNames, AreTakenApart) {
  const ElementName parsed = parseElementName(GetParam().name);
  EXPECT_EQ(parsed.symbol, GetParam().symbol);
  EXPECT_EQ(parsed.labels, GetParam().labels);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ElementNames,
    testing::Values(NameCase{"x[seville,oslo]", "x", {"seville", "oslo"}},
                    NameCase{"x(seville,oslo)", "x", {"seville", "oslo"}},
                    NameCase{"x['a b',7]", "x", {"a b", "7"}}, NameCase{"x[\"a,b\"]", "x", {"a,b"}},
                    NameCase{"x['it''s']", "x", {"it's"}},
                    NameCase{"x[ a , b c ]", "x", {"a", "b c"}},
                    NameCase{"buy(Wheat Flour (Enriched))", "buy", {"Wheat Flour (Enriched)"}},
                    NameCase{"x[f(1,2),3]", "x", {"f(1,2)", "3"}}, NameCase{"plain", "plain", {}},
                    NameCase{"....10", "....10", {}}));

INSTANTIATE_TEST_SUITE_P(
    PlainAfterAll, ElementNames,
    testing::Values(NameCase{"", "", {}}, NameCase{"[a]", "[a]", {}}, NameCase{"x[]", "x[]", {}},
                    NameCase{"x[a,]", "x[a,]", {}}, NameCase{"x['']", "x['']", {}},
                    NameCase{"x[a", "x[a", {}}, NameCase{"x[a)", "x[a)", {}},
                    NameCase{"x['a]", "x['a]", {}}, NameCase{"x['a'b]", "x['a'b]", {}},
                    NameCase{"x[a]]", "x[a]]", {}}, NameCase{"x[a](b)", "x[a](b)", {}}));

TEST(ElementName, WithMoreThanTwentyLabelsIsPlain) {
  std::string twenty = "x[1";
  for (int i = 2; i <= 20; ++i) twenty += "," + std::to_string(i);
  EXPECT_EQ(parseElementName(twenty + "]").labels.size(), 20U);
  EXPECT_THAT(parseElementName(twenty + ",21]").labels, IsEmpty());
}

lomu::ModelData modelOf(const std::vector<std::string>& columns,
                        const std::vector<std::string>& rows) {
  lomu::ModelData data;
  data.rows.front().name = "cost";
  for (const std::string& name : columns) data.columns.push_back({name});
  for (const std::string& name : rows) data.rows.push_back({name, lomu::RowType::equal, 0, 0});
  return data;
}

std::vector<std::string> symbolNames(const Dictionary& dictionary) {
  std::vector<std::string> names;
  for (const auto& symbol : dictionary.symbols()) names.push_back(symbol.name);
  return names;
}

TEST(Dictionary, NumbersLabelsAndSymbolsByFirstAppearanceColumnsFirst) {
  const Dictionary dictionary(modelOf({"x[b,a]", "y", "x[a,c]"}, {"limit[d]", "limit[a]"}));
  EXPECT_THAT(dictionary.labels(), ElementsAre("b", "a", "c", "d"));
  EXPECT_THAT(symbolNames(dictionary), ElementsAre("x", "y", "cost", "limit"));
  EXPECT_EQ(dictionary.find("LIMIT"), 4);
  EXPECT_EQ(dictionary.find("nothing"), 0);
  EXPECT_THAT(dictionary.notes(), IsEmpty());
}

TEST(Dictionary, TheObjectiveIsAnEquationOfItsOwn) {
  const Dictionary dictionary(modelOf({"x"}, {"limit"}));
  const auto& cost = dictionary.symbols()[1];
  EXPECT_EQ(cost.name, "cost");
  EXPECT_EQ(cost.type, lomu::SymbolType::equation);
  EXPECT_EQ(cost.dimension, 0);
  EXPECT_THAT(cost.elements, ElementsAre(0));
}

TEST(Dictionary, WalksElementsInAscendingOrderOfTheirKeys) {
  // Labels: b 1, a 2. Columns by key: x[b,b] 1, x[b,a] 2, x[a,b] 0.
  const Dictionary dictionary(modelOf({"x[a,b]", "x[b,b]", "x[b,a]"}, {}));
  ASSERT_THAT(dictionary.labels(), ElementsAre("a", "b"));
  EXPECT_THAT(dictionary.symbols()[0].elements, ElementsAre(0, 2, 1));
  const Dictionary::Place place = dictionary.columnPlace(2);
  EXPECT_EQ(place.symbol, 1);
  EXPECT_EQ(place.keys[0], 2);
  EXPECT_EQ(place.keys[1], 1);
}

TEST(Dictionary, NumbersOutOfRangeHaveNoPlace) {
  const Dictionary dictionary(modelOf({"x"}, {}));
  EXPECT_EQ(dictionary.columnPlace(1).symbol, 0);
  EXPECT_EQ(dictionary.columnPlace(-1).symbol, 0);
  EXPECT_EQ(dictionary.rowPlace(1).symbol, 0);
}

TEST(Dictionary, KeepsNamesApartThatFoldToTheSame) {
  const Dictionary dictionary(modelOf({"Price", "price", "PRICE"}, {"price"}));
  EXPECT_THAT(symbolNames(dictionary),
              ElementsAre("Price", "price_2", "PRICE_3", "cost", "price_4"));
  ASSERT_EQ(dictionary.notes().size(), 3U);
  EXPECT_EQ(dictionary.notes()[0], "variable \"price\" of dimension 0 is called \"price_2\"");
  EXPECT_EQ(dictionary.notes()[2], "equation \"price\" of dimension 0 is called \"price_4\"");
  EXPECT_EQ(dictionary.symbols()[1].text, "price");
}

TEST(Dictionary, KeepsTheEndingOfParametersWhenItNumbersThem) {
  const Dictionary dictionary(modelOf({"price_var", "Price_var"}, {}));
  EXPECT_THAT(symbolNames(dictionary), ElementsAre("price_var", "Price_2_var", "cost"));
}

TEST(Dictionary, NumbersASymbolThatChangesItsDimension) {
  const Dictionary dictionary(modelOf({"x[a]", "x[a,b]", "x", "x[b]"}, {}));
  EXPECT_THAT(symbolNames(dictionary), ElementsAre("x", "x_2", "x_3", "cost"));
  EXPECT_THAT(dictionary.symbols()[0].elements, ElementsAre(0, 3));
  EXPECT_EQ(dictionary.symbols()[1].dimension, 2);
  EXPECT_EQ(dictionary.symbols()[2].dimension, 0);
}

TEST(Dictionary, DoesNotMergeTwoSpellingsOfOneElement) {
  const Dictionary dictionary(modelOf({"x[a]", "x(a)", "x['a']", "x(b)"}, {}));
  EXPECT_THAT(symbolNames(dictionary), ElementsAre("x", "x_2", "x_3", "cost"));
  EXPECT_THAT(dictionary.symbols()[0].elements, ElementsAre(0, 3));
  EXPECT_EQ(dictionary.notes().size(), 2U);
}

TEST(Dictionary, KeepsLabelsApartThatFoldToTheSame) {
  const Dictionary dictionary(modelOf({"x[a]", "x[A]", "x[a_2]"}, {}));
  EXPECT_THAT(dictionary.labels(), ElementsAre("a", "A_2", "a_2_2"));
  EXPECT_THAT(dictionary.notes(),
              ElementsAre("label \"A\" is called \"A_2\"", "label \"a_2\" is called \"a_2_2\""));
}

TEST(Dictionary, CutsWhatIsTooLongAndNumbersIt) {
  const std::string longLabel(70, 'l');
  const std::string longName(70, 'n');
  const Dictionary dictionary(
      modelOf({longName + "[" + longLabel + "]", longName + "[" + longLabel + "x]"}, {}));
  EXPECT_THAT(dictionary.labels(),
              ElementsAre(std::string(61, 'l') + "_2", std::string(61, 'l') + "_3"));
  EXPECT_EQ(dictionary.symbols()[0].name, std::string(61, 'n') + "_2");
  EXPECT_THAT(dictionary.notes()[0], HasSubstr("label \"" + longLabel + "\" is called"));
}

TEST(Dictionary, MakesNamesAndLabelsAcceptable) {
  const Dictionary dictionary(modelOf({"....10", "x.1[a\tb,'say \"x\"']", "2nd"}, {}));
  EXPECT_THAT(symbolNames(dictionary), ElementsAre("n____10", "x_1", "n2nd", "cost"));
  EXPECT_THAT(dictionary.labels(), ElementsAre("a_b", "say \"x\""));
  EXPECT_EQ(dictionary.symbols()[0].text, "....10");
  // A database takes no label with both kinds of quote.
  EXPECT_THAT(Dictionary(modelOf({"x['it''s 12\" long']"}, {})).labels(),
              ElementsAre("it's 12' long"));
}

TEST(Dictionary, TellsKindsOfBoundsAndTypesOfRows) {
  lomu::ModelData data;
  using lomu::ColumnKind;
  const double inf = lomu::kInfinity;
  data.columns = {{"bin", ColumnKind::binary, 0, 1},
                  {"whole", ColumnKind::integer, 0, 9},
                  {"pos", ColumnKind::continuous, 0, inf},
                  {"neg", ColumnKind::continuous, -inf, 0},
                  {"any", ColumnKind::continuous, -1, 1},
                  {"mixed[a]", ColumnKind::continuous, 0, inf},
                  {"mixed[b]", ColumnKind::continuous, -inf, 0}};
  data.rows.push_back({"ge", lomu::RowType::greaterOrEqual, 1, 0});
  std::vector<int> kinds;
  const Dictionary dictionary(data);
  for (const auto& symbol : dictionary.symbols()) kinds.push_back(symbol.userInfo);
  EXPECT_THAT(kinds, ElementsAre(1, 2, 3, 4, 5, 5, 3, 1));
}

}  // namespace
