// Signature codes of peer operations, checked against the C type while compiling.
//
// A signature is an array of codes: the result's first, then one for each argument behind the
// object handle. A peer is asked with this array whether it offers an operation, so a code that
// disagrees with the C type of the operation would let a call go wrong at run time. `Signature`
// therefore can be made only in a constant expression and only from codes that fit its type.

#ifndef ZTB_PEERS_SIGNATURE_H_
#define ZTB_PEERS_SIGNATURE_H_

#include <array>
#include <concepts>
#include <cstddef>
#include <span>

namespace ztb::peers {

enum SignatureCode : int {
  codeNoResult = 0,
  codePointer = 1,
  codePointerByReference = 2,
  codeInt = 3,
  codeIntOut = 4,
  codeDoubleArrayOut = 6,
  codeStringIn = 11,
  codeStringOut = 12,
  codeDouble = 13,
  codeDoubleOut = 14,
  codeBool = 15,
  codeBufferOut = 17,
  codeCharOut = 19,
  codeIntByReference = 21,
  codeKeysIn = 51,
  codeKeysOut = 52,
  codeValuesIn = 53,
  codeValuesOut = 54,
  codeStringsIn = 55,
  codeStringsOut = 56,
  codeSpecialValuesIn = 57,
  codeSpecialValuesOut = 58
};

// The codes that may stand for one C type.
template <typename T>
inline constexpr std::array<int, 0> codesOf{};
template <>
inline constexpr std::array codesOf<void>{int{codeNoResult}};
template <>
inline constexpr std::array codesOf<void*>{int{codePointer}};
template <>
inline constexpr std::array codesOf<void**>{int{codePointerByReference}};
template <>
inline constexpr std::array codesOf<int>{int{codeInt}, int{codeBool}};
template <>
inline constexpr std::array codesOf<int*>{int{codeIntOut}, int{codeIntByReference},
                                          int{codeKeysOut}};
template <>
inline constexpr std::array codesOf<const int*>{int{codeKeysIn}};
template <>
inline constexpr std::array codesOf<double>{int{codeDouble}};
template <>
inline constexpr std::array codesOf<double*>{int{codeDoubleArrayOut}, int{codeDoubleOut},
                                             int{codeValuesOut}, int{codeSpecialValuesOut}};
template <>
inline constexpr std::array codesOf<const double*>{int{codeValuesIn}, int{codeSpecialValuesIn}};
template <>
inline constexpr std::array codesOf<const char*>{int{codeStringIn}};
template <>
inline constexpr std::array codesOf<char*>{int{codeStringOut}, int{codeBufferOut},
                                           int{codeCharOut}};
template <>
inline constexpr std::array codesOf<const char**>{int{codeStringsIn}};
template <>
inline constexpr std::array codesOf<char**>{int{codeStringsOut}};

template <typename T>
constexpr bool codeFits(int code) {
  for (const int allowed : codesOf<T>) {
    if (allowed == code) return true;
  }
  return false;
}

// True if a string, a string buffer or an array of strings stands anywhere in `codes`. A single
// character going out is none of these.
constexpr bool passesText(std::span<const int> codes) noexcept {
  for (const int code : codes) {
    if (code == codeStringIn || code == codeStringOut || code == codeBufferOut ||
        code == codeStringsIn || code == codeStringsOut) {
      return true;
    }
  }
  return false;
}

template <typename Type>
class Signature;

template <typename Result, typename... Args>
class Signature<Result(Args...)> {
 public:
  // Does not compile when the number of codes or one of them does not fit Result(Args...).
  template <std::same_as<int>... Codes>
  requires(sizeof...(Codes) == 1 + sizeof...(Args)) consteval Signature(Codes... codes)
      : codes_{codes...} {
    std::size_t position = 0;
    bool fits = codeFits<Result>(codes_[position]);
    ((fits = codeFits<Args>(codes_[++position]) && fits), ...);
    if (!fits) throw "a signature code does not fit the type of the operation";
  }

  [[nodiscard]] constexpr std::span<const int> all() const noexcept { return codes_; }

 private:
  std::array<int, 1 + sizeof...(Args)> codes_;
};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_SIGNATURE_H_
