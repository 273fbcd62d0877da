// The ranges of a solve by Clp.
#include <algorithm>
#include <cmath>

#include "providers/model/at.h"
#include "providers/model/solvers/clp_program.h"

namespace lomu {

namespace {

// What Clp gives for a range without an end is no less.
constexpr double kNoEndOfRange = 1e30;

constexpr double kNoTolerance = 1e-15;

}  // namespace

bool ClpProgram::ranges(SolverRanges& ranges) {
  if (simplex_.status() != 0) return false;
  rangeCosts(ranges);
  rangeRows(ranges);
  forgetWork();
  return true;
}

// A nonbasic column's cost can move as far as its reduced cost lets it; a basic one's by the ratios
// of the reduced costs, which Clp tells.
void ClpProgram::rangeCosts(SolverRanges& ranges) {
  std::fill_n(ranges.costLower, form_.columnCount, -HUGE_VAL);
  std::fill_n(ranges.costUpper, form_.columnCount, HUGE_VAL);
  const std::vector<int>& columns = part_.columns();
  const std::vector<double> reduced(simplex_.dualColumnSolution(),
                                    simplex_.dualColumnSolution() + columns.size());
  std::vector<int> basic;
  for (int c = 0; c < static_cast<int>(columns.size()); ++c) {
    const int j = columns[at(c)];
    const double cost = form_.cost[at(j)];
    const double end = cost - reduced[at(c)];
    switch (simplex_.getColumnStatus(c)) {
      case ClpSimplex::basic:
        basic.push_back(c);
        break;
      case ClpSimplex::atLowerBound:
        if (form_.lower[at(j)] < form_.upper[at(j)]) ranges.costLower[j] = std::min(cost, end);
        break;
      case ClpSimplex::atUpperBound:
        if (form_.lower[at(j)] < form_.upper[at(j)]) ranges.costUpper[j] = std::max(cost, end);
        break;
      case ClpSimplex::isFixed:
        break;
      default:
        ranges.costLower[j] = ranges.costUpper[j] = cost;
    }
  }
  const std::size_t count = basic.size();
  if (count == 0) return;
  std::vector<double> more(count);
  std::vector<double> less(count);
  std::vector<int> moreBy(count);
  std::vector<int> lessBy(count);
  // Clp adds its tolerance to the ratios.
  const double tolerance = simplex_.dualTolerance();
  simplex_.setDualTolerance(kNoTolerance);
  simplex_.dualRanging(static_cast<int>(count), basic.data(), more.data(), moreBy.data(),
                       less.data(), lessBy.data());
  simplex_.setDualTolerance(tolerance);
  for (std::size_t k = 0; k < count; ++k) {
    const int j = columns[at(basic[k])];
    if (more[k] < kNoEndOfRange) ranges.costUpper[j] = form_.cost[at(j)] + more[k];
    if (less[k] < kNoEndOfRange) ranges.costLower[j] = form_.cost[at(j)] - less[k];
  }
}

void ClpProgram::rangeRows(SolverRanges& ranges) {
  const std::vector<double> activity(simplex_.primalRowSolution(),
                                     simplex_.primalRowSolution() + form_.rowCount);
  std::vector<int> nonbasic;
  for (int i = 0; i < form_.rowCount; ++i) {
    double own = activity[at(i)];
    const double shift = std::isfinite(form_.rowLower[at(i)])
                             ? form_.rowLower[at(i)] - part_.rowLower()[at(i)]
                             : form_.rowUpper[at(i)] - part_.rowUpper()[at(i)];
    if (std::isfinite(shift)) own += shift;
    ranges.rhsLower[i] = ranges.rhsUpper[i] = own;
    if (simplex_.getRowStatus(i) != ClpSimplex::basic) {
      nonbasic.push_back(simplex_.numberColumns() + i);
    }
  }
  const std::size_t count = nonbasic.size();
  if (count == 0) return;
  std::vector<double> more(count);
  std::vector<double> less(count);
  std::vector<int> moreBy(count);
  std::vector<int> lessBy(count);
  simplex_.primalRanging(static_cast<int>(count), nonbasic.data(), more.data(), moreBy.data(),
                         less.data(), lessBy.data());
  for (std::size_t k = 0; k < count; ++k) {
    const int i = nonbasic[k] - simplex_.numberColumns();
    ranges.rhsUpper[i] = more[k] < kNoEndOfRange ? ranges.rhsUpper[i] + more[k] : HUGE_VAL;
    ranges.rhsLower[i] = less[k] < kNoEndOfRange ? ranges.rhsLower[i] - less[k] : -HUGE_VAL;
  }
}

}  // namespace lomu
