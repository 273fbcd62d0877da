// How the ordinary values of one slot stand in a block: the form numbers and what they share.
#ifndef ZTB_PROVIDERS_RXF_VALUE_FORM_H_
#define ZTB_PROVIDERS_RXF_VALUE_FORM_H_

#include <array>
#include <cstdint>

namespace rxffile {

inline constexpr std::uint8_t kFormConstant = 0;
inline constexpr std::uint8_t kFormDecimal = 1;
inline constexpr std::uint8_t kFormDictionary = 2;
inline constexpr std::uint8_t kFormPlain = 3;

// Powers of ten by which a decimal number may be divided; all are exact doubles.
inline constexpr std::array<double, 10> kPowersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4,
                                                        1e5, 1e6, 1e7, 1e8, 1e9};

inline constexpr std::uint32_t kMaxDictionary = 65536;

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_VALUE_FORM_H_
