#include "exchange/special_values.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace ztb {
namespace {

std::uint64_t bits(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

constexpr SpecialValues callers = {101, 102, 103, 104, 105};

TEST(SpecialValues, haveTheirBitPatterns) {
  EXPECT_EQ(0x7E37E43C8800759CU, bits(internalSpecialValues[0]));
  EXPECT_EQ(0x7FF8000000000000U, bits(internalSpecialValues[1]));
  EXPECT_EQ(0x7FF0000000000000U, bits(internalSpecialValues[2]));
  EXPECT_EQ(0xFFF0000000000000U, bits(internalSpecialValues[3]));
  EXPECT_EQ(0x0000000000000001U, bits(internalSpecialValues[4]));
}

TEST(SpecialValues, areTheNumbersOfThosePatterns) {
  EXPECT_EQ(1e300, internalSpecialValues[0]);
  EXPECT_TRUE(std::isnan(internalSpecialValues[1]));
  EXPECT_EQ(std::numeric_limits<double>::infinity(), internalSpecialValues[2]);
  EXPECT_EQ(-std::numeric_limits<double>::infinity(), internalSpecialValues[3]);
  EXPECT_EQ(std::numeric_limits<double>::denorm_min(), internalSpecialValues[4]);
}

TEST(SpecialValues, areNotOrdinary) {
  for (const double value : internalSpecialValues) EXPECT_FALSE(isOrdinary(value)) << value;
  for (const double value : {0.0, -0.0, 1.0, -1.0, 1e-300, 9.99e299, -9.99e299}) {
    EXPECT_TRUE(isOrdinary(value)) << value;
  }
}

TEST(SpecialValueMode, isNoneForTheInternalValues) {
  EXPECT_EQ(SpecialValueMode::none, modeOf(internalSpecialValues));
  EXPECT_EQ(0, static_cast<int>(SpecialValueMode::none));
}

TEST(SpecialValueMode, isEpsilonWhenOnlyEpsilonDiffers) {
  SpecialValues values = internalSpecialValues;
  values[4] = 0.0;
  EXPECT_EQ(SpecialValueMode::epsilon, modeOf(values));
  EXPECT_EQ(1, static_cast<int>(SpecialValueMode::epsilon));
}

TEST(SpecialValueMode, isAllWhenOneOfTheFirstFourDiffers) {
  for (std::size_t code = 0; code < 4; ++code) {
    SpecialValues values = internalSpecialValues;
    values[code] = 7;
    EXPECT_EQ(SpecialValueMode::all, modeOf(values)) << code;
    values[4] = 7;
    EXPECT_EQ(SpecialValueMode::all, modeOf(values)) << code;
  }
  EXPECT_EQ(2, static_cast<int>(SpecialValueMode::all));
}

TEST(SpecialValueMode, comparesBitsSoThatAnotherNaNDiffers) {
  SpecialValues values = internalSpecialValues;
  values[1] = std::bit_cast<double>(std::uint64_t{0x7FF8000000000001});
  EXPECT_EQ(SpecialValueMode::all, modeOf(values));
  values[1] = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000});
  EXPECT_EQ(SpecialValueMode::all, modeOf(values));
}

TEST(Mapping, inModeAllReplacesEachOfTheFive) {
  for (std::size_t code = 0; code < specialValueCount; ++code) {
    EXPECT_EQ(callers[code], mapSpecialValue(SpecialValueMode::all, internalSpecialValues, callers,
                                             internalSpecialValues[code]));
    EXPECT_EQ(bits(internalSpecialValues[code]),
              bits(mapSpecialValue(SpecialValueMode::all, callers, internalSpecialValues,
                                   callers[code])));
  }
}

TEST(Mapping, leavesOrdinaryNumbers) {
  for (const double value : {0.0, -0.0, 1.0, -1e299, 1e-323}) {
    EXPECT_EQ(bits(value),
              bits(mapSpecialValue(SpecialValueMode::all, internalSpecialValues, callers, value)));
  }
}

TEST(Mapping, inModeEpsilonReplacesThatAlone) {
  const auto out = [](double value) {
    return mapSpecialValue(SpecialValueMode::epsilon, internalSpecialValues, callers, value);
  };
  EXPECT_EQ(105.0, out(internalSpecialValues[4]));
  EXPECT_EQ(1e300, out(1e300));
  EXPECT_EQ(bits(internalSpecialValues[1]), bits(out(internalSpecialValues[1])));
}

TEST(Mapping, inModeNoneReplacesNothing) {
  for (const double value : internalSpecialValues) {
    EXPECT_EQ(bits(value),
              bits(mapSpecialValue(SpecialValueMode::none, internalSpecialValues, callers, value)));
  }
}

TEST(Mapping, ofANaNNeedsItsOwnBits) {
  const auto out = [](std::uint64_t pattern) {
    return bits(mapSpecialValue(SpecialValueMode::all, internalSpecialValues, callers,
                                std::bit_cast<double>(pattern)));
  };
  EXPECT_EQ(bits(102.0), out(0x7FF8000000000000));
  EXPECT_EQ(0x7FF8000000000001U, out(0x7FF8000000000001));
  EXPECT_EQ(0xFFF8000000000000U, out(0xFFF8000000000000));
}

TEST(Mapping, tellsZerosApart) {
  SpecialValues values = internalSpecialValues;
  values[4] = 0.0;
  const auto in = [&](double value) {
    return bits(mapSpecialValue(SpecialValueMode::epsilon, values, internalSpecialValues, value));
  };
  EXPECT_EQ(1U, in(0.0));
  EXPECT_EQ(bits(-0.0), in(-0.0));
}

TEST(Mapping, ofAValueGivenToTwoCodesTakesTheLowerOne) {
  SpecialValues values = callers;
  values[3] = values[1];
  EXPECT_EQ(bits(internalSpecialValues[1]),
            bits(mapSpecialValue(SpecialValueMode::all, values, internalSpecialValues, values[3])));
}

}  // namespace
}  // namespace ztb
