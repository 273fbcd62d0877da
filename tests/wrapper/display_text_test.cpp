// Foreign text made fit for a terminal. What is expected comes from the tables of Unicode: general
// category Cc, the separators Zl and Zp, the bidi controls, and characters without width that join
// nothing.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>
#include <ztb/display_text.hpp>
#include <ztb/ztb.hpp>

namespace {

using ztb::displayText;
using ztb::isDisplayable;

std::string hex(unsigned byte) {
  constexpr const char* digits = "0123456789abcdef";
  return std::string("\\x") + digits[byte / 16] + digits[byte % 16];
}

// The bytes of a code point, well-formed or, for a surrogate, as if it were a character.
std::string encoded(char32_t code) {
  const auto tail = [&](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), tail(0)};
  if (code < 0x10000) return {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
  return {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}

std::string escapedBytes(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) text += hex(static_cast<unsigned char>(c));
  return text;
}

TEST(DisplayText, SpellsEveryByteThatStandsAlone) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    const std::string alone(1, static_cast<char>(byte));
    const bool plain = byte >= 0x20 && byte <= 0x7E;
    const std::string expected = plain          ? alone
                                 : byte == 0x0A ? "\\n"
                                 : byte == 0x09 ? "\\t"
                                                : hex(byte);
    EXPECT_EQ(displayText(alone), expected) << byte;
    EXPECT_EQ(displayText("a" + alone + "z"), "a" + expected + "z") << byte;
    EXPECT_EQ(isDisplayable(alone), plain) << byte;
  }
}

TEST(DisplayText, KeepsEveryCharacterButThoseThatSteer) {
  const std::vector<std::pair<char32_t, char32_t>> steering{
      {0x7F, 0x9F},     {0x61C, 0x61C},   {0x200B, 0x200B}, {0x200E, 0x200F},  {0x2028, 0x202E},
      {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
  for (char32_t code = 0x80; code <= 0x10FFFF; ++code) {
    const std::string bytes = encoded(code);
    std::string expected = bytes;
    if (code >= 0xD800 && code <= 0xDFFF) {
      expected = escapedBytes(bytes);
    } else {
      for (const auto& [first, last] : steering) {
        if (code >= first && code <= last) {
          char name[16];
          std::snprintf(name, sizeof name, "<U+%04X>", static_cast<unsigned>(code));
          expected = name;
        }
      }
    }
    ASSERT_EQ(displayText(bytes), expected) << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(isDisplayable(bytes), expected == bytes) << std::hex << static_cast<unsigned>(code);
  }
}

TEST(DisplayText, KeepsWordsOfManyLanguages) {
  for (const char* word : {"Gr\u00FC\u00DFe", "e\u0301", "\u0928\u200D\u092E", "\u05E9\u05DC",
                           "\U0001F469\u200D\U0001F52C", "C:\\new\\x1b"}) {
    EXPECT_EQ(displayText(word), word);
  }
}

TEST(DisplayText, SpellsWhatIsNoUtf8ByteByByte) {
  for (const char* bytes :
       {"\xC0\xAF", "\xC1\xBF", "\xE0\x80\xAF", "\xE0\x9F\xBF", "\xF0\x80\x80\xAF",
        "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "\xFF\xFE", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\x80\xBF"}) {
    EXPECT_EQ(displayText(bytes), escapedBytes(bytes));
  }
  EXPECT_EQ(displayText("\xE2\x82z"), "\\xe2\\x82z") << "what follows is not swallowed";
  EXPECT_EQ(displayText("\xC3\xC3\xA9"), "\\xc3\u00E9");
  EXPECT_EQ(displayText("\xC0\x9B[2J"), "\\xc0\\x9b[2J") << "an overlong escape character";
}

TEST(DisplayText, IsNotEndedByAZero) {
  EXPECT_EQ(displayText(std::string("a\0b\0", 4)), "a\\x00b\\x00");
  EXPECT_EQ(displayText(""), "");
}

TEST(DisplayText, IsTheSameWhenDoneTwice) {
  const std::string once = displayText("\x1b[31m\u202Ered\x9b\n");
  EXPECT_EQ(once, "\\x1b[31m<U+202E>red\\x9b\\n");
  EXPECT_EQ(displayText(once), once);
}

TEST(DisplayText, OfAnErrorLeavesTheExactTextAtHand) {
  ztb::Database database;
  try {
    (void)database.symbol("\x1b[2J\x9b\u202Ex");
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.what(), "Cannot find symbol \\x1b[2J\\x9b<U+202E>x");
    EXPECT_STREQ(error.text(), "Cannot find symbol \x1b[2J\x9b\u202Ex");
    const ztb::Error copy = error;
    EXPECT_STREQ(copy.text(), error.text());
  }
}

}  // namespace
