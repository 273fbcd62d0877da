#include "providers/model/solvers/clp_program.h"

#include <ClpDualRowSteepest.hpp>
#include <ClpEventHandler.hpp>
#include <ClpFactorization.hpp>
#include <ClpSolve.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/claim_check.h"

namespace lomu {

namespace {

// From so many iterations on, the weights that Clp's choice of rows has gathered serve the next
// solve worse than new ones.
constexpr double kWeightsWearOut = 100;

// As many as Clp's program makes.
constexpr int kPresolvePasses = 5;

// Where both costs and bounds change, either method may be the shorter way. The dual one gives up
// where its basis fits the costs too badly, and ends in the primal one: so many steps begin with
// the primal method then, before the dual one is tried again.
constexpr int kStepsInPrimal = 31;

// Options of Clp for a solve that begins at the last one's basis: the point of a few pivots is not
// factorized anew, and a basis without infeasibilities is not looked at a second time (2048, 4096).
// Point and marginals are checked here after each solve. The ray that proves a problem infeasible
// is made nevertheless (32).
constexpr unsigned kShortSteps = 32 | 2048 | 4096;

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

// Written without branches: which columns are basic follows no pattern.
Position positionOf(unsigned char statusByte, double level, double lower, double upper) {
  constexpr unsigned kStatus = 7;
  const unsigned is = 1U << (statusByte & kStatus);
  constexpr unsigned kBasic = 1U << ClpSimplex::basic;
  constexpr unsigned kFixed = 1U << ClpSimplex::isFixed;
  constexpr unsigned kBetween = 1U << ClpSimplex::superBasic | 1U << ClpSimplex::isFree;
  // Clp turns the side of a row's status in some of its interfaces, so the level tells it.
  const bool isLower = std::abs(level - lower) <= std::abs(upper - level);
  Position position = isLower ? Position::atLower : Position::atUpper;
  position = (is & kBetween) != 0 ? Position::superbasic : position;
  const bool isFixed = ((is & kFixed) != 0) | (lower == upper);
  position = isFixed ? Position::atLower : position;
  return (is & kBasic) != 0 ? Position::basic : position;
}

}  // namespace

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
  // A matrix of ones alone is taken for such: set covers in half the time.
  constexpr int kMatrixOfOnes = 3;
  choice.setSpecialOption(kMatrixOfOnes, 0);
  leaveInterrupts(choice);
  simplex_.initialSolve(choice);
  simplex_.setPerturbation(perturbation);
  iterations_ += simplex_.numberIterations();
  const ClpEventHandler none;
  simplex_.passInEventHandler(&none);
  reuse_ = kLeaveWork;
  // Presolve may leave more columns in the basis than there are rows, or others between their
  // bounds: such a point is no vertex.
  if (simplex_.status() == 0 && !hasVertex()) run(simplex_, Method::primal, watch, kNothing);
}

bool ClpProgram::hasVertex() const {
  int basic = 0;
  for (int k = 0; k < simplex_.numberColumns() + form_.rowCount; ++k) {
    const ClpSimplex::Status status = simplex_.getStatus(k);
    if (status == ClpSimplex::superBasic) return false;
    basic += status == ClpSimplex::basic ? 1 : 0;
  }
  return basic == form_.rowCount;
}

// A coefficient whose size is away from 1 has Clp scale the problem, others do not; that it finds
// out in each solve, unless it is told.
void ClpProgram::lookAtScale() {
  constexpr double kSmall = 0.5;
  constexpr double kLarge = 2;
  isScaled_ = std::ranges::any_of(form_.value, [](double value) {
    return value != 0 && !(std::abs(value) >= kSmall && std::abs(value) <= kLarge);
  });
}

