#include "providers/model/solvers/reduction.h"

#include <algorithm>
#include <cmath>

#include "providers/model/at.h"

namespace lomu {

namespace {

// Entries of the matrix that may be looked at, for each that it has.
constexpr double kReducingPerEntry = 200;

}  // namespace

Reduction::Reduction(const LinearForm& form, bool everyPoint, Watch& watch)
    : form_(form),
      watch_(watch),
      everyPoint_(everyPoint),
      lower_(form.lower),
      upper_(form.upper),
      cost_(form.cost),
      rows_(at(form.rowCount)),
      rowsOf_(at(form.columnCount)),
      isTied_(at(form.columnCount)),
      work_(kReducingPerEntry * static_cast<double>(form.value.size())) {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    rows_[i].lower = form.rowLower[i];
    rows_[i].upper = form.rowUpper[i];
    queue(static_cast<int>(i));
  }
  for (int j = 0; j < form.columnCount; ++j) {
    for (int e = form.start[at(j)]; e < form.start[at(j) + 1]; ++e) {
      if (form.value[at(e)] == 0) continue;
      rows_[at(form.rowOf[at(e)])].entries.push_back({j, form.value[at(e)]});
      rowsOf_[at(j)].push_back(form.rowOf[at(e)]);
    }
  }
}

bool Reduction::isFixed(int column) const {
  return lower_[at(column)] == upper_[at(column)];
}

void Reduction::queue(int row) {
  if (rows_[at(row)].isGone || rows_[at(row)].isWaiting) return;
  rows_[at(row)].isWaiting = true;
  waiting_.push_back(row);
}

void Reduction::queueRowsOf(int column) {
  for (const int row : rowsOf_[at(column)]) queue(row);
}

void Reduction::remove(int row) {
  rows_[at(row)].isGone = true;
  rows_[at(row)].entries.clear();
}

// Bounds that cross by a hair meet.
bool Reduction::narrow(int column, double newLower, double newUpper) {
  double& lower = lower_[at(column)];
  double& upper = upper_[at(column)];
  newLower = std::max(lower, newLower);
  newUpper = std::min(upper, newUpper);
  if (newLower > newUpper) {
    constexpr double kRoom = 1e-6;
    if (form_.isInteger[at(column)] != 0 ||
        newLower - newUpper > kRoom * std::max(1.0, std::abs(newLower))) {
      return false;
    }
    // Where a bound of the column itself is one of the two, it stays.
    newLower = newUpper = newLower == lower ? newLower : newUpper;
  }
  if (newLower == lower && newUpper == upper) return true;
  lower = newLower + 0.0;  // no -0
  upper = newUpper + 0.0;
  queueRowsOf(column);
  return true;
}

bool Reduction::run() {
  constexpr std::size_t kRowsPerLook = 256;  // at the clock
  std::size_t looks = 0;
  for (bool changed = true; changed;) {
    for (std::size_t k = 0; k < waiting_.size(); ++k) {
      if (++looks % kRowsPerLook == 0) watch_.mustStop();
      if (watch_.stopped() || work_ <= 0) break;
      rows_[at(waiting_[k])].isWaiting = false;
      if (!rows_[at(waiting_[k])].isGone && !visit(waiting_[k])) return false;
    }
    for (const int row : waiting_) rows_[at(row)].isWaiting = false;
    waiting_.clear();
    changed = false;
    if (watch_.mustStop() || work_ <= 0) break;
    if (!mergeParallelRows() || (!everyPoint_ && !sendToBounds())) return false;
    changed = !waiting_.empty();
  }
  build();
  return true;
}

bool Reduction::take(const LinearForm& probed, const std::vector<Tie>& ties) {
  // By the numbers of the small problem's columns, which a tie does not change.
  for (std::size_t j = 0; j < columns_.size(); ++j) {
    if (!narrow(columns_[j], probed.lower[j], probed.upper[j])) return false;
  }
  for (const Tie& one : ties) {
    const int column = columns_[at(one.column)];
    const int other = columns_[at(one.other)];
    if (isTied_[at(column)] != 0 || isTied_[at(other)] != 0 || isFixed(column) || isFixed(other)) {
      continue;
    }
    tie({column, other, one.offset, one.factor});
  }
  return true;
}

void Reduction::build() {
  std::vector<int> rowNumber(rows_.size(), -1);
  small_ = LinearForm();
  columns_.clear();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].isGone) continue;
    absorbFixed(rows_[i]);
    rowNumber[i] = small_.rowCount++;
    small_.rowLower.push_back(rows_[i].lower);
    small_.rowUpper.push_back(rows_[i].upper);
  }
  double constant = constant_;
  std::vector<int> place(lower_.size(), -1);
  for (int j = 0; j < form_.columnCount; ++j) {
    if (isTied_[at(j)] != 0) continue;
    if (isFixed(j)) {
      constant += cost_[at(j)] * lower_[at(j)];
      continue;
    }
    place[at(j)] = static_cast<int>(columns_.size());
    columns_.push_back(j);
  }
  std::vector<std::vector<std::pair<int, double>>> entries(columns_.size());
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    for (const Entry& one : rows_[i].entries) {
      entries[at(place[at(one.column)])].emplace_back(rowNumber[i], one.value);
    }
  }
  small_.start.push_back(0);
  for (std::size_t k = 0; k < columns_.size(); ++k) {
    const auto j = at(columns_[k]);
    small_.cost.push_back(cost_[j]);
    small_.lower.push_back(lower_[j]);
    small_.upper.push_back(upper_[j]);
    small_.isInteger.push_back(form_.isInteger[j]);
    small_.hasIntegers = small_.hasIntegers || form_.isInteger[j] != 0;
    for (const auto& [row, value] : entries[k]) {
      small_.rowOf.push_back(row);
      small_.value.push_back(value);
    }
    small_.start.push_back(static_cast<int>(small_.rowOf.size()));
  }
  small_.cost.push_back(constant);
  small_.lower.push_back(1);
  small_.upper.push_back(1);
  small_.isInteger.push_back(0);
  small_.start.push_back(small_.start.back());
  small_.columnCount = static_cast<int>(small_.cost.size());
}

std::vector<double> Reduction::whole(const double* smallLevel) const {
  std::vector<double> level(lower_);
  for (std::size_t k = 0; k < columns_.size(); ++k) level[at(columns_[k])] = smallLevel[k];
  // A column may be tied to one that was tied later.
  for (auto one = ties_.rbegin(); one != ties_.rend(); ++one) {
    level[at(one->column)] = one->offset + one->factor * level[at(one->other)];
  }
  return level;
}

std::vector<double> Reduction::part(const std::vector<double>& wholeLevel) const {
  std::vector<double> level;
  for (const int j : columns_) level.push_back(wholeLevel[at(j)]);
  level.push_back(1);
  return level;
}

}  // namespace lomu
