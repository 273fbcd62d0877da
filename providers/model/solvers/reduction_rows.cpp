// What a row tells by itself.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/reduction.h"

namespace lomu {

namespace {

// By more than a check of points lets a row be missed by.
constexpr double kMissed = 2e-6;
// What sums and differences of doubles are off by, with room.
constexpr double kSumsAreOff = 1e-12;
// Terms beyond are taken for infinite: their sums with others say nothing.
constexpr double kLargeTerm = 1e12;

// The integers from low to high, where those that a check of points lets pass are no others.
bool roundClearly(double& low, double& high, double room) {
  constexpr double kHair = 1e-9;
  const double clearLow = std::ceil(low - kHair * std::max(1.0, std::abs(low)));
  const double clearHigh = std::floor(high + kHair * std::max(1.0, std::abs(high)));
  if (std::ceil(low - room) != clearLow || std::floor(high + room) != clearHigh) return false;
  low = clearLow + 0.0;
  high = clearHigh + 0.0;
  return true;
}

bool isWhole(double value) {
  constexpr double kLargeWhole = 1e6;
  return std::abs(value) <= kLargeWhole && value == std::floor(value);
}

// Differences of decimals leave a hair beside the whole number that they mean.
double withoutHair(double side, double size) {
  const double near = std::round(side);
  return std::abs(side - near) <= kSumsAreOff * 1e-2 * std::max(1.0, size) ? near + 0.0 : side;
}

}  // namespace

std::pair<double, double> Reduction::ends(const Entry& entry) const {
  const auto j = at(entry.column);
  const double atLower = entry.value * lower_[j];
  const double atUpper = entry.value * upper_[j];
  return entry.value > 0 ? std::pair{atLower, atUpper} : std::pair{atUpper, atLower};
}

Reduction::Sums Reduction::sumsOf(const Row& row) const {
  Sums sums;
  for (const Entry& one : row.entries) {
    const auto [least, most] = ends(one);
    if (std::abs(least) > kLargeTerm) {
      ++sums.leastInfinite;
    } else {
      sums.least += least;
      sums.largest = std::max(sums.largest, std::abs(least));
    }
    if (std::abs(most) > kLargeTerm) {
      ++sums.mostInfinite;
    } else {
      sums.most += most;
      sums.largest = std::max(sums.largest, std::abs(most));
    }
  }
  return sums;
}

double Reduction::roomOf(const Row& row, const Sums& sums) const {
  return kMissed * std::max({1.0, sums.largest, row.absorbed});
}

void Reduction::absorbFixed(Row& row) {
  std::erase_if(row.entries, [&](const Entry& one) {
    if (!isFixed(one.column)) return false;
    const double term = one.value * lower_[at(one.column)];
    if (term == 0) return true;
    row.absorbed = std::max(row.absorbed, std::abs(term));
    row.lower = withoutHair(row.lower - term, row.absorbed);
    row.upper = withoutHair(row.upper - term, row.absorbed);
    return true;
  });
}

bool Reduction::visit(int number) {
  Row& row = rows_[at(number)];
  work_ -= static_cast<double>(row.entries.size()) + 1;
  absorbFixed(row);
  const Sums sums = sumsOf(row);
  const double room = roomOf(row, sums);
  if (sums.leastInfinite == 0 && sums.least > row.upper + room) return false;
  if (sums.mostInfinite == 0 && sums.most < row.lower - room) return false;
  // Sides that no choice within bounds can be beyond.
  const double hair = kSumsAreOff * std::max({1.0, sums.largest, row.absorbed});
  if (sums.leastInfinite == 0 && sums.least >= row.lower - hair) row.lower = -HUGE_VAL;
  if (sums.mostInfinite == 0 && sums.most <= row.upper + hair) row.upper = HUGE_VAL;
  if (row.entries.empty() || (std::isinf(row.lower) && std::isinf(row.upper))) {
    remove(number);
    return true;
  }
  if (row.entries.size() == 1) return takeSingle(number);
  if (!roundSides(row, sums)) return false;
  if (row.entries.size() == 2 && row.lower == row.upper) {
    bool taken = false;
    if (!takeEquality(number, taken)) return false;
    if (taken) return true;
  }
  if (!tightenBounds(number, sums)) return false;
  // Bounds that moved have queued the row once more.
  if (!row.isWaiting) tightenCoefficients(number);
  return true;
}

// Bounds instead of a row of one column.
bool Reduction::takeSingle(int number) {
  const Row row = rows_[at(number)];
  const Entry one = row.entries.front();
  double low = (one.value > 0 ? row.lower : row.upper) / one.value;
  double high = (one.value > 0 ? row.upper : row.lower) / one.value;
  // A bound is to be as exact as the row.
  if (std::abs(one.value) < 1e-3 || std::abs(one.value) > 1e3) return true;
  if (form_.isInteger[at(one.column)] != 0) {
    const double term = std::max(std::isfinite(low) ? std::abs(low) : 0.0,
                                 std::isfinite(high) ? std::abs(high) : 0.0);
    const double size = std::max({1.0, row.absorbed, std::abs(one.value) * term});
    if (!roundClearly(low, high, kMissed * size / std::min(1.0, std::abs(one.value)))) return true;
  }
  remove(number);
  return narrow(one.column, low, high);
}

// A row of integers with whole coefficients comes to multiples of their common divisor.
bool Reduction::roundSides(Row& row, const Sums& sums) {
  std::int64_t divisor = 0;
  for (const Entry& one : row.entries) {
    if (form_.isInteger[at(one.column)] == 0 || !isWhole(one.value)) return true;
    divisor = std::gcd(divisor, static_cast<std::int64_t>(one.value));
  }
  const double room = roomOf(row, sums);
  if (sums.leastInfinite + sums.mostInfinite > 0 || room > 0.1) return true;
  const auto step = static_cast<double>(divisor);
  double low = row.lower / step;
  double high = row.upper / step;
  if (!roundClearly(low, high, room)) return true;
  if (low > high) return false;
  row.lower = low * step;
  row.upper = high * step;
  return true;
}

// a * x + b * y = side with x an integer where y is one: x = side / a - (b / a) * y, where that is
// exact, and an integer whenever y is.
bool Reduction::takeEquality(int number, bool& taken) {
  const Row row = rows_[at(number)];
  for (int k = 0; k < 2; ++k) {
    const Entry& out = row.entries[at(k)];
    const Entry& other = row.entries[at(1 - k)];
    const double factor = -other.value / out.value;
    const double offset = row.lower / out.value;
    if (std::abs(factor) != 1) continue;
    if (form_.isInteger[at(out.column)] != 0 &&
        (form_.isInteger[at(other.column)] == 0 || !isWhole(offset))) {
      continue;
    }
    // The bounds of the one are those of the other, too.
    double low = (lower_[at(out.column)] - offset) * factor;
    double high = (upper_[at(out.column)] - offset) * factor;
    if (factor < 0) std::swap(low, high);
    const double room = kMissed * std::max({1.0, std::abs(offset), row.absorbed});
    if (form_.isInteger[at(other.column)] != 0 && !roundClearly(low, high, room)) continue;
    remove(number);
    if (!narrow(other.column, low, high)) return false;
    taken = true;
    if (!isFixed(other.column)) {
      tie({out.column, other.column, offset, factor});
      return true;
    }
    const double level = offset + factor * lower_[at(other.column)];
    return narrow(out.column, level, level);
  }
  return true;
}

// Bounds of integers that follow from the others of a row. Those of other columns stay as they are:
// an equal bound elsewhere in the linear problem is of no use to it.
bool Reduction::tightenBounds(int number, const Sums& sums) {
  const double room = roomOf(rows_[at(number)], sums);
  for (std::size_t e = 0; e < rows_[at(number)].entries.size(); ++e) {
    const Row& row = rows_[at(number)];
    const Entry one = row.entries[e];
    const auto j = at(one.column);
    if (form_.isInteger[j] == 0) continue;
    // Of the sums as they were: what this loop narrows has the row looked at once more.
    const auto [from, to] = ends(one);
    const bool isFromLarge = std::abs(from) > kLargeTerm;
    const bool isToLarge = std::abs(to) > kLargeTerm;
    double most = HUGE_VAL;
    double least = -HUGE_VAL;
    if (sums.leastInfinite == (isFromLarge ? 1 : 0)) {
      most = row.upper + room - (sums.least - (isFromLarge ? 0 : from));
    }
    if (sums.mostInfinite == (isToLarge ? 1 : 0)) {
      least = row.lower - room - (sums.most - (isToLarge ? 0 : to));
    }
    double low = (one.value > 0 ? least : most) / one.value;
    double high = (one.value > 0 ? most : least) / one.value;
    constexpr double kOff = 1e-6;
    constexpr double kFarBound = 1e9;
    low = std::ceil(low - kOff * std::max(1.0, std::abs(low)));
    high = std::floor(high + kOff * std::max(1.0, std::abs(high)));
    if (!(low > lower_[j]) || std::abs(low) > kFarBound) low = lower_[j];
    if (!(high < upper_[j]) || std::abs(high) > kFarBound) high = upper_[j];
    if (!narrow(one.column, low, high)) return false;
  }
  return true;
}

// Of a row with one side, a * x + rest <= side: where rest <= most, and x one short of its upper
// bound u leaves d = side - most - a * (u - 1) > 0 to spare, but d < a, the row is as well
// (a - d) * x + rest <= side - d * u: at u it says the same, and below both say nothing. Without
// integrality it allows less. With a < 0 the same from the lower bound.
void Reduction::tightenCoefficients(int number) {
  Row& row = rows_[at(number)];
  if (std::isinf(row.lower) == std::isinf(row.upper)) return;
  const double sign = std::isinf(row.lower) ? 1 : -1;
  double side = sign > 0 ? row.upper : -row.lower;
  bool changed = false;
  for (Entry& one : row.entries) {
    const auto j = at(one.column);
    if (form_.isInteger[j] == 0) continue;
    const Sums sums = sumsOf(row);
    const double mostOfAll = sign > 0 ? sums.most : -sums.least;
    if ((sign > 0 ? sums.mostInfinite : sums.leastInfinite) > 0) break;
    work_ -= static_cast<double>(row.entries.size());
    const double value = sign * one.value;
    const double bound = value > 0 ? upper_[j] : lower_[j];
    // side - most - a * (u - 1), where mostOfAll is most + a * u.
    const double spare = side - mostOfAll + std::abs(value);
    constexpr double kWorthIt = 1e-5;
    const double least = kWorthIt * std::max({1.0, sums.largest, row.absorbed});
    if (spare <= least || spare >= std::abs(value) - least) continue;
    const double step = value > 0 ? spare : -spare;
    one.value -= sign * step;
    side = withoutHair(side - step * bound, std::max(sums.largest, row.absorbed));
    ++strengthened_;
    changed = true;
  }
  if (!changed) return;
  (sign > 0 ? row.upper : row.lower) = sign * side + 0.0;
  queue(number);
}

}  // namespace lomu
