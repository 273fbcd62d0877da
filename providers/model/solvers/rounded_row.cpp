#include "providers/model/solvers/rounded_row.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <utility>

#include "providers/model/at.h"

namespace lomu {

namespace {

constexpr double kFarthest = std::numeric_limits<double>::infinity();
constexpr double kNear = 1e-7;
constexpr double kOffBounds = 1e-6;
// A right side that is nearer to a whole number of divisors rounds to nothing worth while, or to
// something that its errors grow in.
constexpr double kLeastPart = 0.01;
constexpr int kDivisors = 8;
constexpr int kTurns = 16;

// A whole number that sums and products of a few of its kind are exact for.
bool isWhole(double value) {
  constexpr double kLargest = 1e9;
  return value == std::floor(value) && std::abs(value) < kLargest;
}

// What a bound leaves of a level, and the bound: constant + slope * column, which is -1 for none.
struct BoundAt {
  double distance = kFarthest, constant = 0, slope = 0;
  int column = -1;
};

// The nearest of the bounds on one side, +1 for those above.
BoundAt nearest(const RoundingSum& sum, const double* point, double level, double fixed,
                const std::vector<MovingBound>& moving, double side) {
  BoundAt best;
  if (std::isfinite(fixed)) best = {side * (fixed - level), fixed, 0, -1};
  for (const MovingBound& bound : moving) {
    if (sum.has(bound.row)) continue;
    const double away = side * (bound.constant + bound.slope * point[bound.column] - level);
    if (away <= best.distance + kNear) best = {away, bound.constant, bound.slope, bound.column};
  }
  return best;
}

// The division of the right side, whole * divisor + part, and what it makes of factors: the cut by
// rounding times divisor - part, so that whole numbers stay whole numbers.
struct Division {
  double divisor, whole, part;

  Division(double right, double by)
      : divisor(by), whole(std::floor(right / by)), part(right - by * whole) {}

