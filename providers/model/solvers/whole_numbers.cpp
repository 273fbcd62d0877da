#include "providers/model/solvers/whole_numbers.h"

#include <algorithm>
#include <cmath>

#include "providers/model/at.h"

namespace lomu {

namespace {

constexpr double kLargestCoefficient = 1e4;
constexpr double kLargestSide = 1e5;
constexpr double kLargestCost = 1e6;

bool isWhole(double value, double largest) {
  return std::round(value) == value && std::abs(value) <= largest;
}

bool isWholeOrNone(double bound) {
  return std::isinf(bound) || isWhole(bound, kLargestSide);
}

bool isWholeHundredths(double cost) {
  return std::round(100 * cost) / 100 == cost && std::abs(cost) <= kLargestCost;
}

bool columnIsWhole(const LinearForm& form, int j) {
  const double largest = form.isInteger[at(j)] != 0 ? kLargestCoefficient : 1;
  const auto first = form.value.begin() + form.start[at(j)];
  const auto last = form.value.begin() + form.start[at(j) + 1];
  return isWholeHundredths(form.cost[at(j)]) && isWholeOrNone(form.lower[at(j)]) &&
         isWholeOrNone(form.upper[at(j)]) &&
         std::all_of(first, last, [largest](double value) { return isWhole(value, largest); });
}

}  // namespace

bool hasWholeNumbers(const LinearForm& form) {
  for (int j = 0; j < form.columnCount; ++j) {
    if (!columnIsWhole(form, j)) return false;
  }
  return std::all_of(form.rowLower.begin(), form.rowLower.end(), isWholeOrNone) &&
         std::all_of(form.rowUpper.begin(), form.rowUpper.end(), isWholeOrNone);
}

bool integersHaveEnds(const LinearForm& form) {
  constexpr double kMostNumbers = 1e4;
  for (std::size_t j = 0; j < form.lower.size(); ++j) {
    if (form.isInteger[j] == 0) continue;
    if (!(form.upper[j] - form.lower[j] <= kMostNumbers)) return false;
  }
  return true;
}

}  // namespace lomu
