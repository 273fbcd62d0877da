#include "providers/model/solvers/cbc_engine.h"

#include <CbcEventHandler.hpp>
#include <CbcModel.hpp>
#include <CbcSolver.hpp>
#include <ClpEventHandler.hpp>
#include <OsiClpSolverInterface.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <mutex>

namespace lomu {

namespace {

// One search at a time.
std::mutex turn;

class StopHandler : public CbcEventHandler {
 public:
  explicit StopHandler(Watch* watch) : watch_(watch) {}
  CbcAction event(CbcEvent) override {
    const CbcModel* model = getModel();
    if (model != nullptr) {
      const bool hasPoint = model->bestSolution() != nullptr;
      watch_->tell(hasPoint ? model->getObjValue() : HUGE_VAL, model->getBestPossibleObjValue());
    }
    return watch_->mustStop() ? stop : noAction;
  }
  [[nodiscard]] CbcEventHandler* clone() const override { return new StopHandler(*this); }

 private:
  Watch* watch_;
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

void fill(OsiClpSolverInterface& interface, const LinearForm& form) {
  interface.messageHandler()->setLogLevel(0);
  interface.setHintParam(OsiDoReducePrint, true, OsiHintTry);
  interface.loadProblem(form.columnCount, form.rowCount, form.start.data(), form.rowOf.data(),
                        form.value.data(), form.lower.data(), form.upper.data(), form.cost.data(),
                        form.rowLower.data(), form.rowUpper.data());
  for (int j = 0; j < form.columnCount; ++j) {
    if (form.isInteger[static_cast<std::size_t>(j)] != 0) interface.setInteger(j);
  }
}

std::array<char, 32> textOf(double number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.17g", number);
  return text;
}

int goOn(CbcModel* /*model*/, int /*where*/) {
  return 0;
}

// What the program is told on its command line, beside what it does by itself.
void runProgram(CbcModel& model, const Watch& watch) {
  CbcSolverUsefulData data;
  data.noPrinting_ = true;
  data.useSignalHandler_ = false;
  CbcMain0(model, data);
  const std::array<char, 32> seconds = textOf(watch.secondsLeft());
  const std::array<char, 32> gap = textOf(watch.relativeGap());
  const std::array arguments{"cbc",      "-logLevel",    "0",         "-timeMode", "elapsed",
                             "-seconds", seconds.data(), "-ratioGap", gap.data(),  "-increment",
                             "1e-9",     "-solve",       "-quit"};
  CbcMain1(static_cast<int>(arguments.size()), const_cast<const char**>(arguments.data()), model,
           goOn, data);
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
  if (loaded_ && program_.isWhole() && form.sameShape(form_)) {
    LinearForm taken = form;
    program_.update(taken);
  } else {
    program_.load(form);
  }
  loaded_ = true;
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
  std::unique_lock<std::mutex> lock(turn, std::defer_lock);
  if (!watch.waitFor(lock)) {
    result.outcome = watch.reason();
    return;
  }
  OsiClpSolverInterface interface;
  fill(interface, form_);
  LinearStopHandler linearHandler(&watch);
  interface.getModelPtr()->passInEventHandler(&linearHandler);
  CbcModel model(interface);
  model.setLogLevel(0);
  model.solver()->messageHandler()->setLogLevel(0);
  const StopHandler handler(&watch);
  model.passInEventHandler(&handler);
  model.setMaximumNumberIterations(watch.iterationsLeft(result.iterations));
  if (result.startTaken) {
    std::vector<std::pair<std::string, double>> named;
    for (int j = 0; j < form_.columnCount; ++j) {
      named.emplace_back(model.solver()->getColName(j), start_[static_cast<std::size_t>(j)]);
    }
    model.setMIPStart(named);
  }
  runProgram(model, watch);

  result.iterations += model.getIterationCount();
  result.outcome = outcomeOf(model, watch);
  const double* best = model.bestSolution();
  if (best == nullptr && result.startTaken) best = start_.data();
  result.hasPoint = best != nullptr;
  constexpr double kNoBound = 1e30;
  const double bound = model.getBestPossibleObjValue();
  if (std::abs(bound) < kNoBound) result.bound = bound;
  if (result.outcome == Outcome::failed) {
    result.reason = "cbc gave up with status " + std::to_string(model.status());
  }
  if (result.hasPoint) std::copy(best, best + form_.columnCount, result.level.begin());
}

}  // namespace lomu
