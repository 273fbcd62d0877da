#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <ztb/column_names.hpp>

namespace {

using Names = std::vector<std::string>;

TEST(ColumnNames, NamesContentByType) {
  EXPECT_EQ(ztb::contentColumns(ztb::Type::set), (Names{"text"}));
  EXPECT_EQ(ztb::contentColumns(ztb::Type::parameter), (Names{"value"}));
  EXPECT_EQ(ztb::contentColumns(ztb::Type::equation),
            (Names{"level", "marginal", "lower", "upper", "scale"}));
}

TEST(ColumnNames, NamesKeysAfterDomains) {
  EXPECT_EQ(ztb::keyColumns("p", ztb::Type::parameter, Names{"food", "*", "nutrient"}),
            (Names{"food", "dim_2", "nutrient"}));
}

TEST(ColumnNames, NamesTheOnlyPositionOverTheUniverse) {
  EXPECT_EQ(ztb::keyColumns("p", ztb::Type::parameter, Names{"*"}), (Names{"label"}));
  EXPECT_EQ(ztb::keyColumns("x", ztb::Type::variable, Names{"*"}), (Names{"label"}));
}

TEST(ColumnNames, KeepsColumnNamesApart) {
  EXPECT_EQ(ztb::keyColumns("p", ztb::Type::parameter, Names{"node", "NODE", "Value"}),
            (Names{"node", "NODE_2", "Value_2"}));
  EXPECT_EQ(ztb::keyColumns("p", ztb::Type::parameter, Names{"i", "i_2", "i"}),
            (Names{"i", "i_2", "i_3"}));
}

TEST(ColumnNames, NamesASetOverTheUniverseAfterItself) {
  EXPECT_EQ(ztb::keyColumns("food", ztb::Type::set, Names{"*"}), (Names{"food"}));
  EXPECT_EQ(ztb::keyColumns("text", ztb::Type::set, Names{"*"}), (Names{"text_2"}));
  EXPECT_EQ(ztb::keyColumns("arc", ztb::Type::set, Names{"*", "*"}), (Names{"dim_1", "dim_2"}));
  EXPECT_EQ(ztb::keyColumns("*", ztb::Type::set, Names{"*"}), (Names{"label"}));
}

}  // namespace
