#include "providers/model/solvers/ipopt_problem.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "providers/model/at.h"

namespace lomu {

namespace {

// Beyond 1e19 a bound is none for Ipopt.
constexpr double kNoBound = 2e19;

double bound(double value) {
  return std::max(-kNoBound, std::min(kNoBound, value));
}

}  // namespace

IpoptProblem::IpoptProblem(const SolverProblem& problem, Watch& watch)
    : problem_(problem),
      watch_(watch),
      columnNumber_(at(problem.columnCount), kNowhere),
      rowNumber_(at(problem.rowCount), kNowhere),
      level_(at(problem.columnCount)),
      rowMarginal_(at(problem.rowCount)) {
  std::ranges::copy_if(productsOf(problem), std::back_inserter(products_),
                       [](const SolverProduct& p) { return p.value != 0; });
  findMoving();
  findRows();
}

void IpoptProblem::findMoving() {
  for (int j = 0; j < problem_.columnCount; ++j) {
    const double lower = problem_.lower[j];
    const double upper = problem_.upper[j];
    level_[at(j)] = std::max(lower, std::min(upper, problem_.level ? problem_.level[j] : 0.0));
    if (lower == upper) continue;
    columnNumber_[at(j)] = static_cast<int>(moving_.size());
    moving_.push_back(j);
  }
}

// Numbers the rows in the order in which their entries come.
void IpoptProblem::findRows() {
  for (const int j : moving_) {
    for (int e = problem_.start[j]; e < problem_.start[j + 1]; ++e) {
      if (problem_.value[e] != 0) addJacobian(problem_.rowOf[e], j, problem_.value[e], kNowhere);
    }
  }
  for (const SolverProduct& p : products_) {
    if (p.row != kObjectiveRow) {
      addJacobian(p.row, p.column1, p.value, p.column2);
      addJacobian(p.row, p.column2, p.value, p.column1);
    }
    if (columnNumber_[at(p.column1)] == kNowhere || columnNumber_[at(p.column2)] == kNowhere) {
      continue;
    }
    curved_.push_back(p);
    (p.row == kObjectiveRow ? objectiveHasProducts_ : rowsHaveProducts_) = true;
  }
  const auto equations = std::count_if(rows_.begin(), rows_.end(), [&](int i) {
    return problem_.rowLower[i] == problem_.rowUpper[i];
  });
  padding_ = std::max(0, static_cast<int>(equations) + 1 - static_cast<int>(moving_.size()));
}

void IpoptProblem::addJacobian(int row, int column, double value, int factor) {
  if (columnNumber_[at(column)] == kNowhere) return;
  if (rowNumber_[at(row)] == kNowhere) {
    rowNumber_[at(row)] = static_cast<int>(rows_.size());
    rows_.push_back(row);
  }
  jacobian_.push_back({rowNumber_[at(row)], columnNumber_[at(column)], value, factor});
}

void IpoptProblem::takePoint(const double* x) {
  for (std::size_t k = 0; k < moving_.size(); ++k) level_[at(moving_[k])] = x[k];
}

bool IpoptProblem::get_nlp_info(int& columns, int& rows, int& jacobianCount, int& hessianCount,
                                IndexStyleEnum& style) {
  columns = columnCount();
  rows = static_cast<int>(rows_.size());
  jacobianCount = static_cast<int>(jacobian_.size());
  hessianCount = static_cast<int>(curved_.size());
  style = C_STYLE;
  return true;
}

bool IpoptProblem::get_bounds_info(int columns, double* lower, double* upper, int rows,
                                   double* rowLower, double* rowUpper) {
  std::fill(lower, lower + columns, 0.0);
  std::fill(upper, upper + columns, 1.0);
  for (std::size_t k = 0; k < moving_.size(); ++k) {
    lower[k] = bound(problem_.lower[moving_[k]]);
    upper[k] = bound(problem_.upper[moving_[k]]);
  }
  for (int i = 0; i < rows; ++i) {
    rowLower[i] = bound(problem_.rowLower[rows_[at(i)]]);
    rowUpper[i] = bound(problem_.rowUpper[rows_[at(i)]]);
  }
  return true;
}

bool IpoptProblem::get_scaling_parameters(double& objectiveScale, bool& useColumns, int columns,
                                          double* columnScale, bool& useRows, int rows,
                                          double* rowScale) {
  constexpr int kPasses = 4;
  useColumns = useRows = true;
  std::fill(columnScale, columnScale + columns, 1.0);
  std::fill(rowScale, rowScale + rows, 1.0);
  // An entry is value * rowScale / columnScale, for Ipopt multiplies the columns' levels.
  const auto balance = [&](int count, const auto& placeOf, const auto& apply) {
    std::vector<double> least(at(count), HUGE_VAL);
    std::vector<double> most(at(count), 0.0);
    for (const Entry& entry : jacobian_) {
      const double value =
          entry.factor == kNowhere ? entry.value : entry.value * level_[at(entry.factor)];
      const double size = std::abs(value) * rowScale[entry.row] / columnScale[entry.column];
      if (size == 0) continue;
      const std::size_t place = at(placeOf(entry));
      least[place] = std::min(least[place], size);
      most[place] = std::max(most[place], size);
    }
    for (std::size_t k = 0; k < most.size(); ++k) {
      if (most[k] > 0) apply(k, std::sqrt(least[k] * most[k]));
    }
  };
  for (int pass = 0; pass < kPasses; ++pass) {
    balance(
        rows, [](const Entry& e) { return e.row; },
        [&](std::size_t i, double mean) { rowScale[i] /= mean; });
    balance(
        columns, [](const Entry& e) { return e.column; },
        [&](std::size_t j, double mean) { columnScale[j] *= mean; });
  }
  double largest = 0;
  for (std::size_t k = 0; k < moving_.size(); ++k) {
    largest = std::max(largest, std::abs(problem_.cost[moving_[k]]) / columnScale[k]);
  }
  objectiveScale = largest > 0 ? 1 / largest : 1;
  return true;
}

bool IpoptProblem::get_starting_point(int columns, bool /*wantsX*/, double* x, bool /*wantsZ*/,
                                      double* /*zLower*/, double* /*zUpper*/, int /*rows*/,
                                      bool /*wantsLambda*/, double* /*lambda*/) {
  std::fill(x, x + columns, 0.5);
  for (std::size_t k = 0; k < moving_.size(); ++k) x[k] = level_[at(moving_[k])];
  // A little aside, each column by another amount, since a product's saddle is where its columns
  // are 0 and Ipopt would stay there.
  constexpr double kAside = 1e-2;
  constexpr double kGolden = 0.6180339887498949;
  double fraction = 0;
  for (const SolverProduct& p : curved_) {
    for (const int j : {p.column1, p.column2}) {
      fraction += kGolden;
      fraction -= std::floor(fraction);
      const double moved = level_[at(j)] + kAside * (0.5 + fraction);
      x[columnNumber_[at(j)]] = std::max(problem_.lower[j], std::min(problem_.upper[j], moved));
    }
  }
  return true;
}

bool IpoptProblem::eval_f(int /*columns*/, const double* x, bool /*isNew*/, double& value) {
  takePoint(x);
  value = 0;
  for (int j = 0; j < problem_.columnCount; ++j) value += problem_.cost[j] * level_[at(j)];
  for (const SolverProduct& p : products_) {
    if (p.row == kObjectiveRow) value += p.value * level_[at(p.column1)] * level_[at(p.column2)];
  }
  return true;
}

bool IpoptProblem::eval_grad_f(int columns, const double* x, bool /*isNew*/, double* gradient) {
  takePoint(x);
  std::fill(gradient, gradient + columns, 0.0);
  for (std::size_t k = 0; k < moving_.size(); ++k) gradient[k] = problem_.cost[moving_[k]];
  for (const SolverProduct& p : products_) {
    if (p.row != kObjectiveRow) continue;
    const int first = columnNumber_[at(p.column1)];
    const int second = columnNumber_[at(p.column2)];
    if (first != kNowhere) gradient[first] += p.value * level_[at(p.column2)];
    if (second != kNowhere) gradient[second] += p.value * level_[at(p.column1)];
  }
  return true;
}

bool IpoptProblem::eval_g(int /*columns*/, const double* x, bool /*isNew*/, int rows,
                          double* activity) {
  takePoint(x);
  std::fill(activity, activity + rows, 0.0);
  const auto add = [&](int row, double term) {
    const int number = rowNumber_[at(row)];
    if (number != kNowhere) activity[number] += term;
  };
  for (int j = 0; j < problem_.columnCount; ++j) {
    for (int e = problem_.start[j]; e < problem_.start[j + 1]; ++e) {
      add(problem_.rowOf[e], problem_.value[e] * level_[at(j)]);
    }
  }
  for (const SolverProduct& p : products_) {
    if (p.row != kObjectiveRow) {
      add(p.row, p.value * level_[at(p.column1)] * level_[at(p.column2)]);
    }
  }
  return true;
}

bool IpoptProblem::eval_jac_g(int /*columns*/, const double* x, bool /*isNew*/, int /*rows*/,
                              int /*count*/, int* rowOf, int* columnOf, double* value) {
  if (value == nullptr) {
    for (std::size_t k = 0; k < jacobian_.size(); ++k) {
      rowOf[k] = jacobian_[k].row;
      columnOf[k] = jacobian_[k].column;
    }
    return true;
  }
  takePoint(x);
  for (std::size_t k = 0; k < jacobian_.size(); ++k) {
    const Entry& entry = jacobian_[k];
    value[k] = entry.factor == kNowhere ? entry.value : entry.value * level_[at(entry.factor)];
  }
  return true;
}

bool IpoptProblem::eval_h(int /*columns*/, const double* /*x*/, bool /*isNew*/,
                          double objectiveFactor, int /*rows*/, const double* lambda,
                          bool /*newLambda*/, int /*count*/, int* rowOf, int* columnOf,
                          double* value) {
  for (std::size_t k = 0; k < curved_.size(); ++k) {
    const SolverProduct& p = curved_[k];
    if (value == nullptr) {
      const int first = columnNumber_[at(p.column1)];
      const int second = columnNumber_[at(p.column2)];
      rowOf[k] = std::max(first, second);
      columnOf[k] = std::min(first, second);
      continue;
    }
    const double weight = p.row == kObjectiveRow ? objectiveFactor : lambda[rowNumber_[at(p.row)]];
    value[k] = weight * p.value * (p.column1 == p.column2 ? 2 : 1);
  }
  return true;
}

void IpoptProblem::finalize_solution(Ipopt::SolverReturn /*status*/, int /*columns*/,
                                     const double* x, const double* /*zLower*/,
                                     const double* /*zUpper*/, int rows, const double* /*activity*/,
                                     const double* lambda, double objective,
                                     const Ipopt::IpoptData* /*data*/,
                                     Ipopt::IpoptCalculatedQuantities* /*quantities*/) {
  takePoint(x);
  // Ipopt adds its multipliers to the objective.
  for (int i = 0; i < rows; ++i) rowMarginal_[at(rows_[at(i)])] = -lambda[i];
  objective_ = objective;
}

bool IpoptProblem::intermediate_callback(Ipopt::AlgorithmMode /*mode*/, int iteration,
                                         double /*objective*/, double /*primalInfeasibility*/,
                                         double /*dualInfeasibility*/, double /*mu*/,
                                         double /*stepNorm*/, double /*regularization*/,
                                         double /*dualStep*/, double /*primalStep*/, int /*trials*/,
                                         const Ipopt::IpoptData* /*data*/,
                                         Ipopt::IpoptCalculatedQuantities* /*quantities*/) {
  iterations_ = iteration;
  // The next iteration, whose factorization nothing interrupts, takes about as long as this one.
  const auto now = std::chrono::steady_clock::now();
  const double lasted = std::chrono::duration<double>(now - asked_).count();
  const bool isFirst = std::exchange(asked_, now) == std::chrono::steady_clock::time_point{};
  return !(isFirst ? watch_.mustStop() : watch_.mustStopWithin(lasted));
}

}  // namespace lomu
