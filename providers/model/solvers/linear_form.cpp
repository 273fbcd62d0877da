#include "providers/model/solvers/linear_form.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "providers/model/solvers/column_blocks.h"

namespace lomu {

namespace {

// Bounds of integer columns may miss an integer by what computing them cost.
constexpr double kIntegerRoom = 1e-9;

template <class T>
void copyInto(std::vector<T>& target, const T* source, int count) {
  if (count > 0) {
    target.assign(source, source + count);
  } else {
    target.clear();
  }
}

bool anyNan(const std::vector<double>& values) {
  return std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); });
}

bool allFinite(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

bool cross(const std::vector<double>& lowers, const std::vector<double>& uppers) {
  const double* const lower = lowers.data();
  const double* const upper = uppers.data();
  bool found = false;
  forEachBlock(static_cast<int>(lowers.size()), [&](int begin, int end) {
    const double crossings = marksIn(begin, end, [=](int k) {
      constexpr double kInfinite = std::numeric_limits<double>::infinity();
      const double beyond = lower[k] > upper[k] ? 1.0 : 0.0;
      const double endless = lower[k] == kInfinite ? 1.0 : 0.0;
      return beyond + endless + (upper[k] == -kInfinite ? 1.0 : 0.0);
    });
    found = crossings > 0;
    return !found;
  });
  return found;
}

}  // namespace

bool LinearForm::take(const SolverProblem& problem, std::string& reason) {
  if (problem.isSemiContinuous != nullptr || problem.setCount > 0) {
    reason = "the model has semi-continuous columns or special ordered sets, which cbc solves";
    return false;
  }
  choices.clear();
  columnCount = problem.columnCount;
  rowCount = problem.rowCount;
  copyInto(cost, problem.cost, columnCount);
  copyInto(lower, problem.lower, columnCount);
  copyInto(upper, problem.upper, columnCount);
  copyInto(isInteger, problem.isInteger, columnCount);
  copyInto(rowLower, problem.rowLower, rowCount);
  copyInto(rowUpper, problem.rowUpper, rowCount);
  if (columnCount > 0) {
    copyInto(start, problem.start, columnCount + 1);
  } else {
    start.assign(1, 0);
  }
  copyInto(rowOf, problem.rowOf, start.back());
  copyInto(value, problem.value, start.back());
  hasIntegers = std::any_of(isInteger.begin(), isInteger.end(), [](char flag) { return flag; });
  if (!foldProducts(problem, reason) || !numbersAreSound(reason)) return false;

  for (std::size_t j = 0; j < isInteger.size(); ++j) {
    if (isInteger[j] == 0) continue;
    lower[j] = std::ceil(lower[j] - kIntegerRoom);
    upper[j] = std::floor(upper[j] + kIntegerRoom);
  }
  return true;
}

SolverProblem LinearForm::problem() const {
  SolverProblem problem{};
  problem.columnCount = columnCount;
  problem.rowCount = rowCount;
  problem.cost = cost.data();
  problem.lower = lower.data();
  problem.upper = upper.data();
  problem.isInteger = isInteger.data();
  problem.hasIntegers = hasIntegers ? 1 : 0;
  problem.rowLower = rowLower.data();
  problem.rowUpper = rowUpper.data();
  problem.start = start.data();
  problem.rowOf = rowOf.data();
  problem.value = value.data();
  return problem;
}

bool LinearForm::foldProducts(const SolverProblem& problem, std::string& reason) {
  const auto standsStill = [&](int j) { return problem.lower[j] == problem.upper[j]; };
  for (const SolverProduct& product : productsOf(problem)) {
    if (product.value == 0) continue;
    int still = product.column1;
    int moving = product.column2;
    if (!standsStill(still)) std::swap(still, moving);
    if (!standsStill(still)) {
      reason = "the model has products of columns that are not fixed";
      return false;
    }
    const double coefficient = product.value * problem.lower[still];
    if (product.row == kObjectiveRow) {
      cost[static_cast<std::size_t>(moving)] += coefficient;
      continue;
    }
    const auto begin = rowOf.begin() + start[static_cast<std::size_t>(moving)];
    const auto end = rowOf.begin() + start[static_cast<std::size_t>(moving) + 1];
    const auto place = std::find(begin, end, product.row);
    if (place == end) {
      reason = "the matrix has no place for the product of columns " +
               std::to_string(product.column1) + " and " + std::to_string(product.column2) +
               " in row " + std::to_string(product.row);
      return false;
    }
    value[static_cast<std::size_t>(place - rowOf.begin())] += coefficient;
  }
  return true;
}

bool LinearForm::numbersAreSound(std::string& reason) const {
  if (!allFinite(cost) || !allFinite(value)) {
    reason = "the model has a coefficient that is not a finite number";
    return false;
  }
  if (anyNan(lower) || anyNan(upper) || anyNan(rowLower) || anyNan(rowUpper)) {
    reason = "the model has a bound or a right-hand side that is not a number";
    return false;
  }
  return true;
}

bool LinearForm::costsSuitClp(std::string& reason) const {
  constexpr double kTooLarge = 1e25;
  const auto found =
      std::ranges::find_if(cost, [](double one) { return std::abs(one) >= kTooLarge; });
  if (found == cost.end()) return true;
  std::array<char, 32> size{};
  std::snprintf(size.data(), size.size(), "%g", std::abs(*found));
  reason = "the cost of column #" + std::to_string(found - cost.begin()) + " has the size " +
           size.data() + ", expected one below 1e25";
  return false;
}

bool LinearForm::boundsCross() const {
  return cross(lower, upper) || cross(rowLower, rowUpper);
}

}  // namespace lomu
