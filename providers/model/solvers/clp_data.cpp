// What Clp is handed: a problem, changes of it, and a basis to begin with.
#include <ClpPackedMatrix.hpp>
#include <CoinPackedMatrix.hpp>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/clp_program.h"
#include "providers/model/solvers/column_blocks.h"

namespace lomu {

namespace {

// The columns of `part`. Clp drops tiny elements and does not like stored zeros, so they are left
// out.
CoinPackedMatrix packed(const LinearForm& form, const MovingPart& part) {
  std::vector<int> start{0};
  std::vector<int> rowOf;
  std::vector<double> value;
  rowOf.reserve(form.rowOf.size());
  value.reserve(form.value.size());
  for (const int j : part.columns()) {
    const auto column = static_cast<std::size_t>(j);
    for (int e = form.start[column]; e < form.start[column + 1]; ++e) {
      const auto entry = static_cast<std::size_t>(e);
      if (form.value[entry] == 0) continue;
      rowOf.push_back(form.rowOf[entry]);
      value.push_back(form.value[entry]);
    }
    start.push_back(static_cast<int>(rowOf.size()));
  }
  const auto columns = static_cast<int>(part.columns().size());
  const auto entries = static_cast<int>(rowOf.size());
  return {true, form.rowCount, columns, entries, value.data(), rowOf.data(), start.data(), nullptr};
}

std::vector<double> ofPart(const std::vector<double>& values, const MovingPart& part) {
  std::vector<double> result;
  result.reserve(part.columns().size());
  for (const int j : part.columns()) result.push_back(values[static_cast<std::size_t>(j)]);
  return result;
}

// Bounds as they are to be, and as they were.
struct Change {
  const double* next;
  const double* last;
};

// Whether the bounds of a block have other bits anywhere.
bool mayDiffer(const Change& bounds, int begin, int end) {
  return std::memcmp(bounds.next + begin, bounds.last + begin, at(end - begin) * sizeof(double)) !=
         0;
}

// The places whose bounds differ; false when one of these is a NaN, as none was before. Most are as
// they were.
bool findChanges(const Change& lower, const Change& upper, int count, std::vector<int>& changed) {
  changed.clear();
  bool areNumbers = true;
  forEachBlock(count, [&](int begin, int end) {
    if (!mayDiffer(lower, begin, end) && !mayDiffer(upper, begin, end)) return true;
    for (int k = begin; k < end; ++k) {
      if (lower.next[k] == lower.last[k] && upper.next[k] == upper.last[k]) continue;
      areNumbers = areNumbers && !std::isnan(lower.next[k]) && !std::isnan(upper.next[k]);
      changed.push_back(k);
    }
    return areNumbers;
  });
  return areNumbers;
}

bool isAtABound(ClpSimplex::Status status) {
  return status == ClpSimplex::atLowerBound || status == ClpSimplex::atUpperBound ||
         status == ClpSimplex::isFixed;
}

}  // namespace

void ClpProgram::load(LinearForm form) {
  isWhole_ = false;
  form_ = std::move(form);
  part_.choose(form_);
  handOver();
  method_ = Method::dual;
  isFresh_ = true;
  boundsCross_ = form_.boundsCross();
  isWhole_ = true;
}

void ClpProgram::handOver() {
  part_.shiftRows(form_);
  basisIsLost_ = false;
  simplex_ = ClpSimplex();
  simplex_.setLogLevel(0);
  simplex_.loadProblem(packed(form_, part_), ofPart(form_.lower, part_).data(),
                       ofPart(form_.upper, part_).data(), ofPart(form_.cost, part_).data(),
                       part_.rowLower().data(), part_.rowUpper().data());
  scaling_ = simplex_.scalingFlag();
  lookAtScale();
  reuse_ = kLeaveWork;
}

// A warm start from a column or row that stands at a bound that it has no more can end the process
// in an assertion of Clp, or run on without an end. Where the other bound is left, it goes there;
// where none is, the basis is given up.
void ClpProgram::settle(int place) {
  const ClpSimplex::Status status = simplex_.getStatus(place);
  if (status == ClpSimplex::basic) return;
  const int columns = simplex_.numberColumns();
  const bool isColumn = place < columns;
  const double lower =
      isColumn ? simplex_.columnLower()[place] : simplex_.rowLower()[place - columns];
  const double upper =
      isColumn ? simplex_.columnUpper()[place] : simplex_.rowUpper()[place - columns];
  const bool hasLower = lower > -COIN_DBL_MAX;
  const bool hasUpper = upper < COIN_DBL_MAX;
  if (!hasLower && !hasUpper) {
    basisIsLost_ = basisIsLost_ || isAtABound(status);
    return;
  }
  const bool fits = status == ClpSimplex::isFixed ? lower == upper : isAtABound(status);
  if (hasLower && hasUpper && fits) return;
  const ClpSimplex::Status fitting = hasLower ? ClpSimplex::atLowerBound : ClpSimplex::atUpperBound;
  if (status == fitting) return;
  simplex_.setStatus(place, fitting);
  reuse_ &= kLeaveWork;
}

// Hands over more columns than before. The basis is kept; a column that was left out is not in it.
void ClpProgram::handOverMore(const MovingPart& more) {
  std::vector<ClpSimplex::Status> status;
  for (const int j : more.columns()) {
    status.push_back(part_.place(j) == MovingPart::leftOut
                         ? ClpSimplex::isFixed
                         : simplex_.getColumnStatus(part_.place(j)));
  }
  std::vector<ClpSimplex::Status> rowStatus;
  rowStatus.reserve(static_cast<std::size_t>(form_.rowCount));
  for (int i = 0; i < form_.rowCount; ++i) rowStatus.push_back(simplex_.getRowStatus(i));
  part_ = more;
  handOver();
  for (std::size_t c = 0; c < status.size(); ++c) {
    simplex_.setColumnStatus(static_cast<int>(c), status[c]);
  }
  for (int i = 0; i < form_.rowCount; ++i) {
    simplex_.setRowStatus(i, rowStatus[static_cast<std::size_t>(i)]);
  }
  for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) settle(k);
}

