#include "providers/rxf/name_list.h"

#include <gtest/gtest.h>

#include <string>

namespace rxffile {
namespace {

TEST(NameList, numbersCountFromOneAndLookupIgnoresTheCaseOfLetters) {
  NameList list;
  EXPECT_EQ(list.find("a"), 0U);
  EXPECT_EQ(list.add("Alpha"), 1U);
  EXPECT_EQ(list.add(""), 2U);
  EXPECT_EQ(list.find("ALPHA"), 1U);
  EXPECT_EQ(list.find(""), 2U);
  EXPECT_EQ(list.at(1), "Alpha");
  EXPECT_EQ(list.at(2), "");
}

TEST(NameList, aNameThatIsThereIsNotAddedAgain) {
  NameList list;
  list.add("Alpha");
  EXPECT_EQ(list.add("aLPHA"), 0U);
  EXPECT_EQ(list.size(), 1U);
}

TEST(NameList, findsEachOfManyNames) {
  NameList list;
  constexpr std::uint32_t many = 100000;
  for (std::uint32_t i = 1; i <= many; ++i) ASSERT_EQ(list.add("Label" + std::to_string(i)), i);
  for (std::uint32_t i = 1; i <= many; ++i) ASSERT_EQ(list.find("label" + std::to_string(i)), i);
  EXPECT_EQ(list.find("label0"), 0U);
}

TEST(NameList, aNameLongerThanAnyInTheListIsNotFound) {
  NameList list;
  list.add(std::string(63, 'x'));
  EXPECT_EQ(list.find(std::string(64, 'x')), 0U);
}

}  // namespace
}  // namespace rxffile
