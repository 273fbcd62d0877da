#include "formats/tables/symbol_spec.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/text/failure.h"

namespace {

using formats::parseSymbolSpec;
using formats::SpecKind;
using formats::SymbolSpec;

TEST(SymbolSpec, TakesANameAloneForItsColumn) {
  const SymbolSpec spec = parseSymbolSpec(SpecKind::set, "food");
  EXPECT_EQ(spec.name, "food");
  ASSERT_EQ(spec.keys.size(), 1U);
  EXPECT_EQ(spec.keys[0].column, "food");
  EXPECT_EQ(spec.keys[0].domain, std::nullopt);
  EXPECT_EQ(spec.contentColumn, "");
  EXPECT_EQ(spec.text, "");
}

TEST(SymbolSpec, TakesKeysTextColumnAndText) {
  const SymbolSpec spec = parseSymbolSpec(
      SpecKind::set, " arc ( from in node , to in node ):note \"Arcs, \"\"all\"\"\"");
  EXPECT_EQ(spec.name, "arc");
  ASSERT_EQ(spec.keys.size(), 2U);
  EXPECT_EQ(spec.keys[0].column, "from");
  EXPECT_EQ(spec.keys[0].domain, "node");
  EXPECT_EQ(spec.keys[1].column, "to");
  EXPECT_EQ(spec.contentColumn, "note");
  EXPECT_EQ(spec.text, "Arcs, \"all\"");
}

TEST(SymbolSpec, TakesAParameterWithItsValueColumn) {
  const SymbolSpec spec =
      parseSymbolSpec(SpecKind::parameter, "price(food) = price in cents 'Cents'");
  EXPECT_EQ(spec.name, "price");
  EXPECT_EQ(spec.contentColumn, "price in cents");
  EXPECT_EQ(spec.text, "Cents");
}

TEST(SymbolSpec, TakesTheNameForTheValueColumn) {
  EXPECT_EQ(parseSymbolSpec(SpecKind::parameter, "price(food)").contentColumn, "price");
}

TEST(SymbolSpec, TakesAScalar) {
  const SymbolSpec spec = parseSymbolSpec(SpecKind::parameter, "pi() = value");
  EXPECT_TRUE(spec.keys.empty());
  EXPECT_EQ(spec.contentColumn, "value");
}

TEST(SymbolSpec, TakesAVariableWithItsFields) {
  const SymbolSpec spec = parseSymbolSpec(
      SpecKind::variable, "Positive buy(food) = level: amount, UPPER: 'most, ever' \"Bought\"");
  EXPECT_EQ(spec.name, "buy");
  EXPECT_EQ(spec.subtype, 3);
  ASSERT_EQ(spec.fields.size(), 2U);
  EXPECT_EQ(spec.fields[0].field, 0U);
  EXPECT_EQ(spec.fields[0].column, "amount");
  EXPECT_EQ(spec.fields[1].field, 3U);
  EXPECT_EQ(spec.fields[1].column, "most, ever");
  EXPECT_EQ(spec.text, "Bought");
  const SymbolSpec plain = parseSymbolSpec(SpecKind::variable, "x() = amount");
  EXPECT_EQ(plain.subtype, 5);
  ASSERT_EQ(plain.fields.size(), 1U);
  EXPECT_EQ(plain.fields[0].field, 0U);
  EXPECT_EQ(plain.fields[0].column, "amount");
  EXPECT_TRUE(parseSymbolSpec(SpecKind::variable, "x(i)").fields.empty());
}

TEST(SymbolSpec, TakesQuotedColumns) {
  const SymbolSpec spec =
      parseSymbolSpec(SpecKind::parameter, "p(\"unit, (kg)\" in *, 'it''s') = \"a = b\" \"t\"");
  ASSERT_EQ(spec.keys.size(), 2U);
  EXPECT_EQ(spec.keys[0].column, "unit, (kg)");
  EXPECT_EQ(spec.keys[0].domain, "*");
  EXPECT_EQ(spec.keys[1].column, "it's");
  EXPECT_EQ(spec.contentColumn, "a = b");
  EXPECT_EQ(spec.text, "t");
}

TEST(SymbolSpec, TakesATextWithoutAColumn) {
  EXPECT_EQ(parseSymbolSpec(SpecKind::set, "food 'All foods'").text, "All foods");
}

void expectRefused(SpecKind kind, const std::string& argument, const std::string& text) {
  try {
    static_cast<void>(parseSymbolSpec(kind, argument));
    FAIL() << argument;
  } catch (const tool::UsageError& error) {
    EXPECT_EQ(error.what(), text);
  }
}

TEST(SymbolSpec, SaysWhatIsExpectedAndWhere) {
  expectRefused(SpecKind::set, "", "--set : the name of a symbol is expected at char 1");
  expectRefused(SpecKind::set, "x(y", "--set x(y: ',' or ')' is expected at char 4");
  expectRefused(SpecKind::set, "x(y,)",
                "--set x(y,): the name of a key column is expected at char 5");
  expectRefused(SpecKind::distinctSet, "x(y) = z",
                "--distinct-set x(y) = z: ':' and the text column are expected at char 6");
  expectRefused(SpecKind::variable, "whole x(i)",
                "--variable whole x(i): free, positive, negative, binary or integer is expected "
                "before the name at char 8");
  expectRefused(SpecKind::variable, "x(i) = level: a, lvl: b",
                "--variable x(i) = level: a, lvl: b: 'lvl' is no field, expected level, marginal, "
                "lower, upper or scale at char 21");
  expectRefused(SpecKind::variable, "x(i) = level: a, level: b",
                "--variable x(i) = level: a, level: b: level is given twice at char 23");
  expectRefused(
      SpecKind::variable, "x(i) = level: a, upper",
      "--variable x(i) = level: a, upper: ':' and the column of the field are expected at "
      "char 23");
  expectRefused(SpecKind::parameter, "x",
                "--parameter x: '(' and the key columns are expected; a scalar is written with () "
                "at char 2");
  expectRefused(SpecKind::parameter, "x(y) : z",
                "--parameter x(y) : z: '=' and the value column are expected at char 6");
  expectRefused(SpecKind::parameter,
                "x(y) =", "--parameter x(y) =: the name of a column is expected at char 7");
  expectRefused(SpecKind::parameter, "x(y) = z 'abc",
                "--parameter x(y) = z 'abc: a quote is not closed at char 14");
  expectRefused(SpecKind::set, "x(\"y\" z)",
                "--set x(\"y\" z): ',', ')' or \"in SET\" is expected at char 8");
}

}  // namespace