bool ClpProgram::setRows() {
  part_.shiftRows(form_);
  bool changed = false;
  for (int i = 0; i < form_.rowCount; ++i) {
    // Clp keeps the largest number for an infinite bound.
    const double lower = std::max(part_.rowLower()[static_cast<std::size_t>(i)], -COIN_DBL_MAX);
    const double upper = std::min(part_.rowUpper()[static_cast<std::size_t>(i)], COIN_DBL_MAX);
    if (lower == simplex_.rowLower()[i] && upper == simplex_.rowUpper()[i]) continue;
    simplex_.setRowBounds(i, lower, upper);
    settle(simplex_.numberColumns() + i);
    changed = true;
  }
  return changed;
}

bool ClpProgram::lookAtBounds(const Bounds& bounds) {
  return findChanges({bounds.lower, form_.lower.data()}, {bounds.upper, form_.upper.data()},
                     form_.columnCount, changedColumns_) &&
         findChanges({bounds.rowLower, form_.rowLower.data()},
                     {bounds.rowUpper, form_.rowUpper.data()}, form_.rowCount, changedRows_);
}

bool ClpProgram::changedBoundsCross() const {
  const auto crosses = [](double lower, double upper) {
    return lower > upper || lower == HUGE_VAL || upper == -HUGE_VAL;
  };
  return std::ranges::any_of(
             changedColumns_,
             [&](int j) { return crosses(form_.lower[at(j)], form_.upper[at(j)]); }) ||
         std::ranges::any_of(changedRows_, [&](int i) {
           return crosses(form_.rowLower[at(i)], form_.rowUpper[at(i)]);
         });
}

bool ClpProgram::takeBounds(const Bounds& bounds, bool shiftsChanged) {
  bool changed = false;
  bool rowsMayChange = shiftsChanged || !changedRows_.empty();
  bool moreMove = false;
  for (const int j : changedColumns_) {
    const double lower = form_.lower[static_cast<std::size_t>(j)] = bounds.lower[j];
    const double upper = form_.upper[static_cast<std::size_t>(j)] = bounds.upper[j];
    if (part_.place(j) == MovingPart::leftOut) {
      rowsMayChange = true;
      moreMove = moreMove || !MovingPart::standsStill(lower, upper);
    } else {
      simplex_.setColumnBounds(part_.place(j), lower, upper);
      settle(part_.place(j));
      changed = true;
    }
  }
  for (const int i : changedRows_) {
    form_.rowLower[static_cast<std::size_t>(i)] = bounds.rowLower[i];
    form_.rowUpper[static_cast<std::size_t>(i)] = bounds.rowUpper[i];
  }
  if (moreMove) {
    MovingPart more = part_;
    more.takeIn(form_);
    handOverMore(more);
    return true;
  }
  if (rowsMayChange && setRows()) changed = true;
  return changed;
}

bool ClpProgram::takeCosts(const double* costs) {
  if (std::equal(form_.cost.begin(), form_.cost.end(), costs)) return false;
  const bool seen =
      std::ranges::any_of(part_.columns(), [&](int j) { return costs[j] != form_.cost[at(j)]; });
  std::copy_n(costs, form_.cost.size(), form_.cost.begin());
  if (!seen) return false;
  simplex_.chgObjCoefficients(ofPart(form_.cost, part_).data());
  reuse_ &= kUseFactorization;
  return true;
}

