#include "providers/model/solvers/objective_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "providers/model/at.h"

namespace lomu {

namespace {

// Whole numbers below this are added and multiplied a few times without any rounding.
constexpr double kMostExact = 1e9;

bool isWholeOrEndless(double value) {
  return std::isinf(value) || (value == std::floor(value) && std::abs(value) < kMostExact);
}

// A place of the continuous columns' matrix: where it is, and which sign is there.
struct SignAt {
  int at;
  double sign;
};
using Signs = std::vector<std::vector<SignAt>>;

// Whether each of the lines has at most two entries, which are of opposite signs when some of the
// crossing lines are turned. Crossing lines with one entry are bounds, and count for nothing.
class Pairing {
 public:
  Pairing(const Signs& entries, const Signs& crossing)
      : entries_(entries), crossing_(crossing), turn_(crossing.size()) {}

  bool holds(const std::vector<int>& lines) {
    const auto hasMore = [this](int line) {
      const auto counted = [this](const SignAt& entry) { return counts(entry); };
      return std::count_if(entries_[at(line)].begin(), entries_[at(line)].end(), counted) > 2;
    };
    if (std::any_of(lines.begin(), lines.end(), hasMore)) return false;
    for (const int line : lines) {
      for (const SignAt& entry : entries_[at(line)]) {
        if (counts(entry) && turn_[at(entry.at)] == 0 && !turnFrom(entry.at)) return false;
      }
    }
    return true;
  }

 private:
  [[nodiscard]] bool counts(const SignAt& entry) const {
    return crossing_[at(entry.at)].size() > 1;
  }

  bool turnFrom(int first) {
    std::vector<int> waiting = {first};
    turn_[at(first)] = 1;
    while (!waiting.empty()) {
      const int one = waiting.back();
      waiting.pop_back();
      for (const SignAt& across : crossing_[at(one)]) {
        for (const SignAt& other : entries_[at(across.at)]) {
          if (other.at == one || !counts(other)) continue;
          const int wanted = turn_[at(one)] * across.sign * other.sign > 0 ? -1 : 1;
          if (turn_[at(other.at)] == -wanted) return false;
          if (turn_[at(other.at)] == wanted) continue;
          turn_[at(other.at)] = wanted;
          waiting.push_back(other.at);
        }
      }
    }
    return true;
  }

  const Signs& entries_;
  const Signs& crossing_;
  std::vector<int> turn_;  // of crossing lines; 0: not known
};

// Which continuous columns stand at whole numbers in some best point, whatever the integers are.
class WholeColumns {
 public:
  explicit WholeColumns(const LinearForm& form)
      : form_(form),
        row_(at(form.rowCount)),
        column_(at(form.columnCount)),
        isFit_(at(form.rowCount), 1),
        isWhole_(at(form.columnCount)) {
    takeContinuous();
    takeOthers();
    std::vector<char> columnSeen(at(form.columnCount));
    std::vector<char> rowSeen(at(form.rowCount));
    for (int j = 0; j < form.columnCount; ++j) {
      if (isContinuous(j) && columnSeen[at(j)] == 0) takePart(j, columnSeen, rowSeen);
    }
  }

  [[nodiscard]] bool has(int j) const { return isWhole_[at(j)] != 0; }

 private:
  [[nodiscard]] bool isContinuous(int j) const {
    return form_.isInteger[at(j)] == 0 && form_.lower[at(j)] != form_.upper[at(j)];
  }

  // Rows in which continuous columns have coefficients of one size, which the rest is divided by.
  void takeContinuous() {
    size_.resize(at(form_.rowCount));
    for (int j = 0; j < form_.columnCount; ++j) {
      if (!isContinuous(j)) continue;
      for (int e = form_.start[at(j)]; e < form_.start[at(j) + 1]; ++e) {
        const double value = form_.value[at(e)];
        const int i = form_.rowOf[at(e)];
        if (value == 0) continue;
        if (size_[at(i)] == 0) size_[at(i)] = std::abs(value);
        if (std::abs(value) != size_[at(i)]) isFit_[at(i)] = 0;
        const double sign = value > 0 ? 1 : -1;
        row_[at(i)].push_back({j, sign});
        column_[at(j)].push_back({i, sign});
      }
    }
  }

