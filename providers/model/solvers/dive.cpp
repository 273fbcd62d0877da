#include "providers/model/solvers/dive.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace lomu {

namespace {

constexpr double kWhole = 1e-6;

class Dive {
 public:
  Dive(OsiSolverInterface& solver, const DiveWay& way, Watch& watch, int& iterations)
      : solver_(solver), way_(way), watch_(watch), iterations_(iterations) {}

  bool run() {
    constexpr int kSteps = 60;
    for (int step = 0; step < kSteps && iterations_ > 0 && !watch_.mustStop(); ++step) {
      findOpen();
      if (open_.empty()) return true;
      const auto part = static_cast<std::size_t>(way_.part * static_cast<double>(open_.size()));
      const std::size_t count = std::max<std::size_t>(1, part);
      if (fix(count) || (count > 1 && fix(1))) continue;
      if (!turn()) return false;
    }
    return false;
  }

 private:
  struct Open {
    int column;
    double level, away, lower, upper;
  };

  void findOpen() {
    open_.clear();
    for (int j = 0; j < solver_.getNumCols(); ++j) {
      if (!solver_.isInteger(j)) continue;
      const double level = solver_.getColSolution()[j];
      const double whole = std::round(level);
      double away = std::abs(level - whole);
      if (away <= kWhole) continue;
      if (whole < level) away += way_.down;
      open_.push_back({j, level, away, solver_.getColLower()[j], solver_.getColUpper()[j]});
    }
    std::sort(open_.begin(), open_.end(), [](const Open& a, const Open& b) {
      return std::pair(a.away, a.column) < std::pair(b.away, b.column);
    });
  }

  // Fixes the first ones, or leaves all as it was.
  bool fix(std::size_t count) {
    for (std::size_t k = 0; k < count; ++k) {
      const double whole = std::round(open_[k].level);
      solver_.setColBounds(open_[k].column, whole, whole);
    }
    if (solve()) return true;
    for (std::size_t k = 0; k < count; ++k) {
      solver_.setColBounds(open_[k].column, open_[k].lower, open_[k].upper);
    }
    return false;
  }

  // The first one goes where it is not nearest to.
  bool turn() {
    const Open& first = open_[0];
    if (std::round(first.level) > first.level) {
      solver_.setColUpper(first.column, std::floor(first.level));
    } else {
      solver_.setColLower(first.column, std::ceil(first.level));
    }
    return solve();
  }

  bool solve() {
    solver_.resolve();
    iterations_ -= 1 + solver_.getIterationCount();
    return solver_.isProvenOptimal() && !solver_.isDualObjectiveLimitReached();
  }

  OsiSolverInterface& solver_;
  DiveWay way_;
  Watch& watch_;
  int& iterations_;
  std::vector<Open> open_;
};

}  // namespace

bool dive(OsiSolverInterface& solver, const DiveWay& way, Watch& watch, int& iterations) {
  return Dive(solver, way, watch, iterations).run();
}

int undecided(const OsiSolverInterface& solver) {
  int count = 0;
  const double* const level = solver.getColSolution();
  for (int j = 0; j < solver.getNumCols(); ++j) {
    if (solver.isInteger(j) && std::abs(level[j] - std::round(level[j])) > kWhole) ++count;
  }
  return count;
}

}  // namespace lomu
