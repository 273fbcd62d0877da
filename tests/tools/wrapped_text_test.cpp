#include "tools/text/wrapped_text.h"

#include <gtest/gtest.h>

namespace {

using tool::wrapped;
using tool::wrappedHelp;

TEST(Wrapped, BreaksAtBlanksWhereTheLineEnds) {
  EXPECT_EQ(wrapped("one two three", 13), "one two three");
  EXPECT_EQ(wrapped("one two three", 12), "one two\nthree");
  EXPECT_EQ(wrapped("one two three", 5, 2), "one\n  two\n  three");
  EXPECT_EQ(wrapped("one two three", 0), "one two three");
  EXPECT_EQ(wrapped("", 5), "");
}

TEST(Wrapped, LeavesLongWordsWhole) {
  EXPECT_EQ(wrapped("a verylongword b", 4), "a\nverylongword\nb");
}

TEST(Wrapped, CountsThePlacesOfWideCharacters) {
  EXPECT_EQ(wrapped("\u6f22\u5b57 ab", 6), "\u6f22\u5b57\nab");
}

TEST(WrappedHelp, KeepsDescriptionsInTheirColumn) {
  EXPECT_EQ(wrappedHelp("Options:\n  --width N                Places in a line of a table\n", 51),
            "Options:\n"
            "  --width N                Places in a line of a\n"
            "                           table\n");
  // Where the column would be too narrow they begin at the left.
  EXPECT_EQ(wrappedHelp("  --width N                Places in a line\n", 30),
            "  --width N\n      Places in a line\n");
}

TEST(WrappedHelp, FillsParagraphsAnew) {
  EXPECT_EQ(wrappedHelp("one two three\nfour five\n\nsix\n", 18),
            "one two three four\nfive\n\nsix\n");
  EXPECT_EQ(wrappedHelp("one two three\nfour five\n", 0), "one two three\nfour five\n");
}

TEST(WrappedHelp, BeginsALineWithTheUsage) {
  EXPECT_EQ(wrappedHelp("Show the records\nUsage: ztb show FILE\n\nOptions:\n", 60),
            "Show the records\nUsage: ztb show FILE\n\nOptions:\n");
}

TEST(WrappedHelp, LeavesExamplesAsTheyAre) {
  EXPECT_EQ(wrappedHelp("Examples:\n  ztb show diet.rxf price --head 3\nExit codes: 0 fine\n", 12),
            "Examples:\n  ztb show diet.rxf price --head 3\nExit codes:\n0 fine\n");
}

}  // namespace
