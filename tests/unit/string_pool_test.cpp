#include "core/string_pool.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ztb::strpool {
namespace {

TEST(StringPool, holdsThePairsGivenAtConstructionInOrder) {
  TStrHashPool pool{{"", 0}, {"first", 11}, {"second", 12}};
  EXPECT_EQ(3, pool.size());
  EXPECT_STREQ("", pool.at(0));
  EXPECT_STREQ("second", pool.at(2));
  EXPECT_EQ(11, pool.value("first"));
  EXPECT_EQ(12, pool.value("second"));
}

TEST(StringPool, knowsTheEmptyTextFromTheStart) {
  TStrHashPool pool{{"", 0}};
  EXPECT_TRUE(pool.contains(""));
  EXPECT_EQ(0, pool.value(""));
  EXPECT_EQ(1, pool.size());
}

TEST(StringPool, textsThatDifferInCaseAreOneEntryInTheFirstSpelling) {
  TStrHashPool pool{{"", 0}};
  pool.add("Canned peas", 1);
  pool.add("CANNED PEAS", 2);
  EXPECT_EQ(2, pool.size());
  EXPECT_STREQ("Canned peas", pool.at(1));
  EXPECT_EQ(1, pool.value("canned PEAS"));
}

TEST(StringPool, valueOfAnAbsentTextThrows) {
  TStrHashPool pool{{"", 0}};
  EXPECT_FALSE(pool.contains("x"));
  EXPECT_THROW(static_cast<void>(pool.value("x")), std::logic_error);
}

}  // namespace
}  // namespace ztb::strpool
