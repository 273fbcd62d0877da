#include "tools/text/table_printer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

using tool::TablePrinter;

std::string tableOf(TablePrinter& table, const std::vector<std::array<std::string_view, 2>>& rows) {
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* out = open_memstream(&buffer, &size);
  for (const auto& row : rows) {
    table.measure(row);
  }
  table.printHeader(out);
  for (const auto& row : rows) {
    table.printRow(out, row);
  }
  std::fclose(out);
  std::string text(buffer, size);
  std::free(buffer);
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
