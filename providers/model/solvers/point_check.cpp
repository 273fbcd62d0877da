#include "providers/model/solvers/point_check.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "providers/model/at.h"
#include "providers/model/solvers/column_blocks.h"

namespace lomu {

namespace {

constexpr double kPointTolerance = 1e-6;

bool outside(double value, double size, double lower, double upper) {
  const double room = kPointTolerance * std::max(1.0, size);
  // Written so that a NaN is outside.
  return !(value >= lower - room && value <= upper + room);
}

// Calls `add` with row and amount of every product.
template <class Add>
void forEachProductTerm(const SolverProblem& problem, const std::vector<double>& level,
                        const Add& add) {
  for (const SolverProduct& p : productsOf(problem)) {
    if (p.row == kObjectiveRow) continue;
    add(at(p.row), p.value * level[at(p.column1)] * level[at(p.column2)]);
  }
}

// The same for every term.
template <class Add>
void forEachTerm(const SolverProblem& problem, const std::vector<double>& level, const Add& add) {
  for (int j = 0; j < problem.columnCount; ++j) {
    const double of = level[at(j)];
    if (of == 0) continue;
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      add(at(problem.rowOf[e]), problem.value[e] * of);
    }
  }
  forEachProductTerm(problem, level, add);
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

// Whether the columns of a block are within their bounds, exactly, and none of them is integer.
bool areWithin(const SolverProblem& problem, const double* level, int begin, int end) {
  const double* const lower = problem.lower;
  const double* const upper = problem.upper;
  const double outside = marksIn(begin, end, [=](int j) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const double below = level[j] >= lower[j] ? 0.0 : 1.0;
    const double above = level[j] <= upper[j] ? 0.0 : 1.0;
    return below + above + (std::abs(level[j]) <= kMost ? 0.0 : 1.0);
  });
  unsigned char integers = 0;
  for (int j = begin; j < end; ++j) integers |= static_cast<unsigned char>(problem.isInteger[j]);
  return outside == 0 && integers == 0;
}

std::string columnViolation(const SolverProblem& problem, std::size_t j, double level) {
  const double lower = problem.lower[j];
  const double upper = problem.upper[j];
  const bool inside = level >= lower && level <= upper && std::isfinite(level);
  if (inside && problem.isInteger[j] == 0) return {};
  if (problem.isSemiContinuous != nullptr && problem.isSemiContinuous[j] != 0 && isZero(level)) {
    return {};
  }
  if (!std::isfinite(level) || outside(level, std::abs(level), lower, upper)) {
    return outsideText("column", j, level, lower, upper);
  }
  const double whole = std::round(level);
  if (problem.isInteger[j] != 0 && outside(level, std::abs(level), whole, whole)) {
    return "column #" + std::to_string(j) + " at " + std::to_string(level) + " is no integer";
  }
  return {};
}

}  // namespace

std::string violation(const SolverProblem& problem, const std::vector<double>& level) {
  const auto rows = static_cast<std::size_t>(problem.rowCount);
  std::vector<double> activity(rows);
  std::string found;
  forEachBlock(static_cast<int>(level.size()), [&](int begin, int end) {
    if (!areWithin(problem, level.data(), begin, end)) {
      for (int j = begin; j < end && found.empty(); ++j) {
        found = columnViolation(problem, static_cast<std::size_t>(j), level[at(j)]);
      }
    }
    forEachMoved(level.data(), begin, end,
                 [&](int j) { addLinearTerms(problem, j, level[at(j)], activity.data()); });
    return found.empty();
  });
  if (!found.empty()) return found;
  for (int s = 0; s < problem.setCount; ++s) {
    if (breaks(problem.sets[s], problem, level)) {
      return "set " + std::to_string(s) + " has too many columns that are not 0";
    }
  }
  forEachProductTerm(problem, level, [&](std::size_t row, double term) { activity[row] += term; });
  // The largest term of a row is looked for only where a row misses its bounds by more than what
  // terms up to 1 allow.
  std::vector<double> largest;
  for (std::size_t i = 0; i < rows; ++i) {
    const double sum = activity[i];
    if (!outside(sum, 1, problem.rowLower[i], problem.rowUpper[i])) continue;
    if (largest.empty()) {
      largest.resize(rows);
      forEachTerm(problem, level, [&](std::size_t row, double term) {
        largest[row] = std::max(largest[row], std::abs(term));
      });
    }
    if (outside(sum, largest[i], problem.rowLower[i], problem.rowUpper[i])) {
      return outsideText("row", i, sum, problem.rowLower[i], problem.rowUpper[i]);
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
