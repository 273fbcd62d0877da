#include "providers/model/solvers/column_by_column.h"

#include <algorithm>
#include <cmath>

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
  result.iterations = 0;
  result.hasPoint = false;
  if (form.boundsCross()) {
    result.outcome = Outcome::infeasible;
    return true;
  }
  if (std::any_of(form.value.begin(), form.value.end(), [](double v) { return v != 0; })) {
    return false;
  }

  for (std::size_t i = 0; i < form.rowLower.size(); ++i) {
    if (form.rowLower[i] > 0 || form.rowUpper[i] < 0) {
      result.outcome = Outcome::infeasible;
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

}  // namespace lomu
