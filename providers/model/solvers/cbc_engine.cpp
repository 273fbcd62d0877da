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
#include <numeric>

#include "providers/model/solvers/cbc_interface.h"
#include "providers/model/solvers/claim_check.h"
#include "providers/model/solvers/clique_rows.h"
#include "providers/model/solvers/cover_cuts.h"
#include "providers/model/solvers/cut_generator.h"
#include "providers/model/solvers/objective_step.h"
#include "providers/model/solvers/probing.h"
#include "providers/model/solvers/reduction.h"
#include "providers/model/solvers/root_cuts.h"
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

// Gives Cbc the point that was found beside the cuts at the root.
class PointOfRoot : public CbcHeuristic {
 public:
  PointOfRoot(CbcModel& model, std::shared_ptr<RootCuts> cuts)
      : CbcHeuristic(model), cuts_(std::move(cuts)), columns_(model.getNumCols()) {}
  [[nodiscard]] CbcHeuristic* clone() const override { return new PointOfRoot(*this); }
  void resetModel(CbcModel*) override {}
  bool shouldHeurRun(int) override { return true; }
  int solution(double& objective, double* point) override {
    const bool isWhole = model_ != nullptr && model_->getNumCols() == columns_;
    return isWhole && cuts_->takePoint(objective, point) ? 1 : 0;
  }

 private:
  std::shared_ptr<RootCuts> cuts_;
  int columns_;
};

// The largest coefficient beside the least.
double spanOf(const LinearForm& form) {
  double least = HUGE_VAL;
  double most = 0;
  for (const double value : form.value) {
    if (value == 0) continue;
    least = std::min(least, std::abs(value));
    most = std::max(most, std::abs(value));
  }
  return most / least;
}

// Cuts of our own, below the root too where they prove useful, and some quick ways to a first
// solution. None of Coin's cuts is without a fault: its covers of knapsacks took the best point of
// a known problem (lseu) away, and that of an assignment with a budget; covers of flows that of
// plants with fixed costs; CglMixedIntegerRounding2 those of six of three thousand small problems
// with columns below 0; an assertion of CglProbing ended the process on some with equalities.
// Gomory's, which are made of what the factorization has, took that of a problem with coefficients
// from 0.00015 to 8570 away. They are used at the root where the largest is not that much more than
// the least, and ours find nothing to cut at the best point of the linear problem: with ours beside
// them they cost more than they save.
void addHelp(const LinearForm& form, const std::shared_ptr<const CutProblem>& problem,
             const std::shared_ptr<RootCuts>& atRoot, CbcModel& model) {
  constexpr int kWhereUseful = -1;
  constexpr int kAtRoot = -99;
  constexpr double kSpanForGomory = 1e6;
  std::vector<Cut> cuts;
  findRoundingCuts(*problem, model.solver()->getColSolution(), cuts);
  findCoverCuts(*problem, model.solver()->getColSolution(), cuts);
  CglGomory gomory;
  if (cuts.empty() && spanOf(form) <= kSpanForGomory) {
    model.addCutGenerator(&gomory, kAtRoot, "Gomory");
  }
  CutGenerator rounding(problem, findRoundingCuts, atRoot, 0);
  model.addCutGenerator(&rounding, kWhereUseful, "Rounding");
  CutGenerator covers(problem, findCoverCuts, atRoot, 1);
  model.addCutGenerator(&covers, kWhereUseful, "Covers");
  CbcRounding round(model);
  model.addHeuristic(&round);
  CbcHeuristicFPump pump(model);
  model.addHeuristic(&pump);
  PointOfRoot found(model, atRoot);
  model.addHeuristic(&found, "Root");
}

double costOf(const LinearForm& form, const std::vector<double>& point) {
  return std::inner_product(form.cost.begin(), form.cost.end(), point.begin(), 0.0);
}

// The start comes as what a heuristic finds. Given before the search, it let Cbc fix columns by
// their costs at once, and take the costs of the others alone for what objectives differ by: the
// best point was then too little better to count.
void addStart(const LinearForm& form, const std::vector<double>& start, CbcModel& model) {
  std::vector<double> point = start;
  point.resize(static_cast<std::size_t>(model.getNumCols()));
  CbcSerendipity heuristic(model);
  heuristic.setInputSolution(point.data(), costOf(form, start));
  model.addHeuristic(&heuristic, "Start", 0);
}

