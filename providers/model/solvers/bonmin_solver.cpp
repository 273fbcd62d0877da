#include "providers/model/solvers/bonmin_solver.h"

#include <CoinError.hpp>
#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "providers/model/solvers/bonmin_search.h"
#include "providers/model/solvers/cbc_engine.h"
#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/convexity.h"
#include "providers/model/solvers/ipopt_problem.h"
#include "providers/model/solvers/ipopt_solver.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/solver_face.h"

namespace lomu {

bool BonminSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  SolverProblem linear = problem;
  setProducts(linear, {});
  std::string why;
  if (!form.take(linear, why)) {
    reason = "bonmin solves models with products and integers: " + why;
    return false;
  }
  lower_ = std::move(form.lower);
  upper_ = std::move(form.upper);
  noIntegers_.assign(lower_.size(), 0);
  problem_ = problem;
  problem_.lower = lower_.data();
  problem_.upper = upper_.data();
  return true;
}

bool BonminSolver::update(const SolverProblem& /*problem*/) {
  return false;
}

void BonminSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    Watch watch(limits);
    solveWithin(watch, limits, result);
    confirmPoint(problem_, result);
    return;
  } catch (CoinError& error) {
    result.reason = "bonmin: " + error.message();
  } catch (const std::exception& error) {
    result.reason = std::string("bonmin: ") + error.what();
  }
  result.outcome = Outcome::failed;
  result.hasPoint = false;
}

bool BonminSolver::integersMove() const {
  for (std::size_t j = 0; j < lower_.size(); ++j) {
    if (problem_.isInteger[j] != 0 && lower_[j] != upper_[j]) return true;
  }
  return false;
}

SolverProblem BonminSolver::withoutIntegers() const {
  SolverProblem problem = problem_;
  problem.isInteger = noIntegers_.data();
  problem.hasIntegers = 0;
  return problem;
}

void BonminSolver::solveContinuous(const SolverProblem& problem, const SolverLimits& limits,
                                   SolverResult& result) const {
  IpoptSolver ipopt;
  const double iterations = result.iterations;
  result.outcome = Outcome::failed;
  if (ipopt.load(problem, result.reason)) ipopt.solve(limits, result);
  result.iterations += iterations;
}

void BonminSolver::solveWithin(Watch& watch, const SolverLimits& limits,
                               SolverResult& result) const {
  LinearForm form;
  std::string reason;
  if (form.take(problem_, reason) && settleColumnByColumn(form, result)) return;
  for (std::size_t j = 0; j < lower_.size(); ++j) {
    if (lower_[j] <= upper_[j]) continue;
    result.outcome = Outcome::infeasible;
    return;
  }
  if (!integersMove()) {
    solveContinuous(withoutIntegers(), limits, result);
    return;
  }
  const IpoptProblem asked(problem_, watch);
  const bool rowsAreLinear = !asked.rowsHaveProducts();
  const bool convex = isConvex(problem_, asked.curved());
  SolverResult point = result;
  if (rowsAreLinear && !findBound(watch, limits, point)) {
    result.outcome = point.outcome;
    result.iterations = point.iterations;
    result.reason = point.reason;
    return;
  }
  result.iterations = point.iterations;
  searchByBonmin(problem_, convex, watch, result);
  const bool isBelieved = !rowsAreLinear && rowsAreConvex(problem_, asked.curved());
  if (!result.hasPoint && result.outcome == Outcome::infeasible && !isBelieved) {
    result.outcome = Outcome::failed;
    result.reason = rowsAreLinear ? "bonmin found no feasible point, though there is one"
                                  : "bonmin found no feasible point, and rows have products";
  }
  if (result.outcome == Outcome::failed) return;
  if (!result.hasPoint && point.hasPoint) {
    result.level = point.level;
    result.hasPoint = true;
  }
  if (result.hasPoint) complete(result);
  if (result.outcome == Outcome::optimal && !convex) result.outcome = Outcome::locallyOptimal;
}

// Whether the rows have a point with integers, which is left, and the objective an end; else what
// it is that the solve comes to.
bool BonminSolver::findBound(Watch& watch, const SolverLimits& limits, SolverResult& point) const {
  SolverLimits rest = limits;
  rest.seconds = watch.secondsLeft();
  rest.progress = nullptr;  // it has another objective
  Watch quiet(rest);
  if (!findPoint(quiet, point)) return false;
  rest.seconds = watch.secondsLeft();
  SolverResult relaxed = point;
  solveContinuous(withoutIntegers(), rest, relaxed);
  point.iterations = relaxed.iterations;
  if (relaxed.outcome == Outcome::infeasible || relaxed.outcome == Outcome::unbounded) {
    point.outcome = relaxed.outcome;
    return false;
  }
  return true;
}

// Whether the rows have a point with integers, or else what ended the search for one.
bool BonminSolver::findPoint(Watch& watch, SolverResult& result) const {
  LinearForm form;
  std::vector<SolverProduct> rowProducts;
  std::ranges::copy_if(productsOf(problem_), std::back_inserter(rowProducts),
                       [](const SolverProduct& p) { return p.row != kObjectiveRow; });
  const std::vector<double> noCost(lower_.size(), 0.0);
  SolverProblem rows = problem_;
  rows.cost = noCost.data();
  setProducts(rows, rowProducts);
  if (!form.take(rows, result.reason)) return false;
  if (!settleColumnByColumn(form, result)) {
    CbcEngine engine;
    engine.take(form);
    solveWithIntegers(engine, form, watch, result);
  }
  return result.hasPoint;
}

void BonminSolver::complete(SolverResult& result) const {
  std::vector<double> lower = lower_;
  std::vector<double> upper = upper_;
  for (std::size_t j = 0; j < lower.size(); ++j) {
    if (problem_.isInteger[j] == 0) continue;
    const double level = std::max(lower[j], std::min(upper[j], std::round(result.level[j])));
    lower[j] = upper[j] = result.level[j] = level;
  }
  SolverProblem fixed = withoutIntegers();
  fixed.lower = lower.data();
  fixed.upper = upper.data();
  fixed.level = result.level.data();
  SolverResult continuous = result;
  // The point is there, whatever the limits say; this only completes it.
  solveContinuous(fixed, SolverLimits{}, continuous);
  result.iterations = continuous.iterations;
  if (!continuous.hasPoint) return;
  result.level = continuous.level;
  result.position = continuous.position;
  result.rowMarginal = continuous.rowMarginal;
  result.rowPosition = continuous.rowPosition;
  for (std::size_t j = 0; j < lower_.size(); ++j) {
    if (problem_.isInteger[j] == 0) continue;
    const bool atLower = result.level[j] <= lower_[j];
    const bool atUpper = result.level[j] >= upper_[j];
    result.position[j] = atLower   ? Position::atLower
                         : atUpper ? Position::atUpper
                                   : Position::superbasic;
  }
}

}  // namespace lomu

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::BonminSolver>;
}
