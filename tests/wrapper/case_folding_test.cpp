// Names and labels that are the same to a database.
#include <gtest/gtest.h>

#include <ztb/case_folding.hpp>

namespace {

TEST(CaseFolding, FoldsAsciiLettersAlone) {
  EXPECT_EQ(ztb::folded("aBc_Z9"), "abc_z9");
  EXPECT_TRUE(ztb::sameFolded("aBc_Z", "AbC_z"));
  EXPECT_FALSE(ztb::sameFolded("ab", "abc"));
  EXPECT_FALSE(ztb::sameFolded("\xC3\xA9", "\xC3\x89"));
  EXPECT_FALSE(ztb::sameFolded("[", "{"));
  EXPECT_FALSE(ztb::sameFolded("@", "`"));
}

}  // namespace
