#include "providers/model/solvers/clp_program.h"

#include <ClpDualRowSteepest.hpp>
#include <ClpEventHandler.hpp>
#include <ClpPackedMatrix.hpp>
#include <ClpSolve.hpp>
#include <CoinPackedMatrix.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

#include "providers/model/solvers/claim_check.h"

namespace lomu {

namespace {

// What Clp makes of its last solve, as it takes it: bits to leave arrays and factorization for the
// next one, to begin with the factorization, and to begin with arrays whose data did not change.
// They save a third of a solve of few iterations.
constexpr int kNothing = 0;
constexpr int kLeaveWork = 1;
constexpr int kUseFactorization = kLeaveWork | 2;
constexpr int kUseWork = kUseFactorization | 4;

// From so many iterations on, the weights that Clp's choice of rows has gathered serve the next
// solve worse than new ones.
constexpr double kWeightsWearOut = 100;

// As many as Clp's program makes.
constexpr int kPresolvePasses = 5;

// How long a solve waits before it tells again how far it is.
constexpr std::chrono::milliseconds kBetweenTellings{100};

// Clp asks after every iteration whether it may go on, and tells now and then how far it is: the
// objective of the primal method is that of a point, of the dual method it is a bound.
class ClpStopHandler : public ClpEventHandler {
 public:
  explicit ClpStopHandler(Watch* watch) : watch_(watch) {}
  // Tells of this form, of which Clp sees this part. Both outlive the handler.
  ClpStopHandler(Watch* watch, const LinearForm& form, const MovingPart& part)
      : watch_(watch), form_(&form), part_(&part) {}
  int event(Event which) override {
    if (which == endOfFactorization && form_ != nullptr && Clock::now() >= next_) tell();
    const bool asked = which == endOfIteration || which == endOfFactorization;
    return asked && watch_->mustStop() ? 0 : -1;
  }
  [[nodiscard]] ClpEventHandler* clone() const override { return new ClpStopHandler(*this); }

 private:
  using Clock = std::chrono::steady_clock;

  void tell() {
    const bool hasPoint = model_->algorithm() > 0 && model_->sumPrimalInfeasibilities() == 0;
    const bool hasBound = model_->algorithm() < 0 && model_->sumDualInfeasibilities() == 0;
    if (!hasPoint && !hasBound) return;
    next_ = Clock::now() + kBetweenTellings;
    const double objective = model_->objectiveValue() + unseen();
    watch_->tell(hasPoint ? objective : HUGE_VAL, hasBound ? objective : -HUGE_VAL);
  }

  // What the columns that Clp does not see add to the objective.
  [[nodiscard]] double unseen() const {
    double sum = 0;
    for (int j = 0; j < form_->columnCount; ++j) {
      const auto column = static_cast<std::size_t>(j);
      if (part_->place(j) == MovingPart::leftOut) sum += form_->cost[column] * form_->lower[column];
    }
    return sum;
  }

