#include "providers/model/solvers/rounding_cuts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/rounded_row.h"

namespace lomu {

namespace {

// Rows whose slack is more of their norm are not begun with, or added.
constexpr double kTight = 0.1;
constexpr std::size_t kRowsInSum = 6;
constexpr double kOffBound = 1e-6;
// Coefficients that are looked at in a call.
constexpr long kWork = 2000000;

class RowRounder {
 public:
  RowRounder(const CutProblem& problem, const double* point, std::vector<Cut>& cuts)
      : problem_(problem), point_(point), cuts_(cuts), sum_(problem), rounded_(problem, point) {
    for (int i = 0; i < problem.rowCount(); ++i) {
      activity_.push_back(problem.activity(i, point));
      slack_.push_back(std::min(problem.rowUpper[at(i)] - activity_.back(),
                                activity_.back() - problem.rowLower[at(i)]));
    }
  }

  void run() {
    std::vector<std::pair<double, int>> order;
    for (int i = 0; i < problem_.rowCount(); ++i) {
      if (isTight(i)) order.emplace_back(slack_[at(i)] / problem_.norm(i), i);
    }
    std::sort(order.begin(), order.end());
    long work = 0;
    for (const auto& [unused, i] : order) {
      roundFrom(i);
      work += rounded_.takeWork();
      if (work > kWork) return;
    }
  }

 private:
  [[nodiscard]] bool isTight(int i) const {
    return problem_.norm(i) > 0 && slack_[at(i)] <= kTight * problem_.norm(i);
  }

  // Of the row and its neighbours; if these give none, of its neighbours through the columns that
  // stand at bounds of other columns' making, as flows on arcs that are open by a part.
  void roundFrom(int i) {
    countsMoving_ = true;
    sum_.begin(i, activity_[at(i)]);
    if (roundSum() || roundFurther()) return;
    countsMoving_ = false;
    sum_.begin(i, activity_[at(i)]);
    roundFurther();
  }

  bool roundFurther() {
    while (sum_.parts().size() < kRowsInSum) {
      if (!addRow()) return false;
      if (roundSum()) return true;
    }
    return false;
  }

  // The cut of the sum that the point is furthest from.
  bool roundSum() {
    double best = 0;
    Cut found;
    for (const double sign : {1.0, -1.0}) {
      for (const auto prefer : {RoundedRow::Prefer::lower, RoundedRow::Prefer::moving}) {
        if (!rounded_.take(sum_, sign, prefer)) continue;
        const double distance = rounded_.round();
        if (distance <= best) continue;
        Cut cut;
        rounded_.cut(cut);
        if (!problem_.settle(cut, point_)) continue;
        best = distance;
        found = std::move(cut);
      }
    }
    if (best <= 0) return false;
    cuts_.push_back(std::move(found));
    return true;
  }

  // Adds the row that takes away the continuous column furthest from its bounds.
  bool addRow() {
    int bestColumn = -1;
    int bestRow = -1;
    double furthest = kOffBound;
    for (const int j : sum_.value().columns()) {
      if (problem_.isInteger[at(j)] != 0 || sum_.value()[j] == 0) continue;
      const double away = fromBounds(j);
      if (away <= furthest) continue;
      const int i = rowFor(j);
      if (i < 0) continue;
      furthest = away;
      bestColumn = j;
      bestRow = i;
    }
    if (bestRow < 0) return false;
    sum_.addWithout(bestColumn, bestRow, activity_[at(bestRow)]);
    return true;
  }

  [[nodiscard]] double fromBounds(int j) const {
    const double level = point_[j];
    double away = std::min(level - problem_.lower[at(j)], problem_.upper[at(j)] - level);
    if (!countsMoving_) return away;
    for (const MovingBound& bound : problem_.lowerBy[at(j)]) {
      away = std::min(away, level - bound.constant - bound.slope * point_[bound.column]);
    }
    for (const MovingBound& bound : problem_.upperBy[at(j)]) {
      away = std::min(away, bound.constant + bound.slope * point_[bound.column] - level);
    }
    return away;
  }

  // The tightest row with the column that is not in the sum, the shortest of such.
  [[nodiscard]] int rowFor(int j) const {
    int best = -1;
    double least = std::numeric_limits<double>::infinity();
    for (const CutEntry& entry : problem_.column[at(j)]) {
      const int i = entry.at;
      if (!isTight(i) || sum_.has(i)) continue;
      const double score = std::max(0.0, slack_[at(i)]) / problem_.norm(i) +
                           1e-3 * static_cast<double>(problem_.row[at(i)].size());
      if (score < least) {
        least = score;
        best = i;
      }
    }
    return best;
  }

  const CutProblem& problem_;
  const double* point_;
  std::vector<Cut>& cuts_;
  std::vector<double> activity_, slack_;
  bool countsMoving_ = true;
  RoundingSum sum_;
  RoundedRow rounded_;
};

}  // namespace

void findRoundingCuts(const CutProblem& problem, const double* point, std::vector<Cut>& cuts) {
  RowRounder(problem, point, cuts).run();
}

}  // namespace lomu
