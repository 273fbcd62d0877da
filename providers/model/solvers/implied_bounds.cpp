#include "providers/model/solvers/implied_bounds.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "providers/model/at.h"

namespace lomu {

namespace {

constexpr double kEndless = std::numeric_limits<double>::infinity();
// A bound may follow from one that was implied; more steps than that are no use to anyone.
constexpr int kSteps = 8;

}  // namespace

// The least or the most that rows can come to: the finite parts, and how many are infinite.
struct Reach::Sums {
  std::vector<double> finite;
  std::vector<int> infinite;

  explicit Sums(int rows) : finite(at(rows)), infinite(at(rows)) {}

  void add(int row, double part) {
    if (std::isinf(part)) {
      ++infinite[at(row)];
    } else {
      finite[at(row)] += part;
    }
  }
  // Of a row without the part of one column; `none` where that has no end.
  [[nodiscard]] double without(int row, double part, double none) const {
    if (std::isinf(part)) return infinite[at(row)] > 1 ? none : finite[at(row)];
    return infinite[at(row)] > 0 ? none : finite[at(row)] - part;
  }
};

Reach::Reach(const SolverProblem& problem)
    : lower(problem.lower, problem.lower + problem.columnCount),
      upper(problem.upper, problem.upper + problem.columnCount) {
  for (int j = 0; problem.isSemiContinuous != nullptr && j < problem.columnCount; ++j) {
    if (problem.isSemiContinuous[j] == 0) continue;
    lower[at(j)] = std::min(lower[at(j)], 0.0);
    upper[at(j)] = std::max(upper[at(j)], 0.0);
  }
  for (int step = 0; step < kSteps; ++step) {
    Sums least(problem.rowCount);
    Sums most(problem.rowCount);
    for (int j = 0; j < problem.columnCount; ++j) {
      for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
        const double value = problem.value[e];
        if (value == 0) continue;
        least.add(problem.rowOf[e], value * (value > 0 ? lower : upper)[at(j)]);
        most.add(problem.rowOf[e], value * (value > 0 ? upper : lower)[at(j)]);
      }
    }
    if (!narrow(problem, least, most)) return;
  }
}

// Whether a bound was implied that was not there before.
bool Reach::narrow(const SolverProblem& problem, const Sums& least, const Sums& most) {
  bool isNew = false;
  for (int j = 0; j < problem.columnCount; ++j) {
    if (std::isfinite(lower[at(j)]) && std::isfinite(upper[at(j)])) continue;
    double low = -kEndless;
    double high = kEndless;
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      const int row = problem.rowOf[e];
      const double value = problem.value[e];
      if (value == 0) continue;
      const double own = (value > 0 ? lower : upper)[at(j)];
      const double ownMost = (value > 0 ? upper : lower)[at(j)];
      // value * x <= most of the row - least of the others, and likewise from below.
      const double top =
          (problem.rowUpper[row] - least.without(row, value * own, -kEndless)) / value;
      const double bottom =
          (problem.rowLower[row] - most.without(row, value * ownMost, kEndless)) / value;
      low = std::max(low, value > 0 ? bottom : top);
      high = std::min(high, value > 0 ? top : bottom);
    }
    if (std::isinf(lower[at(j)]) && std::isfinite(low)) {
      lower[at(j)] = low;
      isNew = true;
    }
    if (std::isinf(upper[at(j)]) && std::isfinite(high)) {
      upper[at(j)] = high;
      isNew = true;
    }
  }
  return isNew;
}

}  // namespace lomu
