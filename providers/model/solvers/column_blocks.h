// Passes over the columns of a problem that look at each array once: a block of columns is taken
// through all that is asked of it while it lies in the processor's cache. The inner loops are
// written without branches, for the compiler to turn into vector instructions.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BLOCKS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BLOCKS_H_

#include <algorithm>
#include <array>
#include <cstddef>

#include "providers/model/solver.h"

namespace lomu {

inline constexpr int kColumnsOfBlock = 256;

// Calls `visit` with the first column of each block and the one behind its last, as long as it
// gives true.
template <class Visit>
void forEachBlock(int columnCount, const Visit& visit) {
  for (int begin = 0; begin < columnCount; begin += kColumnsOfBlock) {
    if (!visit(begin, std::min(columnCount, begin + kColumnsOfBlock))) return;
  }
}

// Calls `visit` with each column from `begin` to `end`, a block at most, that is not at 0, in their
// order. Which ones these are follows no pattern that a processor could foresee.
template <class Visit>
void forEachMoved(const double* level, int begin, int end, const Visit& visit) {
  std::array<int, kColumnsOfBlock> moved;
  std::size_t count = 0;
  for (int j = begin; j < end; ++j) {
    moved[count] = j;
    count += level[j] != 0 ? 1 : 0;
  }
  for (std::size_t m = 0; m < count; ++m) visit(moved[m]);
}

// Adds the linear terms of a column to the rows.
inline void addLinearTerms(const SolverProblem& problem, int j, double level, double* rows) {
  for (int e = problem.start[j]; e < problem.start[j + 1]; ++e) {
    rows[problem.rowOf[e]] += problem.value[e] * level;
  }
}

// The sum of a block's terms.
inline double sumOfTerms(const std::array<double, kColumnsOfBlock>& terms, int count) {
  std::array<double, 4> sums{};
  const auto size = static_cast<std::size_t>(count);
  std::size_t k = 0;
  for (; k + sums.size() <= size; k += sums.size()) {
    for (std::size_t s = 0; s < sums.size(); ++s) sums[s] += terms[k + s];
  }
  double sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
  for (; k < size; ++k) sum += terms[k];
  return sum;
}

// How many marks there are at columns from `begin` to `end`, a block at most, where `mark` gives
// 1.0 or 0.0 for a place, or a sum of such: numbers as wide as those that they are made from, for
// vector instructions.
template <class Mark>
double marksIn(int begin, int end, const Mark& mark) {
  std::array<double, kColumnsOfBlock> marks;
  const int count = end - begin;
  for (int k = 0; k < count; ++k) marks[static_cast<std::size_t>(k)] = mark(begin + k);
  return sumOfTerms(marks, count);
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_COLUMN_BLOCKS_H_
