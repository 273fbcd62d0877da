#include "providers/model/solvers/root_cuts.h"

#include <CoinWarmStartBasis.hpp>
#include <OsiRowCut.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "providers/model/solvers/dive.h"

namespace lomu {

namespace {

// What is larger is no objective.
constexpr double kNoObjective = 1e30;

}  // namespace

RootCuts::RootCuts(std::shared_ptr<const CutProblem> problem, std::vector<Find> ways, Watch& watch,
                   int iterations)
    : problem_(std::move(problem)),
      ways_(std::move(ways)),
      watch_(watch),
      most_(iterations),
      left_(iterations) {}

void RootCuts::run(const OsiSolverInterface& solver) {
  hasRun_ = true;
  const std::unique_ptr<OsiSolverInterface> linear(solver.clone());
  double limit = HUGE_VAL;
  linear->getDblParam(OsiDualObjectiveLimit, limit);
  linear->setDblParam(OsiDualObjectiveLimit, HUGE_VAL);
  const double first = linear->getObjValue();
  const int firstUndecided = undecided(*linear);
  // Where the rounds end without a point, Cbc is to find out; where there is nothing to cut yet,
  // there may be later.
  if (!cutInRounds(*linear, limit) || cuts_.empty() || watch_.mustStop()) return;
  judge(*linear, first, firstUndecided, limit);
  if (!areUseful_) cuts_.clear();
}

// False when no point is left.
bool RootCuts::cutInRounds(OsiSolverInterface& linear, double limit) {
  constexpr int kRounds = 20;
  constexpr int kIdleRounds = 4;
  constexpr double kWorthARound = 1e-3;
  const int rows = linear.getNumRows();
  int idle = 0;
  for (int round = 0; round < kRounds && left_ > 0 && !watch_.mustStop(); ++round) {
    const double before = linear.getObjValue();
    if (!addRound(linear)) return true;
    linear.resolve();
    left_ -= 1 + linear.getIterationCount();
    if (!linear.isProvenOptimal()) return false;
    dropLoose(rows, linear);
    const double bound = linear.getObjValue();
    const bool isIdle = bound - before < kWorthARound * std::abs(bound);
    idle = isIdle ? idle + 1 : 0;
    if (bound >= limit || idle == kIdleRounds) return true;
  }
  return true;
}

bool RootCuts::addRound(OsiSolverInterface& linear) {
  const std::size_t before = cuts_.size();
  for (std::size_t way = 0; way < ways_.size(); ++way) {
    std::vector<Cut> found;
    ways_[way](*problem_, linear.getColSolution(), found);
    for (Cut& cut : found) cuts_.push_back({way, std::move(cut)});
  }
  std::vector<OsiRowCut> rows(cuts_.size() - before);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Cut& cut = cuts_[before + k].cut;
    rows[k].setRow(static_cast<int>(cut.column.size()), cut.column.data(), cut.value.data(), false);
    rows[k].setUb(cut.right);
  }
  if (rows.empty()) return false;
  linear.applyRowCuts(static_cast<int>(rows.size()), rows.data());
  return true;
}

// Drops the cuts that the point does not touch; they are behind the rows of the problem.
void RootCuts::dropLoose(int rows, OsiSolverInterface& linear) {
  const std::unique_ptr<CoinWarmStart> start(linear.getWarmStart());
  const auto* const basis = dynamic_cast<const CoinWarmStartBasis*>(start.get());
  if (basis == nullptr) return;
  std::vector<int> loose;
  std::vector<OfWay> tight;
  for (std::size_t k = 0; k < cuts_.size(); ++k) {
    const int row = rows + static_cast<int>(k);
    if (basis->getArtifStatus(row) == CoinWarmStartBasis::basic) {
      loose.push_back(row);
    } else {
      tight.push_back(std::move(cuts_[k]));
    }
  }
  cuts_ = std::move(tight);
  if (!loose.empty()) linear.deleteRows(static_cast<int>(loose.size()), loose.data());
}

// By the part that the cuts close of the gap to the best point. The first points that are found are
// far from the best ones as a rule, so some dives go before a verdict against the cuts; where all
// of them end without a point, the best one known says little.
void RootCuts::judge(const OsiSolverInterface& linear, double first, int firstUndecided,
                     double limit) {
  constexpr std::array kWays = {DiveWay{0.2, 0}, DiveWay{0.33, 0.5}, DiveWay{0.33, 0.25}};
  constexpr double kPartOfGap = 0.1;
  constexpr double kPartOfFarGap = 0.02;
  constexpr double kPartOfBound = 0.003;
  constexpr double kPartUndecided = 0.85;
  constexpr int kIterationsOfARow = 5;
  const double rise = linear.getObjValue() - first;
  const int mostForDives =
      std::min(left_, 1000 + kIterationsOfARow * (linear.getNumRows() + linear.getNumCols()));
  int leftForDives = mostForDives;
  double best = limit;
  for (const DiveWay& way : kWays) {
    if (rise <= 0 || leftForDives <= 0) break;
    const std::unique_ptr<OsiSolverInterface> diving(linear.clone());
    diving->setDblParam(OsiDualObjectiveLimit, best);
    if (dive(*diving, way, watch_, leftForDives) && diving->getObjValue() < best) {
      best = objective_ = diving->getObjValue();
      point_.assign(diving->getColSolution(), diving->getColSolution() + diving->getNumCols());
      for (int j = 0; j < diving->getNumCols(); ++j) {
        double& level = point_[static_cast<std::size_t>(j)];
        if (diving->isInteger(j)) level = std::round(level);
      }
    }
    if (best < kNoObjective && rise > kPartOfGap * (best - first)) break;
  }
  left_ -= mostForDives - leftForDives;
  if (best < kNoObjective) {
    areUseful_ = rise > (point_.empty() ? kPartOfFarGap : kPartOfGap) * (best - first);
  } else {
    areUseful_ = rise > kPartOfBound * std::abs(first) ||
                 undecided(linear) < kPartUndecided * firstUndecided;
  }
}

std::vector<Cut> RootCuts::take(std::size_t way) {
  std::vector<Cut> taken;
  for (OfWay& each : cuts_) {
    if (each.way == way) taken.push_back(std::move(each.cut));
  }
  std::erase_if(cuts_, [way](const OfWay& each) { return each.way == way; });
  return taken;
}

bool RootCuts::takePoint(double& objective, double* point) {
  if (point_.empty() || objective_ >= objective) return false;
  objective = objective_;
  std::copy(point_.begin(), point_.end(), point);
  point_.clear();
  return true;
}

}  // namespace lomu
