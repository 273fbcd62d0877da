#include "tools/tables/symbol_columns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

TEST(SymbolColumns, NamesContentByType) {
  EXPECT_EQ(tool::contentColumns(ztb::Type::set), (Names{"text"}));
  EXPECT_EQ(tool::contentColumns(ztb::Type::parameter), (Names{"value"}));
  EXPECT_EQ(tool::contentColumns(ztb::Type::equation),
            (Names{"level", "marginal", "lower", "upper", "scale"}));
}

TEST(SymbolColumns, NamesKeysAfterDomains) {
  EXPECT_EQ(tool::keyColumns("p", ztb::Type::parameter, {"food", "*", "nutrient"}),
            (Names{"food", "key2", "nutrient"}));
}

TEST(SymbolColumns, KeepsColumnNamesApart) {
  EXPECT_EQ(tool::keyColumns("p", ztb::Type::parameter, {"node", "NODE", "Value"}),
            (Names{"node", "NODE_2", "Value_2"}));
  EXPECT_EQ(tool::keyColumns("p", ztb::Type::parameter, {"i", "i_2", "i"}),
            (Names{"i", "i_2", "i_3"}));
}

TEST(SymbolColumns, NamesASetOverTheUniverseAfterItself) {
  EXPECT_EQ(tool::keyColumns("food", ztb::Type::set, {"*"}), (Names{"food"}));
  EXPECT_EQ(tool::keyColumns("text", ztb::Type::set, {"*"}), (Names{"text_2"}));
  EXPECT_EQ(tool::keyColumns("arc", ztb::Type::set, {"*", "*"}), (Names{"key1", "key2"}));
  EXPECT_EQ(tool::keyColumns("*", ztb::Type::set, {"*"}), (Names{"label"}));
}

}  // namespace
