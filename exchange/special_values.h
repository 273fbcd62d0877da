// The five special values and their mapping at the boundary.
//
// A stored record always holds the internal values below; a caller may name other doubles for the
// same five, and they are translated on the way in and out. Every comparison is on the 64-bit
// pattern, so that a NaN matches itself and 0.0 stays apart from -0.0. This is a leaf: it includes
// nothing of the other rooms.
#ifndef ZTB_EXCHANGE_SPECIAL_VALUES_H_
#define ZTB_EXCHANGE_SPECIAL_VALUES_H_

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ztb {

inline constexpr std::size_t specialValueCount = 5;

// In the order undefined, not available, plus infinity, minus infinity, epsilon.
using SpecialValues = std::array<double, specialValueCount>;

inline constexpr SpecialValues internalSpecialValues = {
    std::bit_cast<double>(std::uint64_t{0x7E37E43C8800759C}),  // undefined, 1e300
    std::bit_cast<double>(std::uint64_t{0x7FF8000000000000}),  // not available, quiet NaN
    std::bit_cast<double>(std::uint64_t{0x7FF0000000000000}),  // plus infinity
    std::bit_cast<double>(std::uint64_t{0xFFF0000000000000}),  // minus infinity
    std::bit_cast<double>(std::uint64_t{0x0000000000000001}),  // epsilon, smallest denormal
};

inline constexpr std::size_t epsilonCode = 4;

inline constexpr double internalPlusInfinity = internalSpecialValues[2];
inline constexpr double internalMinusInfinity = internalSpecialValues[3];

// How much mapping the caller's own values need.
enum class SpecialValueMode : std::int32_t {
  none = 0,     // all five equal the internal ones
  epsilon = 1,  // only epsilon differs
  all = 2,      // at least one of the first four differs
};

// Whether two doubles have the same 64 bits.
constexpr bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// False for the five internal values, NaNs and numbers at least as large as the one that stands for
// undefined; true for nearly all others, after one look.
constexpr bool isOrdinary(double value) {
  constexpr std::uint64_t withoutSign = 0x7FFFFFFFFFFFFFFF;
  constexpr auto undefined = std::bit_cast<std::uint64_t>(internalSpecialValues[0]);
  const std::uint64_t size = std::bit_cast<std::uint64_t>(value) & withoutSign;
  return size == 0 || size - 2 < undefined - 2;
}

// The mode that a caller's five values need.
SpecialValueMode modeOf(const SpecialValues& values);

// Replaces `value` by the entry of `to` at the first code whose entry in `from` has its bits.
// Mode `epsilon` looks at that code alone, mode `none` at nothing.
inline double mapSpecialValue(SpecialValueMode mode, const SpecialValues& from,
                              const SpecialValues& to, double value) {
  switch (mode) {
    case SpecialValueMode::none:
      return value;
    case SpecialValueMode::epsilon:
      return sameBits(value, from[epsilonCode]) ? to[epsilonCode] : value;
    case SpecialValueMode::all:
      break;
  }
  for (std::size_t code = 0; code < specialValueCount; ++code) {
    if (sameBits(value, from[code])) {
      return to[code];
    }
  }
  return value;
}

}  // namespace ztb

#endif  // ZTB_EXCHANGE_SPECIAL_VALUES_H_