void ClpProgram::runLive(Watch& watch) {
  simplex_.setSpecialOptions(simplex_.specialOptions() | kShortSteps);
  // The memory of the factorization stays for the next one.
  simplex_.factorization()->setPersistenceFlag(1);
  if (!isScaled_) simplex_.scaling(0);
  // What a solve leaves is of use only when it ends well.
  run(simplex_, method_, watch, std::exchange(reuse_, kLeaveWork));
  if (std::exchange(isMixed_, false)) {
    const bool endedInPrimal = simplex_.algorithm() > 0;
    stepsInPrimal_ = method_ == Method::primal ? stepsInPrimal_ - 1
                     : endedInPrimal           ? kStepsInPrimal
                                               : 0;
  }
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
  const bool wasFresh = std::exchange(isFresh_, false);
  if (wasFresh) {
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
    leaveLimit(watch, result);
  } else if (simplex_.status() == 0) {
    result.outcome = Outcome::optimal;
    result.hasPoint = true;
  } else if (simplex_.status() == 1 && leaveRowRay(simplex_, result)) {
    result.outcome = Outcome::infeasible;
  } else {
    decideUnsolvable(watch, result);
  }
  if (result.hasPoint) leavePoint(result);
  // After a step from the last basis such a claim is a reason for a fresh solve.
  const bool isDoubtful = wasFresh && result.outcome == Outcome::optimal &&
                          !optimumDoubt(form_.problem(), result).empty();
  if (isDoubtful) solveFromNothing(watch, result);
  if (!result.hasPoint && wasLimited()) leaveMarginals(result);
  result.iterations = iterations_;
  isWhole_ = true;
}

// The dual method takes columns without an end for ones with a far end, and may stop there;
// presolve and the search for a ray may leave columns away from their bounds that are taken for
// settled. The primal method from no basis at all does neither. What it claims counts.
void ClpProgram::solveFromNothing(Watch& watch, SolverResult& result) {
  simplex_.allSlackBasis(true);
  reuse_ = kLeaveWork;
  runUnscaled(watch);
  if (simplex_.status() == 0) {
    leavePoint(result);
  } else if (simplex_.status() == 2) {
    leaveColumnRay(result);
    result.hasPoint = false;
    result.outcome = Outcome::unbounded;
  } else if (wasLimited()) {
    leaveLimit(watch, result);
    if (result.hasPoint) leavePoint(result);
  }
}

void ClpProgram::leaveLimit(const Watch& watch, SolverResult& result) const {
  result.outcome = watch.stopped() ? watch.reason() : Outcome::iterationLimit;
  result.hasPoint = simplex_.primalFeasible();
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

// Of a basis without a point.
void ClpProgram::leaveMarginals(SolverResult& result) const {
  const double* const duals = simplex_.dualRowSolution();
  std::copy(duals, duals + form_.rowCount, result.rowMarginal.begin());
}

void ClpProgram::leavePoint(SolverResult& result) const {
  for (const int j : part_.leftOutColumns()) {
    result.level[at(j)] = form_.lower[at(j)];
    result.position[at(j)] = Position::atLower;
  }
  const double* const levels = simplex_.primalColumnSolution();
  const unsigned char* const statuses = simplex_.statusArray();
  for (std::size_t c = 0; c < part_.columns().size(); ++c) {
    const std::size_t j = at(part_.columns()[c]);
    const double level = levels[c];
    const double lower = form_.lower[j];
    const double upper = form_.upper[j];
    result.level[j] = std::max(lower, std::min(upper, level));
    result.position[j] = positionOf(statuses[c], level, lower, upper);
  }
  const double* activities = simplex_.primalRowSolution();
  const double* duals = simplex_.dualRowSolution();
  const unsigned char* const rowStatuses = statuses + part_.columns().size();
  for (std::size_t i = 0; i < at(form_.rowCount); ++i) {
    result.rowPosition[i] =
        positionOf(rowStatuses[i], activities[i], part_.rowLower()[i], part_.rowUpper()[i]);
    result.rowMarginal[i] = result.rowPosition[i] == Position::basic ? 0 : duals[i];
  }
}

}  // namespace lomu
