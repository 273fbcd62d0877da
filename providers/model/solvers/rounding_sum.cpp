#include "providers/model/solvers/rounding_sum.h"

#include <algorithm>
#include <cmath>

#include "providers/model/at.h"

namespace lomu {

ColumnSum::ColumnSum(int columns) : value_(at(columns)), isThere_(at(columns)) {}

void ColumnSum::add(int column, double value) {
  if (isThere_[at(column)] == 0) {
    isThere_[at(column)] = 1;
    columns_.push_back(column);
  }
  value_[at(column)] += value;
}

void ColumnSum::remove(int column) {
  value_[at(column)] = 0;
}

void ColumnSum::clear() {
  for (const int j : columns_) {
    value_[at(j)] = 0;
    isThere_[at(j)] = 0;
  }
  columns_.clear();
}

double ColumnSum::operator[](int column) const {
  return value_[at(column)];
}

RoundingSum::RoundingSum(const CutProblem& problem)
    : problem_(problem), value_(problem.columnCount()) {}

void RoundingSum::begin(int row, double activity) {
  value_.clear();
  parts_.clear();
  right_ = 0;
  add(row, 1, activity);
}

void RoundingSum::addWithout(int column, int row, double activity) {
  double own = 0;
  for (const CutEntry& entry : problem_.row[at(row)]) {
    if (entry.at == column) own = entry.value;
  }
  add(row, -value_[column] / own, activity);
  value_.remove(column);
}

bool RoundingSum::has(int row) const {
  return std::any_of(parts_.begin(), parts_.end(),
                     [row](const Part& part) { return part.row == row; });
}

void RoundingSum::add(int row, double factor, double activity) {
  const double low = problem_.rowLower[at(row)];
  const double high = problem_.rowUpper[at(row)];
  const bool atUpper = high - activity <= activity - low;
  for (const CutEntry& entry : problem_.row[at(row)]) value_.add(entry.at, factor * entry.value);
  right_ += factor * (atUpper ? high : low);
  parts_.push_back({row, atUpper, low == high, factor});
}

}  // namespace lomu
