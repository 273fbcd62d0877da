// An Ipopt problem of ours as Bonmin asks for it: the same columns, rows and derivatives, and which
// columns are integer.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_PROBLEM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_PROBLEM_H_

#include <BonTMINLP.hpp>
#include <IpSmartPtr.hpp>
#include <functional>

#include "providers/model/solvers/ipopt_problem.h"

namespace lomu {

class BonminProblem : public Bonmin::TMINLP {
 public:
  // `problem` is the one that `asked` was made of. `evaluated` is called now and then during every
  // run of Ipopt.
  BonminProblem(const SolverProblem& problem, Ipopt::SmartPtr<IpoptProblem> asked,
                std::function<void()> evaluated);

  bool get_nlp_info(int& columns, int& rows, int& jacobianCount, int& hessianCount,
                    Ipopt::TNLP::IndexStyleEnum& style) override;
  bool get_variables_types(int columns, VariableType* types) override;
  bool get_variables_linearity(int columns, Ipopt::TNLP::LinearityType* types) override;
  bool get_constraints_linearity(int rows, Ipopt::TNLP::LinearityType* types) override;
  bool get_bounds_info(int columns, double* lower, double* upper, int rows, double* rowLower,
                       double* rowUpper) override;
  bool get_starting_point(int columns, bool wantsX, double* x, bool wantsZ, double* zLower,
                          double* zUpper, int rows, bool wantsLambda, double* lambda) override;
  bool eval_f(int columns, const double* x, bool isNew, double& value) override;
  bool eval_grad_f(int columns, const double* x, bool isNew, double* gradient) override;
  bool eval_g(int columns, const double* x, bool isNew, int rows, double* activity) override;
  bool eval_jac_g(int columns, const double* x, bool isNew, int rows, int count, int* rowOf,
                  int* columnOf, double* value) override;
  bool eval_h(int columns, const double* x, bool isNew, double objectiveFactor, int rows,
              const double* lambda, bool newLambda, int count, int* rowOf, int* columnOf,
              double* value) override;
  void finalize_solution(SolverReturn /*status*/, int /*columns*/, const double* /*x*/,
                         double /*objective*/) override {}
  [[nodiscard]] const BranchingInfo* branchingInfo() const override { return nullptr; }
  [[nodiscard]] const SosInfo* sosConstraints() const override { return nullptr; }

 private:
  const SolverProblem& problem_;
  Ipopt::SmartPtr<IpoptProblem> asked_;
  std::function<void()> evaluated_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_PROBLEM_H_
