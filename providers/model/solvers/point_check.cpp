#include "providers/model/solvers/point_check.h"

#include <algorithm>
#include <cmath>

namespace lomu {

namespace {

constexpr double kTolerance = 1e-6;

bool outside(double value, double size, double lower, double upper) {
  const double room = kTolerance * std::max(1.0, size);
  // Written so that a NaN is outside.
  return !(value >= lower - room && value <= upper + room);
}

// The rows' activities and the largest term in each.
class Activities {
 public:
  Activities(const SolverProblem& problem, const std::vector<double>& level)
      : sum_(static_cast<std::size_t>(problem.rowCount)), largest_(sum_.size()) {
    for (int j = 0; j < problem.columnCount; ++j) {
      for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
        add(problem.rowOf[e], problem.value[e] * level[static_cast<std::size_t>(j)]);
      }
    }
    if (problem.products == nullptr) return;
    for (const SolverProduct& p : *problem.products) {
      if (p.row == kObjectiveRow) continue;
      add(p.row, p.value * level[static_cast<std::size_t>(p.column1)] *
                     level[static_cast<std::size_t>(p.column2)]);
    }
  }

  [[nodiscard]] double sum(std::size_t row) const { return sum_[row]; }
  [[nodiscard]] double largest(std::size_t row) const { return largest_[row]; }

 private:
  void add(int row, double term) {
    const auto i = static_cast<std::size_t>(row);
    sum_[i] += term;
    largest_[i] = std::max(largest_[i], std::abs(term));
  }

  std::vector<double> sum_, largest_;
};

std::string outsideText(const char* what, std::size_t number, double value, double lower,
                        double upper) {
  return std::string(what) + " " + std::to_string(number) + " at " + std::to_string(value) +
         " is outside of " + std::to_string(lower) + " to " + std::to_string(upper);
}

}  // namespace

std::string violation(const SolverProblem& problem, const std::vector<double>& level) {
  for (std::size_t j = 0; j < level.size(); ++j) {
    const double at = level[j];
    if (!std::isfinite(at) || outside(at, std::abs(at), problem.lower[j], problem.upper[j])) {
      return outsideText("column", j, at, problem.lower[j], problem.upper[j]);
    }
    if (problem.isInteger[j] != 0 && outside(at, std::abs(at), std::round(at), std::round(at))) {
      return "column " + std::to_string(j) + " at " + std::to_string(at) + " is no integer";
    }
  }
  const Activities activities(problem, level);
  for (std::size_t i = 0; i < static_cast<std::size_t>(problem.rowCount); ++i) {
    const double at = activities.sum(i);
    if (outside(at, activities.largest(i), problem.rowLower[i], problem.rowUpper[i])) {
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
