#include "providers/rxf/names.h"

#include <gtest/gtest.h>

#include <string>

namespace rxffile {
namespace {

TEST(Names, aLetterThenLettersDigitsAndUnderscoresIsAName) {
  EXPECT_EQ(nameRefusal("x"), nullptr);
  EXPECT_EQ(nameRefusal("Z_9"), nullptr);
  EXPECT_EQ(nameRefusal(std::string(63, 'n')), nullptr);
}

TEST(Names, anythingElseIsRefusedWithTheReason) {
  EXPECT_STREQ(nameRefusal(""), "it is empty");
  EXPECT_STREQ(nameRefusal(std::string(64, 'n')), "it has more than 63 characters");
  EXPECT_STREQ(nameRefusal("9x"), "it does not begin with a letter");
  EXPECT_STREQ(nameRefusal("_x"), "it does not begin with a letter");
  EXPECT_NE(nameRefusal("a b"), nullptr);
  EXPECT_NE(nameRefusal("a\xC3\xA9"), nullptr);
  EXPECT_NE(nameRefusal("*"), nullptr);
}

TEST(Labels, trailingBlanksDoNotCountTowardsTheLimit) {
  EXPECT_EQ(labelRefusal(std::string(63, 'x') + "          "), nullptr);
  EXPECT_STREQ(labelRefusal(std::string(64, 'x')), "it has more than 63 bytes");
  EXPECT_EQ(trimmedLabel("a b  "), "a b");
}

TEST(Labels, theEmptyLabelIsAcceptableAndABlankOneIsNot) {
  EXPECT_EQ(labelRefusal(""), nullptr);
  EXPECT_STREQ(labelRefusal("   "), "it is blank");
}

TEST(Labels, oneKindOfQuoteIsAcceptableAndBothAreNot) {
  EXPECT_EQ(labelRefusal("it's"), nullptr);
  EXPECT_EQ(labelRefusal("say \"it\""), nullptr);
  EXPECT_STREQ(labelRefusal("\"it's\""), "it holds both kinds of quote");
}

TEST(Labels, controlCharactersAreRefusedAndHighBytesAreNot) {
  EXPECT_STREQ(labelRefusal("a\tb"), "it holds a control character");
  EXPECT_EQ(labelRefusal("\xFF\x80\x7F"), nullptr);
}

}  // namespace
}  // namespace rxffile
