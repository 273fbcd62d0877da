#include "providers/model/solvers/claim_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/column_blocks.h"
#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/point_check.h"

namespace lomu {

namespace {

// What rounding leaves of a sum, relative to its largest term.
constexpr double kRounding = 1e-9;
// How far a solver lets a point be outside.
constexpr double kClaimTolerance = 1e-6;
// How far levels may be out: so many times the largest side or bound of the problem, and no farther
// than this.
constexpr double kFarBeyondSides = 1e7;
constexpr double kFarAway = 1e12;

struct Sum {
  double value = 0;
  double largest = 0;

  void add(double term) {
    value += term;
    largest = std::max(largest, std::abs(term));
  }
  [[nodiscard]] bool isRounding() const { return std::abs(value) <= kRounding * largest; }
};

Sum columnSum(const SolverProblem& problem, int j, const double* weights) {
  Sum sum;
  for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
    sum.add(weights[problem.rowOf[e]] * problem.value[e]);
  }
  return sum;
}

// The first place where bounds cross; -1 where none do.
int firstCrossing(const double* lower, const double* upper, int count) {
  for (int k = 0; k < count; ++k) {
    if (lower[k] > upper[k] || lower[k] == HUGE_VAL || upper[k] == -HUGE_VAL) return k;
  }
  return -1;
}

int crossingColumn(const SolverProblem& problem) {
  return firstCrossing(problem.lower, problem.upper, problem.columnCount);
}

int crossingRow(const SolverProblem& problem) {
  return firstCrossing(problem.rowLower, problem.rowUpper, problem.rowCount);
}

// The largest side or bound that there is, at least 1.
double largestEnd(const SolverProblem& problem) {
  double largest = 1;
  const auto look = [&](const double* ends, int count) {
    for (int k = 0; k < count; ++k) {
      if (std::isfinite(ends[k])) largest = std::max(largest, std::abs(ends[k]));
    }
  };
  look(problem.lower, problem.columnCount);
  look(problem.upper, problem.columnCount);
  look(problem.rowLower, problem.rowCount);
  look(problem.rowUpper, problem.rowCount);
  return largest;
}

ProofParts noParts(const SolverProblem& problem) {
  const std::vector<char> columns(static_cast<std::size_t>(problem.columnCount));
  const std::vector<char> rows(static_cast<std::size_t>(problem.rowCount));
  return {rows, rows, columns, columns};
}

// Whether the weighted rows are above anything that the columns reach. `sign` is that of the ray.
// Enters what it looked at into `parts`, if there are any.
bool isOutOfReach(const SolverProblem& problem, const std::vector<double>& ray, double sign,
                  ProofParts* parts = nullptr) {
  double size = 0;
  for (const double weight : ray) size = std::max(size, std::abs(weight));
  if (!(size > 0) || !std::isfinite(size)) return false;
  std::vector<double> weights(ray.size());
  double least = 0;  // of the weighted rows
  double slack = 0;
  double largest = 0;
  for (std::size_t i = 0; i < ray.size(); ++i) {
    const double weight = sign * ray[i] / size;
    if (std::abs(weight) <= kRounding) continue;
    const double side = weight > 0 ? problem.rowLower[i] : problem.rowUpper[i];
    if (std::isinf(side)) return false;
    if (parts != nullptr) (weight > 0 ? parts->rowLower : parts->rowUpper)[i] = 1;
    weights[i] = weight;
    least += weight * side;
    largest = std::max(largest, std::abs(weight * side));
    slack += kClaimTolerance * std::abs(weight);
  }
  double most = 0;  // of the columns
  for (int j = 0; j < problem.columnCount; ++j) {
    const Sum sum = columnSum(problem, j, weights.data());
    if (sum.value == 0) continue;
    const double bound = sum.value > 0 ? problem.upper[j] : problem.lower[j];
    if (std::isinf(bound)) {
      if (sum.isRounding()) continue;
      return false;
    }
    if (parts != nullptr && !sum.isRounding()) {
      (sum.value > 0 ? parts->upper : parts->lower)[static_cast<std::size_t>(j)] = 1;
    }
    most += sum.value * bound;
    largest = std::max(largest, sum.largest * std::abs(bound));
    slack += kClaimTolerance * std::abs(sum.value);
  }
  return least - most > slack + kRounding * largest;
}

bool fallsAlong(const SolverProblem& problem, const std::vector<double>& ray, double sign) {
  double size = 0;
  for (const double step : ray) size = std::max(size, std::abs(step));
  if (!(size > 0) || !std::isfinite(size)) return false;
  std::vector<Sum> activity(static_cast<std::size_t>(problem.rowCount));
  Sum cost;
  for (int j = 0; j < problem.columnCount; ++j) {
    const double step = sign * ray[static_cast<std::size_t>(j)] / size;
    if (step == 0) continue;
    if (std::isfinite(step > 0 ? problem.upper[j] : problem.lower[j])) {
      if (std::abs(step) <= kRounding) continue;
      return false;
    }
    cost.add(problem.cost[j] * step);
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      activity[static_cast<std::size_t>(problem.rowOf[e])].add(problem.value[e] * step);
    }
  }
  for (std::size_t i = 0; i < activity.size(); ++i) {
    if (activity[i].isRounding()) continue;
    if (std::isfinite(activity[i].value > 0 ? problem.rowUpper[i] : problem.rowLower[i])) {
      return false;
    }
  }
  return cost.value < -kClaimTolerance * cost.largest;
}

