#include "providers/model/solvers/cover_cuts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/knapsack_cover.h"
#include "providers/model/solvers/rounding_sum.h"

namespace lomu {

namespace {

// Rows with more room at the point have no cover that it violates, as a rule.
constexpr double kFull = 0.5;
constexpr std::size_t kMostThings = 2000;
// Things times counts that are looked at in a call.
constexpr double kLongest = 3e6;

class CoverFinder {
 public:
  CoverFinder(const CutProblem& problem, const double* point, std::vector<Cut>& cuts)
      : problem_(problem), point_(point), cuts_(cuts), sum_(problem.columnCount()) {}

  void run() {
    double work = 0;
    for (int i = 0; i < problem_.rowCount() && work < kLongest; ++i) {
      const double activity = problem_.activity(i, point_);
      const double room = kFull * problem_.norm(i);
      if (problem_.row[at(i)].size() < 2) continue;
      if (activity >= problem_.rowUpper[at(i)] - room) work += tryRow(i, 1);
      if (activity <= problem_.rowLower[at(i)] + room) work += tryRow(i, -1);
    }
  }

 private:
  struct Thing {
    int column;
    bool isTurned;  // it is 1 - column
  };

  // Returns how much there was to look at.
  double tryRow(int i, double sign) {
    if (!takeRow(i, sign)) return static_cast<double>(problem_.row[at(i)].size());
    if (findCover(knapsack_, cover_)) addCut();
    return static_cast<double>(things_.size()) * (1 + cover_.most);
  }

  bool takeRow(int i, double sign) {
    sum_.clear();
    double right = sign * (sign > 0 ? problem_.rowUpper : problem_.rowLower)[at(i)];
    for (const CutEntry& entry : problem_.row[at(i)]) {
      if (problem_.isBinary(entry.at)) {
        sum_.add(entry.at, sign * entry.value);
      } else if (!takeOther(i, entry.at, sign * entry.value, right)) {
        return false;
      }
    }
    return fill(right);
  }

  // Where it leaves most room: at a bound, or at one that moves with a binary column.
  bool takeOther(int i, int j, double factor, double& right) {
    const double fixed = (factor > 0 ? problem_.lower : problem_.upper)[at(j)];
    const MovingBound* best = nullptr;
    double highest = factor * fixed;
    for (const MovingBound& bound : (factor > 0 ? problem_.lowerBy : problem_.upperBy)[at(j)]) {
      if (bound.row == i || !problem_.isBinary(bound.column)) continue;
      const double least = factor * (bound.constant + bound.slope * point_[bound.column]);
      if (std::isfinite(highest) && least <= highest) continue;
      highest = least;
      best = &bound;
    }
    if (!std::isfinite(highest)) return false;
    right -= factor * (best != nullptr ? best->constant : fixed);
    if (best != nullptr) sum_.add(best->column, factor * best->slope);
    return true;
  }

  bool fill(double right) {
    constexpr double kTiny = 1e-9;
    constexpr double kRoom = 1e-7;
    double heaviest = 0;
    double lightest = HUGE_VAL;
    for (const int j : sum_.columns()) heaviest = std::max(heaviest, std::abs(sum_[j]));
    knapsack_ = {};
    things_.clear();
    double total = 0;
    for (const int j : sum_.columns()) {
      const double factor = sum_[j];
      const bool isTurned = factor < 0;
      if (isTurned) right -= factor;
      // Without it there is more room.
      if (std::abs(factor) <= kTiny * heaviest) continue;
      const double level = std::clamp(point_[j], 0.0, 1.0);
      things_.push_back({j, isTurned});
      knapsack_.weight.push_back(std::abs(factor));
      knapsack_.level.push_back(isTurned ? 1 - level : level);
      lightest = std::min(lightest, std::abs(factor));
      total += std::abs(factor);
    }
    knapsack_.capacity = right;
    knapsack_.room = kRoom * std::max({1.0, std::abs(right), heaviest});
    // Of things of one weight the number is bounded: rounding tells that.
    return things_.size() >= 2 && things_.size() <= kMostThings && right >= 0 &&
           total > right + knapsack_.room && lightest < heaviest;
  }

  void addCut() {
    Cut cut;
    cut.right = cover_.most;
    for (std::size_t k = 0; k < things_.size(); ++k) {
      const double count = cover_.count[k];
      if (count == 0) continue;
      cut.column.push_back(things_[k].column);
      cut.value.push_back(things_[k].isTurned ? -count : count);
      if (things_[k].isTurned) cut.right -= count;
    }
    if (problem_.settle(cut, point_)) cuts_.push_back(std::move(cut));
  }

  const CutProblem& problem_;
  const double* point_;
  std::vector<Cut>& cuts_;
  ColumnSum sum_;
  std::vector<Thing> things_;
  Knapsack knapsack_;
  KnapsackCover cover_;
};

}  // namespace

void findCoverCuts(const CutProblem& problem, const double* point, std::vector<Cut>& cuts) {
  CoverFinder(problem, point, cuts).run();
}

}  // namespace lomu
