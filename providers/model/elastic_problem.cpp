#include "providers/model/elastic_problem.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "providers/model/at.h"
#include "providers/model/model_data.h"

namespace lomu {

ElasticProblem::ElasticProblem(const SolverProblem& problem)
    : rowCount_(problem.rowCount),
      start_{0},
      cost_(at(problem.columnCount), 0.0),
      lower_(problem.lower, problem.lower + problem.columnCount),
      upper_(problem.upper, problem.upper + problem.columnCount) {
  std::vector<double> largest(at(rowCount_), 0.0);
  for (int e = 0; e < problem.start[problem.columnCount]; ++e) {
    double& size = largest[at(problem.rowOf[e])];
    size = std::max(size, std::abs(problem.value[e]));
  }
  std::vector<std::array<int, 2>> sides(at(rowCount_), {-1, -1});
  std::vector<double> give;  // what an amount of 1 makes of a side
  for (int row = 0; row < rowCount_; ++row) {
    const double size = largest[at(row)] > 0 ? largest[at(row)] : 1;
    for (const int side : {0, 1}) {
      const double end = side == 0 ? problem.rowLower[row] : problem.rowUpper[row];
      if (std::isinf(end)) continue;
      sides[at(row)][at(side)] = static_cast<int>(rowOfSide_.size());
      rowOfSide_.push_back(row);
      sideLower_.push_back(side == 0 ? end : -kInfinity);
      sideUpper_.push_back(side == 0 ? kInfinity : end);
      give.push_back(side == 0 ? size : -size);
    }
  }
  for (int column = 0; column < problem.columnCount; ++column) {
    for (int e = problem.start[column]; e < problem.start[column + 1]; ++e) {
      for (const int side : sides[at(problem.rowOf[e])]) {
        if (side < 0) continue;
        rowOf_.push_back(side);
        value_.push_back(problem.value[e]);
      }
    }
    start_.push_back(static_cast<int>(rowOf_.size()));
  }
  for (std::size_t side = 0; side < give.size(); ++side) {
    rowOf_.push_back(static_cast<int>(side));
    value_.push_back(give[side]);
  }
  start_.push_back(static_cast<int>(rowOf_.size()));
  lower_.push_back(0);
  upper_.push_back(kInfinity);
  cost_.push_back(1);
  noInteger_.assign(cost_.size(), 0);
  problem_.columnCount = static_cast<int>(cost_.size());
  problem_.rowCount = static_cast<int>(rowOfSide_.size());
  problem_.cost = cost_.data();
  problem_.lower = lower_.data();
  problem_.upper = upper_.data();
  problem_.isInteger = noInteger_.data();
  problem_.rowLower = sideLower_.data();
  problem_.rowUpper = sideUpper_.data();
  problem_.start = start_.data();
  problem_.rowOf = rowOf_.data();
  problem_.value = value_.data();
}

std::vector<double> ElasticProblem::weights(const std::vector<double>& rowMarginal) const {
  std::vector<double> weights(at(rowCount_), 0.0);
  for (std::size_t side = 0; side < rowMarginal.size(); ++side) {
    weights[at(rowOfSide_[side])] += rowMarginal[side];
  }
  return weights;
}

}  // namespace lomu
