#include "providers/model/solvers/cbc_engine.h"

#include <CbcEventHandler.hpp>
#include <CbcHeuristic.hpp>
#include <CbcHeuristicFPump.hpp>
#include <CbcModel.hpp>
#include <CglGomory.hpp>
#include <ClpEventHandler.hpp>
#include <algorithm>
#include <cmath>
#include <memory>

#include "providers/model/solvers/cbc_interface.h"
#include "providers/model/solvers/claim_check.h"
#include "providers/model/solvers/cover_cuts.h"
#include "providers/model/solvers/cut_generator.h"
#include "providers/model/solvers/probing.h"
#include "providers/model/solvers/rounding_cuts.h"

namespace lomu {

namespace {

// Tells how far the search is, and keeps in `bound` what no objective is below. Of Cbc's own bounds
// some are none: while it looks for a first point it gives the best one for that, and when a linear
// problem is ended, the objective where that stood.
class StopHandler : public CbcEventHandler {
 public:
  StopHandler(Watch* watch, double* bound) : watch_(watch), bound_(bound) {}
  CbcAction event(CbcEvent) override {
    const CbcModel* model = getModel();
    if (model != nullptr && !watch_->stopped()) {
      const bool hasPoint = model->bestSolution() != nullptr;
      const double objective = hasPoint ? model->getObjValue() : HUGE_VAL;
      const double bound = model->getBestPossibleObjValue();
      if (bound < objective) *bound_ = std::max(*bound_, bound);
      watch_->tell(objective, *bound_);
    }
    return watch_->mustStop() ? stop : noAction;
  }
  [[nodiscard]] CbcEventHandler* clone() const override { return new StopHandler(*this); }

 private:
  Watch* watch_;
  double* bound_;
};

// The same within a linear problem of the search.
class LinearStopHandler : public ClpEventHandler {
 public:
  explicit LinearStopHandler(Watch* watch) : watch_(watch) {}
  int event(Event which) override {
    return which == endOfFactorization && watch_->mustStop() ? 0 : -1;
  }
  [[nodiscard]] ClpEventHandler* clone() const override { return new LinearStopHandler(*this); }

