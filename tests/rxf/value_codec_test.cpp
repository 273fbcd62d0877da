#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "providers/rxf/key_codec.h"
#include "providers/rxf/plane_codec.h"
#include "providers/rxf/value_decoder.h"
#include "providers/rxf/value_encoder.h"

namespace rxffile {
namespace {

using Values = std::vector<double>;
using Bits = std::vector<std::uint64_t>;

Bits bitsOf(const Values& values) {
  Bits bits;
  for (const double value : values) bits.push_back(std::bit_cast<std::uint64_t>(value));
  return bits;
}

Bytes encoded(const Values& values, const SpecialTable* specials = nullptr) {
  Compressor compressor;
  ValueEncoder encoder;
  Bytes out;
  encoder.encode(values.data(), values.size(), specials, compressor, out);
  return out;
}

Bits decoded(const Bytes& bytes, std::size_t count, const SpecialTable& specials = {}) {
  ByteReader in(bytes.data(), bytes.size());
  Decompressor decompressor;
  Arena arena;
  ValueDecoder decoder;
  decoder.parse(in, static_cast<std::uint32_t>(count), decompressor, arena);
  if (in.left() != 0) throw Malformed(DetailText("left over"));
  decoder.rewind();
  Values values(count);
  for (std::size_t done = 0; done < count; done += kPieceRecords) {
    decoder.next(std::min(kPieceRecords, count - done), specials, values.data() + done);
  }
  return bitsOf(values);
}

// Form number behind the marker of special values.
int formOf(const Bytes& bytes) {
  return bytes[1];
}

Values generated(std::size_t count, const std::function<double(std::size_t)>& value) {
  Values values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(value(i));
  return values;
}

void expectForm(const Values& values, int form) {
  const Bytes bytes = encoded(values);
  EXPECT_EQ(formOf(bytes), form);
  EXPECT_EQ(decoded(bytes, values.size()), bitsOf(values));
}

TEST(ValueCodec, aConstantTakesTenBytes) {
  const Values values(65536, std::bit_cast<double>(0x7FF4000000000001U));
  EXPECT_EQ(encoded(values).size(), 10U);
  expectForm(values, kFormConstant);
}

TEST(ValueCodec, wholeNumbersAreDecimal) {
  expectForm(generated(5000, [](std::size_t i) { return std::fmod(i * 7919.0, 1000); }),
             kFormDecimal);
  expectForm({-5, 1e9, 3}, kFormDecimal);
}

TEST(ValueCodec, numbersOfFewPlacesAreDecimal) {
  for (const double power : {10.0, 100.0, 1e6, 1e9}) {
    expectForm(generated(5000,
                         [&](std::size_t i) {
                           return (static_cast<double>(i * 7919 % 1000003) - 300) / power;
                         }),
               kFormDecimal);
  }
}

TEST(ValueCodec, evenStepsTakeNoPlanes) {
  const Values values = generated(65536, [](std::size_t i) { return 1000.0 + 3.0 * i; });
  EXPECT_EQ(encoded(values).size(), 21U);
  expectForm(values, kFormDecimal);
}

TEST(ValueCodec, negativeZeroIsNoWholeNumber) {
  const Bits bits = decoded(encoded({-0.0, 0.0, 1.0}), 3);
  EXPECT_EQ(bits, bitsOf({-0.0, 0.0, 1.0}));
}

TEST(ValueCodec, fewDistinctValuesAreADictionary) {
  expectForm(generated(5000, [](std::size_t i) { return 1.0 / (1 + i * 31 % 200); }),
             kFormDictionary);
  expectForm(generated(65536, [](std::size_t i) { return std::sqrt(i * 31 % 1000 + 2.0); }),
             kFormDictionary);
}

TEST(ValueCodec, anythingElseIsPlain) {
  std::mt19937_64 random(7);
  expectForm(generated(70000 % 65536, [&](std::size_t) { return std::bit_cast<double>(random()); }),
             kFormPlain);
}

TEST(ValueCodec, everyKindOfBitPatternComesBack) {
  const Values values = {std::bit_cast<double>(0x7FF0000000000001U),
                         std::bit_cast<double>(0x7FF8000000000000U),
                         std::bit_cast<double>(0xFFF8000000000000U),
                         std::bit_cast<double>(0x7FFFFFFFFFFFFFFFU),
                         std::bit_cast<double>(0xFFFFFFFFFFFFFFFFU),
                         -0.0,
                         0.0,
                         std::numeric_limits<double>::denorm_min(),
                         -std::numeric_limits<double>::denorm_min(),
                         std::numeric_limits<double>::max(),
                         std::numeric_limits<double>::lowest(),
                         std::numeric_limits<double>::infinity(),
                         -std::numeric_limits<double>::infinity(),
                         4503599627370496.0,
                         4503599627370495.5,
                         9007199254740993.0};
  EXPECT_EQ(decoded(encoded(values), values.size()), bitsOf(values));
  for (const double value : values) EXPECT_EQ(decoded(encoded({value}), 1), bitsOf({value}));
}

TEST(ValueCodec, aLateStrangerDoesNotSpoilTheRest) {
  Values values(65536, 2.5);
  values.back() = std::bit_cast<double>(0x7FF800000000BEEFU);
  EXPECT_EQ(decoded(encoded(values), values.size()), bitsOf(values));
  values = generated(65536, [](std::size_t i) { return static_cast<double>(i); });
  values[40000] = 1.0 / 3;
  EXPECT_EQ(decoded(encoded(values), values.size()), bitsOf(values));
}

TEST(ValueCodec, specialValuesComeBackAsTheReadersOwn) {
  const SpecialTable writer;
  SpecialTable reader;
  reader.set({11, 12, 13, 14, 15});
  const Values values = {writer.valueOf(4), 7.0, writer.valueOf(1),
                         writer.valueOf(0), 8.0, writer.valueOf(2),
                         writer.valueOf(3)};
  const Bits expected = {
      15, std::bit_cast<std::uint64_t>(7.0), 12, 11, std::bit_cast<std::uint64_t>(8.0), 13, 14};
  EXPECT_EQ(decoded(encoded(values, &writer), values.size(), reader), expected);
}

TEST(ValueCodec, specialValuesAloneComeBack) {
  const SpecialTable table;
  const Values values(3000, table.valueOf(1));
  EXPECT_EQ(decoded(encoded(values, &table), values.size(), table), bitsOf(values));
  EXPECT_LT(encoded(values, &table).size(), 20U);
}

TEST(ValueCodec, ofTwoCodesWithTheSameValueTheLowerIsTaken) {
  SpecialTable writer;
  const std::uint64_t one = std::bit_cast<std::uint64_t>(1.0);
  writer.set({99, one, 98, one, 97});
  SpecialTable reader;
  reader.set({11, 12, 13, 14, 15});
  EXPECT_EQ(decoded(encoded({1.0, 2.0}, &writer), 2, reader)[0], 12U);
}

TEST(ValueCodec, refusesWhatIsNotASlot) {
  EXPECT_THROW(decoded({2, 0}, 1), Malformed) << "marker";
  EXPECT_THROW(decoded({0, 4}, 1), Malformed) << "form";
  EXPECT_THROW(decoded({1, kPlaneConstant, 6, 0}, 1), Malformed) << "code of a special value";
  EXPECT_THROW(decoded({0, kFormDecimal, 10, 0, 0}, 1), Malformed) << "exponent";
  EXPECT_THROW(decoded({0, kFormDecimal, 0, 2, 0}, 1), Malformed) << "order";
  EXPECT_THROW(decoded({0, kFormDecimal, 0, 0, 5}, 1), Malformed) << "width";
  EXPECT_THROW(decoded({0, kFormDictionary, 0, 0, 0, 0}, 1), Malformed) << "empty dictionary";
  EXPECT_THROW(decoded({0, kFormDictionary, 0, 0, 2, 0}, 1), Malformed) << "large dictionary";
}

TEST(ValueCodec, refusesAPlaceBehindTheDictionary) {
  Bytes bytes = encoded({1.0 / 3, 1.0 / 7, 1.0 / 3, 1.0 / 7, 1.0 / 3, 1.0 / 7, 1.0 / 3, 1.0 / 7});
  ASSERT_EQ(formOf(bytes), kFormDictionary);
  EXPECT_NO_THROW(decoded(bytes, 8));
  bytes.back() = 2;
  EXPECT_THROW(decoded(bytes, 8), Malformed);
}

}  // namespace
}  // namespace rxffile