// The passes of a look at an optimum, over the columns of a block.

// Whether a level is farther out than this.
bool reachesBeyond(const double* level, int begin, int end, double most) {
  return marksIn(begin, end, [=](int j) { return std::abs(level[j]) > most ? 1.0 : 0.0; }) > 0;
}

// The marginals of columns: their costs less the weighted rows.
void weighColumns(const SolverProblem& problem, const double* weights, int begin, int end,
                  double* marginals) {
  for (int j = begin; j < end; ++j) {
    double marginal = problem.cost[j];
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      marginal -= weights[problem.rowOf[e]] * problem.value[e];
    }
    marginals[j] = marginal;
  }
}

double sizeOfCosts(const SolverProblem& problem, const double* level, int begin, int end) {
  std::array<double, kColumnsOfBlock> terms;
  const double* const cost = problem.cost + begin;
  level += begin;
  const int count = end - begin;
  for (int k = 0; k < count; ++k) terms[at(k)] = std::abs(cost[k] * level[k]);
  return sumOfTerms(terms, count);
}

// By how much the columns could lower the objective, at their marginals.
double roomOfColumns(const SolverProblem& problem, const double* level, const double* marginal,
                     int begin, int end) {
  std::array<double, kColumnsOfBlock> terms;
  const double* const lower = problem.lower + begin;
  const double* const upper = problem.upper + begin;
  level += begin;
  marginal += begin;
  const int count = end - begin;
  constexpr double kMost = std::numeric_limits<double>::max();
  for (int k = 0; k < count; ++k) {
    const double down = level[k] - lower[k];
    const double up = upper[k] - level[k];
    const double way = marginal[k] > 0 ? down : up;
    const double size = std::abs(level[k]);
    const double endless = size > 1 ? size : 1.0;
    const double room = std::abs(marginal[k]) * (std::abs(way) <= kMost ? way : endless);
    const double ofMoving = lower[k] == upper[k] ? 0.0 : room;
    terms[at(k)] = marginal[k] == 0 ? 0.0 : ofMoving;
  }
  return sumOfTerms(terms, count);
}

}  // namespace

bool provesInfeasible(const SolverProblem& problem, const std::vector<double>& rowRay) {
  if (crossingColumn(problem) >= 0 || crossingRow(problem) >= 0) return true;
  return std::ssize(rowRay) == problem.rowCount &&
         (isOutOfReach(problem, rowRay, 1) || isOutOfReach(problem, rowRay, -1));
}

