#include "providers/model/sparse_matrix.h"

#include <algorithm>

namespace lomu {

SparseMatrix::SparseMatrix(const ModelData& data) {
  std::vector<Term> places = data.terms;
  for (const Product& p : data.products) {
    places.push_back({p.row, p.column1, 0});
    places.push_back({p.row, p.column2, 0});
  }
  // Stable, so that terms of one place add up in the order in which they came.
  std::stable_sort(places.begin(), places.end(), [](const Term& a, const Term& b) {
    return a.column != b.column ? a.column < b.column : a.row < b.row;
  });
  start.assign(data.columns.size() + 1, 0);
  int column = -1;
  for (const Term& term : places) {
    const bool same = term.column == column && !rowOf.empty() && rowOf.back() == term.row;
    if (same) {
      value.back() += term.value;
      continue;
    }
    column = term.column;
    rowOf.push_back(term.row);
    value.push_back(term.value);
    start[static_cast<std::size_t>(column) + 1] = value.size();
  }
  for (std::size_t j = 1; j < start.size(); ++j) start[j] = std::max(start[j], start[j - 1]);
}

std::size_t SparseMatrix::entry(int row, int column) const {
  const auto j = static_cast<std::size_t>(column);
  const auto begin = rowOf.begin() + static_cast<std::ptrdiff_t>(start[j]);
  const auto end = rowOf.begin() + static_cast<std::ptrdiff_t>(start[j + 1]);
  return static_cast<std::size_t>(std::lower_bound(begin, end, row) - rowOf.begin());
}

}  // namespace lomu
