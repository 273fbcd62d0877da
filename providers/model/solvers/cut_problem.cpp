#include "providers/model/solvers/cut_problem.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

#include "providers/model/at.h"

namespace lomu {

namespace {

constexpr double kNone = std::numeric_limits<double>::infinity();
// What is further away is no bound.
constexpr double kFar = 1e15;
// Coefficients that are smaller than this beside the largest are left out of a cut, and a cut
// whose others are further apart than that is none for a solver.
constexpr double kTiny = 1e-9;
constexpr double kApart = 1e6;
// Whole numbers below this are added and multiplied a few times without any rounding.
constexpr double kExact = 1e9;
// By how much a point must violate a cut, in its distance from it.
constexpr double kDistance = 1e-3;

double endless(double bound) {
  if (bound > kFar) return kNone;
  return bound < -kFar ? -kNone : bound;
}

bool isExact(double value) {
  return value == std::floor(value) && std::abs(value) < kExact;
}

// The bounds that the row a x + b y, between two sides, is for x.
void addBounds(const CutProblem& problem, int i, const CutEntry& x, const CutEntry& y,
               std::vector<MovingBound>& below, std::vector<MovingBound>& above) {
  const double slope = -y.value / x.value;
  const double low = problem.rowLower[at(i)];
  const double high = problem.rowUpper[at(i)];
  if (std::isfinite(low)) {
    (x.value > 0 ? below : above).push_back({y.at, low / x.value, slope, i});
  }
  if (std::isfinite(high)) {
    (x.value > 0 ? above : below).push_back({y.at, high / x.value, slope, i});
  }
}

}  // namespace

CutProblem::CutProblem(const LinearForm& form)
    : lower(form.lower),
      upper(form.upper),
      isInteger(form.isInteger),
      rowLower(form.rowLower),
      rowUpper(form.rowUpper),
      row(at(form.rowCount)),
      column(at(form.columnCount)),
      lowerBy(at(form.columnCount)),
      upperBy(at(form.columnCount)),
      norm_(at(form.rowCount)) {
  for (std::vector<double>* bounds : {&lower, &upper, &rowLower, &rowUpper}) {
    for (double& bound : *bounds) bound = endless(bound);
  }
  for (int j = 0; j < form.columnCount; ++j) {
    for (int e = form.start[at(j)]; e < form.start[at(j) + 1]; ++e) {
      const double value = form.value[at(e)];
      const int i = form.rowOf[at(e)];
      if (value == 0) continue;
      column[at(j)].push_back({i, value});
      row[at(i)].push_back({j, value});
      norm_[at(i)] += value * value;
    }
  }
  for (double& norm : norm_) norm = std::sqrt(norm);
  findMovingBounds();
  conflicts = Conflicts(*this);
}

void CutProblem::findMovingBounds() {
  for (int i = 0; i < rowCount(); ++i) {
    const std::vector<CutEntry>& entries = row[at(i)];
    if (entries.size() != 2) continue;
    const bool firstMoves = isInteger[at(entries[0].at)] == 0;
    const CutEntry& x = entries[firstMoves ? 0 : 1];
    const CutEntry& y = entries[firstMoves ? 1 : 0];
    if (isInteger[at(x.at)] != 0 || isInteger[at(y.at)] == 0) continue;
    addBounds(*this, i, x, y, lowerBy[at(x.at)], upperBy[at(x.at)]);
  }
}

bool CutProblem::isBinary(int j) const {
  return isInteger[at(j)] != 0 && lower[at(j)] == 0 && upper[at(j)] == 1;
}

double CutProblem::activity(int i, const double* point) const {
  double sum = 0;
  for (const CutEntry& entry : row[at(i)]) sum += entry.value * point[entry.at];
  return sum;
}

bool CutProblem::settle(Cut& cut, const double* point) const {
  double largest = 0;
  for (const double value : cut.value) largest = std::max(largest, std::abs(value));
  std::size_t kept = 0;
  double smallest = largest;
  bool exact = true;
  bool integers = true;
  for (std::size_t k = 0; k < cut.value.size(); ++k) {
    const double value = cut.value[k];
    const int j = cut.column[k];
    if (std::abs(value) <= kTiny * largest) {
      if (value == 0) continue;
      const double least = value * (value > 0 ? lower : upper)[at(j)];
      if (!std::isfinite(least)) return false;
      cut.right -= least;
      continue;
    }
    smallest = std::min(smallest, std::abs(value));
    exact = exact && isExact(value);
    integers = integers && isInteger[at(j)] != 0;
    cut.column[kept] = j;
    cut.value[kept++] = value;
  }
  cut.column.resize(kept);
  cut.value.resize(kept);
  if (kept == 0 || !std::isfinite(cut.right) || largest > kApart * smallest) return false;
  if (exact && integers && std::abs(cut.right) < kExact) {
    constexpr double kRounding = 1e-6;
    long long divisor = 0;
    for (const double value : cut.value) {
      divisor = std::gcd(divisor, static_cast<long long>(value));
    }
    for (double& value : cut.value) value /= static_cast<double>(divisor);
    cut.right = std::floor(cut.right / static_cast<double>(divisor) + kRounding);
  } else if (!exact || !isExact(cut.right)) {
    constexpr double kRoom = 1e-8;
    cut.right += kRoom * std::max({1.0, std::abs(cut.right), largest});
  }
  double sum = -cut.right;
  double square = 0;
  for (std::size_t k = 0; k < kept; ++k) {
    sum += cut.value[k] * point[cut.column[k]];
    square += cut.value[k] * cut.value[k];
  }
  return sum > kDistance * std::sqrt(square) && sum > kDistance * kDistance * std::abs(cut.right);
}

}  // namespace lomu
