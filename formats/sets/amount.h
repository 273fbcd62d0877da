// What the values of a group of records come to.
//
// undef with anything is undef; na, and any other NaN, with other values is na; inf with -inf is
// undef in a sum or mean, and an infinity with numbers is that infinity. eps counts as 0 in a sum,
// and a sum of nothing but eps is eps; as least or greatest value it stands just above 0.
#ifndef ZTB_FORMATS_SETS_AMOUNT_H_
#define ZTB_FORMATS_SETS_AMOUNT_H_

#include <array>
#include <cstdint>
#include <span>

#include "formats/sets/set_options.h"

namespace formats {

class Amount {
 public:
  // As many words as it takes to keep one.
  static constexpr std::size_t words = 5;

  void add(double value);
  void add(const Amount& other);
  // Of at least one value.
  [[nodiscard]] double result(Statistic statistic) const;

  void store(std::uint64_t* into) const;
  static Amount stored(const std::uint64_t* from);

 private:
  void addNumber(double value);

  // The sum as the nearest double and what that leaves out.
  double sum_ = 0;
  double rest_ = 0;
  double least_ = 0;
  double greatest_ = 0;
  // Of all values; those of the special ones are told by what_.
  std::uint64_t count_ = 0;
  unsigned what_ = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_AMOUNT_H_
