#include "providers/model/solvers/set_form.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/implied_bounds.h"

namespace lomu {

namespace {

constexpr double kNoBound = std::numeric_limits<double>::infinity();

}  // namespace

bool SetForm::take(const SolverProblem& problem, std::string& reason) {
  cost_.assign(problem.cost, problem.cost + problem.columnCount);
  lower_.assign(problem.lower, problem.lower + problem.columnCount);
  upper_.assign(problem.upper, problem.upper + problem.columnCount);
  isInteger_.assign(problem.isInteger, problem.isInteger + problem.columnCount);
  level_.assign(at(problem.columnCount), 0.0);
  if (problem.level != nullptr) std::copy_n(problem.level, problem.columnCount, level_.begin());
  rowLower_.assign(problem.rowLower, problem.rowLower + problem.rowCount);
  rowUpper_.assign(problem.rowUpper, problem.rowUpper + problem.rowCount);
  entries_.clear();
  Reach reach(problem);
  reachesLower_ = std::move(reach.lower);
  reachesUpper_ = std::move(reach.upper);
  if (problem.isSemiContinuous != nullptr && !addSemiContinuous(problem, reason)) return false;
  for (int s = 0; s < problem.setCount; ++s) {
    if (!addSet(problem, problem.sets[s], reason)) return false;
  }
  takeMatrix(problem);

  problem_ = problem;
  problem_.columnCount = static_cast<std::int32_t>(cost_.size());
  problem_.rowCount = static_cast<std::int32_t>(rowLower_.size());
  problem_.cost = cost_.data();
  problem_.lower = lower_.data();
  problem_.upper = upper_.data();
  problem_.isInteger = isInteger_.data();
  problem_.rowLower = rowLower_.data();
  problem_.rowUpper = rowUpper_.data();
  problem_.start = start_.data();
  problem_.rowOf = rowOf_.data();
  problem_.value = value_.data();
  problem_.level = level_.data();
  problem_.isSemiContinuous = nullptr;
  problem_.sets = nullptr;
  problem_.setCount = 0;
  problem_.setColumns = nullptr;
  problem_.setWeights = nullptr;
  // Values of the added rows move with the bounds.
  problem_.coefficientsAsOf = 0;
  return true;
}

// lower * binary <= column <= upper * binary, by the column's bounds, which then take 0 in.
bool SetForm::addSemiContinuous(const SolverProblem& problem, std::string& reason) {
  for (int j = 0; j < problem.columnCount; ++j) {
    if (problem.isSemiContinuous[j] == 0) continue;
    const double lower = lower_[at(j)];
    const double upper = upper_[at(j)];
    // Without gaps between 0 and the bounds there is nothing to choose.
    if (lower <= 0 && upper >= 0) continue;
    if (lower > upper) {
      // No value within the bounds: 0 is left.
      lower_[at(j)] = upper_[at(j)] = 0;
      continue;
    }
    if (!tie(j, {addBinary(level_[at(j)] != 0)}, reason)) return false;
    const int row = addRow(0);
    // The bound next to 0.
    entries_.push_back({row, j, lower > 0 ? -1.0 : 1.0});
    entries_.push_back({row, static_cast<int>(cost_.size()) - 1, lower > 0 ? lower : -upper});
    lower_[at(j)] = std::min(lower, 0.0);
    upper_[at(j)] = std::max(upper, 0.0);
  }
  return true;
}

bool SetForm::addSet(const SolverProblem& problem, const ztbSolverSet& set, std::string& reason) {
  // So few members are never too many.
  if (set.count <= set.kind) return true;
  const int* const columns = problem.setColumns + set.first;
  const int first = static_cast<int>(cost_.size());
  const int count = set.count + 1 - set.kind;
  for (int k = 0; k < count; ++k) addBinary(level_[at(columns[k])] != 0);
  const int sum = addRow(1);
  for (int k = 0; k < count; ++k) entries_.push_back({sum, first + k, 1});
  for (int member = 0; member < set.count; ++member) {
    std::vector<int> binaries;
    for (int k = member + 1 - set.kind; k <= member; ++k) {
      if (k >= 0 && k < count) binaries.push_back(first + k);
    }
    if (!tie(columns[member], binaries, reason)) return false;
  }
  return true;
}

int SetForm::addBinary(bool isOne) {
  cost_.push_back(0);
  lower_.push_back(0);
  upper_.push_back(1);
  isInteger_.push_back(1);
  level_.push_back(isOne ? 1 : 0);
  return static_cast<int>(cost_.size()) - 1;
}

int SetForm::addRow(double upper) {
  rowLower_.push_back(-kNoBound);
  rowUpper_.push_back(upper);
  return static_cast<int>(rowLower_.size()) - 1;
}

bool SetForm::tie(int column, const std::vector<int>& binaries, std::string& reason) {
  const double upper = std::max(reachesUpper_[at(column)], 0.0);
  const double lower = std::min(reachesLower_[at(column)], 0.0);
  if (std::isinf(upper) || std::isinf(lower)) {
    reason = "column #" + std::to_string(column) +
             " is semi-continuous or in a special ordered set and has no finite bounds, which the "
             "search needs, nor do rows imply any";
    return false;
  }
  if (upper > 0) {
    const int row = addRow(0);
    entries_.push_back({row, column, 1});
    for (const int binary : binaries) entries_.push_back({row, binary, -upper});
  }
  if (lower < 0) {
    const int row = addRow(0);
    entries_.push_back({row, column, -1});
    for (const int binary : binaries) entries_.push_back({row, binary, lower});
  }
  return true;
}

// The matrix by columns: those of the problem with the added entries behind their own.
void SetForm::takeMatrix(const SolverProblem& problem) {
  std::vector<int> count(cost_.size() + 1);
  for (int j = 0; j < problem.columnCount; ++j) {
    count[at(j) + 1] = problem.start[j + 1] - problem.start[j];
  }
  for (const Entry& entry : entries_) ++count[at(entry.column) + 1];
  start_.assign(count.begin(), count.end());
  for (std::size_t j = 1; j < start_.size(); ++j) start_[j] += start_[j - 1];
  rowOf_.resize(at(start_.back()));
  value_.resize(at(start_.back()));
  std::vector<int> next(start_.begin(), start_.end() - 1);
  for (int j = 0; j < problem.columnCount; ++j) {
    for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
      rowOf_[at(next[at(j)])] = problem.rowOf[e];
      value_[at(next[at(j)]++)] = problem.value[e];
    }
  }
  // Rows that are added later have higher numbers, so that rows ascend within a column.
  for (const Entry& entry : entries_) {
    int& place = next[at(entry.column)];
    rowOf_[at(place)] = entry.row;
    value_[at(place++)] = entry.value;
  }
}

}  // namespace lomu
