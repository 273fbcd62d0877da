// Signature codes of peer operations, checked against the C type while compiling.
//
// A signature is an array of codes: the result's first, then one for each argument behind the
// object handle. A peer is asked with this array whether it offers an operation, so a code that
// disagrees with the C type of the operation would let a call go wrong at run time. `Signature`
// therefore can be made only in a constant expression and only from codes that fit its type. The
// codes and the tables of operations stand in ztb/peer.h.

#ifndef ZTB_PEERS_SIGNATURE_H_
#define ZTB_PEERS_SIGNATURE_H_

#define ZTB_PEER_NO_PROTOTYPES
#include <ztb/peer.h>
#undef ZTB_PEER_NO_PROTOTYPES

#include <array>
#include <concepts>
#include <cstddef>
#include <span>

namespace ztb::peers {

// The codes that may stand for one C type.
template <typename T>
inline constexpr std::array<int, 0> codesOf{};
template <>
inline constexpr std::array codesOf<void>{int{ZTB_PEER_NO_RESULT}};
template <>
inline constexpr std::array codesOf<void*>{int{ZTB_PEER_POINTER}};
template <>
inline constexpr std::array codesOf<void**>{int{ZTB_PEER_POINTER_BY_REFERENCE}};
template <>
inline constexpr std::array codesOf<int>{int{ZTB_PEER_INT}, int{ZTB_PEER_BOOL}};
template <>
inline constexpr std::array codesOf<int*>{int{ZTB_PEER_INT_OUT}, int{ZTB_PEER_INT_BY_REFERENCE},
                                          int{ZTB_PEER_KEYS_OUT}};
template <>
inline constexpr std::array codesOf<const int*>{int{ZTB_PEER_KEYS_IN}};
template <>
inline constexpr std::array codesOf<double>{int{ZTB_PEER_DOUBLE}};
template <>
inline constexpr std::array codesOf<double*>{int{ZTB_PEER_DOUBLE_ARRAY_OUT},
                                             int{ZTB_PEER_DOUBLE_OUT}, int{ZTB_PEER_VALUES_OUT},
                                             int{ZTB_PEER_SPECIAL_VALUES_OUT}};
template <>
inline constexpr std::array codesOf<const double*>{int{ZTB_PEER_VALUES_IN},
                                                   int{ZTB_PEER_SPECIAL_VALUES_IN}};
template <>
inline constexpr std::array codesOf<const char*>{int{ZTB_PEER_STRING_IN}};
template <>
inline constexpr std::array codesOf<char*>{int{ZTB_PEER_STRING_OUT}, int{ZTB_PEER_BUFFER_OUT},
                                           int{ZTB_PEER_CHAR_OUT}};
template <>
inline constexpr std::array codesOf<const char**>{int{ZTB_PEER_STRINGS_IN}};
template <>
inline constexpr std::array codesOf<char**>{int{ZTB_PEER_STRINGS_OUT}};

template <typename T>
constexpr bool codeFits(int code) {
  for (const int allowed : codesOf<T>) {
    if (allowed == code) return true;
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
