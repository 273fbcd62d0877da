// A problem all of whose rows give way by the same amount, in units of their largest coefficient,
// as small as can be. Its marginals are weights of a few rows that are broken most: a proof that
// the problem itself has no point.
#ifndef ZTB_PROVIDERS_MODEL_ELASTIC_PROBLEM_H_
#define ZTB_PROVIDERS_MODEL_ELASTIC_PROBLEM_H_

#include <vector>

#include "providers/model/solver.h"

namespace lomu {

class ElasticProblem {
 public:
  // REQUIRES no products, integers, sets or semi-continuous columns. Nothing of `problem` is kept.
  explicit ElasticProblem(const SolverProblem& problem);
  ElasticProblem(const ElasticProblem&) = delete;
  ElasticProblem& operator=(const ElasticProblem&) = delete;

  [[nodiscard]] const SolverProblem& problem() const { return problem_; }
  // Weights of the rows of the problem, of the marginals of this one.
  [[nodiscard]] std::vector<double> weights(const std::vector<double>& rowMarginal) const;

 private:
  int rowCount_;
  std::vector<int> rowOfSide_;  // a row here for each side of a row
  std::vector<int> start_, rowOf_;
  std::vector<double> value_, cost_, lower_, upper_, sideLower_, sideUpper_;
  std::vector<char> noInteger_;
  SolverProblem problem_{};
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_ELASTIC_PROBLEM_H_
