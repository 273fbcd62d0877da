#include "providers/model/solvers/convexity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

namespace lomu {

namespace {

constexpr std::size_t kMostColumns = 3000;
// What rounding leaves of a pivot, relative to the largest.
constexpr double kRounding = 1e-10;

// Columns in groups that products connect.
class Groups {
 public:
  explicit Groups(int count) : parent_(static_cast<std::size_t>(count)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  int of(int column) {
    int& parent = parent_[static_cast<std::size_t>(column)];
    if (parent != column) parent = of(parent);
    return parent;
  }
  void connect(int a, int b) { parent_[static_cast<std::size_t>(of(a))] = of(b); }

 private:
  std::vector<int> parent_;
};

class Symmetric {
 public:
  explicit Symmetric(std::size_t size) : size_(size), value_(size * size) {}
  double& at(std::size_t i, std::size_t j) { return value_[i * size_ + j]; }

  // Factors in place; whether no pivot is negative.
  bool isSemidefinite() {
    double largest = 0;
    for (const double v : value_) largest = std::max(largest, std::abs(v));
    const double room = kRounding * largest * static_cast<double>(size_);
    for (std::size_t step = 0; step < size_; ++step) {
      std::size_t pivot = step;
      for (std::size_t k = step; k < size_; ++k) {
        if (at(k, k) < -room) return false;
        if (at(k, k) > at(pivot, pivot)) pivot = k;
      }
      if (at(pivot, pivot) <= room) return restIsZero(step, std::sqrt(room * largest));
      swap(step, pivot);
      for (std::size_t i = step + 1; i < size_; ++i) {
        const double factor = at(i, step) / at(step, step);
        if (factor == 0) continue;
        for (std::size_t j = step + 1; j < size_; ++j) at(i, j) -= factor * at(step, j);
      }
    }
    return true;
  }

 private:
  void swap(std::size_t a, std::size_t b) {
    if (a == b) return;
    for (std::size_t k = 0; k < size_; ++k) std::swap(at(a, k), at(b, k));
    for (std::size_t k = 0; k < size_; ++k) std::swap(at(k, a), at(k, b));
  }
  // Beside pivots of 0 nothing else may be left.
  bool restIsZero(std::size_t from, double room) {
    for (std::size_t i = from; i < size_; ++i) {
      for (std::size_t j = from; j < size_; ++j) {
        if (std::abs(at(i, j)) > room) return false;
      }
    }
    return true;
  }

  std::size_t size_;
  std::vector<double> value_;
};

}  // namespace

bool curvesUpwards(std::span<const SolverProduct> products, int columnCount) {
  Groups groups(columnCount);
  for (const SolverProduct& p : products) groups.connect(p.column1, p.column2);
  // The place of each column in its group, and the groups' products.
  std::vector<int> place(static_cast<std::size_t>(columnCount), -1);
  std::vector<std::size_t> size(place.size());
  std::vector<std::vector<SolverProduct>> members(place.size());
  for (const SolverProduct& p : products) {
    const auto group = static_cast<std::size_t>(groups.of(p.column1));
    for (const int column : {p.column1, p.column2}) {
      int& its = place[static_cast<std::size_t>(column)];
      if (its < 0) its = static_cast<int>(size[group]++);
    }
    members[group].push_back(p);
  }
  for (std::size_t group = 0; group < size.size(); ++group) {
    if (size[group] == 0) continue;
    if (size[group] > kMostColumns) return false;
    Symmetric matrix(size[group]);
    for (const SolverProduct& p : members[group]) {
      const auto i = static_cast<std::size_t>(place[static_cast<std::size_t>(p.column1)]);
      const auto j = static_cast<std::size_t>(place[static_cast<std::size_t>(p.column2)]);
      matrix.at(i, j) += p.value;
      matrix.at(j, i) += p.value;
    }
    if (!matrix.isSemidefinite()) return false;
  }
  return true;
}

namespace {

// The products of each row, and of the objective.
std::map<int, std::vector<SolverProduct>> byRows(std::span<const SolverProduct> products) {
  std::map<int, std::vector<SolverProduct>> rows;
  for (const SolverProduct& p : products) rows[p.row].push_back(p);
  return rows;
}

// With the sign turned where `sign` is -1. The columns are numbered anew: a row has few of them.
bool curves(std::vector<SolverProduct> products, double sign) {
  std::vector<int> columns;
  for (const SolverProduct& p : products) {
    columns.push_back(p.column1);
    columns.push_back(p.column2);
  }
  std::sort(columns.begin(), columns.end());
  columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
  const auto placeOf = [&](int column) {
    return static_cast<int>(std::lower_bound(columns.begin(), columns.end(), column) -
                            columns.begin());
  };
  for (SolverProduct& p : products) {
    p = {p.row, placeOf(p.column1), placeOf(p.column2), sign * p.value};
  }
  return curvesUpwards(products, static_cast<int>(columns.size()));
}

bool rowIsConvex(const SolverProblem& problem, int row,
                 const std::vector<SolverProduct>& products) {
  return (std::isinf(problem.rowUpper[row]) || curves(products, 1)) &&
         (std::isinf(problem.rowLower[row]) || curves(products, -1));
}

}  // namespace

bool rowsAreConvex(const SolverProblem& problem, std::span<const SolverProduct> products) {
  return std::ranges::all_of(byRows(products), [&](const auto& row) {
    return row.first == kObjectiveRow || rowIsConvex(problem, row.first, row.second);
  });
}

bool isConvex(const SolverProblem& problem, std::span<const SolverProduct> products) {
  return std::ranges::all_of(byRows(products), [&](const auto& row) {
    return row.first == kObjectiveRow ? curves(row.second, 1)
                                      : rowIsConvex(problem, row.first, row.second);
  });
}

}  // namespace lomu
