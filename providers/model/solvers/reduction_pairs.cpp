// What rows tell together, and with the costs.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "providers/model/at.h"
#include "providers/model/solvers/reduction.h"

namespace lomu {

// Puts the other column in the place of the tied one, in every row and in the cost.
void Reduction::tie(const Tie& tie) {
  for (const int number : rowsOf_[at(tie.column)]) {
    Row& row = rows_[at(number)];
    const auto sameColumn = [](int column) {
      return [column](const Entry& entry) { return entry.column == column; };
    };
    const auto found = std::ranges::find_if(row.entries, sameColumn(tie.column));
    if (found == row.entries.end()) continue;
    work_ -= static_cast<double>(row.entries.size());
    const double value = found->value;
    row.entries.erase(found);
    const double term = value * tie.offset;
    row.absorbed = std::max(row.absorbed, std::abs(term));
    row.lower -= term;
    row.upper -= term;
    const auto there = std::ranges::find_if(row.entries, sameColumn(tie.other));
    if (there == row.entries.end()) {
      row.entries.push_back({tie.other, value * tie.factor});
      rowsOf_[at(tie.other)].push_back(number);
    } else {
      there->value += value * tie.factor;
      if (there->value == 0) row.entries.erase(there);
    }
    queue(number);
  }
  rowsOf_[at(tie.column)].clear();
  cost_[at(tie.other)] += cost_[at(tie.column)] * tie.factor;
  constant_ += cost_[at(tie.column)] * tie.offset;
  isTied_[at(tie.column)] = 1;
  ties_.push_back(tie);
}

// Rows whose coefficients are the same but for one factor become one with the sides of both.
bool Reduction::mergeParallelRows() {
  std::vector<int> order;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    Row& row = rows_[i];
    if (row.isGone || row.entries.size() < 2) continue;
    std::ranges::sort(row.entries, {}, &Entry::column);
    order.push_back(static_cast<int>(i));
    work_ -= static_cast<double>(row.entries.size());
  }
  const auto byColumns = [&](int a, int b) {
    const auto& one = rows_[at(a)].entries;
    const auto& other = rows_[at(b)].entries;
    if (one.size() != other.size()) return one.size() < other.size();
    for (std::size_t e = 0; e < one.size(); ++e) {
      if (one[e].column != other[e].column) return one[e].column < other[e].column;
    }
    for (std::size_t e = 1; e < one.size(); ++e) {
      const double share = one[e].value / one[0].value;
      const double otherShare = other[e].value / other[0].value;
      if (share != otherShare) return share < otherShare;
    }
    return false;
  };
  std::ranges::sort(order, byColumns);
  for (std::size_t k = 1; k < order.size(); ++k) {
    if (byColumns(order[k - 1], order[k])) continue;
    Row& gone = rows_[at(order[k - 1])];
    Row& kept = rows_[at(order[k])];
    const double factor = kept.entries[0].value / gone.entries[0].value;
    double low = gone.lower * factor;
    double high = gone.upper * factor;
    if (factor < 0) std::swap(low, high);
    kept.lower = std::max(kept.lower, low);
    kept.upper = std::min(kept.upper, high);
    kept.absorbed = std::max(kept.absorbed, gone.absorbed * std::abs(factor));
    remove(order[k - 1]);
    queue(order[k]);
    if (kept.lower <= kept.upper) continue;
    constexpr double kRoom = 1e-9;
    if (kept.lower - kept.upper > kRoom * std::max(1.0, kept.absorbed)) return false;
    kept.lower = kept.upper;
  }
  return true;
}

// A column that no row holds back from a bound, and that its cost does not either, goes there.
bool Reduction::sendToBounds() {
  std::vector<char> heldDown(lower_.size());
  std::vector<char> heldUp(lower_.size());
  for (const Row& row : rows_) {
    for (const Entry& one : row.entries) {
      const bool isAbove = one.value > 0 ? std::isfinite(row.lower) : std::isfinite(row.upper);
      const bool isBelow = one.value > 0 ? std::isfinite(row.upper) : std::isfinite(row.lower);
      if (isAbove) heldDown[at(one.column)] = 1;
      if (isBelow) heldUp[at(one.column)] = 1;
    }
  }
  for (int j = 0; j < form_.columnCount; ++j) {
    if (isFixed(j) || isTied_[at(j)] != 0) continue;
    double level = HUGE_VAL;
    if (heldDown[at(j)] == 0 && cost_[at(j)] >= 0) level = lower_[at(j)];
    if (heldUp[at(j)] == 0 && cost_[at(j)] <= 0 && std::isinf(level)) level = upper_[at(j)];
    constexpr double kFar = 1e9;
    if (std::abs(level) <= kFar && !narrow(j, level, level)) return false;
  }
  return true;
}

}  // namespace lomu