std::optional<ProofParts> partsOfProof(const SolverProblem& problem,
                                       const std::vector<double>& rowRay) {
  ProofParts parts = noParts(problem);
  if (const int row = crossingRow(problem); row >= 0) {
    const auto i = static_cast<std::size_t>(row);
    parts.rowLower[i] = parts.rowUpper[i] = 1;
    return parts;
  }
  if (const int column = crossingColumn(problem); column >= 0) {
    const auto j = static_cast<std::size_t>(column);
    parts.lower[j] = parts.upper[j] = 1;
    return parts;
  }
  if (std::ssize(rowRay) != problem.rowCount) return std::nullopt;
  if (isOutOfReach(problem, rowRay, 1, &parts)) return parts;
  parts = noParts(problem);
  if (isOutOfReach(problem, rowRay, -1, &parts)) return parts;
  return std::nullopt;
}

bool provesUnbounded(const SolverProblem& problem, const std::vector<double>& level,
                     const std::vector<double>& columnRay) {
  return std::ssize(columnRay) == problem.columnCount &&
         (fallsAlong(problem, columnRay, 1) || fallsAlong(problem, columnRay, -1)) &&
         violation(problem, level).empty();
}

int runawayColumn(const SolverProblem& problem, const std::vector<double>& level) {
  double farAway = kFarBeyondSides;
  bool isKnown = false;
  for (int j = 0; j < problem.columnCount; ++j) {
    const double at = level[static_cast<std::size_t>(j)];
    if (!(std::abs(at) > farAway) || at == problem.lower[j] || at == problem.upper[j]) continue;
    // Sides are looked at where a level is that large at all.
    if (!std::exchange(isKnown, true)) {
      farAway = std::min(kFarAway, kFarBeyondSides * largestEnd(problem));
    }
    if (std::abs(at) > farAway) return j;
  }
  return -1;
}

int endlessColumn(const SolverProblem& problem, const std::vector<double>& rowMarginal) {
  for (int j = 0; j < problem.columnCount; ++j) {
    if (std::isfinite(problem.lower[j]) && std::isfinite(problem.upper[j])) continue;
    Sum rest = columnSum(problem, j, rowMarginal.data());
    rest.add(-problem.cost[j]);
    if (rest.isRounding()) continue;
    if (std::isinf(rest.value > 0 ? problem.upper[j] : problem.lower[j])) return j;
  }
  return -1;
}

std::string optimumDoubt(const SolverProblem& problem, SolverResult& result) {
  result.columnMarginal.resize(result.level.size());
  result.rowLevel.assign(result.rowMarginal.size(), 0.0);
  result.cost = 0;
  double gap = 0;
  double size = 1;
  bool isFar = false;
  forEachBlock(problem.columnCount, [&](int begin, int end) {
    const double* const level = result.level.data();
    isFar = reachesBeyond(level, begin, end, kFarBeyondSides) || isFar;
    weighColumns(problem, result.rowMarginal.data(), begin, end, result.columnMarginal.data());
    size += sizeOfCosts(problem, level, begin, end);
    gap += roomOfColumns(problem, level, result.columnMarginal.data(), begin, end);
    forEachMoved(level, begin, end, [&](int j) {
      if (problem.cost[j] != 0) result.cost += problem.cost[j] * level[j];
      addLinearTerms(problem, j, level[j], result.rowLevel.data());
    });
    return true;
  });
  const int runaway = isFar ? runawayColumn(problem, result.level) : -1;
  if (runaway >= 0) {
    result.columnMarginal.clear();
    result.rowLevel.clear();
    return "column #" + std::to_string(runaway) + " is at " +
           std::to_string(result.level[static_cast<std::size_t>(runaway)]);
  }
  for (std::size_t i = 0; i < result.rowMarginal.size(); ++i) {
    const double marginal = result.rowMarginal[i];
    if (marginal == 0) continue;
    const bool isAtSide =
        problem.rowLower[i] == problem.rowUpper[i] ||
        result.rowPosition[i] == (marginal > 0 ? Position::atLower : Position::atUpper);
    if (!isAtSide) gap += std::abs(marginal);
  }
  // Written so that a NaN is a doubt.
  if (gap <= kClaimTolerance * size) return {};
  return "its marginals leave room for a better point";
}