// Rounds of cuts at the root go on while they raise the bound by a thousandth, as in Cbc's program;
// a node below it has one.
void limitRounds(double bound, CbcModel& model) {
  constexpr int kRoundsAtRoot = 100;
  constexpr double kWorthARound = 1e-3;
  constexpr double kEnough = 0.05;
  model.setMaximumCutPassesAtRoot(kRoundsAtRoot);
  model.setMaximumCutPasses(1);
  model.setMinimumDrop(std::min(kEnough, kWorthARound * std::abs(bound) + 1e-4));
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

// Whether a search of what a reduction leaves can be expected to take less: with little of the
// problem gone it only goes another way.
bool isWorthIt(const LinearForm& form, const Reduction& reduction) {
  constexpr double kWorthIt = 0.1;
  const auto entries = static_cast<double>(form.value.size());
  const auto left = static_cast<double>(reduction.small().value.size());
  return left <= (1 - kWorthIt) * entries;
}

Outcome outcomeOf(const CbcModel& model, const Watch& watch) {
  if (watch.stopped()) return watch.reason();
  if (model.isProvenOptimal() && model.bestSolution() != nullptr) return Outcome::optimal;
  if (model.isProvenInfeasible()) return Outcome::infeasible;
  if (model.isSecondsLimitReached()) return Outcome::timeLimit;
  if (model.status() == 1) return Outcome::iterationLimit;
  return Outcome::failed;
}

// Of a search that ended with an optimum: where a cutoff ended it, Cbc's own bound is still that of
// the last node.
double provenBound(const CbcModel& model, double relativeGap) {
  const double objective = model.getObjValue();
  const double told = model.getBestPossibleObjValue();
  const double room = relativeGap * std::max(std::abs(objective), std::abs(told));
  return std::min(objective, std::max(told, objective - room));
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
  if (searchReduced(watch, result)) return;
  if (watch.mustStop() && !result.startTaken) {
    result.outcome = watch.reason();
    return;
  }
  const std::vector<double> point = search(form_, start_, watch, result);
  result.hasPoint = !point.empty();
  std::ranges::copy(point, result.level.begin());
}

bool CbcEngine::searchReduced(Watch& watch, SolverResult& result) {
  Reduction reduction(form_, result.startTaken, watch);
  if (!reduction.run()) return false;
  LinearForm probed = reduction.small();
  std::vector<Tie> ties;
  if (probeIntegers(probed, watch, 0, &ties) &&
      !(reduction.take(probed, ties) && reduction.run())) {
    return false;
  }
  const LinearForm& small = reduction.small();
  std::vector<double> point;
  if (small.columnCount == 1) {
    point = {1};
    result.outcome = Outcome::optimal;
    result.bound = small.cost[0];
  } else {
    if (small.rowCount == 0 || watch.stopped() || !isWorthIt(form_, reduction)) return false;
    point = search(small, result.startTaken ? reduction.part(start_) : start_, watch, result);
  }
  if (point.empty()) {
    return result.outcome != Outcome::infeasible && result.outcome != Outcome::failed;
  }
  const std::vector<double> whole = reduction.whole(point.data());
  result.hasPoint = true;
  std::ranges::copy(whole, result.level.begin());
  return true;
}

std::vector<double> CbcEngine::search(const LinearForm& given, const std::vector<double>& start,
                                      Watch& watch, SolverResult& result) {
  auto problem = std::make_shared<const CutProblem>(given);
  LinearForm merged;
  const bool isMerged = mergeCliques(*problem, given, merged);
  if (isMerged) problem = std::make_shared<const CutProblem>(merged);
  const LinearForm& form = isMerged ? merged : given;
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
  // A better solution counts however little it is better by, and is so by a step where there is
  // one.
  constexpr double kLeastStep = 1e-9;
  constexpr double kPartOfStep = 0.999;
  model.setCutoffIncrement(std::max(kLeastStep, kPartOfStep * objectiveStep(form)));
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
    return result.startTaken && watch.stopped() ? start : std::vector<double>();
  }
  double bound = model.solver()->getObjValue();
  const auto atRoot = std::make_shared<RootCuts>(
      problem, std::vector<RootCuts::Find>{findRoundingCuts, findCoverCuts}, watch,
      watch.iterationsLeft(result.iterations));
  addHelp(form, problem, atRoot, model);
  limitRounds(bound, model);
  const StopHandler handler(&watch, &bound);
  model.passInEventHandler(&handler);
  if (result.startTaken) addStart(form, start, model);
  model.branchAndBound();

  result.iterations += model.getIterationCount() + atRoot->iterations();
  result.outcome = outcomeOf(model, watch);
  const double* best = model.bestSolution();
  // A limit may come before the heuristics.
  const bool startIsBetter =
      result.startTaken && (best == nullptr || costOf(form, start) < model.getObjValue());
  if (startIsBetter) best = start.data();
  constexpr double kNoBound = 1e30;
  if (result.outcome == Outcome::optimal) bound = provenBound(model, watch.relativeGap());
  if (std::abs(bound) < kNoBound) result.bound = bound;
  if (result.outcome == Outcome::failed) {
    result.reason = "cbc gave up with status " + std::to_string(model.status());
  }
  return best == nullptr ? std::vector<double>()
                         : std::vector<double>(best, best + form.columnCount);
}

}  // namespace lomu
