#include "providers/rxf/byte_planes.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <vector>

namespace rxffile {
namespace {

// Doubles whose bytes are all different: byte b of value i is a function of both.
std::vector<double> distinctBytes(std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::uint64_t bits = 0;
    for (std::size_t b = 0; b < 8; ++b) bits |= ((i * 31 + b * 7) % 251) << (8 * b);
    values[i] = std::bit_cast<double>(bits);
  }
  return values;
}

class BytePlanes : public testing::TestWithParam<std::size_t> {};

TEST_P(BytePlanes, planeBHoldsByteBOfEveryValue) {
  const std::vector<double> values = distinctBytes(GetParam());
  std::vector<std::uint8_t> planes(values.size() * 8);
  splitDoubles(values.data(), values.size(), planes.data());
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t b = 0; b < 8; ++b) {
      ASSERT_EQ(planes[b * values.size() + i], (i * 31 + b * 7) % 251) << i << " " << b;
    }
  }
}

TEST_P(BytePlanes, joiningGivesTheSameBits) {
  const std::vector<double> values = distinctBytes(GetParam());
  std::vector<std::uint8_t> planes(values.size() * 8);
  splitDoubles(values.data(), values.size(), planes.data());
  std::array<const std::uint8_t*, 8> parts{};
  for (std::size_t b = 0; b < 8; ++b) parts[b] = planes.data() + b * values.size();
  std::vector<double> joined(values.size());
  joinDoubles(parts, joined.size(), joined.data());
  EXPECT_EQ(std::memcmp(values.data(), joined.data(), values.size() * sizeof(double)), 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, BytePlanes, testing::Values(1, 2, 15, 16, 17, 31, 32, 33, 1000));

}  // namespace
}  // namespace rxffile