namespace {

// A cost less the weighted rows, at the best end of its column, for rows that count by `share`.
// Rounding may turn the sign of a number that should be 0.
double leastOf(double cost, const Sum& rows, double share, double lower, double upper) {
  const double rest = cost - share * rows.value;
  if (rest == 0) return 0;
  const double end = rest > 0 ? lower : upper;
  if (std::isfinite(end)) return rest * end;
  const bool isRounding = std::abs(rest) <= kRounding * std::max(std::abs(cost), rows.largest);
  return isRounding ? 0 : -HUGE_VAL;
}

// The largest share of the rows, at most 1, with which no column that has no end is left with a
// cost that draws it there: a perturbed solver stops a little beyond it.
double shareWithoutEnds(const SolverProblem& problem, const std::vector<Sum>& sums) {
  double share = 1;
  for (int j = 0; j < problem.columnCount; ++j) {
    const Sum& rows = sums[static_cast<std::size_t>(j)];
    const double cost = problem.cost[j];
    if (!std::isinf(leastOf(cost, rows, 1, problem.lower[j], problem.upper[j]))) continue;
    const double ratio = cost / rows.value;
    if (!(ratio >= 0)) return 1;
    share = std::min(share, ratio);
  }
  return share;
}

}  // namespace

double provenBound(const SolverProblem& problem, const std::vector<double>& rowMarginal) {
  LinearForm form;
  std::string reason;
  if (!form.take(problem, reason) || form.boundsCross()) return -HUGE_VAL;
  const SolverProblem linear = form.problem();
  // A row without the side that its weight asks for counts nothing.
  std::vector<double> weights(rowMarginal.size());
  double sides = 0;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const double side = rowMarginal[i] > 0 ? linear.rowLower[i] : linear.rowUpper[i];
    if (!std::isfinite(rowMarginal[i]) || rowMarginal[i] == 0 || std::isinf(side)) continue;
    weights[i] = rowMarginal[i];
    sides += rowMarginal[i] * side;
  }
  std::vector<Sum> sums;
  for (int j = 0; j < linear.columnCount; ++j) {
    sums.push_back(columnSum(linear, j, weights.data()));
  }
  const double share = shareWithoutEnds(linear, sums);
  double bound = share * sides;
  for (int j = 0; j < linear.columnCount; ++j) {
    bound += leastOf(linear.cost[j], sums[static_cast<std::size_t>(j)], share, linear.lower[j],
                     linear.upper[j]);
  }
  return std::isnan(bound) ? -HUGE_VAL : bound;
}

std::string claimDoubt(const SolverProblem& problem, SolverResult& result) {
  LinearForm form;
  std::string reason;
  if (problem.productCount > 0 && !form.take(problem, reason)) return {};
  const SolverProblem linear = problem.productCount > 0 ? form.problem() : problem;
  switch (result.outcome) {
    case Outcome::optimal: {
      if (problem.hasIntegers != 0) return {};
      const std::string doubt = optimumDoubt(linear, result);
      return doubt.empty() ? doubt : "it claims an optimum, but " + doubt;
    }
    case Outcome::infeasible:
      if (provesInfeasible(linear, result.rowRay)) return {};
      return "it claims that no point exists, without a proof that holds";
    case Outcome::unbounded:
      if (problem.hasIntegers == 0 && provesUnbounded(linear, result.level, result.columnRay)) {
        return {};
      }
      return "it claims that the objective has no end, without a proof that holds";
    case Outcome::failed:
      return "it gave up: " + result.reason;
    default:
      return {};
  }
}

}  // namespace lomu
