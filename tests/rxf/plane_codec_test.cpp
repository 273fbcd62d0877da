#include "providers/rxf/plane_codec.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "providers/rxf/checksum.h"

namespace rxffile {
namespace {

Bytes encoded(const Bytes& plane) {
  Compressor compressor;
  Bytes out;
  encodePlane(plane.data(), plane.size(), compressor, out);
  return out;
}

Bytes decoded(const Bytes& bytes, std::size_t size) {
  ByteReader in(bytes.data(), bytes.size());
  Decompressor decompressor;
  Arena arena;
  const std::uint8_t* plane = decodePlane(in, size, decompressor, arena);
  if (in.left() != 0) throw Malformed(DetailText("left over"));
  return {plane, plane + size};
}

TEST(PlaneCodec, oneRepeatedByteTakesTwoBytes) {
  const Bytes plane(65536, 0xAB);
  EXPECT_EQ(encoded(plane), (Bytes{kPlaneConstant, 0xAB}));
  EXPECT_EQ(decoded(encoded(plane), plane.size()), plane);
}

TEST(PlaneCodec, randomBytesStandAsTheyAre) {
  std::mt19937 random(1);
  Bytes plane(65536);
  for (std::uint8_t& byte : plane) byte = static_cast<std::uint8_t>(random());
  const Bytes bytes = encoded(plane);
  EXPECT_EQ(bytes.size(), plane.size() + 1);
  EXPECT_EQ(bytes[0], kPlanePlain);
  EXPECT_EQ(decoded(bytes, plane.size()), plane);
}

TEST(PlaneCodec, aPatternIsCompressed) {
  Bytes plane(65536);
  for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = static_cast<std::uint8_t>(i % 10);
  const Bytes bytes = encoded(plane);
  EXPECT_EQ(bytes[0], kPlaneZstd);
  EXPECT_LT(bytes.size(), 1000U);
  EXPECT_EQ(decoded(bytes, plane.size()), plane);
}

TEST(PlaneCodec, noBytesAreStoredAsNothing) {
  EXPECT_TRUE(encoded({}).empty());
}

TEST(PlaneCodec, refusesWhatIsNotAPlane) {
  EXPECT_THROW(decoded({3, 0}, 10), Malformed);
  EXPECT_THROW(decoded({kPlanePlain, 1, 2}, 10), Malformed);
  EXPECT_THROW(decoded({kPlaneZstd, 200, 0, 0, 0, 1}, 10), Malformed);
  EXPECT_THROW(decoded({kPlaneZstd, 2, 0, 0, 0, 1, 2}, 10), Malformed);
  EXPECT_THROW(decoded({}, 10), Malformed);
}

TEST(PlaneCodec, refusesAFrameOfAnotherSize) {
  Bytes plane(1000);
  for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = static_cast<std::uint8_t>(i % 10);
  const Bytes bytes = encoded(plane);
  EXPECT_THROW(decoded(bytes, 999), Malformed);
  EXPECT_THROW(decoded(bytes, 1001), Malformed);
}

TEST(PlaneCodec, numbersComeBackFromOneToFourPlanes) {
  Compressor compressor;
  Decompressor decompressor;
  for (const std::uint32_t highest : {0xFFU, 0xFFFFU, 0xFFFFFFU, 0xFFFFFFFFU}) {
    const unsigned width = planesFor(highest);
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < 500; ++i) numbers.push_back((i * 2654435761U) & highest);
    Bytes scratch(numbers.size());
    Bytes out;
    encodePlanes(numbers.data(), numbers.size(), width, scratch.data(), compressor, out);
    ByteReader in(out.data(), out.size());
    Arena arena;
    std::array<const std::uint8_t*, 4> planes{};
    for (unsigned byte = 0; byte < width; ++byte) {
      planes.at(byte) = decodePlane(in, numbers.size(), decompressor, arena);
    }
    std::vector<std::uint32_t> joined(numbers.size() - 100);
    joinPlanes(planes.data(), width, 100, joined.size(), joined.data());
    EXPECT_TRUE(std::equal(joined.begin(), joined.end(), numbers.begin() + 100)) << width;
  }
}

TEST(Checksum, isXxh3With64BitsAndSeedZero) {
  EXPECT_EQ(checksum("", 0), 0x2D06800538D394C2U);
  EXPECT_EQ(checksum("a", 1), 0xE6C632B61E964E1FU);
  EXPECT_EQ(checksum("abc", 3), 0x78AF5F94892F3950U);
}

TEST(PlaneCodec, aNumberNeedsAPlaneForEachByte) {
  EXPECT_EQ(planesFor(0), 0U);
  EXPECT_EQ(planesFor(255), 1U);
  EXPECT_EQ(planesFor(256), 2U);
  EXPECT_EQ(planesFor(65536), 3U);
  EXPECT_EQ(planesFor(1U << 24U), 4U);
}

}  // namespace
}  // namespace rxffile
