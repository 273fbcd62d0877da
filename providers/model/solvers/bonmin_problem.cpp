#include "providers/model/solvers/bonmin_problem.h"

#include <algorithm>
#include <utility>

#include "providers/model/at.h"

namespace lomu {

BonminProblem::BonminProblem(const SolverProblem& problem, Ipopt::SmartPtr<IpoptProblem> asked,
                             std::function<void()> evaluated)
    : problem_(problem), asked_(std::move(asked)), evaluated_(std::move(evaluated)) {}

bool BonminProblem::get_nlp_info(int& columns, int& rows, int& jacobianCount, int& hessianCount,
                                 Ipopt::TNLP::IndexStyleEnum& style) {
  return asked_->get_nlp_info(columns, rows, jacobianCount, hessianCount, style);
}

bool BonminProblem::get_variables_types(int columns, VariableType* types) {
  std::fill(types, types + columns, CONTINUOUS);
  const std::vector<int>& moving = asked_->moving();
  for (std::size_t k = 0; k < moving.size(); ++k) {
    if (problem_.isInteger[moving[k]] != 0) types[k] = INTEGER;
  }
  return true;
}

bool BonminProblem::get_variables_linearity(int columns, Ipopt::TNLP::LinearityType* types) {
  std::fill(types, types + columns, Ipopt::TNLP::LINEAR);
  std::vector<char> isCurved(at(problem_.columnCount));
  for (const SolverProduct& p : asked_->curved()) {
    isCurved[at(p.column1)] = isCurved[at(p.column2)] = 1;
  }
  const std::vector<int>& moving = asked_->moving();
  for (std::size_t k = 0; k < moving.size(); ++k) {
    if (isCurved[at(moving[k])] != 0) types[k] = Ipopt::TNLP::NON_LINEAR;
  }
  return true;
}

bool BonminProblem::get_constraints_linearity(int rows, Ipopt::TNLP::LinearityType* types) {
  std::vector<char> isCurved(at(problem_.rowCount));
  for (const SolverProduct& p : asked_->curved()) {
    if (p.row != kObjectiveRow) isCurved[at(p.row)] = 1;
  }
  for (int i = 0; i < rows; ++i) {
    types[i] =
        isCurved[at(asked_->rows()[at(i)])] != 0 ? Ipopt::TNLP::NON_LINEAR : Ipopt::TNLP::LINEAR;
  }
  return true;
}

bool BonminProblem::get_bounds_info(int columns, double* lower, double* upper, int rows,
                                    double* rowLower, double* rowUpper) {
  return asked_->get_bounds_info(columns, lower, upper, rows, rowLower, rowUpper);
}

bool BonminProblem::get_starting_point(int columns, bool wantsX, double* x, bool wantsZ,
                                       double* zLower, double* zUpper, int rows, bool wantsLambda,
                                       double* lambda) {
  return asked_->get_starting_point(columns, wantsX, x, wantsZ, zLower, zUpper, rows, wantsLambda,
                                    lambda);
}

bool BonminProblem::eval_f(int columns, const double* x, bool isNew, double& value) {
  evaluated_();
  return asked_->eval_f(columns, x, isNew, value);
}

bool BonminProblem::eval_grad_f(int columns, const double* x, bool isNew, double* gradient) {
  return asked_->eval_grad_f(columns, x, isNew, gradient);
}

bool BonminProblem::eval_g(int columns, const double* x, bool isNew, int rows, double* activity) {
  return asked_->eval_g(columns, x, isNew, rows, activity);
}

bool BonminProblem::eval_jac_g(int columns, const double* x, bool isNew, int rows, int count,
                               int* rowOf, int* columnOf, double* value) {
  return asked_->eval_jac_g(columns, x, isNew, rows, count, rowOf, columnOf, value);
}

bool BonminProblem::eval_h(int columns, const double* x, bool isNew, double objectiveFactor,
                           int rows, const double* lambda, bool newLambda, int count, int* rowOf,
                           int* columnOf, double* value) {
  return asked_->eval_h(columns, x, isNew, objectiveFactor, rows, lambda, newLambda, count, rowOf,
                        columnOf, value);
}

}  // namespace lomu
