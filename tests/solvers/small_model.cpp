#include "tests/solvers/small_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "providers/model/solver_library.h"
#include "tests/support/library_name.h"

namespace ztbtest {

int SmallModel::column(double costOf, double lowerOf, double upperOf, bool integer) {
  cost.push_back(costOf);
  lower.push_back(lowerOf);
  upper.push_back(upperOf);
  isInteger.push_back(integer ? 1 : 0);
  level.push_back(0);
  return static_cast<int>(cost.size()) - 1;
}

int SmallModel::row(std::vector<double> coefficients, double lowerOf, double upperOf) {
  rows.push_back(std::move(coefficients));
  rowLower.push_back(lowerOf);
  rowUpper.push_back(upperOf);
  return static_cast<int>(rows.size()) - 1;
}

const lomu::SolverProblem& SmallModel::problem() {
  start_.assign(1, 0);
  rowOf_.clear();
  value_.clear();
  for (std::size_t j = 0; j < cost.size(); ++j) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      rowOf_.push_back(static_cast<int>(i));
      value_.push_back(rows[i].at(j));
    }
    start_.push_back(static_cast<int>(rowOf_.size()));
  }
  problem_.columnCount = static_cast<int>(cost.size());
  problem_.rowCount = static_cast<int>(rows.size());
  problem_.cost = cost.data();
  problem_.lower = lower.data();
  problem_.upper = upper.data();
  problem_.isInteger = isInteger.data();
  problem_.rowLower = rowLower.data();
  problem_.rowUpper = rowUpper.data();
  problem_.start = start_.data();
  problem_.rowOf = rowOf_.data();
  problem_.value = value_.data();
  lomu::setProducts(problem_, products);
  problem_.level = level.data();
  problem_.coefficientsAsOf = coefficientsAsOf;
  problem_.matrixAsOf = matrixAsOf != 0 ? matrixAsOf : coefficientsAsOf;
  problem_.hasIntegers = std::ranges::count(isInteger, 0) != std::ssize(isInteger) ? 1 : 0;
  return problem_;
}

double SmallModel::objective(const std::vector<double>& at) const {
  double sum = 0;
  for (std::size_t j = 0; j < cost.size(); ++j) sum += cost[j] * at[j];
  for (const lomu::SolverProduct& p : products) {
    if (p.row != lomu::kObjectiveRow) continue;
    sum +=
        p.value * at[static_cast<std::size_t>(p.column1)] * at[static_cast<std::size_t>(p.column2)];
  }
  return sum;
}

double SmallModel::activity(std::size_t rowNumber, const std::vector<double>& at) const {
  double sum = 0;
  for (std::size_t j = 0; j < cost.size(); ++j) sum += rows[rowNumber][j] * at[j];
  for (const lomu::SolverProduct& p : products) {
    if (p.row != static_cast<int>(rowNumber)) continue;
    sum +=
        p.value * at[static_cast<std::size_t>(p.column1)] * at[static_cast<std::size_t>(p.column2)];
  }
  return sum;
}

std::unique_ptr<lomu::Solver> openSolver(const std::string& name) {
  return lomu::SolverLibrary::makeSolver(std::string(ZTB_SOLVER_FOLDER) + "/" +
                                         libraryName("ztb" + name));
}

lomu::SolverResult resultFor(const SmallModel& model) {
  lomu::SolverResult result;
  result.level.resize(model.cost.size());
  result.position.resize(model.cost.size(), lomu::Position::basic);
  result.rowMarginal.resize(model.rows.size());
  result.rowPosition.resize(model.rows.size(), lomu::Position::basic);
  return result;
}

lomu::SolverResult solveLive(lomu::Solver& solver, const SmallModel& model,
                             const lomu::SolverLimits& limits) {
  lomu::SolverResult result = resultFor(model);
  solver.solve(limits, result);
  return result;
}

lomu::SolverResult solveFresh(const std::string& name, SmallModel& model,
                              const lomu::SolverLimits& limits) {
  const std::unique_ptr<lomu::Solver> solver = openSolver(name);
  std::string reason;
  EXPECT_TRUE(solver->load(model.problem(), reason)) << reason;
  return solveLive(*solver, model, limits);
}

}  // namespace ztbtest