  Watch* watch_;
  const LinearForm* form_ = nullptr;
  const MovingPart* part_ = nullptr;
  Clock::time_point next_{};
};

// The columns of `part`. Clp drops tiny elements and does not like stored zeros, so they are left
// out.
CoinPackedMatrix packed(const LinearForm& form, const MovingPart& part) {
  std::vector<int> start{0};
  std::vector<int> rowOf;
  std::vector<double> value;
  rowOf.reserve(form.rowOf.size());
  value.reserve(form.value.size());
  for (const int j : part.columns()) {
    const auto column = static_cast<std::size_t>(j);
    for (int e = form.start[column]; e < form.start[column + 1]; ++e) {
      const auto entry = static_cast<std::size_t>(e);
      if (form.value[entry] == 0) continue;
      rowOf.push_back(form.rowOf[entry]);
      value.push_back(form.value[entry]);
    }
    start.push_back(static_cast<int>(rowOf.size()));
  }
  const auto columns = static_cast<int>(part.columns().size());
  const auto entries = static_cast<int>(rowOf.size());
  return {true, form.rowCount, columns, entries, value.data(), rowOf.data(), start.data(), nullptr};
}

std::vector<double> ofPart(const std::vector<double>& values, const MovingPart& part) {
  std::vector<double> result;
  result.reserve(part.columns().size());
  for (const int j : part.columns()) result.push_back(values[static_cast<std::size_t>(j)]);
  return result;
}

bool isAtABound(ClpSimplex::Status status) {
  return status == ClpSimplex::atLowerBound || status == ClpSimplex::atUpperBound ||
         status == ClpSimplex::isFixed;
}

Position positionOf(ClpSimplex::Status status, double level, double lower, double upper) {
  if (status == ClpSimplex::basic) return Position::basic;
  if (status == ClpSimplex::isFixed || lower == upper) return Position::atLower;
  if (status == ClpSimplex::superBasic || status == ClpSimplex::isFree) return Position::superbasic;
  // Clp turns the side of a row's status in some of its interfaces, so the level tells it.
  return std::abs(level - lower) <= std::abs(upper - level) ? Position::atLower : Position::atUpper;
}

}  // namespace

void ClpProgram::load(LinearForm form) {
  isWhole_ = false;
  form_ = std::move(form);
  part_.choose(form_);
  handOver();
  method_ = Method::dual;
  isFresh_ = true;
  isWhole_ = true;
}

void ClpProgram::handOver() {
  part_.shiftRows(form_);
  basisIsLost_ = false;
  simplex_ = ClpSimplex();
  simplex_.setLogLevel(0);
  simplex_.loadProblem(packed(form_, part_), ofPart(form_.lower, part_).data(),
                       ofPart(form_.upper, part_).data(), ofPart(form_.cost, part_).data(),
                       part_.rowLower().data(), part_.rowUpper().data());
  reuse_ = kLeaveWork;
}

// A warm start from a column or row that stands at a bound that it has no more can end the process
// in an assertion of Clp, or run on without an end. Where the other bound is left, it goes there;
// where none is, the basis is given up.
void ClpProgram::settle(int place) {
  const ClpSimplex::Status status = simplex_.getStatus(place);
  if (status == ClpSimplex::basic) return;
  const int columns = simplex_.numberColumns();
  const bool isColumn = place < columns;
  const double lower =
      isColumn ? simplex_.columnLower()[place] : simplex_.rowLower()[place - columns];
  const double upper =
      isColumn ? simplex_.columnUpper()[place] : simplex_.rowUpper()[place - columns];
  const bool hasLower = lower > -COIN_DBL_MAX;
  const bool hasUpper = upper < COIN_DBL_MAX;
  if (!hasLower && !hasUpper) {
    basisIsLost_ = basisIsLost_ || isAtABound(status);
    return;
  }
  const bool fits = status == ClpSimplex::isFixed ? lower == upper : isAtABound(status);
  if (hasLower && hasUpper && fits) return;
  const ClpSimplex::Status fitting = hasLower ? ClpSimplex::atLowerBound : ClpSimplex::atUpperBound;
  if (status == fitting) return;
  simplex_.setStatus(place, fitting);
  reuse_ &= kLeaveWork;
}

// Hands over more columns than before. The basis is kept; a column that was left out is not in it.
void ClpProgram::handOverMore(const MovingPart& more) {
  std::vector<ClpSimplex::Status> status;
  for (const int j : more.columns()) {
    status.push_back(part_.place(j) == MovingPart::leftOut
                         ? ClpSimplex::isFixed
                         : simplex_.getColumnStatus(part_.place(j)));
  }
  std::vector<ClpSimplex::Status> rowStatus;
  rowStatus.reserve(static_cast<std::size_t>(form_.rowCount));
  for (int i = 0; i < form_.rowCount; ++i) rowStatus.push_back(simplex_.getRowStatus(i));
  part_ = more;
  handOver();
  for (std::size_t c = 0; c < status.size(); ++c) {
    simplex_.setColumnStatus(static_cast<int>(c), status[c]);
  }
  for (int i = 0; i < form_.rowCount; ++i) {
    simplex_.setRowStatus(i, rowStatus[static_cast<std::size_t>(i)]);
  }
  for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) settle(k);
}

bool ClpProgram::setRows() {
  part_.shiftRows(form_);
  bool changed = false;
  for (int i = 0; i < form_.rowCount; ++i) {
    // Clp keeps the largest number for an infinite bound.
    const double lower = std::max(part_.rowLower()[static_cast<std::size_t>(i)], -COIN_DBL_MAX);
    const double upper = std::min(part_.rowUpper()[static_cast<std::size_t>(i)], COIN_DBL_MAX);
    if (lower == simplex_.rowLower()[i] && upper == simplex_.rowUpper()[i]) continue;
    simplex_.setRowBounds(i, lower, upper);
    settle(simplex_.numberColumns() + i);
    changed = true;
  }
  return changed;
}

