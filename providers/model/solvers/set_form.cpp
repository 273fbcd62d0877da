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
// A binary column is taken for 0 up to 1e-6, which lets a column be this times as much: from here
// on a row tells too little, and from there on it misleads the search.
constexpr double kLooseTie = 1e3;
constexpr double kLargestTie = 1e5;

}  // namespace

void SetForm::take(const SolverProblem& problem) {
  cost_.assign(problem.cost, problem.cost + problem.columnCount);
  lower_.assign(problem.lower, problem.lower + problem.columnCount);
  upper_.assign(problem.upper, problem.upper + problem.columnCount);
  isInteger_.assign(problem.isInteger, problem.isInteger + problem.columnCount);
  level_.assign(at(problem.columnCount), 0.0);
  if (problem.level != nullptr) std::copy_n(problem.level, problem.columnCount, level_.begin());
  rowLower_.assign(problem.rowLower, problem.rowLower + problem.rowCount);
  rowUpper_.assign(problem.rowUpper, problem.rowUpper + problem.rowCount);
  entries_.clear();
  choices_.clear();
  Reach reach(problem);
  reachesLower_ = std::move(reach.lower);
  reachesUpper_ = std::move(reach.upper);
  if (problem.isSemiContinuous != nullptr) addSemiContinuous(problem);
  for (int s = 0; s < problem.setCount; ++s) addSet(problem, problem.sets[s]);
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
  problem_.matrixAsOf = 0;
}

// lower * binary <= column <= upper * binary, by the column's bounds, which then take 0 in.
void SetForm::addSemiContinuous(const SolverProblem& problem) {
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
    tie(j, {addBinary(level_[at(j)] != 0)});
    const int row = addRow(0);
    // The bound next to 0.
    entries_.push_back({row, j, lower > 0 ? -1.0 : 1.0});
    entries_.push_back({row, static_cast<int>(cost_.size()) - 1, lower > 0 ? lower : -upper});
    lower_[at(j)] = std::min(lower, 0.0);
    upper_[at(j)] = std::max(upper, 0.0);
  }
}

void SetForm::addSet(const SolverProblem& problem, const ztbSolverSet& set) {
  // So few members are never too many.
  if (set.count <= set.kind) return;
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
    tie(columns[member], binaries);
  }
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

void SetForm::tie(int column, const std::vector<int>& binaries) {
  tieSide(column, 1, std::max(reachesUpper_[at(column)], 0.0), binaries);
  tieSide(column, -1, std::max(-reachesLower_[at(column)], 0.0), binaries);
}

void SetForm::tieSide(int column, double sign, double reach, const std::vector<int>& binaries) {
  if (reach == 0) return;
  const bool hasRow = reach <= kLargestTie;
  if (reach > kLooseTie) choices_.push_back({column, sign > 0, hasRow, binaries});
  if (!hasRow) return;
  const int row = addRow(0);
  entries_.push_back({row, column, sign});
  for (const int binary : binaries) entries_.push_back({row, binary, -reach});
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
