#include "providers/model/solvers/probing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "providers/model/at.h"

namespace lomu {

namespace {

// By more than a check of points lets a row be missed by.
constexpr double kRowRoom = 2e-6;
// Entries of the matrix that may be looked at, for each that it has.
constexpr double kWorkPerEntry = 100;
constexpr int kRounds = 5;

struct Interval {
  int column;
  double lower, upper;
};

class Prober {
 public:
  Prober(const LinearForm& form, Watch& watch);

  // False when no point is possible.
  bool run();
  [[nodiscard]] bool isTwofold(int j) const {
    return form_.isInteger[at(j)] != 0 && upper[at(j)] - lower[at(j)] == 1;
  }

  std::vector<double> lower, upper;
  std::vector<Tie> ties;

 private:
  // What a row can come to: finite parts, how many are infinite, and its largest term.
  struct Sums {
    double finite = 0;
    double largest = 0;
    int infinite = 0;

    void add(double part) {
      if (std::isinf(part)) {
        ++infinite;
      } else {
        finite += part;
        largest = std::max(largest, std::abs(part));
      }
    }
    [[nodiscard]] bool isKnownWithout(double part) const {
      return infinite == (std::isinf(part) ? 1 : 0);
    }
    [[nodiscard]] double without(double part) const {
      return std::isinf(part) ? finite : finite - part;
    }
  };

  [[nodiscard]] bool isTired() const { return work_ <= 0 || watch_.stopped(); }
  void narrow(int j, double newLower, double newUpper);
  bool follow();
  bool followRow(int i);
  bool followEntry(int j, double value, double least, double most);
  bool tryValue(int j, double value, std::vector<Interval>& left);
  bool probe(int j, bool& changed);
  void forget();

