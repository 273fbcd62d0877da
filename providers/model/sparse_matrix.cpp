#include "providers/model/sparse_matrix.h"

#include <algorithm>
#include <utility>

namespace lomu {

namespace {

// Calls place(row, column, value) for every term, and with zeros for the factors of every product.
template <typename Place>
void forEachPlace(const ModelData& data, const Place& place) {
  for (const Term& term : data.terms) place(term.row, term.column, term.value);
  for (const Product& p : data.products) {
    place(p.row, p.column1, 0.0);
    place(p.row, p.column2, 0.0);
  }
}

}  // namespace

SparseMatrix::SparseMatrix(const ModelData& data) {
  // Counted into columns first, in the order in which they came.
  start.assign(data.columns.size() + 1, 0);
  forEachPlace(data,
               [&](int, int column, double) { ++start[static_cast<std::size_t>(column) + 1]; });
  for (std::size_t j = 1; j < start.size(); ++j) start[j] += start[j - 1];
  rowOf.resize(start.back());
  value.resize(start.back());
  std::vector<std::size_t> next(start.begin(), start.end() - 1);
  forEachPlace(data, [&](int row, int column, double coefficient) {
    const std::size_t at = next[static_cast<std::size_t>(column)]++;
    rowOf[at] = row;
    value[at] = coefficient;
  });
  std::size_t end = 0;
  for (std::size_t j = 0; j + 1 < start.size(); ++j) {
    const std::size_t begin = std::exchange(start[j], end);
    end = gather(begin, start[j + 1], end);
  }
  start.back() = end;
  rowOf.resize(end);
  value.resize(end);
}

// Orders the entries [begin, end) of a column by rows, adds up those of one row in the order in
// which they came, and moves them to `to`, which is not behind `begin`. Gives the end of them
// there.
std::size_t SparseMatrix::gather(std::size_t begin, std::size_t end, std::size_t to) {
  const auto first = rowOf.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto last = rowOf.begin() + static_cast<std::ptrdiff_t>(end);
  if (!std::is_sorted(first, last)) {
    std::vector<std::pair<int, double>> entries;
    for (std::size_t e = begin; e < end; ++e) entries.emplace_back(rowOf[e], value[e]);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t e = begin; e < end; ++e) {
      rowOf[e] = entries[e - begin].first;
      value[e] = entries[e - begin].second;
    }
  }
  const std::size_t column = to;
  for (std::size_t e = begin; e < end; ++e) {
    if (to > column && rowOf[to - 1] == rowOf[e]) {
      value[to - 1] += value[e];
      continue;
    }
    rowOf[to] = rowOf[e];
    value[to] = value[e];
    ++to;
  }
  return to;
}

std::size_t SparseMatrix::entry(int row, int column) const {
  const auto j = static_cast<std::size_t>(column);
  const auto begin = rowOf.begin() + static_cast<std::ptrdiff_t>(start[j]);
  const auto end = rowOf.begin() + static_cast<std::ptrdiff_t>(start[j + 1]);
  return static_cast<std::size_t>(std::lower_bound(begin, end, row) - rowOf.begin());
}

}  // namespace lomu