bool ClpProgram::lookAtBounds(const Bounds& bounds) {
  changedColumns_.clear();
  for (int j = 0; j < form_.columnCount; ++j) {
    const auto k = static_cast<std::size_t>(j);
    if (bounds.lower[j] == form_.lower[k] && bounds.upper[j] == form_.upper[k]) continue;
    if (std::isnan(bounds.lower[j]) || std::isnan(bounds.upper[j])) return false;
    changedColumns_.push_back(j);
  }
  changedRows_.clear();
  for (int i = 0; i < form_.rowCount; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (bounds.rowLower[i] == form_.rowLower[k] && bounds.rowUpper[i] == form_.rowUpper[k]) {
      continue;
    }
    if (std::isnan(bounds.rowLower[i]) || std::isnan(bounds.rowUpper[i])) return false;
    changedRows_.push_back(i);
  }
  return true;
}

bool ClpProgram::takeBounds(const Bounds& bounds, bool shiftsChanged) {
  bool changed = false;
  bool rowsMayChange = shiftsChanged || !changedRows_.empty();
  bool moreMove = false;
  for (const int j : changedColumns_) {
    const double lower = form_.lower[static_cast<std::size_t>(j)] = bounds.lower[j];
    const double upper = form_.upper[static_cast<std::size_t>(j)] = bounds.upper[j];
    if (part_.place(j) == MovingPart::leftOut) {
      rowsMayChange = true;
      moreMove = moreMove || !MovingPart::standsStill(lower, upper);
    } else {
      simplex_.setColumnBounds(part_.place(j), lower, upper);
      settle(part_.place(j));
      changed = true;
    }
  }
  for (const int i : changedRows_) {
    form_.rowLower[static_cast<std::size_t>(i)] = bounds.rowLower[i];
    form_.rowUpper[static_cast<std::size_t>(i)] = bounds.rowUpper[i];
  }
  if (moreMove) {
    MovingPart more = part_;
    more.takeIn(form_);
    handOverMore(more);
    return true;
  }
  if (rowsMayChange && setRows()) changed = true;
  return changed;
}

bool ClpProgram::updateBounds(const SolverProblem& problem) {
  const Bounds bounds{problem.lower, problem.upper, problem.rowLower, problem.rowUpper};
  if (!lookAtBounds(bounds)) return false;
  isWhole_ = false;
  takeBounds(bounds, false);
  method_ = Method::dual;
  isWhole_ = true;
  return true;
}

ClpProgram::Changes ClpProgram::changesTo(const LinearForm& form) const {
  Changes changes;
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    const auto begin = form.value.begin() + form.start[j];
    const auto end = form.value.begin() + form.start[j + 1];
    const bool entries = !std::equal(begin, end, form_.value.begin() + form_.start[j]);
    if (part_.place(static_cast<int>(j)) == MovingPart::leftOut) {
      changes.shifts = changes.shifts || entries;
    } else {
      changes.entries = changes.entries || entries;
      changes.cost = changes.cost || form.cost[j] != form_.cost[j];
    }
  }
  return changes;
}

void ClpProgram::update(LinearForm& form) {
  isWhole_ = false;
  const Bounds bounds{form.lower.data(), form.upper.data(), form.rowLower.data(),
                      form.rowUpper.data()};
  lookAtBounds(bounds);
  const Changes changes = changesTo(form);
  form_.cost.swap(form.cost);
  form_.value.swap(form.value);
  if (changes.cost) {
    simplex_.chgObjCoefficients(ofPart(form_.cost, part_).data());
    reuse_ &= kUseFactorization;
  }
  if (changes.entries) {
    simplex_.replaceMatrix(new ClpPackedMatrix(packed(form_, part_)), true);
    reuse_ &= kLeaveWork;
  }
  const bool boundsChanged = takeBounds(bounds, changes.shifts);
  if (changes.entries && !part_.hasEntries(form_)) {
    MovingPart all = part_;
    all.takeAll();
    handOverMore(all);
  }
  method_ = changes.cost && !changes.entries && !boundsChanged ? Method::primal : Method::dual;
  isWhole_ = true;
}