  [[nodiscard]] bool isFit() const {
    return part >= kLeastPart * divisor && part <= (1 - kLeastPart) * divisor;
  }
  [[nodiscard]] double left() const { return divisor - part; }
  [[nodiscard]] double of(double factor) const {
    const double times = std::floor(factor / divisor);
    return times * left() + std::max(0.0, factor - divisor * times - part);
  }
};

}  // namespace

RoundedRow::RoundedRow(const CutProblem& problem, const double* point)
    : problem_(problem),
      point_(point),
      whole_(problem.columnCount()),
      rest_(problem.columnCount()),
      made_(problem.columnCount()) {}

void RoundedRow::addToRight(double value) {
  right_ += value;
  size_ += std::abs(value);
}

bool RoundedRow::take(const RoundingSum& sum, double sign, Prefer prefer) {
  whole_.clear();
  rest_.clear();
  terms_.clear();
  restConstant_ = restLevel_ = restSquare_ = right_ = size_ = 0;
  addToRight(sign * sum.right());
  work_ += static_cast<long>(sum.value().columns().size());
  for (const int j : sum.value().columns()) {
    const double factor = sign * sum.value()[j];
    if (factor == 0) continue;
    if (problem_.isInteger[at(j)] != 0) {
      whole_.add(j, factor);
    } else if (!takeColumn(sum, j, factor, prefer)) {
      return false;
    }
  }
  for (const RoundingSum::Part& part : sum.parts()) {
    if (!part.isEquality) takeSlack(part, sign * part.factor * (part.atUpper ? 1 : -1));
  }
  for (const int j : whole_.columns()) {
    if (whole_[j] != 0 && !takeInteger(j, whole_[j])) return false;
  }
  exact_ = isWhole(right_) && isWhole(size_);
  for (const Term& term : terms_) exact_ = exact_ && isWhole(term.factor);
  constexpr double kHair = 1e-12;
  if (!exact_) right_ += kHair * std::max(1.0, size_);
  return std::isfinite(right_);
}

// column = bound + rest or bound - rest, where what is left on the left side is dropped when its
// factor is not below 0, and is added on the right one otherwise.
bool RoundedRow::takeColumn(const RoundingSum& sum, int column, double factor, Prefer prefer) {
  const double level = point_[column];
  const BoundAt low =
      nearest(sum, point_, level, problem_.lower[at(column)], problem_.lowerBy[at(column)], -1);
  const BoundAt high =
      nearest(sum, point_, level, problem_.upper[at(column)], problem_.upperBy[at(column)], 1);
  bool fromUpper = high.distance < low.distance - kNear;
  if (!fromUpper && prefer == Prefer::moving && high.distance < low.distance + kNear) {
    fromUpper = high.column >= 0 && low.column < 0;
  }
  const BoundAt& bound = fromUpper ? high : low;
  if (!std::isfinite(bound.distance)) return false;
  addToRight(-factor * bound.constant);
  if (bound.column >= 0) whole_.add(bound.column, factor * bound.slope);
  if (fromUpper ? factor <= 0 : factor >= 0) return true;
  restConstant_ += factor * bound.constant;
  if (bound.column >= 0) rest_.add(bound.column, factor * bound.slope);
  rest_.add(column, -factor);
  restLevel_ += std::abs(factor) * std::max(0.0, bound.distance);
  restSquare_ += factor * factor * (1 + bound.slope * bound.slope);
  return true;
}

void RoundedRow::takeSlack(const RoundingSum::Part& part, double factor) {
  if (factor >= 0) return;
  // The slack is side - row at the upper side, row - side at the lower one.
  const double side = (part.atUpper ? problem_.rowUpper : problem_.rowLower)[at(part.row)];
  const double sign = part.atUpper ? 1 : -1;
  double slack = sign * side;
  for (const CutEntry& entry : problem_.row[at(part.row)]) {
    rest_.add(entry.at, factor * sign * entry.value);
    slack -= sign * entry.value * point_[entry.at];
  }
  restConstant_ -= factor * sign * side;
  restLevel_ -= factor * std::max(0.0, slack);
  const double size = factor * problem_.norm(part.row);
  restSquare_ += size * size;
}

bool RoundedRow::takeInteger(int column, double factor) {
  const double low = problem_.lower[at(column)];
  const double high = problem_.upper[at(column)];
  const double level = point_[column];
  const bool fromUpper = high - level < level - low;
  const double bound = fromUpper ? high : low;
  if (!std::isfinite(bound)) return false;
  addToRight(-factor * bound);
  terms_.push_back({column, fromUpper ? -factor : factor,
                    std::max(0.0, fromUpper ? high - level : level - low), fromUpper, high - low});
  return true;
}

// The other bound of the integer.
void RoundedRow::turn(Term& term) {
  addToRight(-term.factor * term.range);
  term.factor = -term.factor;
  term.level = std::max(0.0, term.range - term.level);
  term.fromUpper = !term.fromUpper;
}

double RoundedRow::distance(double divisor) {
  const Division division(right_, divisor);
  if (!division.isFit()) return 0;
  work_ += static_cast<long>(terms_.size());
  double violation = -division.whole * division.left() - restLevel_;
  double square = restSquare_;
  for (const Term& term : terms_) {
    const double value = division.of(term.factor);
    violation += value * term.level;
    square += value * value;
  }
  return square > 0 ? violation / std::sqrt(square) : 0;
}

void RoundedRow::tryDivisor(double divisor) {
  const double found = distance(divisor);
  if (found <= distance_) return;
  distance_ = found;
  divisor_ = divisor;
}

double RoundedRow::round() {
  distance_ = 0;
  std::vector<double> divisors;
  double largest = 0;
  for (const Term& term : terms_) largest = std::max(largest, std::abs(term.factor));
  for (const Term& term : terms_) {
    constexpr double kLeast = 1e-4;
    const double size = std::abs(term.factor);
    if (term.level < kOffBounds || term.level > term.range - kOffBounds) continue;
    if (size > kLeast * largest) divisors.push_back(size);
  }
  if (divisors.empty()) return 0;
  std::sort(divisors.begin(), divisors.end(), std::greater<>());
  const auto same = [](double a, double b) { return a - b < 1e-9 * a; };
  divisors.erase(std::unique(divisors.begin(), divisors.end(), same), divisors.end());
  if (divisors.size() > kDivisors) divisors.resize(kDivisors);
  if (exact_) divisors.push_back(largest + 1);
  for (const double divisor : divisors) tryDivisor(divisor);
  if (distance_ <= 0) return 0;
  const double first = divisor_;
  for (const double parts : {2.0, 4.0, 8.0}) {
    if (!exact_ || isWhole(first / parts)) tryDivisor(first / parts);
  }
  // The other bounds of integers between theirs, those first that are as far from both.
  std::vector<std::pair<double, std::size_t>> middle;
  for (std::size_t k = 0; k < terms_.size(); ++k) {
    const Term& term = terms_[k];
    if (!std::isfinite(term.range) || term.level < kOffBounds) continue;
    middle.emplace_back(std::abs(term.range - 2 * term.level), k);
  }
  std::sort(middle.begin(), middle.end());
  if (middle.size() > kTurns) middle.resize(kTurns);
  for (const auto& [unused, k] : middle) {
    const double before = right_;
    turn(terms_[k]);
    const double found = distance(divisor_);
    if (found > distance_) {
      distance_ = found;
      continue;
    }
    turn(terms_[k]);
    right_ = before;
  }
  return distance_;
}

void RoundedRow::cut(Cut& cut) {
  const Division division(right_, divisor_);
  made_.clear();
  cut.right = division.whole * division.left() + restConstant_;
  for (const Term& term : terms_) {
    const double value = division.of(term.factor);
    const auto& bounds = term.fromUpper ? problem_.upper : problem_.lower;
    const double sign = term.fromUpper ? -1 : 1;
    made_.add(term.column, sign * value);
    cut.right += sign * value * bounds[at(term.column)];
  }
  for (const int j : rest_.columns()) made_.add(j, -rest_[j]);
  cut.column.clear();
  cut.value.clear();
  for (const int j : made_.columns()) {
    cut.column.push_back(j);
    cut.value.push_back(made_[j]);
  }
}

long RoundedRow::takeWork() {
  return std::exchange(work_, 0);
}

}  // namespace lomu
