#include "tools/text/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using tool::NumberText;
using tool::parseNumber;

std::string textOf(double value) {
  return std::string(NumberText(value).view());
}

double ofBits(std::uint64_t bits) {
  return std::bit_cast<double>(bits);
}

std::uint64_t parsedBits(const std::string& text) {
  std::string problem;
  const double value = parseNumber(text, problem);
  EXPECT_EQ(problem, "") << text;
  return std::bit_cast<std::uint64_t>(value);
}

std::string problemOf(const std::string& text) {
  std::string problem;
  parseNumber(text, problem);
  return problem;
}

TEST(NumberText, WritesSpecialValuesAsWords) {
  EXPECT_EQ(textOf(1e300), "undef");
  EXPECT_EQ(textOf(ofBits(0x7FF8000000000000)), "na");
  EXPECT_EQ(textOf(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(textOf(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(textOf(ofBits(1)), "eps");
}

TEST(NumberText, WritesAnyOtherNanAsItsPattern) {
  EXPECT_EQ(textOf(ofBits(0x7FF8000000000001)), "nan:0x7ff8000000000001");
  EXPECT_EQ(textOf(ofBits(0xFFF8000000000000)), "nan:0xfff8000000000000");
  EXPECT_EQ(textOf(ofBits(0x7FF0000000000001)), "nan:0x7ff0000000000001");
}

TEST(NumberText, WritesTheFewestDigitsThatReadBack) {
  EXPECT_EQ(textOf(0.1), "0.1");
  EXPECT_EQ(textOf(36), "36");
  EXPECT_EQ(textOf(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(textOf(0.0), "0");
  EXPECT_EQ(textOf(-0.0), "-0");
  EXPECT_EQ(textOf(1e-7), "1e-07");
}

TEST(NumberText, ReadsBackTheSameBits) {
  for (const std::uint64_t bits :
       {0x0000000000000000ULL, 0x8000000000000000ULL, 0x0000000000000001ULL, 0x8000000000000001ULL,
        0x0000000000000002ULL, 0x000FFFFFFFFFFFFFULL, 0x0010000000000000ULL, 0x3FB999999999999AULL,
        0x7FEFFFFFFFFFFFFFULL, 0xFFEFFFFFFFFFFFFFULL, 0x7FF0000000000000ULL, 0xFFF0000000000000ULL,
        0x7FF8000000000000ULL, 0x7FF8000000000001ULL, 0x7FF0000000000001ULL, 0xFFFFFFFFFFFFFFFFULL,
        0x7E37E43C8800759CULL, 0x7E37E43C8800759DULL}) {
    EXPECT_EQ(parsedBits(textOf(ofBits(bits))), bits) << std::hex << bits;
  }
}

TEST(NumberText, RoundsToDigits) {
  EXPECT_EQ(NumberText(2.0 / 3, 3).view(), "0.667");
  EXPECT_EQ(NumberText(123456.5, 3).view(), "123000");
  EXPECT_EQ(NumberText(38.6, 1).view(), "40");
  EXPECT_EQ(NumberText(12.5, 6).view(), "12.5");
  EXPECT_EQ(NumberText(0.1, 99).view(), "0.1");
  EXPECT_EQ(NumberText(0.00012345, 2).view(), "0.00012");
  EXPECT_EQ(NumberText(1.2345e-7, 2).view(), "1.2e-07");
  EXPECT_EQ(NumberText(1.2345e20, 2).view(), "1.2e+20");
  EXPECT_EQ(NumberText(1.797e308, 1).view(), "1.797e+308");  // 2e308 is no double
  EXPECT_EQ(NumberText(1e300, 3).view(), "undef");
}

TEST(NumberText, KeepsTheDigitsOfWholeNumbers) {
  EXPECT_EQ(NumberText(38.0, 1).view(), "38");
  EXPECT_EQ(NumberText(-123456.0, 3).view(), "-123456");
  EXPECT_EQ(NumberText(999999999999999.0, 2).view(), "999999999999999");
  EXPECT_EQ(NumberText(1000000000000000.0, 2).view(), "1e+15");
  EXPECT_EQ(NumberText(1234567890123456.0, 2).view(), "1.2e+15");
}

TEST(ParseNumber, TakesInfinityInFull) {
  EXPECT_EQ(parsedBits("Infinity"), 0x7FF0000000000000U);
  EXPECT_EQ(parsedBits("+infinity"), 0x7FF0000000000000U);
  EXPECT_EQ(parsedBits("-INFINITY"), 0xFFF0000000000000U);
}

// Bits of IEEE 754: the smallest normal number is 2^-1022, the smallest denormal 2^-1074.
TEST(ParseNumber, RoundsWhatIsNearZero) {
  EXPECT_EQ(parsedBits("1e-310"), 0x000012688B70E62BU);
  EXPECT_EQ(parsedBits("5e-324"), 1U);
  EXPECT_EQ(parsedBits("2.2250738585072014e-308"), 0x0010000000000000U);
  EXPECT_EQ(parsedBits("1e-400"), 0U);
  EXPECT_EQ(parsedBits("-1e-400"), 0x8000000000000000U);
  EXPECT_EQ(parsedBits("0.0001e-320"), 0U);
  EXPECT_EQ(parsedBits("123e-99999999999999999999"), 0U);
  EXPECT_EQ(problemOf("1e400"), "'1e400' is outside the range of a double");
  EXPECT_EQ(problemOf("-0.001e999"), "'-0.001e999' is outside the range of a double");
  EXPECT_EQ(problemOf("1e99999999999999999999"),
            "'1e99999999999999999999' is outside the range of a double");
}

TEST(ParseNumber, TakesADecimalComma) {
  const auto parsed = [](const std::string& text) {
    std::string problem;
    const double value = parseNumber(text, problem, ',');
    return problem.empty() ? textOf(value) : problem;
  };
  EXPECT_EQ(parsed("1,5"), "1.5");
  EXPECT_EQ(parsed(" -,25e2 "), "-25");
  EXPECT_EQ(parsed("inf"), "inf");
  EXPECT_EQ(parsed("1.5"), "'1.5' is not a number");
  EXPECT_EQ(parsed("1.234,5"), "'1.234,5' is not a number");
  EXPECT_EQ(parsed("1,2,3"), "'1,2,3' is not a number");
}

TEST(ParseNumber, TakesWordsInEitherCase) {
  EXPECT_EQ(parsedBits("UNDEF"), 0x7E37E43C8800759CU);
  EXPECT_EQ(parsedBits("Na"), 0x7FF8000000000000U);
  EXPECT_EQ(parsedBits("NaN"), 0x7FF8000000000000U);
  EXPECT_EQ(parsedBits("INF"), 0x7FF0000000000000U);
  EXPECT_EQ(parsedBits("+inf"), 0x7FF0000000000000U);
  EXPECT_EQ(parsedBits("-Inf"), 0xFFF0000000000000U);
  EXPECT_EQ(parsedBits("Eps"), 1U);
  EXPECT_EQ(parsedBits("NAN:0x7FF8000000000001"), 0x7FF8000000000001U);
}

TEST(ParseNumber, TakesBlanksAroundAndAPlusInFront) {
  EXPECT_EQ(parsedBits("  36 "), std::bit_cast<std::uint64_t>(36.0));
  EXPECT_EQ(parsedBits("+2.5e3"), std::bit_cast<std::uint64_t>(2500.0));
}

TEST(ParseNumber, RefusesWhatIsNoNumber) {
  EXPECT_EQ(problemOf("abc"), "'abc' is not a number");
  EXPECT_EQ(problemOf("1,5"), "'1,5' is not a number");
  EXPECT_EQ(problemOf("12 kg"), "'12 kg' is not a number");
  EXPECT_EQ(problemOf("+-1"), "'+-1' is not a number");
  EXPECT_EQ(problemOf(""), "is empty, expected a number");
  EXPECT_EQ(problemOf("   "), "is empty, expected a number");
}

TEST(ParseNumber, RefusesWhatNoDoubleHolds) {
  EXPECT_EQ(problemOf("1e999"), "'1e999' is outside the range of a double");
  EXPECT_EQ(problemOf("-1e400"), "'-1e400' is outside the range of a double");
}

TEST(ParseNumber, RefusesAPatternThatIsNoNan) {
  EXPECT_EQ(problemOf("nan:0x3ff0000000000000"),
            "'nan:0x3ff0000000000000' is not the bit pattern of a NaN");
  EXPECT_EQ(problemOf("nan:0x"), "'nan:0x' is not the bit pattern of a NaN");
  EXPECT_EQ(problemOf("nan:0x7ff8000000000001z"),
            "'nan:0x7ff8000000000001z' is not the bit pattern of a NaN");
}

TEST(IsSpecial, TellsSpecialValuesFromNumbers) {
  EXPECT_TRUE(tool::isSpecial(1e300));
  EXPECT_TRUE(tool::isSpecial(ofBits(1)));
  EXPECT_TRUE(tool::isSpecial(ofBits(0x7FF8000000000001)));
  EXPECT_FALSE(tool::isSpecial(0.0));
  EXPECT_FALSE(tool::isSpecial(ofBits(2)));
  EXPECT_FALSE(tool::isSpecial(1.0000000000000002e300));
}

}  // namespace
