// A problem with products as Ipopt asks for it: columns that stand still are constants, rows that
// hold no other columns are left out, first and second derivatives are exact.
//
// Ipopt refuses a problem with more equations than columns, also where equations follow from each
// other, and leaves the cost out of account in one with as many. Such a problem gets columns from 0
// to 1 that stand in no row and cost nothing.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_PROBLEM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_PROBLEM_H_

#include <IpTNLP.hpp>
#include <chrono>
#include <vector>

#include "providers/model/solver.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class IpoptProblem : public Ipopt::TNLP {
 public:
  // `problem` and `watch` must outlive the problem. REQUIRES bounds that do not cross.
  IpoptProblem(const SolverProblem& problem, Watch& watch);

  [[nodiscard]] bool anythingMoves() const { return !moving_.empty(); }
  // Whether the product of two columns that move is in a row, or in the objective.
  [[nodiscard]] bool rowsHaveProducts() const { return rowsHaveProducts_; }
  [[nodiscard]] bool objectiveHasProducts() const { return objectiveHasProducts_; }
  // The products of columns that both move.
  [[nodiscard]] const std::vector<SolverProduct>& curved() const { return curved_; }

  // Ours, by Ipopt's number; the columns beyond them are those that stand in no row.
  [[nodiscard]] const std::vector<int>& moving() const { return moving_; }
  [[nodiscard]] const std::vector<int>& rows() const { return rows_; }

  // Takes levels of Ipopt's columns over, for level().
  void takePoint(const double* x);
  // What Ipopt left: levels of all columns, marginals of all rows, iterations.
  [[nodiscard]] const std::vector<double>& level() const { return level_; }
  [[nodiscard]] const std::vector<double>& rowMarginal() const { return rowMarginal_; }
  [[nodiscard]] double objective() const { return objective_; }
  [[nodiscard]] int iterations() const { return iterations_; }

  bool get_nlp_info(int& columns, int& rows, int& jacobianCount, int& hessianCount,
                    IndexStyleEnum& style) override;
  bool get_bounds_info(int columns, double* lower, double* upper, int rows, double* rowLower,
                       double* rowUpper) override;
  // Of a linear problem: rows and columns each with entries around 1.
  bool get_scaling_parameters(double& objectiveScale, bool& useColumns, int columns,
                              double* columnScale, bool& useRows, int rows,
                              double* rowScale) override;
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
  void finalize_solution(Ipopt::SolverReturn status, int columns, const double* x,
                         const double* zLower, const double* zUpper, int rows,
                         const double* activity, const double* lambda, double objective,
                         const Ipopt::IpoptData* data,
                         Ipopt::IpoptCalculatedQuantities* quantities) override;
  bool intermediate_callback(Ipopt::AlgorithmMode mode, int iteration, double objective,
                             double primalInfeasibility, double dualInfeasibility, double mu,
                             double stepNorm, double regularization, double dualStep,
                             double primalStep, int trials, const Ipopt::IpoptData* data,
                             Ipopt::IpoptCalculatedQuantities* quantities) override;

 private:
  static constexpr int kNowhere = -1;
  struct Entry {
    int row;     // Ipopt's
    int column;  // Ipopt's
    double value;
    int factor;  // the column, ours, that the value is multiplied by, or kNowhere
  };

  void findMoving();
  void findRows();
  void addJacobian(int row, int column, double value, int factor);
  [[nodiscard]] int columnCount() const { return static_cast<int>(moving_.size()) + padding_; }

  const SolverProblem& problem_;
  Watch& watch_;
  std::vector<SolverProduct> products_;
  std::vector<int> moving_;        // ours, by Ipopt's number
  std::vector<int> columnNumber_;  // Ipopt's, by ours; or kNowhere
  std::vector<int> rows_;          // ours, by Ipopt's number
  std::vector<int> rowNumber_;     // Ipopt's, by ours; or kNowhere
  std::vector<Entry> jacobian_;
  std::vector<SolverProduct> curved_;  // products of columns that both move
  int padding_ = 0;
  bool rowsHaveProducts_ = false;
  bool objectiveHasProducts_ = false;
  std::vector<double> level_;
  std::vector<double> rowMarginal_;
  double objective_ = 0;
  int iterations_ = 0;
  std::chrono::steady_clock::time_point asked_;  // when the last iteration ended
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_PROBLEM_H_
