#include "tools/commands/memory_option.h"

#include <gtest/gtest.h>

namespace {

using tool::sizeOfText;

TEST(SizeOfText, IsANumberOfBytesWithOrWithoutAUnit) {
  EXPECT_EQ(sizeOfText("1"), 1U);
  EXPECT_EQ(sizeOfText("500000"), 500000U);
  EXPECT_EQ(sizeOfText("64K"), 65536U);
  EXPECT_EQ(sizeOfText("3m"), 3145728U);
  EXPECT_EQ(sizeOfText("2G"), 2147483648U);
  EXPECT_EQ(sizeOfText("1t"), 1099511627776U);
  EXPECT_EQ(sizeOfText("18446744073709551615"), 18446744073709551615U);
  EXPECT_EQ(sizeOfText("16777215T"), 18446742974197923840U);
}

TEST(SizeOfText, IsNothingForAnyOtherText) {
  for (const char* text : {"", "0", "0G", "G", "-1", "+1", "1.5G", "2GB", "2 G", " 2", "2KK", "x",
                           "18446744073709551616", "16777216T"}) {
    EXPECT_FALSE(sizeOfText(text)) << text;
  }
}

}  // namespace
