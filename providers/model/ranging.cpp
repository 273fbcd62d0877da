#include "providers/model/ranging.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "providers/model/at.h"
#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"

namespace lomu {

namespace {

constexpr int kOptimal = 1;
constexpr double kSameObjective = 1e-6;

// The right-hand sides with which the level of a basic row stays within its bounds.
void rangeBasicRow(const Instance& instance, int i, double level, double& lower, double& upper) {
  const double rhs = instance.rhs(i);
  const double low = instance.rowSide(i, false);
  const double high = instance.rowSide(i, true);
  lower = std::isfinite(high) ? level + (rhs - high) : -kInfinity;
  upper = std::isfinite(low) ? level + (rhs - low) : kInfinity;
  if (instance.rowType(i) == RowType::equal) lower = upper = rhs;
}

// An end is what is added to the number itself. Where the two cancel but for the last bits of the
// number, nothing of what is left is known, and 0 is meant.
double endOf(double end, double number) {
  constexpr double kLastBits = 8 * std::numeric_limits<double>::epsilon();
  return std::abs(end) <= kLastBits * std::abs(number) ? 0 : end;
}

class RangeFinder {
 public:
  RangeFinder(Instance& instance, const CatalogueRow& row)
      : instance_(instance), name_(row.name), solver_(SolverLibrary::makeSolver(row.library)) {
    problem_ = instance.solverProblem();
    takeBasis();
  }

  void solve(const SolverLimits& limits) {
    std::string reason;
    if (!solver_->load(problem_, reason)) {
      throw ModelError("solver \"" + name_ + "\" refused the model: " + reason);
    }
    result_.begin(position_.size(), rowPosition_.size());
    solver_->solve(limits, result_);
    if (result_.outcome != Outcome::optimal) {
      throw ModelError("the model was changed since its last solve; solve it once more");
    }
    double cost = 0;
    double lastCost = 0;
    for (int j = 0; j < problem_.columnCount; ++j) {
      cost += problem_.cost[j] * result_.level[at(j)];
      lastCost += problem_.cost[j] * instance_.column(j).level;
    }
    if (std::abs(cost - lastCost) > kSameObjective * std::max(1.0, std::abs(cost))) {
      throw ModelError("the model was changed since its last solve; solve it once more");
    }
  }

  Ranging ranges() {
    const std::size_t columns = position_.size();
    const std::size_t rows = rowPosition_.size();
    std::vector<double> costLower(columns);
    std::vector<double> costUpper(columns);
    std::vector<double> rhsLower(rows);
    std::vector<double> rhsUpper(rows);
    SolverRanges found{costLower.data(), costUpper.data(), rhsLower.data(), rhsUpper.data()};
    if (!hasCoefficients()) {
      rangeEachCost(found);
    } else if (!solver_->ranges(found)) {
      throw ModelError("solver \"" + name_ +
                       "\" has no ranges for the model; clp and glpk have them for linear ones");
    }
    Ranging ranging;
    ranging.costLower.assign(at(instance_.columnCount()), -kInfinity);
    ranging.costUpper.assign(at(instance_.columnCount()), kInfinity);
    ranging.rhsLower.assign(at(instance_.rowCount()), -kInfinity);
    ranging.rhsUpper.assign(at(instance_.rowCount()), kInfinity);
    for (std::size_t j = 0; j < columns; ++j) {
      const double lower = endOf(costLower[j], problem_.cost[j]);
      const double upper = endOf(costUpper[j], problem_.cost[j]);
      // A maximization was handed over with the signs turned.
      ranging.costLower[j] = instance_.maximizes() ? 0 - upper : lower;
      ranging.costUpper[j] = instance_.maximizes() ? 0 - lower : upper;
    }
    for (int i = 1; i < instance_.rowCount(); ++i) {
      const std::size_t k = at(i - 1);
      double& lower = ranging.rhsLower[at(i)];
      double& upper = ranging.rhsUpper[at(i)];
      const Position position = result_.rowPosition[k];
      if (position == Position::basic || position == Position::superbasic) {
        rangeBasicRow(instance_, i, instance_.row(i).level, lower, upper);
        continue;
      }
      // What the solver saw of the row may be shifted.
      const double side =
          position == Position::atUpper ? problem_.rowUpper[k] : problem_.rowLower[k];
      lower = endOf(rhsLower[k] + (instance_.rhs(i) - side), instance_.rhs(i));
      upper = endOf(rhsUpper[k] + (instance_.rhs(i) - side), instance_.rhs(i));
    }
    return ranging;
  }

 private:
  void takeBasis() {
    for (int j = 0; j < problem_.columnCount; ++j) {
      position_.push_back(instance_.column(j).status);
    }
    for (int i = 1; i < instance_.rowCount(); ++i) rowPosition_.push_back(instance_.row(i).status);
    problem_.position = position_.data();
    problem_.rowPosition = rowPosition_.data();
  }

  // Whether columns that can move stand in rows; a solver looks at each by itself otherwise.
  [[nodiscard]] bool hasCoefficients() const {
    for (int j = 0; j < problem_.columnCount; ++j) {
      if (problem_.lower[j] == problem_.upper[j]) continue;
      for (int e = problem_.start[j]; e < problem_.start[j + 1]; ++e) {
        if (problem_.value[e] != 0) return true;
      }
    }
    return false;
  }

  // A column that stands in no row stays at its bound while its cost keeps its sign.
  void rangeEachCost(SolverRanges& found) const {
    for (int j = 0; j < problem_.columnCount; ++j) {
      const Position position = result_.position[at(j)];
      const bool standsStill = problem_.lower[j] == problem_.upper[j];
      const double cost = problem_.cost[j];
      found.costLower[j] = position == Position::atLower ? std::min(cost, 0.0) : cost;
      found.costUpper[j] = position == Position::atUpper ? std::max(cost, 0.0) : cost;
      if (standsStill || position == Position::atUpper) found.costLower[j] = -kInfinity;
      if (standsStill || position == Position::atLower) found.costUpper[j] = kInfinity;
    }
  }

  Instance& instance_;
  std::string name_;
  std::unique_ptr<Solver> solver_;
  SolverProblem problem_{};
  std::vector<std::int32_t> position_, rowPosition_;
  SolverResult result_;
};

}  // namespace

Ranging findRanges(Instance& instance, const CatalogueRow& row, const SolverLimits& limits) {
  if (instance.modelStatus() != kOptimal) {
    throw ModelError("the last solve found no optimum that ranges would be of");
  }
  if (instance.type() != ModelType::linear) {
    throw ModelError("ranges are those of a linear model without integers; the model is " +
                     std::string(kindOf(instance.type())));
  }
  RangeFinder finder(instance, row);
  finder.solve(limits);
  return finder.ranges();
}

}  // namespace lomu
