#include "providers/model/solvers/point_check.h"

#include <algorithm>
#include <cmath>

namespace lomu {

namespace {

constexpr double kPointTolerance = 1e-6;

bool outside(double value, double size, double lower, double upper) {
  const double room = kPointTolerance * std::max(1.0, size);
  // Written so that a NaN is outside.
  return !(value >= lower - room && value <= upper + room);
}

// Calls `add` with row and amount of every term, products included.
template <class Add>
void forEachTerm(const SolverProblem& problem, const std::vector<double>& level, const Add& add) {
  for (int j = 0; j < problem.columnCount; ++j) {
    const double at = level[static_cast<std::size_t>(j)];
    if (at == 0) continue;
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      add(static_cast<std::size_t>(problem.rowOf[e]), problem.value[e] * at);
    }
  }
  for (const SolverProduct& p : productsOf(problem)) {
    if (p.row == kObjectiveRow) continue;
    add(static_cast<std::size_t>(p.row), p.value * level[static_cast<std::size_t>(p.column1)] *
                                             level[static_cast<std::size_t>(p.column2)]);
  }
}

std::string outsideText(const char* what, std::size_t number, double value, double lower,
                        double upper) {
  return std::string(what) + " #" + std::to_string(number) + " at " + std::to_string(value) +
         " is outside of " + std::to_string(lower) + " to " + std::to_string(upper);
}

bool isZero(double level) {
  return std::abs(level) <= kPointTolerance;
}

// The columns of a set that are not 0 are too many, or no neighbours.
bool breaks(const ztbSolverSet& set, const SolverProblem& problem,
            const std::vector<double>& level) {
  int first = -1;
  for (int k = 0; k < set.count; ++k) {
    if (isZero(level[static_cast<std::size_t>(problem.setColumns[set.first + k])])) continue;
    if (first < 0) first = k;
    if (k - first >= set.kind) return true;
  }
  return false;
}

}  // namespace

std::string violation(const SolverProblem& problem, const std::vector<double>& level) {
  for (std::size_t j = 0; j < level.size(); ++j) {
    const double at = level[j];
    const bool inside = at >= problem.lower[j] && at <= problem.upper[j] && std::isfinite(at);
    if (inside && problem.isInteger[j] == 0) continue;
    if (problem.isSemiContinuous != nullptr && problem.isSemiContinuous[j] != 0 && isZero(at)) {
      continue;
    }
    if (!std::isfinite(at) || outside(at, std::abs(at), problem.lower[j], problem.upper[j])) {
      return outsideText("column", j, at, problem.lower[j], problem.upper[j]);
    }
    if (problem.isInteger[j] != 0 && outside(at, std::abs(at), std::round(at), std::round(at))) {
      return "column #" + std::to_string(j) + " at " + std::to_string(at) + " is no integer";
    }
  }
  for (int s = 0; s < problem.setCount; ++s) {
    if (breaks(problem.sets[s], problem, level)) {
      return "set " + std::to_string(s) + " has too many columns that are not 0";
    }
  }
  const auto rows = static_cast<std::size_t>(problem.rowCount);
  std::vector<double> activity(rows);
  forEachTerm(problem, level, [&](std::size_t row, double term) { activity[row] += term; });
  // The largest term of a row is looked for only where a row misses its bounds by more than what
  // terms up to 1 allow.
  std::vector<double> largest;
  for (std::size_t i = 0; i < rows; ++i) {
    const double at = activity[i];
    if (!outside(at, 1, problem.rowLower[i], problem.rowUpper[i])) continue;
    if (largest.empty()) {
      largest.resize(rows);
      forEachTerm(problem, level, [&](std::size_t row, double term) {
        largest[row] = std::max(largest[row], std::abs(term));
      });
    }
    if (outside(at, largest[i], problem.rowLower[i], problem.rowUpper[i])) {
      return outsideText("row", i, at, problem.rowLower[i], problem.rowUpper[i]);
    }
  }
  return {};
}

void confirmPoint(const SolverProblem& problem, SolverResult& result) {
  if (!result.hasPoint) return;
  const std::string found = violation(problem, result.level);
  if (found.empty()) return;
  result.hasPoint = false;
  if (result.outcome != Outcome::optimal && result.outcome != Outcome::locallyOptimal) return;
  result.outcome = Outcome::failed;
  result.reason = "the solution violates the model: " + found;
}

}  // namespace lomu
