// A table of special values: which double stands for which of the five codes.
//
// Values are compared by their 64 bits. Where two codes have the same double the lower code wins.
#ifndef ZTB_PROVIDERS_RXF_SPECIAL_TABLE_H_
#define ZTB_PROVIDERS_RXF_SPECIAL_TABLE_H_

#include <array>
#include <bit>
#include <cstdint>

#include "providers/rxf/limits.h"

namespace rxffile {

class SpecialTable {
 public:
  // The library's own table: 1e300, the plain quiet NaN, plus and minus infinity, and the smallest
  // denormal.
  SpecialTable() {
    set({0x7E37E43C8800759CU, 0x7FF8000000000000U, 0x7FF0000000000000U, 0xFFF0000000000000U, 1U});
  }

  void set(const std::array<std::uint64_t, kSpecialCount>& patterns) {
    patterns_ = patterns;
    mayHold_.fill(0);
    for (const std::uint64_t pattern : patterns_) mayHold_[placeOf(pattern)] = 1;
  }

  // 0 for an ordinary value, code + 1 for a special one.
  [[nodiscard]] std::uint8_t markOf(double value) const {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    if (mayHold_[placeOf(bits)] == 0) return 0;
    for (std::uint8_t code = 0; code < kSpecialCount; ++code) {
      if (patterns_[code] == bits) return static_cast<std::uint8_t>(code + 1);
    }
    return 0;
  }

  // Double of a code, 0 to 4.
  [[nodiscard]] double valueOf(unsigned code) const {
    return std::bit_cast<double>(patterns_.at(code));
  }

 private:
  static constexpr unsigned kPlaceBits = 10;

  static std::size_t placeOf(std::uint64_t bits) {
    return (bits * 0x9E3779B97F4A7C15U) >> (64 - kPlaceBits);
  }

  std::array<std::uint64_t, kSpecialCount> patterns_{};
  // Lets an ordinary value pass with one look.
  std::array<std::uint8_t, std::size_t{1} << kPlaceBits> mayHold_{};
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_SPECIAL_TABLE_H_
