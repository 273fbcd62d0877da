#include "providers/model/problem_part.h"

#include "providers/model/at.h"

namespace lomu {

ProblemPart::ProblemPart(const SolverProblem& problem, const std::vector<char>& rows,
                         const std::vector<char>& columns)
    : start_{0} {
  std::vector<int> place(at(problem.rowCount), -1);
  for (int row = 0; row < problem.rowCount; ++row) {
    if (rows[at(row)] == 0) continue;
    place[at(row)] = static_cast<int>(rows_.size());
    rows_.push_back(row);
    rowLower_.push_back(problem.rowLower[row]);
    rowUpper_.push_back(problem.rowUpper[row]);
  }
  for (int column = 0; column < problem.columnCount; ++column) {
    for (int e = problem.start[column]; e < problem.start[column + 1]; ++e) {
      const int row = place[at(problem.rowOf[e])];
      if (row < 0 || problem.value[e] == 0) continue;
      rowOf_.push_back(row);
      value_.push_back(problem.value[e]);
    }
    const int end = static_cast<int>(rowOf_.size());
    if (end == start_.back() && columns[at(column)] == 0) continue;
    start_.push_back(end);
    columns_.push_back(column);
    lower_.push_back(problem.lower[column]);
    upper_.push_back(problem.upper[column]);
  }
  cost_.assign(columns_.size(), 0);
  noInteger_.assign(columns_.size(), 0);
  problem_.columnCount = static_cast<int>(columns_.size());
  problem_.rowCount = static_cast<int>(rows_.size());
  problem_.cost = cost_.data();
  problem_.lower = lower_.data();
  problem_.upper = upper_.data();
  problem_.isInteger = noInteger_.data();
  problem_.rowLower = rowLower_.data();
  problem_.rowUpper = rowUpper_.data();
  problem_.start = start_.data();
  problem_.rowOf = rowOf_.data();
  problem_.value = value_.data();
}

}  // namespace lomu