void ClpProgram::run(ClpSimplex& simplex, Method method, Watch& watch, int reuse) {
  // Another problem than this one has another objective.
  const ClpStopHandler handler =
      &simplex == &simplex_ ? ClpStopHandler(&watch, form_, part_) : ClpStopHandler(&watch);
  simplex.passInEventHandler(&handler);
  simplex.setMaximumIterations(watch.iterationsLeft(iterations_));
  if (method == Method::primal) {
    simplex.primal(0, reuse);
  } else {
    simplex.dual(0, reuse);
  }
  iterations_ += simplex.numberIterations();
  // The handler must not outlive the watch.
  const ClpEventHandler none;
  simplex.passInEventHandler(&none);
}

void ClpProgram::runUnscaled(Watch& watch) {
  const int scaling = simplex_.scalingFlag();
  simplex_.scaling(0);
  run(simplex_, Method::primal, watch, kNothing);
  simplex_.scaling(scaling);
}

// As Clp's program solves a file: presolved, by the method that it chooses.
void ClpProgram::runFresh(Watch& watch) {
  const ClpStopHandler handler(&watch, form_, part_);
  simplex_.passInEventHandler(&handler);
  simplex_.setMaximumIterations(watch.iterationsLeft(iterations_));
  simplex_.defaultFactorizationFrequency();
  const int perturbation = simplex_.perturbation();
  constexpr int kPerturbWhereUseful = 50;
  simplex_.setPerturbation(kPerturbWhereUseful);
  ClpSolve choice;
  choice.setSolveType(watch.wantsBarrier() ? ClpSolve::useBarrier : ClpSolve::automatic);
  choice.setPresolveType(ClpSolve::presolveOn, kPresolvePasses);
  simplex_.initialSolve(choice);
  simplex_.setPerturbation(perturbation);
  iterations_ += simplex_.numberIterations();
  const ClpEventHandler none;
  simplex_.passInEventHandler(&none);
  reuse_ = kLeaveWork;
}

void ClpProgram::runLive(Watch& watch) {
  // What a solve leaves is of use only when it ends well.
  run(simplex_, method_, watch, std::exchange(reuse_, kLeaveWork));
  if (simplex_.status() == 0) reuse_ = kUseWork;
}

void ClpProgram::solve(Watch& watch, SolverResult& result) {
  isWhole_ = false;
  if (iterations_ >= kWeightsWearOut) {
    ClpDualRowSteepest unweighted;
    simplex_.setDualRowPivotAlgorithm(unweighted);
  }
  iterations_ = 0;
  if (std::exchange(basisIsLost_, false)) {
    handOver();
    isFresh_ = true;
  }
  if (std::exchange(isFresh_, false)) {
    runFresh(watch);
  } else {
    runLive(watch);
  }
  // 2 to 4: the solution of the scaled problem is none of the problem itself.
  const bool badlyScaled =
      simplex_.status() == 0 && simplex_.secondaryStatus() >= 2 && simplex_.secondaryStatus() <= 4;
  if (badlyScaled || simplex_.status() == 4) {
    reuse_ = kLeaveWork;
    runUnscaled(watch);
  }

  result.hasPoint = false;
  if (wasLimited()) {
    result.outcome = watch.stopped() ? watch.reason() : Outcome::iterationLimit;
    result.hasPoint = simplex_.primalFeasible();
  } else if (simplex_.status() == 0) {
    result.outcome = Outcome::optimal;
    result.hasPoint = true;
  } else if (simplex_.status() == 1 && leaveRowRay(simplex_, result)) {
    result.outcome = Outcome::infeasible;
  } else {
    decideUnsolvable(watch, result);
  }
  if (result.hasPoint) leavePoint(result);
  result.iterations = iterations_;
  isWhole_ = true;
}

bool ClpProgram::begin(const std::int32_t* position, const std::int32_t* rowPosition) {
  const auto isBasic = [](std::int32_t one) { return one == ztbSolverBasic; };
  const auto count = std::count_if(position, position + form_.columnCount, isBasic) +
                     std::count_if(rowPosition, rowPosition + form_.rowCount, isBasic);
  if (count != form_.rowCount) return false;
  isWhole_ = false;
  for (int j = 0; j < form_.columnCount; ++j) {
    if (part_.place(j) != MovingPart::leftOut || !isBasic(position[j])) continue;
    part_.takeAll();
    handOver();
    break;
  }
  const auto statusOf = [](std::int32_t one) {
    switch (one) {
      case ztbSolverBasic:
        return ClpSimplex::basic;
      case ztbSolverAtUpper:
        return ClpSimplex::atUpperBound;
      case ztbSolverAtLower:
        return ClpSimplex::atLowerBound;
      default:
        return ClpSimplex::isFree;
    }
  };
  for (std::size_t c = 0; c < part_.columns().size(); ++c) {
    simplex_.setColumnStatus(static_cast<int>(c), statusOf(position[part_.columns()[c]]));
  }
  for (int i = 0; i < form_.rowCount; ++i) simplex_.setRowStatus(i, statusOf(rowPosition[i]));
  for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) settle(k);
  isFresh_ = basisIsLost_;
  if (basisIsLost_) handOver();
  method_ = Method::dual;
  isWhole_ = true;
  return !isFresh_;
}

