#include "providers/model/solvers/column_by_column.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lomu {

namespace {

// The best level of a column alone; infinite when there is none.
double bestLevel(double cost, double lower, double upper) {
  if (cost > 0) return lower;
  if (cost < 0) return upper;
  return std::max(lower, std::min(upper, 0.0));
}

Position positionAt(double level, double lower, double upper) {
  if (level == lower) return Position::atLower;
  if (level == upper) return Position::atUpper;
  return Position::superbasic;
}

}  // namespace

bool settleColumnByColumn(const LinearForm& form, SolverResult& result) {
  return settleColumnByColumn(form, form.boundsCross(), result);
}

bool settleColumnByColumn(const LinearForm& form, bool boundsCross, SolverResult& result) {
  result.iterations = 0;
  result.hasPoint = false;
  if (boundsCross) {
    result.outcome = Outcome::infeasible;
    return true;
  }
  if (std::any_of(form.value.begin(), form.value.end(), [](double v) { return v != 0; })) {
    return false;
  }

  for (std::size_t i = 0; i < form.rowLower.size(); ++i) {
    if (form.rowLower[i] > 0 || form.rowUpper[i] < 0) {
      result.outcome = Outcome::infeasible;
      result.rowRay.assign(form.rowLower.size(), 0.0);
      result.rowRay[i] = 1;
      return true;
    }
  }
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    result.level[j] = bestLevel(form.cost[j], form.lower[j], form.upper[j]);
    result.position[j] = positionAt(result.level[j], form.lower[j], form.upper[j]);
    if (!std::isfinite(result.level[j])) {
      result.outcome = Outcome::unbounded;
      return true;
    }
  }
  std::fill(result.rowMarginal.begin(), result.rowMarginal.end(), 0.0);
  std::fill(result.rowPosition.begin(), result.rowPosition.end(), Position::basic);
  result.outcome = Outcome::optimal;
  result.hasPoint = true;
  return true;
}

bool missesAnEmptyRow(const SolverProblem& problem) {
  std::vector<bool> hasTerms(static_cast<std::size_t>(problem.rowCount));
  for (int e = 0; e < problem.start[problem.columnCount]; ++e) {
    if (problem.value[e] != 0) hasTerms[static_cast<std::size_t>(problem.rowOf[e])] = true;
  }
  for (const SolverProduct& product : productsOf(problem)) {
    if (product.row == kObjectiveRow || product.value == 0) continue;
    hasTerms[static_cast<std::size_t>(product.row)] = true;
  }
  for (std::size_t i = 0; i < hasTerms.size(); ++i) {
    if (!hasTerms[i] && (problem.rowLower[i] > 0 || problem.rowUpper[i] < 0)) return true;
  }
  return false;
}

}  // namespace lomu