  void takeOthers() {
    std::vector<double> still(at(form_.rowCount));  // what columns that stand still add
    for (int j = 0; j < form_.columnCount; ++j) {
      if (isContinuous(j)) continue;
      const bool standsStill = form_.lower[at(j)] == form_.upper[at(j)];
      for (int e = form_.start[at(j)]; e < form_.start[at(j) + 1]; ++e) {
        const int i = form_.rowOf[at(e)];
        double value = form_.value[at(e)];
        if (size_[at(i)] == 0) continue;
        if (standsStill) {
          value *= form_.lower[at(j)];
          still[at(i)] += value;
        }
        if (!isWholeOrEndless(value) || !isWholeOrEndless(value / size_[at(i)])) {
          isFit_[at(i)] = 0;
        }
      }
    }
    for (int i = 0; i < form_.rowCount; ++i) {
      if (size_[at(i)] == 0) continue;
      for (const double side : {form_.rowLower[at(i)], form_.rowUpper[at(i)]}) {
        if (!isWholeOrEndless((side - still[at(i)]) / size_[at(i)])) isFit_[at(i)] = 0;
      }
    }
  }

  // What is connected with a column.
  void takePart(int first, std::vector<char>& columnSeen, std::vector<char>& rowSeen) {
    std::vector<int> columns = {first};
    std::vector<int> rows;
    bool fits = true;
    columnSeen[at(first)] = 1;
    for (std::size_t k = 0; k < columns.size(); ++k) {
      const int j = columns[k];
      fits = fits && isWholeOrEndless(form_.lower[at(j)]) && isWholeOrEndless(form_.upper[at(j)]);
      for (const SignAt& entry : column_[at(j)]) {
        if (rowSeen[at(entry.at)] != 0) continue;
        rowSeen[at(entry.at)] = 1;
        rows.push_back(entry.at);
        fits = fits && isFit_[at(entry.at)] != 0;
        for (const SignAt& other : row_[at(entry.at)]) {
          if (columnSeen[at(other.at)] != 0) continue;
          columnSeen[at(other.at)] = 1;
          columns.push_back(other.at);
        }
      }
    }
    if (!fits) return;
    if (!Pairing(column_, row_).holds(columns) && !Pairing(row_, column_).holds(rows)) return;
    for (const int j : columns) isWhole_[at(j)] = 1;
  }

  const LinearForm& form_;
  Signs row_, column_;
  std::vector<double> size_;  // of the continuous columns' coefficients in a row, 0 for none
  std::vector<char> isFit_;   // rows with whole numbers beside these
  std::vector<char> isWhole_;
};

// Costs of columns that do not stand still.
std::vector<double> movingCosts(const LinearForm& form) {
  std::vector<double> costs;
  for (int j = 0; j < form.columnCount; ++j) {
    const double cost = form.cost[at(j)];
    if (cost != 0 && form.lower[at(j)] != form.upper[at(j)]) costs.push_back(cost);
  }
  return costs;
}

}  // namespace

double objectiveStep(const LinearForm& form) {
  constexpr std::array kScales = {1.0, 10.0, 100.0, 1000.0};
  const std::vector<double> costs = movingCosts(form);
  const auto scale = std::find_if(kScales.begin(), kScales.end(), [&](double one) {
    return std::all_of(costs.begin(), costs.end(), [one](double cost) {
      const double whole = std::round(one * cost);
      return std::abs(whole) < kMostExact && whole / one == cost;
    });
  });
  if (costs.empty() || scale == kScales.end()) return 0;
  const WholeColumns whole(form);
  for (int j = 0; j < form.columnCount; ++j) {
    const bool moves = form.lower[at(j)] != form.upper[at(j)];
    if (moves && form.cost[at(j)] != 0 && form.isInteger[at(j)] == 0 && !whole.has(j)) return 0;
  }
  long long divisor = 0;
  for (const double cost : costs) divisor = std::gcd(divisor, std::llround(*scale * cost));
  return static_cast<double>(divisor) / *scale;
}

}  // namespace lomu