void ClpProgram::forgetWork() {
  reuse_ = kLeaveWork;
}

bool ClpProgram::leaveRowRay(const ClpSimplex& simplex, SolverResult& result) const {
  const std::unique_ptr<double[]> ray(simplex.infeasibilityRay());
  if (ray == nullptr) return false;
  result.rowRay.assign(ray.get(), ray.get() + form_.rowCount);
  if (provesInfeasible(form_.problem(), result.rowRay)) return true;
  result.rowRay.clear();
  return false;
}

void ClpProgram::leaveColumnRay(SolverResult& result) const {
  const std::unique_ptr<double[]> ray(simplex_.unboundedRay());
  if (ray == nullptr) return;
  result.columnRay.assign(result.level.size(), 0.0);
  for (std::size_t c = 0; c < part_.columns().size(); ++c) {
    result.columnRay[static_cast<std::size_t>(part_.columns()[c])] = ray[c];
  }
  leavePoint(result);
}

// Clp found no optimum. Whether there is a feasible point at all is asked without a cost, where
// unboundedness cannot come in between, and any basis is one for the dual method, which leaves a
// proof.
void ClpProgram::decideUnsolvable(Watch& watch, SolverResult& result) {
  ClpSimplex feasibility(simplex_);
  const std::vector<double> noCost(part_.columns().size(), 0.0);
  feasibility.chgObjCoefficients(noCost.data());
  run(feasibility, Method::dual, watch, kNothing);
  const bool proven = feasibility.status() == 1 && leaveRowRay(feasibility, result);
  if (feasibility.status() != 0 && !proven) run(feasibility, Method::primal, watch, kNothing);
  if (feasibility.status() == 1) {
    result.outcome = Outcome::infeasible;
    return;
  }
  if (feasibility.status() == 0) {
    for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) {
      simplex_.setStatus(k, feasibility.getStatus(k));
    }
    run(simplex_, Method::primal, watch, kNothing);
    // There is a feasible point, whatever the scaled problem looks like.
    if (simplex_.status() == 1) runUnscaled(watch);
    if (simplex_.status() == 0) {
      result.outcome = Outcome::optimal;
      result.hasPoint = true;
      return;
    }
    if (simplex_.status() == 2) {
      leaveColumnRay(result);
      result.outcome = Outcome::unbounded;
      return;
    }
  }
  const bool limited = wasLimited() || feasibility.status() == 3 || feasibility.status() == 5;
  if (limited) {
    result.outcome = watch.stopped() ? watch.reason() : Outcome::iterationLimit;
    return;
  }
  result.outcome = Outcome::failed;
  result.reason = "clp gave up with status " + std::to_string(simplex_.status());
}

void ClpProgram::leavePoint(SolverResult& result) const {
  const double* levels = simplex_.primalColumnSolution();
  for (int j = 0; j < form_.columnCount; ++j) {
    const auto k = static_cast<std::size_t>(j);
    const int place = part_.place(j);
    if (place == MovingPart::leftOut) {
      result.level[k] = form_.lower[k];
      result.position[k] = Position::atLower;
      continue;
    }
    const double level = levels[place];
    result.level[k] = std::max(form_.lower[k], std::min(form_.upper[k], level));
    result.position[k] =
        positionOf(simplex_.getColumnStatus(place), level, form_.lower[k], form_.upper[k]);
  }
  const double* activities = simplex_.primalRowSolution();
  const double* duals = simplex_.dualRowSolution();
  for (int i = 0; i < form_.rowCount; ++i) {
    const auto k = static_cast<std::size_t>(i);
    result.rowPosition[k] = positionOf(simplex_.getRowStatus(i), activities[i], part_.rowLower()[k],
                                       part_.rowUpper()[k]);
    result.rowMarginal[k] = result.rowPosition[k] == Position::basic ? 0 : duals[i];
  }
}

}  // namespace lomu
