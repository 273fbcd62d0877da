#include "tools/text/table_printer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tools/text/display_width.h"

namespace {

using tool::TablePrinter;

std::string tableOf(TablePrinter& table, const std::vector<std::array<std::string_view, 2>>& rows) {
  const ztbtest::TempFolder folder;
  std::FILE* out = std::fopen(folder.file("table").c_str(), "w+b");
  for (const auto& row : rows) {
    table.measure(row);
  }
  table.printHeader(out);
  for (const auto& row : rows) {
    table.printRow(out, row);
  }
  std::string text(static_cast<std::size_t>(std::ftell(out)), '\0');
  std::rewind(out);
  EXPECT_EQ(std::fread(text.data(), 1, text.size(), out), text.size());
  std::fclose(out);
  return text;
}

TEST(TablePrinter, AlignsColumns) {
  TablePrinter table;
  table.addColumn("food", TablePrinter::Align::left);
  table.addColumn("value", TablePrinter::Align::right);
  EXPECT_EQ(tableOf(table, {{"Milk", "11"}, {"Corn Flakes", "7.1"}}),
            "food         value\n"
            "-----------  -----\n"
            "Milk            11\n"
            "Corn Flakes    7.1\n");
}

// Widths of the wcwidth table of Unicode's East Asian Width: two for CJK and emoji, none for what
// combines.
TEST(TablePrinter, KnowsWideAndCombiningCharacters) {
  TablePrinter table;
  table.addColumn("a", TablePrinter::Align::left);
  table.addColumn("b", TablePrinter::Align::left);
  EXPECT_EQ(tableOf(table, {{"\u5C0F\u9EA6", "x"}, {"e\u0301te\u0301", "y"}, {"\U0001F33E", "z"}}),
            "a     b\n"
            "----  -\n"
            "\u5C0F\u9EA6  x\n"
            "e\u0301te\u0301   y\n"
            "\U0001F33E    z\n");
}

TEST(TablePrinter, CutsTextToTheWidthAndNeverNumbers) {
  TablePrinter table({.width = 20, .colour = false});
  table.addColumn("food", TablePrinter::Align::left);
  table.addColumn("value", TablePrinter::Align::right);
  EXPECT_EQ(tableOf(table, {{"Evaporated Milk, can", "12345678"}, {"Tofu", "1"}}),
            "food           value\n"
            "----------  --------\n"
            "Evaporate\u2026  12345678\n"
            "Tofu               1\n");
  TablePrinter narrow({.width = 9, .colour = false});
  narrow.addColumn("food", TablePrinter::Align::left);
  narrow.addColumn("value", TablePrinter::Align::right);
  EXPECT_EQ(tableOf(narrow, {{"Evaporated Milk, can", "12345678"}}),
            "food         value\n"
            "--------  --------\n"
            "Evapora\u2026  12345678\n");
}

TEST(TablePrinter, CutsBetweenCharacters) {
  EXPECT_EQ(tool::cutToWidth("\u5C0F\u9EA6\u7C89", 6), "\u5C0F\u9EA6\u7C89");
  EXPECT_EQ(tool::cutToWidth("\u5C0F\u9EA6\u7C89", 5), "\u5C0F\u9EA6\u2026");
  EXPECT_EQ(tool::cutToWidth("\u5C0F\u9EA6\u7C89", 4), "\u5C0F\u2026");
  EXPECT_EQ(tool::cutToWidth("e\u0301te\u0301", 2), "e\u0301\u2026");
  EXPECT_EQ(tool::cutToWidth("ab", 1), "\u2026");
  EXPECT_EQ(tool::cutToWidth("ab", 0), "");
}

TEST(TablePrinter, PartsColumnsThatHaveNoRoom) {
  TablePrinter table({.width = 12, .colour = false});
  table.addColumn("row", TablePrinter::Align::left);
  for (const char* header : {"a", "b", "c"}) {
    table.addColumn(header, TablePrinter::Align::right);
  }
  table.measure(std::vector<std::string_view>{"x", "10", "200", "3"});
  const std::vector<TablePrinter::Part> parts = table.parts(1);
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts[0].begin, 1U);
  EXPECT_EQ(parts[0].end, 3U);
  EXPECT_EQ(parts[1].begin, 3U);
  EXPECT_EQ(parts[1].end, 4U);
}

TEST(TablePrinter, LetsHeadersStandOutWhereThereAreColours) {
  TablePrinter table({.width = 0, .colour = true});
  table.addColumn("a", TablePrinter::Align::left);
  table.addColumn("b", TablePrinter::Align::left);
  EXPECT_EQ(tableOf(table, {{"x", "y"}}), "\x1b[1ma  b\x1b[0m\n-  -\nx  y\n");
}

TEST(TablePrinter, CountsAUtf8SequenceAsOnePlace) {
  TablePrinter table;
  table.addColumn("a", TablePrinter::Align::left);
  table.addColumn("b", TablePrinter::Align::left);
  EXPECT_EQ(tableOf(table, {{"\xC3\xA9t\xC3\xA9", "x"}, {"abcd", "y"}}),
            "a     b\n"
            "----  -\n"
            "\xC3\xA9t\xC3\xA9   x\n"
            "abcd  y\n");
}

TEST(TablePrinter, SpellsControlCharsOut) {
  EXPECT_EQ(tool::printable("a\nb\tc\x1B[2Jd\x7F"), "a\\nb\\tc\\x1b[2Jd\\x7f");
  TablePrinter table;
  table.addColumn("a", TablePrinter::Align::left);
  table.addColumn("b", TablePrinter::Align::left);
  EXPECT_EQ(tableOf(table, {{"x\ny", "z"}}), "a     b\n----  -\nx\\ny  z\n");
}

}  // namespace
