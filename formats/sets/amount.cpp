#include "formats/sets/amount.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "tools/text/number_text.h"

namespace formats {

namespace {

// What was among the values; kept above the count.
enum : unsigned {
  hasUndefined = 1,
  hasMissing = 2,
  hasInfinity = 4,
  hasMinusInfinity = 8,
  hasEpsilon = 16,
  hasNumber = 32
};

constexpr double undefinedAmount = 1e300;
constexpr double endlessAmount = std::numeric_limits<double>::infinity();
constexpr double epsilonAmount = std::numeric_limits<double>::denorm_min();
constexpr unsigned countBits = 56;

double missingAmount() {
  return std::bit_cast<double>(std::uint64_t{0x7FF8000000000000});
}

}  // namespace

void Amount::addNumber(double value) {
  const double sum = sum_ + value;
  rest_ += std::abs(sum_) >= std::abs(value) ? (sum_ - sum) + value : (value - sum) + sum_;
  sum_ = sum;
}

void Amount::add(double value) {
  const bool first = (what_ & ~unsigned{hasUndefined | hasMissing}) == 0;
  ++count_;
  if (tool::sameBits(value, undefinedAmount)) {
    what_ |= hasUndefined;
    return;
  }
  if (std::isnan(value)) {
    what_ |= hasMissing;
    return;
  }
  least_ = first ? value : std::min(least_, value);
  greatest_ = first ? value : std::max(greatest_, value);
  if (std::isinf(value)) {
    what_ |= value > 0 ? hasInfinity : hasMinusInfinity;
  } else if (tool::sameBits(value, epsilonAmount)) {
    what_ |= hasEpsilon;
  } else {
    what_ |= hasNumber;
    addNumber(value);
  }
}

void Amount::add(const Amount& other) {
  constexpr unsigned noOrder = hasUndefined | hasMissing;
  if ((other.what_ & ~noOrder) != 0) {
    const bool first = (what_ & ~noOrder) == 0;
    least_ = first ? other.least_ : std::min(least_, other.least_);
    greatest_ = first ? other.greatest_ : std::max(greatest_, other.greatest_);
  }
  addNumber(other.sum_);
  rest_ += other.rest_;
  count_ += other.count_;
  what_ |= other.what_;
}

double Amount::result(Statistic statistic) const {
  if (statistic == Statistic::count) return static_cast<double>(count_);
  constexpr unsigned both = hasInfinity | hasMinusInfinity;
  const bool adds = statistic == Statistic::sum || statistic == Statistic::mean;
  if ((what_ & hasUndefined) != 0) return undefinedAmount;
  if ((what_ & hasMissing) != 0) return missingAmount();
  if (adds && (what_ & both) == both) return undefinedAmount;
  if (statistic == Statistic::min) return least_;
  if (statistic == Statistic::max) return greatest_;
  if ((what_ & both) != 0) return (what_ & hasInfinity) != 0 ? endlessAmount : -endlessAmount;
  if (what_ == hasEpsilon) return epsilonAmount;
  // A sum beyond all doubles has nothing left to be made good.
  const double sum = std::isfinite(rest_) ? sum_ + rest_ : sum_;
  return statistic == Statistic::sum ? sum : sum / static_cast<double>(count_);
}

void Amount::store(std::uint64_t* into) const {
  into[0] = std::bit_cast<std::uint64_t>(sum_);
  into[1] = std::bit_cast<std::uint64_t>(rest_);
  into[2] = std::bit_cast<std::uint64_t>(least_);
  into[3] = std::bit_cast<std::uint64_t>(greatest_);
  into[4] = count_ | std::uint64_t{what_} << countBits;
}

Amount Amount::stored(const std::uint64_t* from) {
  Amount amount;
  amount.sum_ = std::bit_cast<double>(from[0]);
  amount.rest_ = std::bit_cast<double>(from[1]);
  amount.least_ = std::bit_cast<double>(from[2]);
  amount.greatest_ = std::bit_cast<double>(from[3]);
  amount.count_ = from[4] & ((std::uint64_t{1} << countBits) - 1);
  amount.what_ = static_cast<unsigned>(from[4] >> countBits);
  return amount;
}

}  // namespace formats