// Other costs alone leave the point feasible, where the primal method begins; other bounds alone
// leave the marginals so, where the dual method does.
void ClpProgram::chooseMethod(bool costsChanged, bool boundsChanged) {
  isMixed_ = costsChanged && boundsChanged;
  const bool isPrimal = costsChanged && (!boundsChanged || stepsInPrimal_ > 0);
  method_ = isPrimal ? Method::primal : Method::dual;
}

bool ClpProgram::update(const SolverProblem& problem, bool withCosts) {
  const Bounds bounds{problem.lower, problem.upper, problem.rowLower, problem.rowUpper};
  const auto isFinite = [](double cost) { return std::isfinite(cost); };
  if (withCosts && !std::all_of(problem.cost, problem.cost + problem.columnCount, isFinite)) {
    return false;
  }
  if (!lookAtBounds(bounds)) return false;
  isWhole_ = false;
  const bool costsChanged = withCosts && takeCosts(problem.cost);
  const bool boundsChanged = takeBounds(bounds, false);
  boundsCross_ = boundsCross_ ? form_.boundsCross() : changedBoundsCross();
  chooseMethod(costsChanged, boundsChanged);
  isWhole_ = true;
  return true;
}

ClpProgram::Changes ClpProgram::changesTo(const LinearForm& form) const {
  Changes changes;
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    const auto begin = form.value.begin() + form.start[j];
    const auto end = form.value.begin() + form.start[j + 1];
    const bool differ = !std::equal(begin, end, form_.value.begin() + form_.start[j]);
    const bool isLeftOut = part_.place(static_cast<int>(j)) == MovingPart::leftOut;
    if (differ) (isLeftOut ? changes.shifts : changes.entries) = true;
  }
  return changes;
}

void ClpProgram::update(LinearForm& form) {
  isWhole_ = false;
  const Bounds bounds{form.lower.data(), form.upper.data(), form.rowLower.data(),
                      form.rowUpper.data()};
  lookAtBounds(bounds);
  const Changes changes = changesTo(form);
  const bool costsChanged = takeCosts(form.cost.data());
  form_.value.swap(form.value);
  if (changes.entries) {
    simplex_.replaceMatrix(new ClpPackedMatrix(packed(form_, part_)), true);
    simplex_.scaling(scaling_);
    lookAtScale();
    reuse_ &= kLeaveWork;
  }
  const bool boundsChanged = takeBounds(bounds, changes.shifts);
  if (changes.entries && !part_.hasEntries(form_)) {
    MovingPart all = part_;
    all.takeAll();
    handOverMore(all);
  }
  boundsCross_ = form_.boundsCross();
  // Other coefficients leave neither of the two; the dual method takes them.
  chooseMethod(costsChanged && !changes.entries, boundsChanged);
  isWhole_ = true;
}

bool ClpProgram::begin(const std::int32_t* position, const std::int32_t* rowPosition) {
  const auto isBasic = [](std::int32_t one) { return one == ztbSolverBasic; };
  const auto count = std::count_if(position, position + form_.columnCount, isBasic) +
                     std::count_if(rowPosition, rowPosition + form_.rowCount, isBasic);
  if (count != form_.rowCount) return false;
  isWhole_ = false;
  for (int j = 0; j < form_.columnCount; ++j) {
    if (part_.place(j) != MovingPart::leftOut || !isBasic(position[j])) continue;
    part_.takeAll();
    handOver();
    break;
  }
  const auto statusOf = [](std::int32_t one) {
    switch (one) {
      case ztbSolverBasic:
        return ClpSimplex::basic;
      case ztbSolverAtUpper:
        return ClpSimplex::atUpperBound;
      case ztbSolverAtLower:
        return ClpSimplex::atLowerBound;
      default:
        return ClpSimplex::isFree;
    }
  };
  for (std::size_t c = 0; c < part_.columns().size(); ++c) {
    simplex_.setColumnStatus(static_cast<int>(c), statusOf(position[part_.columns()[c]]));
  }
  for (int i = 0; i < form_.rowCount; ++i) simplex_.setRowStatus(i, statusOf(rowPosition[i]));
  for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) settle(k);
  isFresh_ = basisIsLost_;
  if (basisIsLost_) handOver();
  method_ = Method::dual;
  isWhole_ = true;
  return !isFresh_;
}

void ClpProgram::forgetWork() {
  reuse_ = kLeaveWork;
}

}  // namespace lomu