  const LinearForm& form_;
  Watch& watch_;
  std::vector<int> rowStart_, columnOf_;
  std::vector<double> value_;
  std::vector<Interval> before_;  // bounds as they were, to be put back
  std::vector<int> rows_;         // that are to be looked at
  std::vector<char> isWaiting_;
  std::vector<char> isTied_;
  double work_;
};

Prober::Prober(const LinearForm& form, Watch& watch)
    : lower(form.lower),
      upper(form.upper),
      form_(form),
      watch_(watch),
      rowStart_(at(form.rowCount) + 1),
      columnOf_(form.value.size()),
      value_(form.value.size()),
      isWaiting_(at(form.rowCount)),
      isTied_(at(form.columnCount)),
      work_(kWorkPerEntry * static_cast<double>(form.value.size())) {
  for (const int i : form.rowOf) ++rowStart_[at(i) + 1];
  for (std::size_t i = 1; i < rowStart_.size(); ++i) rowStart_[i] += rowStart_[i - 1];
  std::vector<int> next(rowStart_.begin(), rowStart_.end() - 1);
  for (int j = 0; j < form.columnCount; ++j) {
    for (int e = form.start[at(j)]; e < form.start[at(j) + 1]; ++e) {
      const int place = next[at(form.rowOf[at(e)])]++;
      columnOf_[at(place)] = j;
      value_[at(place)] = form.value[at(e)];
    }
  }
}

void Prober::narrow(int j, double newLower, double newUpper) {
  before_.push_back({j, lower[at(j)], upper[at(j)]});
  lower[at(j)] = newLower;
  upper[at(j)] = newUpper;
  for (int e = form_.start[at(j)]; e < form_.start[at(j) + 1]; ++e) {
    const int i = form_.rowOf[at(e)];
    if (isWaiting_[at(i)] != 0) continue;
    isWaiting_[at(i)] = 1;
    rows_.push_back(i);
  }
}

// What follows for a column from the others of a row, which are between `least` and `most` short of
// its sides: least <= value * x <= most. False when nothing is left of it.
bool Prober::followEntry(int j, double value, double least, double most) {
  double low = (value > 0 ? least : most) / value;
  double high = (value > 0 ? most : least) / value;
  const double width = upper[at(j)] - lower[at(j)];
  if (form_.isInteger[at(j)] != 0) {
    constexpr double kRoom = 1e-6;  // as far as a level may be from an integer
    low = std::ceil(low - kRoom * std::max(1.0, std::abs(low)));
    high = std::floor(high + kRoom * std::max(1.0, std::abs(high)));
  } else {
    // Small steps could go on for ever.
    constexpr double kStep = 0.01;
    if (!(low > lower[at(j)] + kStep * std::min(width, 1e6))) low = lower[at(j)];
    if (!(high < upper[at(j)] - kStep * std::min(width, 1e6))) high = upper[at(j)];
  }
  low = std::max(low, lower[at(j)]);
  high = std::min(high, upper[at(j)]);
  if (low > high) {
    constexpr double kRoom = 1e-6;
    return low - high <= kRoom * std::max(1.0, std::abs(low));
  }
  if (low > lower[at(j)] || high < upper[at(j)]) narrow(j, low, high);
  return true;
}

bool Prober::followRow(int i) {
  Sums least;
  Sums most;
  const auto ends = [&](int e) {
    const double value = value_[at(e)];
    const auto j = at(columnOf_[at(e)]);
    return std::pair{value * (value > 0 ? lower : upper)[j],
                     value * (value > 0 ? upper : lower)[j]};
  };
  const int first = rowStart_[at(i)];
  const int last = rowStart_[at(i) + 1];
  work_ -= last - first;
  for (int e = first; e < last; ++e) {
    if (value_[at(e)] == 0) continue;
    const auto [from, to] = ends(e);
    least.add(from);
    most.add(to);
  }
  const double room = kRowRoom * std::max({1.0, least.largest, most.largest});
  const double low = form_.rowLower[at(i)] - room;
  const double high = form_.rowUpper[at(i)] + room;
  if (least.infinite == 0 && least.finite > high) return false;
  if (most.infinite == 0 && most.finite < low) return false;
  for (int e = first; e < last; ++e) {
    const auto j = at(columnOf_[at(e)]);
    if (value_[at(e)] == 0 || lower[j] == upper[j]) continue;
    // As the row stood above: what this loop narrows has it looked at once more.
    const auto [from, to] = ends(e);
    const double top = least.isKnownWithout(from) ? high - least.without(from) : HUGE_VAL;
    const double bottom = most.isKnownWithout(to) ? low - most.without(to) : -HUGE_VAL;
    if (!followEntry(columnOf_[at(e)], value_[at(e)], bottom, top)) return false;
  }
  return true;
}

bool Prober::follow() {
  constexpr std::size_t kRowsPerLook = 256;  // at the clock
  for (std::size_t k = 0; k < rows_.size() && !isTired(); ++k) {
    if (k % kRowsPerLook == kRowsPerLook - 1) watch_.mustStop();
    isWaiting_[at(rows_[k])] = 0;
    if (!followRow(rows_[k])) {
      forget();
      return false;
    }
  }
  forget();
  return true;
}

void Prober::forget() {
  for (const int i : rows_) isWaiting_[at(i)] = 0;
  rows_.clear();
}

// Where the bounds are left that a value leads to; false when it leads to a contradiction. The
// bounds are as before then.
bool Prober::tryValue(int j, double value, std::vector<Interval>& left) {
  before_.clear();
  left.clear();
  narrow(j, value, value);
  const bool isPossible = follow();
  for (const Interval& moved : before_) {
    left.push_back({moved.column, lower[at(moved.column)], upper[at(moved.column)]});
  }
  for (; !before_.empty(); before_.pop_back()) {
    lower[at(before_.back().column)] = before_.back().lower;
    upper[at(before_.back().column)] = before_.back().upper;
  }
  return isPossible;
}

bool Prober::probe(int j, bool& changed) {
  std::vector<Interval> below;
  std::vector<Interval> above;
  const double low = lower[at(j)];
  const double high = upper[at(j)];
  const bool canBeLow = tryValue(j, low, below);
  const bool canBeHigh = tryValue(j, high, above);
  if (!canBeLow && !canBeHigh) return false;
  if (canBeLow != canBeHigh) {
    changed = true;
    narrow(j, canBeLow ? low : high, canBeLow ? low : high);
    return follow();
  }
  // What holds for both values, of the columns that both moved.
  std::vector<Interval> common;
  const auto byColumn = [](const Interval& a, const Interval& b) { return a.column < b.column; };
  std::ranges::sort(below, byColumn);
  for (const Interval& one : above) {
    const auto other = std::ranges::lower_bound(below, one, byColumn);
    if (one.column == j || other == below.end() || other->column != one.column) continue;
    const double from = std::min(one.lower, other->lower);
    const double to = std::max(one.upper, other->upper);
    if (form_.isInteger[at(one.column)] == 0) continue;
    common.push_back({one.column, from, to});
    if (one.lower != one.upper || other->lower != other->upper || from == to) continue;
    const double factor = one.lower - other->lower;
    if (isTied_[at(j)] == 0 && std::exchange(isTied_[at(one.column)], char{1}) == 0) {
      ties.push_back({one.column, j, other->lower - factor * low, factor});
    }
  }
  for (const Interval& one : common) {
    if (one.lower <= lower[at(one.column)] && one.upper >= upper[at(one.column)]) continue;
    changed = true;
    narrow(one.column, std::max(one.lower, lower[at(one.column)]),
           std::min(one.upper, upper[at(one.column)]));
  }
  return follow();
}

bool Prober::run() {
  for (int i = 0; i < form_.rowCount; ++i) {
    rows_.push_back(i);
    isWaiting_[at(i)] = 1;
  }
  if (!follow()) return false;
  bool changed = true;
  for (int round = 0; round < kRounds && changed; ++round) {
    changed = false;
    for (int j = 0; j < form_.columnCount && !watch_.mustStop() && !isTired(); ++j) {
      if (isTwofold(j) && !probe(j, changed)) return false;
    }
  }
  return true;
}

// Whether a bound that follows from rows with their room is one that a column has without it.
bool isNear(double implied, double own) {
  constexpr double kNear = 1e-5;
  return std::isfinite(own) && std::abs(implied - own) <= kNear * std::max(1.0, std::abs(own));
}

}  // namespace

bool probeIntegers(LinearForm& form, Watch& watch, double share, std::vector<Tie>* ties) {
  Prober prober(form, watch);
  if (!prober.run()) return false;
  int movable = 0;
  int still = 0;
  for (std::size_t j = 0; j < form.isInteger.size(); ++j) {
    if (form.isInteger[j] == 0 || form.lower[j] == form.upper[j]) continue;
    ++movable;
    if (prober.lower[j] == prober.upper[j]) ++still;
  }
  if (ties != nullptr) *ties = std::move(prober.ties);
  if (movable == 0 || still < share * movable) return false;
  for (std::size_t j = 0; j < form.isInteger.size(); ++j) {
    if (form.isInteger[j] != 0) {
      // Adding 0 makes -0 a 0.
      form.lower[j] = prober.lower[j] + 0.0;
      form.upper[j] = prober.upper[j] + 0.0;
    } else if (isNear(prober.upper[j], form.lower[j])) {
      form.upper[j] = form.lower[j];
    } else if (isNear(prober.lower[j], form.upper[j])) {
      form.lower[j] = form.upper[j];
    }
  }
  return true;
}

}  // namespace lomu
