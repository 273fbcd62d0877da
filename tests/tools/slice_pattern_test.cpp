#include "tools/files/slice_pattern.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/text/failure.h"

namespace {

using tool::parseSlice;
using tool::PositionPattern;

bool matches(const std::string& pattern, const std::string& label) {
  return PositionPattern{.text = pattern, .quoted = false}.matches(label);
}

TEST(SlicePattern, MatchesALabelWithTheCaseFolded) {
  EXPECT_TRUE(matches("wheat", "Wheat"));
  EXPECT_FALSE(matches("wheat", "Wheat Flour"));
}

TEST(SlicePattern, TakesAStarForAnyRunOfChars) {
  EXPECT_TRUE(matches("wheat*", "Wheat"));
  EXPECT_TRUE(matches("wheat*", "wheat flour"));
  EXPECT_FALSE(matches("wheat*", "Whole Wheat"));
  EXPECT_TRUE(matches("*beans*", "Pork and Beans (can)"));
  EXPECT_TRUE(matches("a*b*c", "a-b-b-c"));
  EXPECT_FALSE(matches("a*b*c", "a-c-b"));
  EXPECT_TRUE(matches("*ab", "aab"));
  EXPECT_TRUE(matches("**", ""));
}

TEST(SlicePattern, TakesAQuotedStarAsAStar) {
  const PositionPattern pattern{.text = "a*", .quoted = true};
  EXPECT_TRUE(pattern.matches("A*"));
  EXPECT_FALSE(pattern.matches("ab"));
  EXPECT_TRUE(pattern.exact());
  EXPECT_FALSE(pattern.any());
}

TEST(SlicePattern, FoldsAsciiLettersOnly) {
  EXPECT_FALSE(matches("\xC9", "\xE9"));
}

TEST(ParseSlice, SplitsAtCommasOutsideQuotes) {
  const auto patterns = parseSlice("\"Ham, \"\"smoked\"\"\" , wheat* ,*");
  ASSERT_EQ(patterns.size(), 3U);
  EXPECT_EQ(patterns[0].text, "Ham, \"smoked\"");
  EXPECT_TRUE(patterns[0].quoted);
  EXPECT_EQ(patterns[1].text, "wheat*");
  EXPECT_FALSE(patterns[1].quoted);
  EXPECT_TRUE(patterns[2].any());
}

TEST(ParseSlice, TakesTheEmptyLabelInQuotes) {
  const auto patterns = parseSlice("\"\"");
  ASSERT_EQ(patterns.size(), 1U);
  EXPECT_TRUE(patterns[0].matches(""));
  EXPECT_FALSE(patterns[0].matches("a"));
}

void expectRefused(const std::string& slice, const std::string& text) {
  try {
    static_cast<void>(parseSlice(slice));
    FAIL() << slice;
  } catch (const tool::UsageError& error) {
    EXPECT_EQ(error.what(), text);
  }
}

TEST(ParseSlice, RefusesWhatIsNoSlice) {
  expectRefused("a,",
                "--slice a,: position 2 is empty: write * for any label, \"\" for the empty one");
  expectRefused("", "--slice : position 1 is empty: write * for any label, \"\" for the empty one");
  expectRefused("\"a", "--slice \"a: a quote is not closed");
  expectRefused("\"a\"b", "--slice \"a\"b: a comma is expected behind a closing quote");
}

}  // namespace
