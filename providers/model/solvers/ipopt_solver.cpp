#include "providers/model/solvers/ipopt_solver.h"

#include <IpIpoptApplication.hpp>
#include <algorithm>
#include <cmath>
#include <exception>

#include "providers/model/solvers/column_by_column.h"
#include "providers/model/solvers/convexity.h"
#include "providers/model/solvers/ipopt_problem.h"
#include "providers/model/solvers/ipopt_turn.h"
#include "providers/model/solvers/point_check.h"

namespace lomu {

namespace {

// How close to a bound, relative to its size, a level of an interior method is at the bound.
constexpr double kAtBound = 1e-6;

// Levels beyond this say that a problem may be unbounded. Where one is, Ipopt can also go on
// without an end; nothing that converges takes as many iterations.
constexpr double kDiverged = 1e12;
constexpr int kMostIterations = 10000;
// Nothing linear that Ipopt solves takes more than a few dozen.
constexpr int kMostLinearIterations = 500;

Position positionOf(double level, double lower, double upper) {
  const auto near = [&](double side) {
    return std::isfinite(side) &&
           std::abs(level - side) <= kAtBound * std::max(1.0, std::abs(side));
  };
  if (near(lower) && level - lower <= upper - level) return Position::atLower;
  if (near(upper)) return Position::atUpper;
  return near(lower) ? Position::atLower : Position::basic;
}

bool isLinear(const IpoptProblem& problem) {
  return !problem.rowsHaveProducts() && !problem.objectiveHasProducts();
}

int mostIterations(const IpoptProblem& problem) {
  return isLinear(problem) ? kMostLinearIterations : kMostIterations;
}

void setOptions(Ipopt::IpoptApplication& application, int iterations, const IpoptProblem& problem) {
  const Ipopt::SmartPtr<Ipopt::OptionsList> options = application.Options();
  options->SetIntegerValue("print_level", 0);
  options->SetStringValue("sb", "yes");
  options->SetStringValue("linear_solver", "mumps");
  options->SetIntegerValue("max_iter", std::min(iterations, mostIterations(problem)));
  options->SetNumericValue("diverging_iterates_tol", kDiverged);
  options->SetNumericValue("tol", 1e-9);
  options->SetNumericValue("bound_relax_factor", 1e-9);
  if (isLinear(problem)) options->SetStringValue("nlp_scaling_method", "user-scaling");
  if (problem.rowsHaveProducts()) return;
  options->SetStringValue("jac_c_constant", "yes");
  options->SetStringValue("jac_d_constant", "yes");
  options->SetStringValue("hessian_constant", "yes");
}

}  // namespace

bool IpoptSolver::load(const SolverProblem& problem, std::string& reason) {
  LinearForm form;
  SolverProblem linear = problem;
  setProducts(linear, {});
  std::string why;
  if (!form.take(linear, why)) {
    reason = "ipopt solves continuous models: " + why;
    return false;
  }
  if (form.hasIntegers) {
    reason = "ipopt solves continuous models: the model has integer columns";
    return false;
  }
  problem_ = problem;
  return true;
}

bool IpoptSolver::update(const SolverProblem& /*problem*/) {
  return false;
}

void IpoptSolver::solve(const SolverLimits& limits, SolverResult& result) {
  try {
    Watch watch(limits);
    solveWithin(watch, result);
    confirmPoint(problem_, result);
  } catch (const std::exception& error) {
    result.outcome = Outcome::failed;
    result.hasPoint = false;
    result.reason = std::string("ipopt: ") + error.what();
  }
}

void IpoptSolver::solveWithin(Watch& watch, SolverResult& result) {
  result.iterations = 0;
  result.hasPoint = false;
  LinearForm form;
  std::string reason;
  if (form.take(problem_, reason) && settleColumnByColumn(form, result)) return;
  if (form.boundsCross() || missesAnEmptyRow(problem_)) {
    result.outcome = Outcome::infeasible;
    return;
  }

  const Run first = run(problem_, watch, result);
  result.outcome = first.outcome;
  if (first.outcome == Outcome::failed) {
    decideUnsolved(first, watch, result);
    return;
  }
  const bool limited = first.outcome != Outcome::optimal;
  if (!limited && !first.isConvex) {
    result.outcome = Outcome::locallyOptimal;
  }
  result.hasPoint = first.hasPoint;
  leavePositions(result);
}

IpoptSolver::Run IpoptSolver::run(const SolverProblem& problem, Watch& watch,
                                  SolverResult& result) {
  Run run;
  const Ipopt::SmartPtr<IpoptProblem> asked = new IpoptProblem(problem, watch);
  run.rowsHaveProducts = asked->rowsHaveProducts();
  run.objectiveHasProducts = asked->objectiveHasProducts();
  run.isConvex = isConvex(problem, asked->curved());
  run.rowsAreConvex = run.isConvex || rowsAreConvex(problem, asked->curved());
  if (!asked->anythingMoves()) {
    result.level = asked->level();
    std::fill(result.rowMarginal.begin(), result.rowMarginal.end(), 0.0);
    run.localInfeasibility = !violation(problem, result.level).empty();
    run.outcome = run.localInfeasibility ? Outcome::failed : Outcome::optimal;
    run.hasPoint = true;
    run.rowsHaveProducts = run.objectiveHasProducts = false;
    run.isConvex = run.rowsAreConvex = true;
    return run;
  }
  if (watch.mustStop()) {
    run.outcome = watch.reason();
    return run;
  }

  std::unique_lock<std::mutex> lock(ipoptTurn(), std::defer_lock);
  if (!watch.waitFor(lock)) {
    run.outcome = watch.reason();
    return run;
  }
  // Made without a console; no file of options is read.
  const Ipopt::SmartPtr<Ipopt::IpoptApplication> application = new Ipopt::IpoptApplication(false);
  setOptions(*application, watch.iterationsLeft(result.iterations), *asked);
  if (application->Initialize("") != Ipopt::Solve_Succeeded) {
    result.reason = "ipopt does not start";
    return run;
  }
  const Ipopt::ApplicationReturnStatus status =
      application->OptimizeTNLP(Ipopt::SmartPtr<Ipopt::TNLP>(Ipopt::GetRawPtr(asked)));
  result.iterations += asked->iterations();
  result.level = asked->level();
  result.rowMarginal = asked->rowMarginal();
  run.hasPoint = true;
  run.objective = asked->objective();
  switch (status) {
    case Ipopt::Solve_Succeeded:
    case Ipopt::Solved_To_Acceptable_Level:
      run.outcome = Outcome::optimal;
      break;
    case Ipopt::Maximum_Iterations_Exceeded:
      run.outcome =
          asked->iterations() < mostIterations(*asked) ? Outcome::iterationLimit : Outcome::failed;
      result.reason =
          "ipopt came to no end in " + std::to_string(mostIterations(*asked)) + " iterations";
      break;
    case Ipopt::Maximum_CpuTime_Exceeded:
      run.outcome = Outcome::timeLimit;
      break;
    case Ipopt::User_Requested_Stop:
      run.outcome = watch.reason();
      break;
    default:
      run.localInfeasibility = status == Ipopt::Infeasible_Problem_Detected;
      run.diverged = status == Ipopt::Diverging_Iterates;
      result.reason = "ipopt gave up with status " + std::to_string(static_cast<int>(status));
  }
  return run;
}

void IpoptSolver::decideUnsolved(const Run& first, Watch& watch, SolverResult& result) const {
  if (first.rowsHaveProducts) {
    if (first.localInfeasibility && first.rowsAreConvex) {
      result.outcome = Outcome::infeasible;
    } else if (first.localInfeasibility) {
      result.reason = "ipopt found no feasible point near its start, and rows have products";
    }
    return;
  }
  const std::vector<double> noCost(static_cast<std::size_t>(problem_.columnCount), 0.0);
  std::vector<SolverProduct> rowProducts;
  std::ranges::copy_if(productsOf(problem_), std::back_inserter(rowProducts),
                       [](const SolverProduct& p) { return p.row != kObjectiveRow; });
  SolverProblem feasibility = problem_;
  feasibility.cost = noCost.data();
  setProducts(feasibility, rowProducts);
  const Run second = run(feasibility, watch, result);
  if (second.outcome == Outcome::failed) {
    if (second.localInfeasibility) result.outcome = Outcome::infeasible;
    return;
  }
  if (second.outcome != Outcome::optimal) {
    result.outcome = second.outcome;
    return;
  }
  constexpr double kFarDown = -1e10;
  const bool unbounded = first.objectiveHasProducts ? first.diverged && first.objective < kFarDown
                                                    : fallsWithoutEnd(watch, result);
  if (unbounded) result.outcome = Outcome::unbounded;
}

// Whether a direction that stays within all rows and bounds, at most 1 in each column, lowers the
// cost. REQUIRES a linear problem.
bool IpoptSolver::fallsWithoutEnd(Watch& watch, SolverResult& result) const {
  LinearForm form;
  std::string reason;
  if (!form.take(problem_, reason)) return false;
  double largest = 0;
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    form.lower[j] = std::isinf(form.lower[j]) ? -1 : 0;
    form.upper[j] = std::isinf(form.upper[j]) ? 1 : 0;
    largest = std::max(largest, std::abs(form.cost[j]));
  }
  for (std::size_t i = 0; i < form.rowLower.size(); ++i) {
    if (std::isfinite(form.rowLower[i])) form.rowLower[i] = 0;
    if (std::isfinite(form.rowUpper[i])) form.rowUpper[i] = 0;
  }
  SolverProblem directions = problem_;
  directions.cost = form.cost.data();
  directions.lower = form.lower.data();
  directions.upper = form.upper.data();
  directions.rowLower = form.rowLower.data();
  directions.rowUpper = form.rowUpper.data();
  directions.value = form.value.data();
  setProducts(directions, {});
  directions.level = nullptr;
  const Run found = run(directions, watch, result);
  return found.outcome == Outcome::optimal && found.objective < -1e-6 * largest;
}

void IpoptSolver::leavePositions(SolverResult& result) const {
  std::vector<double> activity(static_cast<std::size_t>(problem_.rowCount), 0.0);
  for (int j = 0; j < problem_.columnCount; ++j) {
    const auto k = static_cast<std::size_t>(j);
    result.position[k] = positionOf(result.level[k], problem_.lower[j], problem_.upper[j]);
    for (int e = problem_.start[j]; e < problem_.start[j + 1]; ++e) {
      activity[static_cast<std::size_t>(problem_.rowOf[e])] += problem_.value[e] * result.level[k];
    }
  }
  for (const SolverProduct& p : productsOf(problem_)) {
    if (p.row == kObjectiveRow) continue;
    activity[static_cast<std::size_t>(p.row)] += p.value *
                                                 result.level[static_cast<std::size_t>(p.column1)] *
                                                 result.level[static_cast<std::size_t>(p.column2)];
  }
  for (int i = 0; i < problem_.rowCount; ++i) {
    const auto k = static_cast<std::size_t>(i);
    result.rowPosition[k] = positionOf(activity[k], problem_.rowLower[i], problem_.rowUpper[i]);
    if (result.rowPosition[k] == Position::basic) result.rowMarginal[k] = 0;
  }
}

}  // namespace lomu