 private:
  Watch* watch_;
};

// Cuts at the root, those by covers below it too where they prove useful, and two quick ways to a
// first solution. Of Coin's cuts Gomory's alone: its covers of knapsacks took the best point of a
// known problem (lseu) away, and that of an assignment with a budget; covers of flows that of
// plants with fixed costs; and CglMixedIntegerRounding2 those of six of three thousand small
// problems with columns below 0. An assertion of CglProbing ended the process on some with
// equalities. The other two are ours. At every node Gomory's and those by rounding took longer than
// they saved.
void addHelp(const LinearForm& form, CbcModel& model) {
  constexpr int kWhereUseful = -1;
  constexpr int kAtRoot = -99;
  CglGomory gomory;
  model.addCutGenerator(&gomory, kAtRoot, "Gomory");
  const auto problem = std::make_shared<const CutProblem>(form);
  CutGenerator rounding(problem, findRoundingCuts);
  model.addCutGenerator(&rounding, kAtRoot, "Rounding");
  CutGenerator covers(problem, findCoverCuts);
  model.addCutGenerator(&covers, kWhereUseful, "Covers");
  CbcRounding round(model);
  model.addHeuristic(&round);
  CbcHeuristicFPump pump(model);
  model.addHeuristic(&pump);
}

// More equalities than a few, and nothing else.
bool isLargeSystem(const LinearForm& form) {
  constexpr int kFew = 10;
  return form.rowCount > kFew && form.rowLower == form.rowUpper;
}

// Where what is taken for the best point of the linear problem may be none, as where columns have
// no end, the primal method from no basis at all tells.
void settleDoubt(const LinearForm& form, OsiSolverInterface& solver) {
  auto* const clp = dynamic_cast<OsiClpSolverInterface*>(&solver);
  if (clp == nullptr || !clp->isProvenOptimal()) return;
  SolverResult linear;
  linear.begin(form.cost.size(), form.rowLower.size());
  std::copy_n(clp->getColSolution(), linear.level.size(), linear.level.begin());
  std::copy_n(clp->getRowPrice(), linear.rowMarginal.size(), linear.rowMarginal.begin());
  const double* const activity = clp->getRowActivity();
  for (std::size_t i = 0; i < linear.rowPosition.size(); ++i) {
    const bool isLow = activity[i] - form.rowLower[i] <= form.rowUpper[i] - activity[i];
    linear.rowPosition[i] = isLow ? Position::atLower : Position::atUpper;
  }
  if (optimumDoubt(form.problem(), linear).empty()) return;
  ClpSimplex& simplex = *clp->getModelPtr();
  const int scaling = simplex.scalingFlag();
  simplex.scaling(0);
  simplex.allSlackBasis(true);
  simplex.primal();
  simplex.scaling(scaling);
  clp->setWarmStart(nullptr);
}

Outcome outcomeOf(const CbcModel& model, const Watch& watch) {
  if (watch.stopped()) return watch.reason();
  if (model.isProvenOptimal() && model.bestSolution() != nullptr) return Outcome::optimal;
  if (model.isProvenInfeasible()) return Outcome::infeasible;
  if (model.isSecondsLimitReached()) return Outcome::timeLimit;
  if (model.status() == 1) return Outcome::iterationLimit;
  return Outcome::failed;
}

}  // namespace

void CbcEngine::take(const LinearForm& form) {
  // Never from the last basis: what Clp claims then, nobody here holds against a proof.
  program_.load(form);
  form_ = form;
}

void CbcEngine::solveLinear(Watch& watch, SolverResult& result) {
  program_.solve(watch, result);
}

// The linear problem that is left when the integers stand where the start has them.
bool CbcEngine::completeStart(Watch& watch, SolverResult& result) {
  if (start_.empty()) return false;
  LinearForm fixed = form_;
  for (std::size_t j = 0; j < start_.size(); ++j) {
    if (form_.isInteger[j] == 0) continue;
    const double level = std::round(start_[j]);
    if (!(level >= form_.lower[j] && level <= form_.upper[j])) return false;
    fixed.lower[j] = fixed.upper[j] = level;
  }
  ClpProgram program;
  program.load(std::move(fixed));
  SolverResult linear = result;
  program.solve(watch, linear);
  if (linear.outcome != Outcome::optimal) return false;
  start_ = linear.level;
  return true;
}

void CbcEngine::searchIntegers(Watch& watch, SolverResult& result) {
  result.hasPoint = false;
  if (watch.mustStop()) {
    result.outcome = watch.reason();
    return;
  }
  result.startTaken = completeStart(watch, result);
  LinearForm probed = form_;
  const bool isProbed = probeIntegers(probed, watch);
  search(probed, watch, result);
  // That there is none is what the problem itself is to say.
  if (isProbed && !result.hasPoint && !watch.mustStop() &&
      (result.outcome == Outcome::infeasible || result.outcome == Outcome::failed)) {
    search(form_, watch, result);
  }
}

void CbcEngine::search(const LinearForm& form, Watch& watch, SolverResult& result) {
  CbcInterface interface(form);
  LinearStopHandler linearHandler(&watch);
  interface.getModelPtr()->passInEventHandler(&linearHandler);
  CbcModel model(interface);
  model.setLogLevel(0);
  model.solver()->messageHandler()->setLogLevel(0);
  model.setMaximumNumberIterations(watch.iterationsLeft(result.iterations));
  model.setUseElapsedTime(true);
  model.setMaximumSeconds(watch.secondsLeft());
  model.setAllowableFractionGap(watch.relativeGap());
  model.setAllowableGap(0);
  // A better solution counts however little it is better by.
  model.setCutoffIncrement(1e-9);
  addHelp(form, model);
  // Where little is left to decide below a node, Clp tries all of it by itself, as in Cbc's
  // program: several knapsacks at once take a fifth of the time. Depths further from 0 take longer
  // again, and so does a large system of equalities.
  constexpr int kLittleLeft = -4;
  if (!isLargeSystem(form)) model.setFastNodeDepth(kLittleLeft);
  model.initialSolve();
  settleDoubt(form, *model.solver());
  // The search and its cuts take a best point of the linear problem for granted.
  if (!model.solver()->isProvenOptimal()) {
    result.outcome = watch.mustStop() ? watch.reason() : Outcome::failed;
    result.reason = "cbc found no best point of the linear problem";
    result.hasPoint = result.startTaken && watch.stopped();
    if (result.hasPoint) std::copy(start_.begin(), start_.end(), result.level.begin());
    return;
  }
  double bound = model.solver()->getObjValue();
  const StopHandler handler(&watch, &bound);
  model.passInEventHandler(&handler);
  if (result.startTaken) {
    double cost = 0;
    for (std::size_t j = 0; j < start_.size(); ++j) cost += form_.cost[j] * start_[j];
    std::vector<double> point = start_;
    point.resize(static_cast<std::size_t>(interface.getNumCols()));
    model.setBestSolution(point.data(), interface.getNumCols(), cost, true);
  }
  model.branchAndBound();

  result.iterations += model.getIterationCount();
  result.outcome = outcomeOf(model, watch);
  const double* best = model.bestSolution();
  if (best == nullptr && result.startTaken) best = start_.data();
  result.hasPoint = best != nullptr;
  constexpr double kNoBound = 1e30;
  if (result.outcome == Outcome::optimal) bound = model.getBestPossibleObjValue();
  if (std::abs(bound) < kNoBound) result.bound = bound;
  if (result.outcome == Outcome::failed) {
    result.reason = "cbc gave up with status " + std::to_string(model.status());
  }
  if (result.hasPoint) std::copy(best, best + form_.columnCount, result.level.begin());
}

}  // namespace lomu
